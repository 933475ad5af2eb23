#pragma once

#include <QFont>
#include <QString>
#include <thread>

#include "raster/font.h"

namespace kelvora {

/// Reads the system's rules for fonts on a thread of its own, from its beginning to its end, while the toolkit connects
/// to the screen: both take as long. The toolkit finds the rules read, or reads them itself if there is no thread.
class FontsAhead {
 public:
  FontsAhead();
  ~FontsAhead();
  FontsAhead(const FontsAhead&) = delete;
  FontsAhead& operator=(const FontsAhead&) = delete;

 private:
  std::thread thread_;
};

/// Names free fonts of the same character for the families that the game asks for and the machine does not have. Called
/// once, when the application stands.
void installFontSubstitutes();

/// The desktop's font for what the game asks for, in pixels at 96 dots to the inch.
QFont toQFont(const FontSpec& font);
/// The same font with another number of points.
QFont toQFont(const FontSpec& font, float points);

/// The font, or the next smaller one in which the text fits into the given width and height (pixels); not below three
/// quarters of its size.
QFont fittingFont(QFont font, const QString& text, QSize room);

}  // namespace kelvora
