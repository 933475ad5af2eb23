#include "platform/qt/qtFonts.h"

#include <fontconfig/fontconfig.h>

#include <QFontDatabase>
#include <QFontMetrics>
#include <QStringList>
#include <clocale>
#include <system_error>

#include "platform/qt/codePage.h"

namespace kelvora {

namespace {

void substitute(const QString& family, const QStringList& substitutes) {
  if (!QFontDatabase::hasFamily(family)) QFont::insertSubstitutions(family, substitutes);
}

}  // namespace

FontsAhead::FontsAhead() {
  // The toolkit sets the locale, which the thread uses to parse numbers. Setting it first keeps it from changing in
  // between.
  std::setlocale(LC_ALL, "");
  try {
    thread_ = std::thread([] { FcInit(); });
  } catch (const std::system_error&) {
    return;
  }
}

FontsAhead::~FontsAhead() {
  if (thread_.joinable()) thread_.join();
}

void installFontSubstitutes() {
  substitute("Comic Sans MS", {"Comic Neue", "Comic Relief", "DejaVu Sans"});
  substitute("Kristen ITC", {"Comic Neue", "Comic Relief", "DejaVu Sans"});
  substitute("MS Sans Serif", {"Liberation Sans", "Arimo", "Arial", "Nimbus Sans", "DejaVu Sans"});
}

QFont toQFont(const FontSpec& font) { return toQFont(font, font.size); }

QFont toQFont(const FontSpec& font, float points) {
  QFont result(toQString(font.family));
  result.setPixelSize(fontPixels(points));
  result.setBold(font.bold);
  result.setHintingPreference(QFont::PreferFullHinting);
  return result;
}

QFont fittingFont(QFont font, const QString& text, QSize room) {
  const int smallest = font.pixelSize() * 3 / 4;
  for (int size = font.pixelSize(); size > smallest; --size) {
    font.setPixelSize(size);
    const QFontMetrics metrics(font);
    if (metrics.horizontalAdvance(text) <= room.width() && metrics.height() <= room.height()) break;
  }
  return font;
}

}  // namespace kelvora
