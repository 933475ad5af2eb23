#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora::server {

/// The parts of an HTTP request that the server uses. Missing texts are empty.
struct HttpRequest {
  std::string method{};
  std::string target{};
  std::string host{};
  std::string origin{};
  std::string authorization{};
  std::string forwardedFor{};
  std::string ifNoneMatch{};
  std::string range{};  ///< empty if it depends on an If-Range, as clients must accept the whole file
  bool acceptsGzip = false;
  bool keepsAlive = false;
  bool isUpgrade = false;    ///< a correct one to WebSocket
  bool isForwarded = false;  ///< a proxy says that it passes it on

  bool isHead() const { return method == "HEAD"; }
  /// The target without host and query: "http://host:80/a?b" is "/a". "/" for an absolute target without a path.
  std::string_view path() const;
  /// The decoded value of a query parameter; empty if it is missing.
  std::string argument(std::string_view name) const;
};

/// Collects the head of a request from pieces.
class HttpReader {
 public:
  static constexpr std::size_t maxHead = 4096;  ///< bytes

  enum class Result { partial, complete, malformed, tooLong };

  /// Adds bytes until the head is complete. Ignores one empty line before it. Doesn't read bodies.
  Result read(std::string_view bytes);
  /// Valid once complete.
  const HttpRequest& request() const { return request_; }
  /// The head's bytes.
  std::string_view head() const { return std::string_view(text_).substr(0, headSize_); }
  /// Bytes read after the head.
  std::string_view rest() const { return std::string_view(text_).substr(headSize_); }

 private:
  std::string text_;
  bool hasBegun_ = false;  // any empty line is gone
  std::size_t headSize_ = 0;
  HttpRequest request_;
};

/// Returns the next piece of a body, at most `size` bytes; empty if the rest can no longer be had.
using BodySource = std::function<std::string(std::size_t size)>;

/// An HTTP answer. The length of the body is known in advance.
struct HttpAnswer {
  unsigned int status = 200;
  std::string body{};
  std::string type = "text/plain";
  std::vector<std::string> headers{};  ///< additional ones, "Name: value"
  /// Follows `body`, for contents too large to hold in memory.
  BodySource more{};
  std::size_t moreSize = 0;  ///< bytes
  bool mayKeepAlive = false;

  /// Sets `more` to a text, which is shared, not copied. If the text is emptied meanwhile, so is the rest of the body.
  void append(std::shared_ptr<const std::string> text);
  /// Status line and headers.
  std::string head(bool keepsAlive) const;
};

/// A text that nobody may cache.
HttpAnswer textAnswer(unsigned int status, std::string text);
/// Status 405 with `text`, such as "Only GET is served here.", and the allowed methods as its Allow header.
HttpAnswer methodNotAllowed(const std::string& methods, std::string text);

}  // namespace kelvora::server
