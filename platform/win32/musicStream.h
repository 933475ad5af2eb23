#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "platform/win32/mp3Decoder.h"

namespace kelvora {

/// Plays one MP3 file on a wave device. It decodes on its own thread, at most a second ahead.
class MusicStream {
 public:
  MusicStream() = default;
  ~MusicStream() { stop(); }
  MusicStream(const MusicStream&) = delete;
  MusicStream& operator=(const MusicStream&) = delete;

  /// Plays this file instead of the current one. False if it can't be played.
  bool start(const std::wstring& file);
  void stop();
  /// May be called from any thread.
  bool isPlaying() const { return isPlaying_; }

 private:
  /// A quarter of a second at 44,100 samples a second for both speakers.
  struct Block {
    WAVEHDR header{};
    std::array<char, 44'100> bytes;
  };

  void play();
  void close();
  /// Fills and queues the blocks that aren't waiting to be played. True if any block is waiting now.
  bool queueBlocks();

  std::unique_ptr<Mp3Decoder> decoder_;
  HWAVEOUT device_ = nullptr;
  HANDLE wake_ = nullptr;  ///< set by the device when it has played a block, and by `stop`
  std::array<Block, 4> blocks_;
  std::atomic<bool> isEnding_ = false;
  std::atomic<bool> isPlaying_ = false;
  std::thread thread_;
};

}  // namespace kelvora
