#pragma once

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/compose.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "server/net/asio.h"

namespace kelvora::server {

/// A socket that reads at most `bytesPerSecond` from its peer, in small pieces. A peer that sends more has to wait. It
/// counts network bytes, so no protocol on top can bypass the limit. It may be destroyed while it reads.
class PacedSocket {
 public:
  using Clock = std::chrono::steady_clock;
  using executor_type = asio::ip::tcp::socket::executor_type;

  /// More than fifty times the game's own rate.
  static constexpr std::size_t bytesPerSecond = std::size_t{32} << 10;
  /// How long a full-speed burst may last: a peer may send half a second's worth at once.
  static constexpr auto burst = std::chrono::milliseconds(500);
  /// Bytes. Small, so that flooding clients take turns with the others.
  static constexpr std::size_t maxRead = 512;

  explicit PacedSocket(asio::ip::tcp::socket socket) : state_(std::make_shared<State>(std::move(socket))) {}

  executor_type get_executor() { return state_->socket.get_executor(); }

  /// The next reads return these bytes again. They don't count a second time.
  void putBack(std::string_view bytes) { state_->returned.insert(0, bytes); }

  /// Reads into the first buffer only.
  template <class Buffers, class Token>
  auto async_read_some(const Buffers& buffers, Token&& token) {
    const asio::mutable_buffer buffer = *asio::buffer_sequence_begin(buffers);
    enum class Step { begin, paused, returned, done };
    return asio::async_compose<Token, void(error_code, std::size_t)>(
        [state = state_, buffer, step = Step::begin](auto& self, error_code error = {}, std::size_t size = 0) mutable {
          // Moving from `self` moves this function object, too.
          State& it = *state;
          switch (step) {
            case Step::begin:
              if (!it.returned.empty()) {
                step = Step::returned;
                return asio::post(it.socket.get_executor(), std::move(self));
              }
              step = Step::paused;
              if (it.paidUntil > Clock::now()) {
                it.pause.expires_at(it.paidUntil);
                return it.pause.async_wait(std::move(self));
              }
              [[fallthrough]];
            case Step::paused:
              if (!it.socket.is_open()) return self.complete(asio::error::operation_aborted, 0);
              step = Step::done;
              return it.socket.async_read_some(asio::buffer(buffer, maxRead), std::move(self));
            case Step::returned:
              if (!it.socket.is_open()) return self.complete(asio::error::operation_aborted, 0);
              size = asio::buffer_copy(buffer, asio::buffer(it.returned));
              it.returned.erase(0, size);
              return self.complete({}, size);
            case Step::done:
              it.pay(size);
              return self.complete(error, size);
          }
        },
        token, state_->socket);
  }

  template <class Buffers, class Token>
  auto async_write_some(const Buffers& buffers, Token&& token) {
    return state_->socket.async_write_some(buffers, std::forward<Token>(token));
  }

  /// Tells the peer that nothing more follows.
  void endSending() {
    error_code ignored;
    state_->socket.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
  }
  /// Completes every operation with an error.
  void close() {
    error_code ignored;
    state_->socket.close(ignored);
    state_->pause.cancel();
  }

 private:
  struct State {
    explicit State(asio::ip::tcp::socket itsSocket) : socket(std::move(itsSocket)), pause(socket.get_executor()) {}

    void pay(std::size_t size) {
      const auto price = std::chrono::microseconds(size * 1'000'000 / bytesPerSecond);
      paidUntil = std::max(paidUntil, Clock::now() - burst) + price;
    }

    asio::ip::tcp::socket socket;
    asio::steady_timer pause;
    Clock::time_point paidUntil;
    std::string returned;
  };

  std::shared_ptr<State> state_;
};

}  // namespace kelvora::server
