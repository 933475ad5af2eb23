// Six hostile connections to one server on the loopback interface, speaking frames, HTTP and WebSocket in any order.

#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <charconv>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include "generated/version.h"
#include "protocol/frames.h"
#include "server/net/gameServer.h"
#include "tests/fuzz/input.h"

namespace kelvora::server {
namespace {

using fuzz::Input;
using fuzz::require;

constexpr std::chrono::minutes patience{1};
constexpr std::string_view handshake =
    "GET /play HTTP/1.1\r\nHost: h\r\nConnection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
    "X-Forwarded-For: 192.0.2.1\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n";
constexpr std::array<std::string_view, 9> requests = {
    "GET / HTTP/1.1\r\nHost: h\r\n\r\n",
    "GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n",
    "GET /games/kelvora/gethosts.php?version=" KELVORA_VERSION "&password=1&full=1&empty=1 HTTP/1.1\r\nHost: h\r\n\r\n",
    "POST /games/kelvora/publish?version=" KELVORA_VERSION
    "&address=a&port=1&password=0&notes=n&players=1&max=6 HTTP/1.0\r\n\r\n",
    "GET /fight.png HTTP/1.1\r\nHost: h\r\nAccept-Encoding: gzip\r\n\r\n",
    "GET /metrics HTTP/1.1\r\nHost: h\r\n\r\n",
    "POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nabcde\r\n",
    "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n",
    "PROXY TCP4 192.0.2.7 127.0.0.1 1 2\r\n"};

/// A WebSocket frame of a client. `head` is its first byte; only valid ones are masked.
std::string webSocketFrame(std::uint8_t head, bool isMasked, std::string_view payload) {
  std::string frame(1, static_cast<char>(head));
  const auto mark = static_cast<std::uint8_t>(isMasked ? 0x80 : 0);
  if (payload.size() < 126) {
    frame += static_cast<char>(mark | payload.size());
  } else {
    frame += {static_cast<char>(mark | 126), static_cast<char>(payload.size() >> 8), static_cast<char>(payload.size())};
  }
  constexpr std::string_view mask = "mask";
  if (isMasked) frame += mask;
  for (std::size_t i = 0; i < payload.size(); ++i) {
    frame += isMasked ? static_cast<char>(payload[i] ^ mask[i % mask.size()]) : payload[i];
  }
  return frame;
}

/// Requires whole frames of the game, except for the last one, which a dropped connection may cut off.
void checkFrames(std::string_view heard) {
  while (!heard.empty()) {
    require(heard.front() == wire::frameStart);
    const std::size_t end = heard.find(wire::frameEnd);
    require(heard.find(wire::frameStart, 1) >= end);
    heard.remove_prefix(std::min(end, heard.size() - 1) + 1);
  }
}

void checkWebSocket(std::string_view heard, bool isHeadPossible);

/// Requires answers that are as long as they state, except for the last, and then frames of the game. An answer to HEAD
/// has no body, so where there can be one, only the beginning counts.
void checkPlain(std::string_view heard, bool isHeadPossible) {
  constexpr std::string_view start = "HTTP/1.1 ";
  constexpr std::string_view length = "\r\nContent-Length: ";
  while (!heard.empty()) {
    if (heard.front() == wire::frameStart) return checkFrames(heard);
    require(heard.starts_with(start.substr(0, heard.size())));
    const std::size_t end = heard.find("\r\n\r\n");
    if (end == std::string_view::npos) return;
    const std::string_view head = heard.substr(0, end);
    heard.remove_prefix(end + 4);
    if (head.starts_with("HTTP/1.1 101 ")) return checkWebSocket(heard, isHeadPossible);
    if (isHeadPossible) return;
    const std::size_t at = head.find(length);
    require((at == std::string_view::npos) == head.starts_with("HTTP/1.1 304 "));
    std::size_t size = 0;
    if (at != std::string_view::npos) {
      const char* const digits = head.data() + at + length.size();
      require(std::from_chars(digits, head.data() + head.size(), size).ec == std::errc{});
    }
    heard.remove_prefix(std::min(size, heard.size()));
  }
}

/// Decodes a server's WebSocket frames, which are never masked or compressed. Their payload is a plain stream.
void checkWebSocket(std::string_view heard, bool isHeadPossible) {
  std::string payload;
  while (heard.size() >= 2) {
    const auto head = static_cast<std::uint8_t>(heard[0]);
    require(head == 0x82 || head == 0x88 || head == 0x89 || head == 0x8A);
    std::size_t size = static_cast<std::uint8_t>(heard[1]);
    require(size < 0x80);
    std::size_t start = 2;
    if (size >= 126) {
      start = size == 126 ? 4 : 10;
      if (heard.size() < start) break;
      size = 0;
      for (std::size_t i = 2; i < start; ++i) size = size << 8 | static_cast<std::uint8_t>(heard[i]);
    }
    if (heard.size() < start + size) break;
    if (head == 0x82) payload += heard.substr(start, size);
    heard.remove_prefix(start + size);
  }
  checkPlain(payload, isHeadPossible);
}

/// The client's end of a connection.
class Line {
 public:
  Line(asio::io_context& context, std::uint16_t port, std::uint32_t host) : socket_(context) {
    socket_.open(asio::ip::tcp::v4());
    socket_.bind({asio::ip::address_v4(INADDR_LOOPBACK - 1 + host), 0});
    // Don't keep ports reserved, as there are thousands of runs.
    socket_.set_option(asio::socket_base::linger(true, 0));
    // A fuzzer's timer may interrupt this.
    error_code error = asio::error::interrupted;
    while (error == asio::error::interrupted) socket_.connect({asio::ip::address_v4::loopback(), port}, error);
    require(!error || error == asio::error::already_connected);
    socket_.set_option(asio::ip::tcp::no_delay(true));
    socket_.non_blocking(true);
  }

  void send(std::string_view bytes) {
    error_code ignored;
    socket_.send(asio::buffer(bytes), MSG_NOSIGNAL, ignored);
  }
  /// Sends bytes that may be any request, or a part of one.
  void sendAny(std::string_view bytes) {
    any_ += bytes;
    send(bytes);
  }
  void finish() {
    error_code ignored;
    socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
  }
  /// Reads everything received so far.
  void hear() {
    std::array<char, 4096> bytes;
    error_code error;
    while (const std::size_t size = socket_.receive(asio::buffer(bytes), 0, error)) heard_.append(bytes.data(), size);
  }
  void check() const {
    // Masks hide what is asked for inside a WebSocket.
    const bool isUpgraded = heard_.find("HTTP/1.1 101 ") != std::string::npos;
    checkPlain(heard_, any_.find("HEAD") != std::string::npos || (isUpgraded && !any_.empty()));
  }
  const std::string& heard() const { return heard_; }

 private:
  asio::ip::tcp::socket socket_;
  std::string heard_;
  std::string any_;
};

class Scene {
 public:
  explicit Scene(std::uint8_t flags)
      : endsAtOnce_((flags & 2) != 0), server_(context_, options(flags), [](const std::string& line) {
          for (const char c : line)
            require(static_cast<unsigned char>(c) >= 32 && static_cast<unsigned char>(c) != 127);
        }) {
    ann_.send(wire::toServer<wire::msgLogin>("Ann", "", 0, KELVORA_VERSION));
    settle();
  }

  /// Performs one step of one of the six connections.
  void act(Input& input) {
    const std::uint8_t what = input.byte();
    const std::size_t seat = what % lines_.size();
    if (!lines_[seat]) {
      // The first connection comes from the proxy.
      lines_[seat] = std::make_unique<Line>(clients_, seat % 2 == 0 ? server_.port() : webPort_,
                                            static_cast<std::uint32_t>(5 + seat));
    }
    Line& line = *lines_[seat];
    switch (what / lines_.size() % 10) {
      case 0:
        line.send(handshake);
        break;
      case 1:
        line.send(requests[input.byte() % requests.size()]);
        break;
      case 2: {
        const std::uint8_t head = input.byte();
        line.sendAny(webSocketFrame(head, true, input.take(input.byte())));
        break;
      }
      case 3: {
        const std::uint8_t head = input.byte();
        line.sendAny(webSocketFrame(head, false, input.take(input.byte())));
        break;
      }
      case 4:
        line.send(login_);
        break;
      case 5:
        line.send(webSocketFrame(0x82, true, login_));
        break;
      case 6:
        line.finish();
        break;
      case 7:
        hangUp(seat);
        break;
      default:
        line.sendAny(input.take(input.byte()));
    }
    settle();
  }

  /// Requires that, whatever they did, the player beside them plays on and the server stops when told to.
  void finish() {
    ann_.send(wire::toServer<wire::msgChat>(-1, "still here"));
    const auto end = std::chrono::steady_clock::now() + patience;
    do {
      settle();
      ann_.hear();
    } while (ann_.heard().find("still here") == std::string::npos && std::chrono::steady_clock::now() < end);
    require(ann_.heard().find("still here") != std::string::npos);
    ann_.check();
    server_.stop();
    if (endsAtOnce_) {
      server_.stop();
    } else {
      settle();
      for (std::size_t seat = 0; seat < lines_.size(); ++seat) hangUp(seat);
      ann_.finish();
    }
    context_.run_for(patience);
    require(context_.stopped());
    for (const auto& line : lines_) {
      if (line) line->check();
    }
  }

 private:
  static Options options(std::uint8_t flags) {
    Options options;
    options.port = 0;
    if ((flags & 1) != 0) options.trustedProxy = "127.0.0.5";
    if ((flags & 4) != 0) options.site = KELVORA_SITE;
    if ((flags & 8) != 0) options.listKey = "key";
    if ((flags & 16) != 0) options.bots.count = 2;
    if ((flags & 32) != 0) options.webPort = 0;
    if ((flags & 64) != 0) options.allowOrigin = "http://games.example";
    return options;
  }
  void hangUp(std::size_t seat) {
    if (!lines_[seat]) return;
    lines_[seat]->hear();
    lines_[seat]->check();
    lines_[seat] = nullptr;
  }
  void settle() {
    while (context_.poll() > 0) {
      ann_.hear();
      for (const auto& line : lines_) {
        if (line) line->hear();
      }
    }
  }

  const bool endsAtOnce_;
  const std::string login_ = wire::toServer<wire::msgLogin>("Eve", "", 1, KELVORA_VERSION);
  asio::io_context clients_;
  asio::io_context context_;
  GameServer server_;
  const std::uint16_t webPort_ = [this] {
    const std::string endpoint = server_.webEndpointText();
    return endpoint.empty() ? server_.port()
                            : static_cast<std::uint16_t>(std::stoi(endpoint.substr(endpoint.rfind(':') + 1)));
  }();
  Line ann_{clients_, server_.port(), 200};
  std::array<std::unique_ptr<Line>, 6> lines_;
};

void run(Input input) {
  Scene scene(input.byte());
  for (int steps = 0; steps < 200 && !input.isEmpty(); ++steps) scene.act(input);
  scene.finish();
}

}  // namespace
}  // namespace kelvora::server

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kelvora::server::run({data, size});
  return 0;
}
