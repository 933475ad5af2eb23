#include "platform/recording/replayedPeers.h"

#include "platform/pictureBox.h"
#include "platform/widgets.h"

namespace kelvora::recording {

ReplayedPeer::~ReplayedPeer() {
  if (isForm_) live_->forms[form_] = nullptr;
}

void ReplayedPeer::changed(PropertyId id) {
  if (auto* timer = dynamic_cast<IntervalTimer*>(&control_)) timer->isResting = false;
  if (id != PropertyId::Width && id != PropertyId::Height) return;
  if (auto* picture = dynamic_cast<PictureBox*>(&control_)) picture->fitImage();
}

ReplayedSocket::ReplayedSocket(Replay& replay, Winsock& socket)
    : replay_(replay), live_(replay.live_), socket_(socket), number_(live_->sockets.size()) {
  live_->sockets.push_back(this);
}

ReplayedSocket::~ReplayedSocket() { live_->sockets[number_] = nullptr; }

std::string ReplayedSocket::take() {
  replay_.expect(Kind::SocketBytes);
  return messages_.read(replay_.reader_);
}

bool ReplayedSound::open(const std::string& file) {
  file_ = file;
  replay_.expect(Kind::SoundFile);
  return replay_.reader_.byte() != 0;
}

void ReplayedSound::play() {
  if (!isSilent_) live_->tell({file_, false, true});
}

void ReplayedSound::stop() { live_->tell({file_, false, false}); }

void ReplayedMusic::play(const std::string& file) { live_->tell({file, true, true}); }

void ReplayedMusic::stop() { live_->tell({{}, true, false}); }

PlayState ReplayedMusic::playState() const {
  replay_.expect(Kind::MusicState);
  const std::uint8_t state = replay_.reader_.byte();
  for (const PlayState known : {psStopped, psPlaying, psTransitioning}) {
    if (state == known) return known;
  }
  return psReady;
}

}  // namespace kelvora::recording
