#pragma once

#include <QString>
#include <string>
#include <string_view>

#include "base/codePage.h"

namespace kelvora {

/// One character a byte, of the same length as the text.
inline QString toQString(std::string_view text) {
  QString result;
  result.reserve(static_cast<qsizetype>(text.size()));
  for (const char character : text) result.append(QChar(toUnicode(static_cast<unsigned char>(character))));
  return result;
}

/// One byte a character; what code page 1252 does not have is left out. A letter whose accent stands apart counts as
/// the one that it looks like.
inline std::string toBytes(const QString& text) {
  const QString whole = text.normalized(QString::NormalizationForm_C);
  std::string result;
  result.reserve(static_cast<std::size_t>(whole.size()));
  for (const QChar character : whole) {
    if (const auto byte = toCodePage(character.unicode())) result.push_back(*byte);
  }
  return result;
}

}  // namespace kelvora
