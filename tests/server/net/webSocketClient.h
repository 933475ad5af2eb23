#pragma once

#include <cstdint>
#include <string>

#include "tests/server/net/tcpClient.h"

namespace kelvora::server {

/// A client that speaks WebSocket frame by frame, so that a test can also break the rules.
class WebSocketClient : public TcpClient {
 public:
  enum Opcode : std::uint8_t { continuation = 0, text = 1, binary = 2, closing = 8, ping = 9, pong = 10 };

  struct Frame {
    int opcode = -1;  ///< -1 at the end of the connection
    std::string payload;
  };

  using TcpClient::TcpClient;

  static std::string handshake(const std::string& path = "/play", const std::string& more = {}) {
    return "GET " + path +
           " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
           "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n" +
           more + "\r\n";
  }
  /// Requests the upgrade. True if the server agrees.
  bool open(const std::string& more = {}, const std::string& path = "/play") {
    write(handshake(path, more));
    while (arrived_.find("\r\n\r\n") == std::string::npos) {
      if (!receive()) return false;
    }
    const std::size_t end = arrived_.find("\r\n\r\n") + 4;
    head = arrived_.substr(0, end);
    arrived_.erase(0, end);
    return head.starts_with("HTTP/1.1 101 ");
  }

  static std::string frame(Opcode opcode, const std::string& payload, bool isFinal = true, bool isMasked = true) {
    std::string bytes(1, static_cast<char>((isFinal ? 0x80 : 0) | opcode));
    const auto mark = static_cast<unsigned char>(isMasked ? 0x80 : 0);
    const std::size_t size = payload.size();
    if (size < 126) {
      bytes += static_cast<char>(mark | size);
    } else if (size < 65'536) {
      bytes += {static_cast<char>(mark | 126), static_cast<char>(size >> 8), static_cast<char>(size & 255)};
    } else {
      bytes += static_cast<char>(mark | 127);
      for (int shift = 56; shift >= 0; shift -= 8) bytes += static_cast<char>(size >> shift & 255);
    }
    if (!isMasked) return bytes + payload;
    const std::string mask = "\x12\x34\x56\x78";
    bytes += mask;
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(payload[i] ^ mask[i % 4]);
    return bytes;
  }
  void send(const std::string& payload) { write(frame(binary, payload)); }

  /// The server's next frame.
  Frame readFrame() {
    while (arrived_.size() < 2) {
      if (!receive()) return {};
    }
    std::size_t size = static_cast<unsigned char>(arrived_[1]);
    EXPECT_EQ(size & 0x80U, 0U) << "servers don't mask";
    std::size_t start = 2;
    if (size >= 126) {
      start = size == 126 ? 4 : 10;
      while (arrived_.size() < start) {
        if (!receive()) return {};
      }
      size = 0;
      for (std::size_t i = 2; i < start; ++i) size = size << 8 | static_cast<unsigned char>(arrived_[i]);
    }
    while (arrived_.size() < start + size) {
      if (!receive()) return {};
    }
    Frame frame{arrived_[0] & 15, arrived_.substr(start, size)};
    arrived_.erase(0, start + size);
    return frame;
  }
  /// The concatenated payloads of binary frames, up to the one that contains the text; everything received if none
  /// does.
  std::string readUntil(const std::string& wanted) {
    std::string all;
    while (all.find(wanted) == std::string::npos) {
      const Frame frame = readFrame();
      if (frame.opcode == -1 || frame.opcode == closing) break;
      if (frame.opcode == binary || frame.opcode == continuation) all += frame.payload;
    }
    return all;
  }

  std::string head;  ///< of the answer to the handshake

 private:
  bool receive() {
    char bytes[4096];
    const ssize_t size = ::recv(socket_, bytes, sizeof bytes, 0);
    if (size <= 0) return false;
    arrived_.append(bytes, static_cast<std::size_t>(size));
    return true;
  }

  std::string arrived_;
};

}  // namespace kelvora::server
