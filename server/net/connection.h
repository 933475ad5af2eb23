#pragma once

#include <array>
#include <boost/asio/ip/address.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "protocol/frameReader.h"
#include "server/arena/clientId.h"
#include "server/http/http.h"
#include "server/net/clientStream.h"
#include "server/net/proxyLine.h"

namespace kelvora::server {

/// One client. Its first bytes decide its protocol: byte 128 starts the game's frames, a capital an HTTP request. A
/// request can upgrade to WebSocket, where the first bytes decide in the same way. The object lives until its last
/// operation has completed.
class Connection final : public std::enable_shared_from_this<Connection>, private ClientStream::User {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t maxQueue = std::size_t{256} << 10;  ///< bytes queued for the client
  static constexpr std::chrono::seconds openingTime{10};           ///< until the first byte, inside a WebSocket as well
  static constexpr std::chrono::seconds requestTime{5};            ///< for a complete request
  static constexpr std::chrono::seconds answerTime{5};             ///< for the client to take a piece of the answer
  static constexpr std::chrono::seconds silence{120};              ///< clients answer a ping every 12 seconds
  static constexpr std::chrono::seconds goodbyeTime{2};            ///< for the client to take the last message

  struct Handlers {
    /// Called when the connection comes from a proxy and begins with the line that names the client. Set for
    /// connections from a proxy only.
    std::function<void(ClientId client, const asio::ip::address& address)> onForwarded{};
    /// Called when the client speaks the game's protocol. Frames follow.
    std::function<void(ClientId client)> onGame;
    /// Handles one frame's text: id and fields. The text is valid only during the call.
    std::function<void(ClientId client, std::string_view text)> onFrame;
    /// Answers a request. Status 101 accepts an upgrade to WebSocket.
    std::function<HttpAnswer(ClientId client, const HttpRequest& request)> onRequest;
    /// Called once, never from within a call of this object.
    std::function<void(ClientId client, const std::string& reason)> onClosed;
  };

  Connection(Socket socket, ClientId client, Handlers handlers);

  void start() { readMore(); }
  /// Sends a frame as soon as possible. Drops a client whose queue is full.
  void send(const std::string& frame) {
    queue(frame);
    flush();
  }
  /// The same, but the frame waits for the next call of `send` or `flush`, so that many leave together.
  void queue(const std::string& frame);
  void flush();
  /// Stops sending once the queue is empty. The client then has `goodbyeTime` to close the connection.
  void hangUp();
  /// Closes the connection at once. `reason` goes to `onClosed`.
  void close(const std::string& reason);
  /// Closes the connection if its time has run out. Call this several times a second.
  void closeIfOverdue(Clock::time_point now);
  /// Extends the deadline by the time for which the server couldn't listen.
  void extendDeadline(Clock::duration time) {
    opened_ += time;
    deadline_ += time;
  }
  /// When the connection, or the last answer, left it to the client to begin. An upgrade doesn't change this.
  Clock::time_point opened() const { return opened_; }
  /// True between the requests of a connection that a client has kept. Clients make a new one if they lose it then.
  bool isKept() const { return state_ == State::opening && keepsAlive_ && !closed_; }
  /// True if `onClosed` has been or is about to be called.
  bool isClosed() const { return closed_; }
  /// True if nothing is awaited but the client's end.
  bool isHangingUp() const { return hangingUp_; }

 private:
  enum class State { opening, game, request, answering, upgrading };

  void arrived(error_code error, std::size_t size) override;
  void written(error_code error) override;
  void upgraded(error_code error) override;
  void ended() override { close("closed by the server"); }

  std::shared_ptr<ClientStream::User> streamUser() { return {shared_from_this(), this}; }
  void readMore();
  /// True if reading should go on.
  bool take(std::string_view bytes);
  bool readProxyLine(std::string_view bytes);
  bool open(std::string_view bytes);
  bool takeFrames(std::string_view bytes);
  bool takeRequest(std::string_view bytes);
  bool answer(const HttpRequest& request);
  bool refuse(unsigned int status, const std::string& text);
  void upgrade();
  void answered();
  void writeMore();
  /// Queues the next piece of the answer's body.
  void queueBody();
  void setDeadline(std::chrono::seconds time, const char* reason, Clock::time_point from = Clock::now());

  ClientStream stream_;
  const ClientId client_;
  Handlers handlers_;
  State state_ = State::opening;
  Clock::time_point opened_ = Clock::now();
  Clock::time_point deadline_;
  const char* overdue_ = "";  // the reason if the deadline passes
  wire::FrameReader frames_;
  std::unique_ptr<ProxyLine> proxyLine_;  // null once it is known
  std::unique_ptr<HttpReader> request_;
  BodySource body_;           // the rest of an answer
  std::size_t bodyLeft_ = 0;  // bytes of it
  bool keepsAlive_ = false;
  std::array<char, 512> arrived_;
  std::string underWay_;  // being written by the stream
  std::string queued_;    // queued after it
  bool hangingUp_ = false;
  bool closed_ = false;
};

}  // namespace kelvora::server
