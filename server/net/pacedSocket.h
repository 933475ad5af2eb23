#pragma once

#include <algorithm>
#include <boost/asio/buffer.hpp>
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
  using executor_type = Socket::executor_type;

  /// More than fifty times the game's own rate.
  static constexpr std::size_t bytesPerSecond = std::size_t{32} << 10;
  /// How long a full-speed burst may last: a peer may send half a second's worth at once.
  static constexpr auto burst = std::chrono::milliseconds(500);
  /// Bytes. Small, so that flooding clients take turns with the others.
  static constexpr std::size_t maxRead = 512;

  explicit PacedSocket(Socket socket) : state_(std::make_shared<State>(std::move(socket))) {}

  executor_type get_executor() { return state_->socket.get_executor(); }

  /// The next reads return these bytes again. They don't count a second time.
  void putBack(std::string_view bytes) { state_->returned.insert(0, bytes); }

  /// Reads into the first buffer only. The handler runs on the socket's executor.
  template <class Buffers, class Handler>
  void async_read_some(const Buffers& buffers, Handler handler) {
    const asio::mutable_buffer buffer = *asio::buffer_sequence_begin(buffers);
    if (!state_->returned.empty()) {
      return asio::post(get_executor(), [state = state_, buffer, handler = std::move(handler)]() mutable {
        if (!state->socket.is_open()) return handler(asio::error::operation_aborted, 0);
        const std::size_t size = asio::buffer_copy(buffer, asio::buffer(state->returned));
        state->returned.erase(0, size);
        handler(error_code{}, size);
      });
    }
    if (!state_->hasOverdrawn) return receive(state_, buffer, std::move(handler));
    state_->hasOverdrawn = false;
    state_->awaitCredit([state = state_, buffer, handler = std::move(handler)](error_code) mutable {
      if (!state->socket.is_open()) return handler(asio::error::operation_aborted, 0);
      receive(state, buffer, std::move(handler));
    });
  }

  template <class Buffers, class Handler>
  void async_write_some(const Buffers& buffers, Handler handler) {
    state_->socket.async_write_some(buffers, std::move(handler));
  }

  /// Tells the peer that nothing more follows.
  void endSending() {
    error_code ignored;
    state_->socket.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
  }
  /// Lets `close` drop what the peer hasn't taken. Otherwise the system keeps it for minutes.
  void discardUnread() {
    error_code ignored;
    state_->socket.set_option(asio::socket_base::linger(true, 0), ignored);
  }
  /// Completes every operation with an error.
  void close() {
    error_code ignored;
    state_->socket.close(ignored);
    if (state_->pause) state_->pause->cancel();
  }

 private:
  struct State {
    explicit State(Socket itsSocket) : socket(std::move(itsSocket)) {}

    void pay(std::size_t size) {
      const auto price = std::chrono::microseconds(size * 1'000'000 / bytesPerSecond);
      const auto now = Clock::now();
      paidUntil = std::max(paidUntil, now - burst) + price;
      hasOverdrawn = paidUntil > now;
    }
    template <class Handler>
    void awaitCredit(Handler handler) {
      if (!pause) pause = std::make_unique<asio::steady_timer>(socket.get_executor());
      pause->expires_at(paidUntil);
      pause->async_wait(std::move(handler));
    }

    Socket socket;
    std::unique_ptr<asio::steady_timer> pause;  // null until the peer has to wait
    Clock::time_point paidUntil;
    bool hasOverdrawn = false;
    std::string returned;
  };

  template <class Handler>
  static void receive(const std::shared_ptr<State>& state, asio::mutable_buffer buffer, Handler handler) {
    Socket& socket = state->socket;
    socket.async_read_some(asio::buffer(buffer, maxRead),
                           [state, handler = std::move(handler)](error_code error, std::size_t size) mutable {
                             state->pay(size);
                             handler(error, size);
                           });
  }

  std::shared_ptr<State> state_;
};

}  // namespace kelvora::server
