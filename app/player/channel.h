#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kelvora::player {

/// One end of a connection between two processes. Its file descriptor is closed with it.
class Channel {
 public:
  Channel() = default;
  explicit Channel(int descriptor) : descriptor_(descriptor) {}
  ~Channel();
  Channel(Channel&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Channel& operator=(Channel&& other) noexcept;

  /// Both ends of a new connection. Throws std::system_error if the system has no more.
  static std::pair<Channel, Channel> pair();

  struct Message;
  /// Sends a message, and with it another channel's end, if one is passed. False if the other end has been closed.
  bool send(std::string_view text, const Channel& passed) const;
  bool send(std::string_view text) const { return send(text, Channel()); }
  /// Waits for the next message. Nothing if the other end has been closed.
  std::optional<Message> receive() const;
  /// True if a message has begun to arrive, or the other end has been closed.
  bool hasInput() const { return waitFor(0); }
  /// Waits until hasInput() is true.
  void awaitInput() const { waitFor(-1); }

  bool isOpen() const { return descriptor_ >= 0; }
  void close() { *this = Channel(); }

 private:
  bool waitFor(int milliseconds) const;

  int descriptor_ = -1;
};

struct Channel::Message {
  std::string text;
  Channel passed;
};

}  // namespace kelvora::player
