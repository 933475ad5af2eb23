#include "server/http/http.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/rfc7230.hpp>
#include <boost/beast/websocket/rfc6455.hpp>
#include <charconv>
#include <iterator>
#include <utility>

namespace kelvora::server {

namespace http = boost::beast::http;

namespace {

constexpr std::string_view emptyLine = "\r\n";

bool isCapital(char c) { return c >= 'A' && c <= 'Z'; }

std::string text(boost::beast::string_view view) { return {view.data(), view.size()}; }

/// The last line of a header, or nothing. Each proxy appends its own line.
std::string lastLine(const http::fields& head, boost::beast::string_view name) {
  const auto [first, end] = head.equal_range(name);
  return first == end ? std::string() : text(std::prev(end)->value());
}

/// All lines of a header, joined with commas.
std::string allLines(const http::fields& head, http::field name) {
  std::string all;
  const auto [first, end] = head.equal_range(name);
  for (auto line = first; line != end; ++line) all += (all.empty() ? "" : ", ") + text(line->value());
  return all;
}

/// True if an Accept-Encoding lists gzip, not as "gzip;q=0", which refuses it.
bool takesGzip(boost::beast::string_view accepted) {
  http::ext_list codings(accepted);
  const auto gzip = codings.find("gzip");
  if (gzip == codings.end()) return false;
  const auto& parameters = gzip->second;
  return std::none_of(parameters.begin(), parameters.end(), [](const auto& parameter) {
    return parameter.first == "q" && parameter.second.find_first_not_of("0.") == boost::beast::string_view::npos;
  });
}

/// True if the request is a correct handshake of a WebSocket.
bool isUpgrade(const http::request<http::empty_body>& head) {
  constexpr std::size_t keySize = 24;
  return boost::beast::websocket::is_upgrade(head) && head[http::field::sec_websocket_version] == "13" &&
         head[http::field::sec_websocket_key].size() == keySize;
}

/// Decodes "%41" to "A" and "+" to a blank. A percent sign without two digits is literal.
std::string decoded(std::string_view escaped) {
  std::string result;
  for (std::size_t i = 0; i < escaped.size(); ++i) {
    unsigned char code = 0;
    const char* const digits = escaped.data() + i + 1;
    if (escaped[i] == '%' && i + 2 < escaped.size() &&
        std::from_chars(digits, digits + 2, code, 16).ptr == digits + 2) {
      result += static_cast<char>(code);
      i += 2;
    } else {
      result += escaped[i] == '+' ? ' ' : escaped[i];
    }
  }
  return result;
}

}  // namespace

std::string_view HttpRequest::path() const {
  std::string_view rest = target;
  if (const std::size_t scheme = rest.find("://"); scheme != std::string_view::npos && !rest.starts_with('/')) {
    const std::size_t slash = rest.find('/', scheme + 3);
    rest = slash == std::string_view::npos ? std::string_view("/") : rest.substr(slash);
  }
  return rest.substr(0, rest.find('?'));
}

std::string HttpRequest::argument(std::string_view name) const {
  const std::size_t mark = target.find('?');
  if (mark == std::string::npos) return {};
  std::string_view query = std::string_view(target).substr(mark + 1);
  while (!query.empty()) {
    const std::string_view pair = query.substr(0, query.find('&'));
    query.remove_prefix(std::min(pair.size() + 1, query.size()));
    const std::size_t equals = pair.find('=');
    if (decoded(pair.substr(0, equals)) != name) continue;
    return equals == std::string_view::npos ? std::string() : decoded(pair.substr(equals + 1));
  }
  return {};
}

HttpReader::Result HttpReader::read(std::string_view bytes) {
  const std::size_t looked = text_.size() < 3 ? 0 : text_.size() - 3;  // the end may span two pieces
  text_ += bytes;
  if (!hasBegun_ && text_.size() >= emptyLine.size()) {
    hasBegun_ = true;
    if (text_.starts_with(emptyLine)) text_.erase(0, emptyLine.size());
  }
  if (!text_.empty() && hasBegun_ && !isCapital(text_[0])) return Result::malformed;
  const std::size_t end = text_.find("\r\n\r\n", looked);
  headSize_ = end == std::string::npos ? text_.size() : end + 4;
  if (headSize_ > maxHead) return Result::tooLong;
  if (end == std::string::npos) return Result::partial;

  http::request_parser<http::empty_body> parser;
  parser.header_limit(maxHead);
  boost::system::error_code error;
  parser.put(boost::asio::buffer(text_.data(), headSize_), error);
  if (!parser.is_header_done()) return Result::malformed;
  const auto& head = parser.get();
  request_ = {
      .method = text(head.method_string()),
      .target = text(head.target()),
      .host = text(head[http::field::host]),
      .origin = text(head[http::field::origin]),
      .authorization = text(head[http::field::authorization]),
      .forwardedFor = lastLine(head, "X-Forwarded-For"),
      .ifNoneMatch = allLines(head, http::field::if_none_match),
      .range = head.count(http::field::if_range) > 0 ? std::string() : text(head[http::field::range]),
      .acceptsGzip = takesGzip(head[http::field::accept_encoding]),
      // Bodies aren't read, so a connection with one can't be kept.
      .keepsAlive = parser.keep_alive() && !parser.chunked() && parser.content_length().value_or(0) == 0,
      .isUpgrade = isUpgrade(head),
      .isForwarded =
          head.count("X-Forwarded-For") + head.count(http::field::forwarded) + head.count(http::field::via) > 0};
  return Result::complete;
}

void HttpAnswer::append(std::shared_ptr<const std::string> text) {
  moreSize = text->size();
  more = [text = std::move(text), at = std::size_t{0}](std::size_t size) mutable {
    if (at >= text->size()) return std::string();
    std::string piece = text->substr(at, size);
    at += piece.size();
    return piece;
  };
}

std::string HttpAnswer::head(bool keepsAlive) const {
  std::string result = "HTTP/1.1 " + std::to_string(status) + " " +
                       text(http::obsolete_reason(static_cast<http::status>(status))) + "\r\n";
  if (status != 304) {
    result += "Content-Type: " + type + "\r\nContent-Length: " + std::to_string(body.size() + moreSize) + "\r\n";
  }
  result += keepsAlive ? "Connection: keep-alive\r\n" : "Connection: close\r\n";
  for (const std::string& header : headers) result += header + "\r\n";
  return result + "\r\n";
}

HttpAnswer textAnswer(unsigned int status, std::string text) {
  return {.status = status, .body = std::move(text), .headers = {"Cache-Control: no-store"}};
}

HttpAnswer methodNotAllowed(const std::string& methods, std::string text) {
  HttpAnswer answer = textAnswer(405, std::move(text));
  answer.headers.push_back("Allow: " + methods);
  return answer;
}

}  // namespace kelvora::server
