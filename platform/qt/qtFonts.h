#pragma once

#include <QFont>
#include <QString>
#include <thread>

#include "raster/font.h"

namespace kelvora {

/// Loads the system's font rules on a thread while the toolkit connects to the screen. The two take about equally long.
/// The destructor waits for the thread. If no thread can be started, the toolkit loads the rules itself.
class FontsAhead {
 public:
  FontsAhead();
  ~FontsAhead();
  FontsAhead(const FontsAhead&) = delete;
  FontsAhead& operator=(const FontsAhead&) = delete;

 private:
  std::thread thread_;
};

/// Registers free fonts of a similar style for requested families that aren't installed. Call it once, after creating
/// the application.
void installFontSubstitutes();

/// The desktop's font for a requested one, in pixels at 96 dots per inch.
QFont toQFont(const FontSpec& font);
/// The same font with another size in points.
QFont toQFont(const FontSpec& font, float points);

/// The font, made smaller until the text fits into `room` (pixels), but not below three quarters of its size.
QFont fittingFont(QFont font, const QString& text, QSize room);

}  // namespace kelvora
