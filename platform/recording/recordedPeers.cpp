#include "platform/recording/recordedPeers.h"

namespace kelvora::recording {

RecordedSocket::RecordedSocket(Recorder& recorder, Winsock& socket, std::unique_ptr<SocketPeer> inner)
    : recorder_(recorder),
      socket_(socket),
      inner_(std::move(inner)),
      sockets_(recorder.sockets_),
      number_(sockets_->size()) {
  sockets_->push_back(this);
}

RecordedSocket::~RecordedSocket() { (*sockets_)[number_] = nullptr; }

// The game sets a socket's handlers before it connects.
void RecordedSocket::connect(const std::string& host, int port) {
  if (!std::exchange(isWatched_, true)) {
    recorder_.watchSocket(number_, SocketEventId::Connect, socket_.onConnect);
    recorder_.watchSocket(number_, SocketEventId::Close, socket_.onClose);
    recorder_.watchSocket(number_, SocketEventId::DataArrival, socket_.onDataArrival);
  }
  recorder_.command([&] { inner_->connect(host, port); });
}

void RecordedSocket::close() {
  recorder_.command([&] { inner_->close(); });
}

void RecordedSocket::send(std::string_view data) {
  recorder_.command([&] { inner_->send(data); });
}

std::string RecordedSocket::take() {
  std::string bytes = inner_->take();
  recorder_.begin(Kind::SocketBytes);
  messages_.write(recorder_.writer_, bytes);
  return bytes;
}

bool RecordedSound::open(const std::string& file) {
  const bool isOpen = inner_->open(file);
  recorder_.begin(Kind::SoundFile);
  recorder_.writer_.byte(isOpen ? 1 : 0);
  return isOpen;
}

PlayState RecordedMusic::playState() const {
  const PlayState state = inner_->playState();
  if (!recorder_.place_.isInGame) return state;
  recorder_.begin(Kind::MusicState);
  recorder_.writer_.byte(static_cast<std::uint8_t>(state));
  return state;
}

void RecordedGlyphs::putFont(Kind kind, const FontSpec& font) {
  Writer& writer = recorder_.writer_;
  writer.byte(static_cast<std::uint8_t>(kind));
  writer.text(font.family);
  writer.real(font.size);
  writer.byte(font.bold ? 1 : 0);
}

Glyph RecordedGlyphs::glyph(const FontSpec& font, unsigned char character) {
  Glyph glyph = inner_ ? inner_->glyph(font, character) : Glyph{};
  Writer& writer = recorder_.writer_;
  putFont(Kind::Glyph, font);
  writer.byte(character);
  for (const int value : {glyph.left, glyph.top, glyph.width, glyph.height, glyph.advance}) writer.whole(value);
  for (const std::uint8_t value : glyph.coverage) writer.byte(value);
  return glyph;
}

int RecordedGlyphs::lineHeight(const FontSpec& font) {
  const int height = inner_ ? inner_->lineHeight(font) : 0;
  putFont(Kind::LineHeight, font);
  recorder_.writer_.whole(height);
  return height;
}

}  // namespace kelvora::recording
