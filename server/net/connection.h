#pragma once

#include <array>
#include <boost/asio/ip/address.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "protocol/frameReader.h"
#include "server/arena/clientId.h"
#include "server/net/clientStream.h"
#include "server/web/http.h"

namespace kelvora::server {

/// One client. Its first bytes tell what it speaks: byte 128 begins the game's frames, a letter an HTTP request. A
/// request can turn the connection into a WebSocket, whose first bytes are then looked at in the same way. The object
/// lives until the last of its operations has come back.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t maxQueue = std::size_t{256} << 10;  ///< bytes that the client hasn't taken yet
  static constexpr std::chrono::seconds openingTime{10};           ///< to the first byte
  static constexpr std::chrono::seconds requestTime{5};            ///< for a whole request
  static constexpr std::chrono::seconds answerTime{5};             ///< to take a piece of the answer
  static constexpr std::chrono::seconds silence{120};              ///< the game sends its position all the time
  static constexpr std::chrono::seconds goodbyeTime{2};            ///< to take the last words

  struct Handlers {
    /// The client speaks the game's protocol: frames will follow.
    std::function<void(ClientId client)> onGame;
    std::function<void(ClientId client, std::string_view text)> onFrame;
    /// Answers a request. An answer of status 101 agrees to an upgrade to WebSocket.
    std::function<HttpAnswer(ClientId client, const HttpRequest& request)> onRequest;
    /// Once, never from within a call of this object's.
    std::function<void(ClientId client, const std::string& reason)> onClosed;
  };

  Connection(asio::ip::tcp::socket socket, ClientId client, Handlers handlers);

  void start() { readMore(); }
  /// Queues a frame. Drops a client that doesn't take what is queued for it.
  void send(const std::string& frame);
  /// Ends the sending once the queue is empty. The client then has `goodbyeTime` to end the connection.
  void hangUp();
  void close(const std::string& reason);
  /// Closes a connection whose time has run out. Call this several times a second.
  void closeIfOverdue(Clock::time_point now);
  /// The server couldn't listen for this long.
  void excuse(Clock::duration time) { deadline_ += time; }
  bool isGame() const { return speech_ == Speech::game; }

 private:
  enum class Speech { opening, game, request, answering, upgrading };

  void readMore();
  /// True if reading should go on.
  bool take(std::string_view bytes);
  bool open(std::string_view bytes);
  bool takeFrames(std::string_view bytes);
  bool takeRequest(std::string_view bytes);
  bool answer(const HttpRequest& request);
  bool refuse(unsigned int status, const std::string& text);
  void upgrade();
  void answered();
  void writeMore();
  void await(std::chrono::seconds time, const char* reason);

  ClientStream stream_;
  const ClientId client_;
  Handlers handlers_;
  Speech speech_ = Speech::opening;
  Clock::time_point deadline_;
  const char* overdue_ = "";  // why it ends at the deadline
  wire::FrameReader frames_;
  std::unique_ptr<HttpReader> request_;
  BodySource body_;  // what is left of an answer
  bool keepsAlive_ = false;
  std::array<char, 512> arrived_;
  std::string underWay_;  // handed to the stream
  std::string queued_;    // behind it
  bool hangingUp_ = false;
  bool closed_ = false;
};

}  // namespace kelvora::server
