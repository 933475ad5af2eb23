#pragma once

#include <cstdint>
#include <string>

#include "raster/colour.h"

namespace kelvora {

/// Colour and size of one purpose of text, kept in the settings store.
class clsFont {
 public:
  /// Takes up the purpose, 0 to 4, and reads its settings; any other has no defaults and is RuntimeFault.
  void init(std::int16_t purpose);
  /// A stored value that is no number, or that is out of range, is RuntimeFault.
  void loadSettings();
  /// Brings this purpose's row of the dialog up to date. Loads the dialog.
  void showToForm();
  /// Channel 0 red, 1 green, 2 blue; any other changes nothing. Saved and shown at once.
  void setColour(std::uint8_t channel, std::uint8_t value);
  /// Points. Saved and shown at once.
  void updateSize(std::int16_t size);
  Colour getColour() const { return {red, green, blue}; }
  std::int16_t getSize() const { return size; }

 private:
  std::string key(const char* name) const;

  std::string family;  // read and kept; the canvas prints in its own font
  std::int16_t size = 0;
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  std::int16_t purpose = 0;
};

}  // namespace kelvora
