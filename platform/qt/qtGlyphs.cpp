#include "platform/qt/qtGlyphs.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include "platform/qt/codePage.h"
#include "platform/qt/qtFonts.h"

namespace kelvora {

namespace {

/// The font without colour fringes: the picture uses one coverage value per pixel.
QFont greyFont(const FontSpec& font) {
  QFont result = toQFont(font);
  result.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
  return result;
}

bool isControl(char16_t code) { return code < 0x20 || (code >= 0x7F && code <= 0x9F); }

}  // namespace

Glyph QtGlyphSource::glyph(const FontSpec& font, unsigned char character) {
  const QFont face = greyFont(font);
  const QFontMetrics metrics(face);
  const char16_t code = toUnicode(character);
  const QChar letter = isControl(code) ? QChar(u' ') : QChar(code);
  Glyph result;
  result.advance = metrics.horizontalAdvance(letter);
  // One pixel more on each side than the font's box, because hinting may push the outline over its edge.
  const QRect box = metrics.boundingRect(letter).adjusted(-1, -1, 1, 1);
  if (letter.isSpace() || box.isEmpty()) return result;

  QImage image(box.size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setFont(face);
  painter.setPen(Qt::white);
  painter.drawText(-box.topLeft(), QString(letter));
  painter.end();

  result.left = box.left();
  result.top = metrics.ascent() + box.top();
  result.width = box.width();
  result.height = box.height();
  result.coverage.reserve(static_cast<std::size_t>(box.width() * box.height()));
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      result.coverage.push_back(static_cast<std::uint8_t>(qAlpha(image.pixel(x, y))));
    }
  }
  return result;
}

int QtGlyphSource::lineHeight(const FontSpec& font) { return QFontMetrics(greyFont(font)).height(); }

}  // namespace kelvora
