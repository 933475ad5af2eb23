#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/widgets.h"

namespace kelvora {

/// What a music player is doing, numbered as its playState tells it.
enum PlayState : int { psStopped = 1, psPlaying = 3, psTransitioning = 9, psReady = 10 };

/// The backend's side of one sound effect. None of it waits for the machine's sound device, and without one nothing
/// sounds and nobody is told.
class SoundPeer {
 public:
  virtual ~SoundPeer() = default;
  /// Takes the wave file; false if there is none of that name.
  virtual bool open(const std::string& file) = 0;
  virtual void silence(bool silent) = 0;
  virtual void rewind() = 0;
  virtual void play() = 0;
  virtual void stop() = 0;
};

/// The backend's side of the music: one track at a time.
class MusicPeer {
 public:
  virtual ~MusicPeer() = default;
  /// Starts the file in place of what is playing; no file, or one that cannot be played, ends in psStopped.
  virtual void play(const std::string& file) = 0;
  virtual void stop() = 0;
  virtual int playState() const = 0;
};

/// One wave file on a device of its own: it sounds beside all others and is rewound and started at once.
class SoundDevice {
 public:
  SoundDevice();

  bool Notify = true;
  bool Wait = false;
  bool Shareable = false;
  std::string DeviceType;
  std::string FileName;

  /// A silent device plays without being heard.
  void Silent(bool silent);
  bool Silent() const { return silent_; }
  /// "open", "prev" (rewind), "play" or "stop". Any other, the last three on a device that is not open, and "open" on
  /// one that is or without its file are RuntimeFault.
  void Command(std::string_view command);
  bool isOpen() const { return open_; }

 private:
  std::unique_ptr<SoundPeer> peer_;
  bool open_ = false;
  bool silent_ = false;
};

/// Plays one music file. Its face on a form names the file.
class MusicPlayer : public Label {
 public:
  MusicPlayer(Control* container, Place place);

  /// Starts the file; an empty name stops the music.
  void URL(const std::string& file);
  /// A PlayState: psReady before the first file, psStopped after the end of one.
  int playState() const { return peer_->playState(); }

 private:
  std::unique_ptr<MusicPeer> peer_;
};

}  // namespace kelvora
