#include "server/net/proxyLine.h"

#include <algorithm>

#include "server/net/asio.h"

namespace kelvora::server {

namespace {

constexpr std::string_view start = "PROXY ";

/// Takes the next word from the left.
std::string_view takeWord(std::string_view& line) {
  const std::string_view word = line.substr(0, line.find(' '));
  line.remove_prefix(std::min(word.size() + 1, line.size()));
  return word;
}

}  // namespace

ProxyLine::Result ProxyLine::read(std::string_view bytes) {
  text_ += bytes;
  const std::size_t known = std::min(text_.size(), start.size());
  if (text_.compare(0, known, start, 0, known) != 0) return Result::absent;
  const std::size_t end = text_.find("\r\n");
  if (end == std::string::npos) return text_.size() < maxLength ? Result::partial : Result::malformed;
  if (end + 2 > maxLength) return Result::malformed;
  size_ = end + 2;

  std::string_view line = std::string_view(text_).substr(start.size(), end - start.size());
  const std::string_view family = takeWord(line);
  error_code error;
  address_ = asio::ip::make_address(std::string(takeWord(line)), error);
  const bool isOfFamily = address_.is_v4() ? family == "TCP4" : family == "TCP6";
  return !error && isOfFamily ? Result::complete : Result::malformed;
}

}  // namespace kelvora::server
