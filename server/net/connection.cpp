#include "server/net/connection.h"

#include <algorithm>
#include <asio/buffer.hpp>
#include <asio/post.hpp>
#include <asio/write.hpp>
#include <utility>

namespace kelvora::server {

namespace {

constexpr int systemBuffer = 64 << 10;  // bytes
constexpr auto burst = std::chrono::milliseconds(500);

}  // namespace

Connection::Connection(asio::ip::tcp::socket socket, ClientId client, Handlers handlers)
    : socket_(std::move(socket)), client_(client), handlers_(std::move(handlers)), pause_(socket_.get_executor()) {}

void Connection::start() {
  asio::error_code ignored;
  socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
  // What the system keeps for a client that does not read, or does not stop sending, is bounded as well.
  socket_.set_option(asio::socket_base::send_buffer_size(systemBuffer), ignored);
  socket_.set_option(asio::socket_base::receive_buffer_size(systemBuffer), ignored);
  readMore();
}

void Connection::send(const std::string& frame) {
  if (closed_ || hangingUp_) return;
  if (underWay_.size() + queued_.size() + frame.size() > longestQueue) return close("does not read");
  queued_ += frame;
  writeMore();
}

void Connection::hangUp() {
  if (std::exchange(hangingUp_, true)) return;
  writeMore();
}

void Connection::close(const std::string& reason) {
  if (std::exchange(closed_, true)) return;
  asio::error_code ignored;
  socket_.close(ignored);
  pause_.cancel();
  asio::post(socket_.get_executor(),
             [self = shared_from_this(), reason] { self->handlers_.onClosed(self->client_, reason); });
}

void Connection::readMore() {
  socket_.async_read_some(
      asio::buffer(arrived_), [self = shared_from_this()](asio::error_code error, std::size_t size) {
        if (self->closed_) return;
        if (error) return self->close(error == asio::error::eof ? "hung up" : error.message());
        // What still comes while hanging up is taken and thrown away: unread bytes would destroy the goodbye on its
        // way.
        if (!self->hangingUp_) {
          const bool isSound = self->reader_.read({self->arrived_.data(), size}, [&](std::string_view text) {
            if (!self->closed_ && !self->hangingUp_) self->handlers_.onFrame(self->client_, text);
          });
          if (self->closed_) return;
          if (!isSound && !self->hangingUp_) return self->close("does not speak the protocol");
        }
        self->readMoreAfter(size);
      });
}

void Connection::readMoreAfter(std::size_t size) {
  lastHeard_ = Clock::now();
  paidUntil_ = std::max(paidUntil_, lastHeard_ - burst) + std::chrono::microseconds(size * 1'000'000 / bytesPerSecond);
  if (paidUntil_ <= lastHeard_) return readMore();
  pause_.expires_at(paidUntil_);
  pause_.async_wait([self = shared_from_this()](asio::error_code) {
    if (!self->closed_) self->readMore();
  });
}

void Connection::writeMore() {
  if (closed_ || !underWay_.empty()) return;
  if (queued_.empty()) {
    asio::error_code ignored;
    if (hangingUp_) socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    return;
  }
  underWay_.swap(queued_);
  asio::async_write(socket_, asio::buffer(underWay_), [self = shared_from_this()](asio::error_code error, std::size_t) {
    self->underWay_.clear();
    if (self->closed_) return;
    if (error) return self->close(error.message());
    self->writeMore();
  });
}

}  // namespace kelvora::server
