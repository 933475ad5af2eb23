#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kelvora::wire {

/// Cuts a stream of bytes into frames, however the network has split or joined them.
class FrameReader {
 public:
  static constexpr std::size_t longestFrame = 4096;  ///< bytes between start and end

  /// Calls `handle` with the text of every frame that the bytes complete, id and fields. False if the stream is not one
  /// of frames: a byte outside a frame, a start within one, or a frame that is too long. Nothing may follow then. Only
  /// a login may hold starts: names and passwords come as they were typed, and who typed a euro sign must hear of it.
  bool read(std::string_view bytes, const std::function<void(std::string_view text)>& handle);

 private:
  bool isLogin() const;

  bool isOpen_ = false;
  std::string text_;  // of the frame that is under way
};

}  // namespace kelvora::wire
