#include "platform/desktop/mixedAudio.h"

#include <array>
#include <fstream>
#include <string_view>

namespace kelvora {

namespace {

bool isWaveFile(const std::string& file) {
  std::array<char, 12> head{};
  std::ifstream stream(file, std::ios::binary);
  stream.read(head.data(), head.size());
  const std::string_view text(head.data(), head.size());
  return stream && text.starts_with("RIFF") && text.ends_with("WAVE");
}

}  // namespace

MixedSound::~MixedSound() {
  if (channel_ >= 0) mixer_->closeEffect(channel_);
}

bool MixedSound::open(const std::string& file) {
  if (!isWaveFile(file)) return false;
  channel_ = mixer_->openEffect(file);
  return true;
}

void MixedSound::silence(bool silent) {
  if (channel_ >= 0) mixer_->silenceEffect(channel_, silent);
}

}  // namespace kelvora
