#pragma once

#include <cstdint>
#include <string>

#include "raster/colour.h"

namespace kelvora {

/// The colour and size of one purpose's text, kept in the settings.
class clsFont {
 public:
  /// Sets the purpose, 0 to 4, and reads its settings. RuntimeFault for any other purpose, because it has no defaults.
  void init(std::int16_t purpose);
  /// Reads the stored values. RuntimeFault if one is not a number or out of range.
  void loadSettings();
  /// Updates this purpose's row of the dialog. Loads the dialog.
  void showToForm();
  /// Sets channel 0 (red), 1 (green) or 2 (blue), saves and shows it. Other channels change nothing.
  void setColour(std::uint8_t channel, std::uint8_t value);
  /// Sets the size in points, saves and shows it.
  void updateSize(std::int16_t size);
  Colour getColour() const { return {red, green, blue}; }
  /// In points.
  std::int16_t getSize() const { return size; }

 private:
  std::string key(const char* name) const;

  std::string family;  // not used: the canvas prints in its own font
  std::int16_t size = 0;
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  std::int16_t purpose = 0;
};

}  // namespace kelvora
