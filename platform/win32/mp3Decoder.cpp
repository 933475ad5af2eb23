#include "platform/win32/mp3Decoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>

namespace kelvora {

namespace {

constexpr std::size_t headerSize = 4;
constexpr std::size_t blockSize = 4096;  // more than two of the largest frames
// Room for a block of the smallest frames, 576 samples for two speakers in 24 bytes. The size that the system suggests
// goes by the first frame, and in Wine what exceeds it waits in the decoder until the file ends.
constexpr std::size_t decodedSize = (blockSize / 24 + 2) * 576 * 2 * 2;

/// The header of a frame.
struct Frame {
  std::size_t size;  ///< bytes, header included
  int bitRate;       ///< bits a second
  int sampleRate;
  int channels;
};

/// Nothing unless these four bytes begin a frame of layer III.
std::optional<Frame> frameAt(std::span<const unsigned char> header) {
  constexpr std::array<int, 15> fullRates{0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
  constexpr std::array<int, 15> lowRates{0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
  constexpr std::array<int, 3> sampleRates{44100, 48000, 32000};
  const bool isLayerIII = header[0] == 0xFF && (header[1] & 0xE6) == 0xE2;
  const int version = header[1] >> 3 & 3;  // 3 is MPEG-1, 2 is MPEG-2, 0 is MPEG-2.5
  const auto bitRate = static_cast<std::size_t>(header[2] >> 4);
  const auto sampleRate = static_cast<std::size_t>(header[2] >> 2 & 3);
  if (!isLayerIII || version == 1 || bitRate == 0 || bitRate >= fullRates.size() || sampleRate >= sampleRates.size()) {
    return std::nullopt;
  }
  const bool isFull = version == 3;
  Frame frame{};
  frame.bitRate = 1000 * (isFull ? fullRates : lowRates)[bitRate];
  frame.sampleRate = sampleRates[sampleRate] / (isFull ? 1 : version == 2 ? 2 : 4);
  frame.channels = header[3] >> 6 == 3 ? 1 : 2;
  const int padding = header[2] >> 1 & 1;
  frame.size = static_cast<std::size_t>((isFull ? 144 : 72) * frame.bitRate / frame.sampleRate + padding);
  return frame;
}

/// The length of the tag before the music, by its own account. 0 without a tag.
std::streamoff tagLength(std::ifstream& file) {
  std::array<char, 10> tag{};
  if (!file.read(tag.data(), tag.size()) || std::memcmp(tag.data(), "ID3", 3) != 0) return 0;
  std::streamoff length = 0;
  for (std::size_t i = 6; i < tag.size(); ++i) length = length << 7 | (tag[i] & 0x7F);
  return length + static_cast<std::streamoff>(tag.size());
}

/// Moves to the first frame that another one follows. Looks no further than 64 KiB.
std::optional<Frame> findFirstFrame(std::ifstream& file) {
  const std::streamoff begin = tagLength(file);
  file.clear();
  file.seekg(begin);
  std::vector<unsigned char> bytes(64 * 1024);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  const std::span<const unsigned char> all = bytes;
  for (std::size_t at = 0; at + headerSize <= all.size(); ++at) {
    const auto frame = frameAt(all.subspan(at, headerSize));
    if (!frame || at + frame->size + headerSize > all.size()) continue;
    if (!frameAt(all.subspan(at + frame->size, headerSize))) continue;
    file.clear();
    file.seekg(begin + static_cast<std::streamoff>(at));
    return frame;
  }
  return std::nullopt;
}

MPEGLAYER3WAVEFORMAT formatOf(const Frame& frame) {
  MPEGLAYER3WAVEFORMAT format{};
  format.wfx.wFormatTag = WAVE_FORMAT_MPEGLAYER3;
  format.wfx.nChannels = static_cast<WORD>(frame.channels);
  format.wfx.nSamplesPerSec = static_cast<DWORD>(frame.sampleRate);
  format.wfx.nAvgBytesPerSec = static_cast<DWORD>(frame.bitRate / 8);
  format.wfx.nBlockAlign = 1;
  format.wfx.cbSize = MPEGLAYER3_WFX_EXTRA_BYTES;
  format.wID = MPEGLAYER3_ID_MPEG;
  format.fdwFlags = MPEGLAYER3_FLAG_PADDING_ISO;
  format.nBlockSize = static_cast<WORD>(frame.size);
  format.nFramesPerBlock = 1;
  return format;
}

WAVEFORMATEX samplesOf(const Frame& frame) {
  constexpr WORD bits = 16;
  const auto channels = static_cast<WORD>(frame.channels);
  const auto rate = static_cast<DWORD>(frame.sampleRate);
  const auto align = static_cast<WORD>(channels * bits / 8);
  return {WAVE_FORMAT_PCM, channels, rate, rate * align, align, bits, 0};
}

}  // namespace

std::unique_ptr<Mp3Decoder> Mp3Decoder::open(const std::wstring& file) {
  std::unique_ptr<Mp3Decoder> decoder(new Mp3Decoder);
  std::error_code error;
  const std::filesystem::path path(file);
  if (!std::filesystem::is_regular_file(path, error)) return nullptr;
  decoder->file_.open(path, std::ios::binary);
  const auto frame = findFirstFrame(decoder->file_);
  if (!frame) return nullptr;
  MPEGLAYER3WAVEFORMAT source = formatOf(*frame);
  decoder->format_ = samplesOf(*frame);
  HACMSTREAM stream = nullptr;
  if (acmStreamOpen(&stream, nullptr, &source.wfx, &decoder->format_, nullptr, 0, 0, 0) != 0) return nullptr;
  decoder->stream_.reset(stream);
  decoder->block_.resize(blockSize);
  decoder->decoded_ = std::make_unique_for_overwrite<unsigned char[]>(decodedSize);
  return decoder;
}

bool Mp3Decoder::decodeBlock() {
  file_.read(reinterpret_cast<char*>(&block_[blockLength_]),
             static_cast<std::streamsize>(block_.size() - blockLength_));
  blockLength_ += static_cast<std::size_t>(file_.gcount());
  ACMSTREAMHEADER header{};
  header.cbStruct = sizeof header;
  header.pbSrc = block_.data();
  header.cbSrcLength = static_cast<DWORD>(blockLength_);
  header.pbDst = decoded_.get();
  header.cbDstLength = DWORD{decodedSize};
  if (blockLength_ == 0 || acmStreamPrepareHeader(stream_.get(), &header, 0) != 0) return false;
  const bool isDecoded = acmStreamConvert(stream_.get(), &header, step_) == 0;
  step_ = 0;
  header.cbSrcLength = static_cast<DWORD>(blockLength_);
  header.cbDstLength = DWORD{decodedSize};
  acmStreamUnprepareHeader(stream_.get(), &header, 0);
  const auto used = std::min<std::size_t>(header.cbSrcLengthUsed, blockLength_);
  std::copy(block_.begin() + static_cast<std::ptrdiff_t>(used),
            block_.begin() + static_cast<std::ptrdiff_t>(blockLength_), block_.begin());
  blockLength_ -= used;
  decodedLength_ = std::min<std::size_t>(header.cbDstLengthUsed, decodedSize);
  next_ = 0;
  return isDecoded && (used > 0 || decodedLength_ > 0);
}

std::size_t Mp3Decoder::read(std::span<char> samples) {
  std::size_t length = 0;
  constexpr int maxTries = 64;  // far more than a block needs, so that a broken file doesn't hold up the music
  for (int tries = 0; tries < maxTries && length < samples.size(); ++tries) {
    if (next_ == decodedLength_ && !decodeBlock()) break;
    const std::size_t part = std::min(decodedLength_ - next_, samples.size() - length);
    std::memcpy(&samples[length], &decoded_[next_], part);
    next_ += part;
    length += part;
  }
  return length;
}

}  // namespace kelvora
