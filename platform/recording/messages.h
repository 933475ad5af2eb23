#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/recording/stream.h"

namespace kelvora::recording {

/// The bytes that a server sends. Nearly all of them tell positions: messages with a number and a point, which is
/// usually near to where the last two such points lead. Such a message is written as the distance from there, in about
/// six bytes instead of twenty. Any other bytes are written as they are.
///
/// A ball's speed is the sum of both axes, and steering keeps it. So once the movement across is known, that down
/// follows, but for its direction.
class Messages {
 public:
  void write(Writer& writer, std::string_view bytes);
  std::string read(Reader& reader);

 private:
  /// A coordinate in thousandths.
  using Thousandths = std::int64_t;
  struct Track {
    std::array<Thousandths, 2> last{};
    std::array<Thousandths, 2> before{};

    /// Where the last two points lead. The second axis uses what the first has come to.
    Thousandths expectedAcross() const;
    Thousandths expectedDown(Thousandths across) const;
  };
  struct Message {
    std::uint8_t id = 0;
    std::uint32_t node = 0;
    std::array<Thousandths, 2> point{};
    std::size_t size = 0;  ///< bytes of its text
  };

  static std::optional<Message> parse(std::string_view bytes);
  static std::string textOf(const Message& message);
  static std::optional<Thousandths> coordinateOf(std::string_view text);
  static std::string textOf(Thousandths value);
  Track& trackOf(const Message& message) { return tracks_[(message.id * 31U + message.node) % tracks_.size()]; }

  std::array<Track, 256> tracks_;
};

}  // namespace kelvora::recording
