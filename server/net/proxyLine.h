#pragma once

#include <boost/asio/ip/address.hpp>
#include <string>
#include <string_view>

namespace kelvora::server {

/// Reads the line that a proxy can put before a client's bytes, version 1 of the PROXY protocol:
/// "PROXY TCP4 192.0.2.1 198.51.100.1 50000 2010\r\n". The first address is the client's.
class ProxyLine {
 public:
  static constexpr std::size_t maxLength = 107;  ///< bytes, with the line's end

  enum class Result { partial, absent, complete, malformed };

  /// Takes bytes until it is clear whether there is such a line.
  Result read(std::string_view bytes);
  /// The client's address. Valid once complete.
  const boost::asio::ip::address& address() const { return address_; }
  /// The bytes after the line, or all bytes if there is no line.
  std::string_view rest() const { return std::string_view(text_).substr(size_); }

 private:
  std::string text_;
  std::size_t size_ = 0;  // of the line
  boost::asio::ip::address address_;
};

}  // namespace kelvora::server
