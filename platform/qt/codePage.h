#pragma once

#include <QString>
#include <string>
#include <string_view>

#include "base/codePage.h"

namespace kelvora {

/// Converts code page 1252 to the toolkit's text, one character per byte.
inline QString toQString(std::string_view text) {
  QString result;
  result.reserve(static_cast<qsizetype>(text.size()));
  for (const char character : text) result.append(QChar(toUnicode(static_cast<unsigned char>(character))));
  return result;
}

/// Converts to code page 1252, one byte per character. Characters that it lacks are dropped. Separate accents are first
/// combined with their letters.
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
