#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/audio.h"
#include "platform/recording/messages.h"
#include "platform/recording/recorder.h"
#include "platform/winsock.h"
#include "raster/font.h"

namespace kelvora::recording {

/// A socket whose states, events and bytes are recorded.
class RecordedSocket : public SocketPeer {
 public:
  RecordedSocket(Recorder& recorder, Winsock& socket, std::unique_ptr<SocketPeer> inner);
  ~RecordedSocket() override;

  SocketState state() const override { return inner_->state(); }
  void connect(const std::string& host, int port) override;
  void close() override;
  void send(std::string_view data) override;
  std::string take() override;

  bool hasNewState() const { return inner_->state() != told_; }
  SocketState takeState() { return told_ = inner_->state(); }

 private:
  Recorder& recorder_;
  Winsock& socket_;
  std::unique_ptr<SocketPeer> inner_;
  std::shared_ptr<RecordedSockets> sockets_;
  std::size_t number_;
  Messages messages_;
  SocketState told_ = sckClosed;
  bool isWatched_ = false;
};

/// A sound effect. Only whether its file could be loaded reaches the game.
class RecordedSound : public SoundPeer {
 public:
  RecordedSound(Recorder& recorder, std::unique_ptr<SoundPeer> inner) : recorder_(recorder), inner_(std::move(inner)) {}

  bool open(const std::string& file) override;
  void silence(bool silent) override { inner_->silence(silent); }
  void rewind() override { inner_->rewind(); }
  void play() override { inner_->play(); }
  void stop() override { inner_->stop(); }

 private:
  Recorder& recorder_;
  std::unique_ptr<SoundPeer> inner_;
};

/// The music player.
class RecordedMusic : public MusicPeer {
 public:
  RecordedMusic(Recorder& recorder, std::unique_ptr<MusicPeer> inner) : recorder_(recorder), inner_(std::move(inner)) {}

  void play(const std::string& file) override { inner_->play(file); }
  void stop() override { inner_->stop(); }
  PlayState playState() const override;

 private:
  Recorder& recorder_;
  std::unique_ptr<MusicPeer> inner_;
};

/// Glyphs that are recorded when they are first used, so that a replay has the same letters and the same line lengths.
class RecordedGlyphs : public GlyphSource {
 public:
  RecordedGlyphs(Recorder& recorder, GlyphSource* inner) : recorder_(recorder), inner_(inner) {}

  Glyph glyph(const FontSpec& font, unsigned char character) override;
  int lineHeight(const FontSpec& font) override;
  GlyphSource* inner() const { return inner_; }

 private:
  void putFont(Kind kind, const FontSpec& font);

  Recorder& recorder_;
  GlyphSource* inner_;
};

}  // namespace kelvora::recording
