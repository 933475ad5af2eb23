#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kelvora::wire {

/// Splits a stream of bytes into frames, however the network has split or joined them.
class FrameReader {
 public:
  static constexpr std::size_t maxFrameLength = 4096;  ///< bytes between start and end

  /// Calls `handle` with the text (id and fields) of every frame that the bytes complete. False if they contain a byte
  /// outside a frame, a start inside one, or a frame that is too long. Don't call it again after that. Only a login may
  /// contain starts: names and passwords are sent as typed, and a player who types a euro sign must get an answer.
  bool read(std::string_view bytes, const std::function<void(std::string_view text)>& handle);

 private:
  bool isLogin() const;

  bool isOpen_ = false;
  std::string text_;  // of the current frame
};

}  // namespace kelvora::wire
