#pragma once

#include <string>
#include <string_view>

#include "server/http/http.h"

namespace kelvora::server {

/// A text in code page 1252 as UTF-8 for a page's text or a quoted attribute. Without control characters.
std::string htmlText(std::string_view text);

/// The beginning of a page, up to and including its heading.
std::string htmlBegin(std::string_view title);

inline constexpr std::string_view htmlEnd = "</html>\n";

/// An answer with a page that isn't cached and loads no other files.
HttpAnswer htmlAnswer(std::string body);

/// Answers with a page that says why there is no other, and leads back to "/".
HttpAnswer messagePage(unsigned int status, std::string_view title, std::string_view text);

}  // namespace kelvora::server
