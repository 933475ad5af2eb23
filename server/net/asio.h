#pragma once

// The networking library's types under the names that the server's network code uses.

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/system/error_code.hpp>

namespace kelvora::server {

namespace asio = boost::asio;
using boost::system::error_code;

}  // namespace kelvora::server
