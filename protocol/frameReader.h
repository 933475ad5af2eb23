#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kelvora::wire {

/// Reassembles frames from a stream of bytes, wherever the network has split it.
class FrameReader {
 public:
  static constexpr std::size_t maxFrameLength = 4096;  ///< bytes between start and end

  /// Calls `handle` with the text (id and fields) of every frame that the bytes complete. The text is valid only during
  /// that call. False if the bytes contain a byte outside a frame, a start inside one, or a frame that is too long.
  /// Don't call it again after that. Only a login may contain starts: names and passwords are sent as typed, and a
  /// player who types a euro sign must get an answer.
  bool read(std::string_view bytes, const std::function<void(std::string_view text)>& handle);

 private:
  bool isLogin() const;

  bool isOpen_ = false;
  std::string text_;  // of the current frame
};

}  // namespace kelvora::wire
