#include "server/net/connection.h"

#include <algorithm>
#include <boost/asio/error.hpp>
#include <boost/asio/post.hpp>
#include <utility>

#include "protocol/wireFormat.h"

namespace kelvora::server {

namespace {

constexpr std::size_t bodyPiece = std::size_t{16} << 10;  // bytes
constexpr const char* stoppedReading = "stopped reading";

/// An empty line may precede a request.
bool beginsRequest(char first) { return first == '\r' || (first >= 'A' && first <= 'Z'); }

}  // namespace

Connection::Connection(Socket socket, ClientId client, Handlers handlers)
    : stream_(std::move(socket)), client_(client), handlers_(std::move(handlers)) {
  if (handlers_.onForwarded) proxyLine_ = std::make_unique<ProxyLine>();
  setDeadline(openingTime, "timed out before sending anything", opened_);
}

void Connection::setDeadline(std::chrono::seconds time, const char* reason, Clock::time_point from) {
  deadline_ = from + time;
  overdue_ = reason;
}

void Connection::closeIfOverdue(Clock::time_point now) {
  if (deadline_ >= now) return;
  if (overdue_ == stoppedReading) stream_.discardUnread();
  close(overdue_);
}

void Connection::queue(const std::string& frame) {
  if (closed_ || hangingUp_) return;
  if (underWay_.size() + queued_.size() + frame.size() > maxQueue) {
    stream_.discardUnread();
    return close(stoppedReading);
  }
  queued_ += frame;
}

void Connection::flush() {
  if (!hangingUp_ && !queued_.empty()) writeMore();
}

void Connection::hangUp() {
  if (state_ == State::upgrading) return close("closed by the server");  // nothing can be sent during an upgrade
  if (std::exchange(hangingUp_, true)) return;
  setDeadline(goodbyeTime, "closed by the server");
  writeMore();
}

void Connection::close(const std::string& reason) {
  if (std::exchange(closed_, true)) return;
  stream_.close();
  asio::post(stream_.executor(),
             [self = shared_from_this(), reason] { self->handlers_.onClosed(self->client_, reason); });
}

void Connection::readMore() {
  if (hangingUp_ && stream_.isWebSocket()) return;  // its end takes in the rest
  stream_.readSome(asio::buffer(arrived_), streamUser());
}

void Connection::arrived(error_code error, std::size_t size) {
  if (closed_) return;
  if (error) return close(stream_.reasonOf(error));
  if (take({arrived_.data(), size})) readMore();
}

bool Connection::take(std::string_view bytes) {
  // While hanging up, incoming bytes are read and dropped. Unread ones would destroy the goodbye in transit.
  if (hangingUp_ || bytes.empty()) return true;
  if (proxyLine_) return readProxyLine(bytes);
  if (state_ == State::opening) return open(bytes);
  return state_ == State::game ? takeFrames(bytes) : takeRequest(bytes);
}

bool Connection::readProxyLine(std::string_view bytes) {
  const ProxyLine::Result result = proxyLine_->read(bytes);
  if (result == ProxyLine::Result::partial) return true;
  const auto line = std::exchange(proxyLine_, nullptr);
  if (result == ProxyLine::Result::malformed) {
    close("the proxy's line is invalid");
    return false;
  }
  if (result == ProxyLine::Result::complete) handlers_.onForwarded(client_, line->address());
  return closed_ ? false : take(line->rest());
}

bool Connection::open(std::string_view bytes) {
  if (bytes[0] == wire::frameStart) {
    state_ = State::game;
    handlers_.onGame(client_);
    return takeFrames(bytes);
  }
  if (!beginsRequest(bytes[0])) {
    close("sent invalid data");
    return false;
  }
  state_ = State::request;
  setDeadline(requestTime, "timed out during a request");
  request_ = std::make_unique<HttpReader>();
  return takeRequest(bytes);
}

bool Connection::takeFrames(std::string_view bytes) {
  setDeadline(silence, "timed out");
  const bool isSound = frames_.read(bytes, [&](std::string_view text) {
    if (!closed_ && !hangingUp_) handlers_.onFrame(client_, text);
  });
  if (!isSound && !hangingUp_) close("sent invalid data");
  return !closed_;
}

bool Connection::takeRequest(std::string_view bytes) {
  switch (request_->read(bytes)) {
    case HttpReader::Result::partial:
      return true;
    case HttpReader::Result::malformed:
      return refuse(400, "This request is invalid.\n");
    case HttpReader::Result::tooLong:
      return refuse(431, "This request is too long.\n");
    case HttpReader::Result::complete:
      break;
  }
  return answer(request_->request());
}

bool Connection::refuse(unsigned int status, const std::string& text) {
  request_ = nullptr;
  const HttpAnswer refusal = textAnswer(status, text);
  queued_ += refusal.head(false) + refusal.body;
  hangUp();
  return true;
}

bool Connection::answer(const HttpRequest& request) {
  if (request.isUpgrade && stream_.isWebSocket()) return refuse(400, "This is a WebSocket already.\n");
  HttpAnswer answer = handlers_.onRequest(client_, request);
  if (answer.status == 101) {
    upgrade();
    return false;
  }
  state_ = State::answering;
  setDeadline(answerTime, stoppedReading);
  keepsAlive_ = request.keepsAlive && answer.mayKeepAlive;
  queued_ += answer.head(keepsAlive_);
  if (!request.isHead()) {
    queued_ += answer.body;
    if (answer.moreSize > 0) {
      body_ = std::move(answer.more);
      bodyLeft_ = answer.moreSize;
      queueBody();  // what is small goes out in one piece
    }
  }
  writeMore();
  return false;  // reading pauses until it is written
}

void Connection::upgrade() {
  state_ = State::upgrading;
  keepsAlive_ = false;
  const auto request = std::exchange(request_, nullptr);
  stream_.upgrade(std::string(request->head()), request->rest(), streamUser());
}

void Connection::upgraded(error_code error) {
  if (closed_) return;
  if (error) return close(stream_.reasonOf(error));
  state_ = State::opening;
  setDeadline(openingTime, "timed out before sending anything", opened_);
  readMore();
}

void Connection::answered() {
  if (!keepsAlive_) {
    hangUp();
    return readMore();  // reads until the client closes the connection
  }
  const auto before = std::exchange(request_, nullptr);
  state_ = State::opening;
  opened_ = Clock::now();
  setDeadline(requestTime, "timed out between requests", opened_);
  if (before->rest().empty() || take(before->rest())) readMore();
}

void Connection::writeMore() {
  if (closed_ || !underWay_.empty()) return;
  if (queued_.empty() && bodyLeft_ > 0) {
    queueBody();
    if (queued_.empty()) return close("the answer is outdated");
  }
  if (queued_.empty()) {
    if (hangingUp_) return stream_.endSending(streamUser());
    if (state_ == State::answering) answered();
    return;
  }
  underWay_.swap(queued_);
  stream_.write(asio::buffer(underWay_), streamUser());
}

void Connection::queueBody() {
  const std::string piece = body_(std::min(bodyPiece, bodyLeft_));
  queued_ += piece;
  bodyLeft_ -= piece.size();
  if (bodyLeft_ == 0) body_ = nullptr;
}

void Connection::written(error_code error) {
  underWay_.clear();
  if (underWay_.capacity() > bodyPiece) std::string().swap(underWay_);  // a burst's memory
  if (closed_) return;
  if (error) return close(stream_.reasonOf(error));
  if (state_ == State::answering && !hangingUp_) setDeadline(answerTime, stoppedReading);
  writeMore();
}

}  // namespace kelvora::server
