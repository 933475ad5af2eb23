#pragma once

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/compose.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/buffers_prefix.hpp>
#include <chrono>
#include <string>
#include <utility>

#include "server/net/asio.h"

namespace kelvora::server {

/// A socket that reads at most `bytesPerSecond` from its peer, in small pieces. A peer that sends more has to wait. It
/// counts network bytes, so no protocol on top can bypass the limit. It must not be moved while it reads.
class PacedSocket {
 public:
  using Clock = std::chrono::steady_clock;
  using executor_type = asio::ip::tcp::socket::executor_type;

  /// More than fifty times what the game sends.
  static constexpr std::size_t bytesPerSecond = std::size_t{32} << 10;
  /// How long a full-speed burst may last: a peer may send half a second's worth at once.
  static constexpr auto burst = std::chrono::milliseconds(500);
  /// Bytes. Small, so that flooding clients take turns with the others.
  static constexpr std::size_t maxRead = 512;

  explicit PacedSocket(asio::ip::tcp::socket socket) : socket_(std::move(socket)), pause_(socket_.get_executor()) {}

  executor_type get_executor() { return socket_.get_executor(); }

  /// The next reads return these bytes again. They don't count a second time.
  void putBack(std::string_view bytes) { returned_.insert(0, bytes); }

  template <class Buffers, class Token>
  auto async_read_some(const Buffers& buffers, Token&& token) {
    enum class Step { begin, paused, returned, done };
    return asio::async_compose<Token, void(error_code, std::size_t)>(
        [this, buffers, step = Step::begin](auto& self, error_code error = {}, std::size_t size = 0) mutable {
          switch (step) {
            case Step::begin:
              if (!returned_.empty()) {
                step = Step::returned;
                return asio::post(socket_.get_executor(), std::move(self));
              }
              step = Step::paused;
              pause_.expires_at(paidUntil_);
              if (paidUntil_ > Clock::now()) return pause_.async_wait(std::move(self));
              [[fallthrough]];
            case Step::paused:
              if (!socket_.is_open()) return self.complete(asio::error::operation_aborted, 0);
              step = Step::done;
              return socket_.async_read_some(boost::beast::buffers_prefix(maxRead, buffers), std::move(self));
            case Step::returned:
              size = asio::buffer_copy(buffers, asio::buffer(returned_));
              returned_.erase(0, size);
              return self.complete({}, size);
            case Step::done:
              pay(size);
              return self.complete(error, size);
          }
        },
        token, socket_);
  }

  template <class Buffers, class Token>
  auto async_write_some(const Buffers& buffers, Token&& token) {
    return socket_.async_write_some(buffers, std::forward<Token>(token));
  }

  void endSending() {
    error_code ignored;
    socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
  }
  /// Completes every operation with an error.
  void close() {
    error_code ignored;
    socket_.close(ignored);
    pause_.cancel();
  }

 private:
  void pay(std::size_t size) {
    const auto price = std::chrono::microseconds(size * 1'000'000 / bytesPerSecond);
    paidUntil_ = std::max(paidUntil_, Clock::now() - burst) + price;
  }

  asio::ip::tcp::socket socket_;
  asio::steady_timer pause_;
  Clock::time_point paidUntil_;
  std::string returned_;
};

}  // namespace kelvora::server
