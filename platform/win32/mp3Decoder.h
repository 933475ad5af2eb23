#pragma once

#include <cstddef>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/win32/win32.h"
// Needs <windows.h>.
#include <mmsystem.h>
// Needs <mmsystem.h>.
#include <mmreg.h>
#include <msacm.h>

namespace kelvora {

/// Decodes an MP3 file piece by piece with the system's audio compression manager.
class Mp3Decoder {
 public:
  /// Null if the file can't be played.
  static std::unique_ptr<Mp3Decoder> open(const std::wstring& file);

  /// The format of the samples.
  const WAVEFORMATEX& format() const { return format_; }
  /// Writes the next samples and returns their size in bytes, which is less than that of `samples` at the end only.
  std::size_t read(std::span<char> samples);

 private:
  struct CloseStream {
    void operator()(HACMSTREAM stream) const { acmStreamClose(stream, 0); }
  };

  Mp3Decoder() = default;
  /// Decodes a block of the file. False at its end, or if the decoder fails.
  bool decodeBlock();

  std::ifstream file_;
  WAVEFORMATEX format_{};
  std::unique_ptr<std::remove_pointer_t<HACMSTREAM>, CloseStream> stream_;
  std::vector<unsigned char> block_;  ///< bytes of the file that are to be decoded
  std::size_t blockLength_ = 0;
  std::unique_ptr<unsigned char[]> decoded_;  ///< only the part in use takes memory
  std::size_t decodedLength_ = 0;
  std::size_t next_ = 0;  ///< in `decoded_`
  DWORD step_ = ACM_STREAMCONVERTF_START;
};

}  // namespace kelvora
