#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <cstdint>
#include <string>

namespace kelvora::server {

/// A socket that listens; port 0 is any free one. An address or port that is no good throws std::system_error with a
/// text that names both.
asio::ip::tcp::acceptor listenOn(asio::io_context& context, const std::string& address, std::uint16_t port);

/// "127.0.0.1:2010"
std::string endpointText(const asio::ip::tcp::acceptor& acceptor);

}  // namespace kelvora::server
