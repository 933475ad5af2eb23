#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/widgets.h"

namespace kelvora {

/// The states of a music player, as returned by playState.
enum PlayState : int { psStopped = 1, psPlaying = 3, psTransitioning = 9, psReady = 10 };

/// The backend's side of one sound effect. No call waits for the sound device. Without a device, all of them silently
/// do nothing.
class SoundPeer {
 public:
  virtual ~SoundPeer() = default;
  /// Loads a wave file. False if it doesn't exist.
  virtual bool open(const std::string& file) = 0;
  /// Mutes or unmutes. A muted effect plays inaudibly.
  virtual void silence(bool silent) = 0;
  virtual void rewind() = 0;
  /// Plays from the start, even if it is playing.
  virtual void play() = 0;
  virtual void stop() = 0;
};

/// The backend's side of the music, one track at a time.
class MusicPeer {
 public:
  virtual ~MusicPeer() = default;
  /// Plays the file instead of the current track. If it is missing or unplayable, the state becomes psStopped.
  virtual void play(const std::string& file) = 0;
  virtual void stop() = 0;
  /// psReady before the first file.
  virtual PlayState playState() const = 0;
};

/// One wave file on its own device. It mixes with all others and always plays from the start.
class SoundDevice {
 public:
  SoundDevice();

  bool Notify = true;
  bool Wait = false;
  bool Shareable = false;
  std::string DeviceType;
  std::string FileName;

  /// A silenced device plays inaudibly.
  void Silent(bool silent);
  bool Silent() const { return silent_; }
  /// Executes "open", "prev" (rewind), "play" or "stop". RuntimeFault for any other command, for opening a device twice
  /// or without its file, and for the other three on a device that isn't open.
  void Command(std::string_view command);
  bool isOpen() const { return open_; }

 private:
  std::unique_ptr<SoundPeer> peer_;
  bool open_ = false;
  bool silent_ = false;
};

/// Plays one music file. On a form, it shows the file's name.
class MusicPlayer : public Label {
 public:
  MusicPlayer(Control* container, Place place);

  /// Plays the file. An empty name stops the music.
  void URL(const std::string& file);
  /// psReady before the first file, psStopped after a file's end.
  PlayState playState() const { return peer_->playState(); }

 private:
  std::unique_ptr<MusicPeer> peer_;
};

}  // namespace kelvora
