#include "platform/win32/musicStream.h"

#include <system_error>

namespace kelvora {

bool MusicStream::start(const std::wstring& file) {
  stop();
  decoder_ = Mp3Decoder::open(file);
  if (!decoder_) return false;
  wake_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  const auto event = reinterpret_cast<DWORD_PTR>(wake_);
  if (waveOutOpen(&device_, WAVE_MAPPER, &decoder_->format(), event, 0, CALLBACK_EVENT) != 0) {
    CloseHandle(wake_);
    decoder_.reset();
    return false;
  }
  for (Block& block : blocks_) {
    block.header = {};
    block.header.lpData = block.bytes.data();
    block.header.dwBufferLength = static_cast<DWORD>(block.bytes.size());
    waveOutPrepareHeader(device_, &block.header, sizeof block.header);
  }
  isEnding_ = false;
  isPlaying_ = true;
  try {
    thread_ = std::thread([this] { play(); });
  } catch (const std::system_error&) {
    close();
    return false;
  }
  return true;
}

void MusicStream::stop() {
  if (!thread_.joinable()) return;
  isEnding_ = true;
  SetEvent(wake_);
  thread_.join();
  close();
}

void MusicStream::close() {
  isPlaying_ = false;
  waveOutReset(device_);
  for (Block& block : blocks_) waveOutUnprepareHeader(device_, &block.header, sizeof block.header);
  waveOutClose(device_);
  CloseHandle(wake_);
  decoder_.reset();
}

void MusicStream::play() {
  while (!isEnding_ && queueBlocks()) WaitForSingleObject(wake_, INFINITE);
  isPlaying_ = false;
}

bool MusicStream::queueBlocks() {
  bool isWaiting = false;
  for (Block& block : blocks_) {
    if ((block.header.dwFlags & WHDR_INQUEUE) == 0) {
      const std::size_t length = decoder_->read(block.bytes);
      if (length == 0) continue;
      block.header.dwBufferLength = static_cast<DWORD>(length);
      if (waveOutWrite(device_, &block.header, sizeof block.header) != 0) continue;
    }
    isWaiting = true;
  }
  return isWaiting;
}

}  // namespace kelvora
