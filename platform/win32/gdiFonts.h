#pragma once

#include "platform/win32/win32.h"
#include "raster/font.h"

namespace kelvora {

/// The system's font for a requested one, at this many device pixels for each of the game's. Antialiased in grey.
/// Stays valid until the program ends.
HFONT gdiFont(const FontSpec& font, double scale);

/// A device context with a font selected, to measure with.
class FontMeasure {
 public:
  explicit FontMeasure(HFONT font);
  ~FontMeasure();
  FontMeasure(const FontMeasure&) = delete;
  FontMeasure& operator=(const FontMeasure&) = delete;

  HDC dc() const { return dc_; }
  int lineHeight() const { return metrics_.tmHeight; }
  const TEXTMETRICW& metrics() const { return metrics_; }
  int width(const wchar_t* text, std::size_t length) const;

 private:
  HDC dc_;
  HGDIOBJ before_;
  TEXTMETRICW metrics_{};
};

}  // namespace kelvora
