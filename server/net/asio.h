#pragma once

// The networking library's types under the names that the server's network code uses.

#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/system/error_code.hpp>

namespace kelvora::server {

namespace asio = boost::asio;
using boost::system::error_code;

// The library's own names for these accept any executor, which costs memory and time in every operation.
using Socket = asio::basic_stream_socket<asio::ip::tcp, asio::io_context::executor_type>;
using Acceptor = asio::basic_socket_acceptor<asio::ip::tcp, asio::io_context::executor_type>;

}  // namespace kelvora::server
