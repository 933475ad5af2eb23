#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/audio.h"
#include "platform/form.h"
#include "platform/recording/messages.h"
#include "platform/recording/replay.h"
#include "platform/winsock.h"

namespace kelvora::recording {

/// The peer of any control. It shows nothing.
class ReplayedPeer : public Peer {
 public:
  /// `form` is the number of the control if that is a form.
  ReplayedPeer(std::shared_ptr<Replay::Live> live, Control& control, std::size_t form)
      : live_(std::move(live)), control_(control), isForm_(dynamic_cast<Form*>(&control) != nullptr), form_(form) {}
  ~ReplayedPeer() override;
  void changed(PropertyId id) override;

 private:
  std::shared_ptr<Replay::Live> live_;
  Control& control_;
  bool isForm_;  ///< can't be asked any more once the control is being destroyed
  std::size_t form_;
};

/// A socket that is connected with the recording.
class ReplayedSocket : public SocketPeer {
 public:
  ReplayedSocket(Replay& replay, Winsock& socket);
  ~ReplayedSocket() override;

  SocketState state() const override { return state_; }
  void connect(const std::string&, int) override { replay_.command(); }
  void close() override { replay_.command(); }
  void send(std::string_view) override { replay_.command(); }
  std::string take() override;

  void setState(SocketState state) { state_ = state; }
  Winsock& owner() { return socket_; }

 private:
  Replay& replay_;
  std::shared_ptr<Replay::Live> live_;
  Winsock& socket_;
  std::size_t number_;
  Messages messages_;
  SocketState state_ = sckClosed;
};

/// A sound effect that only `onSound` hears.
class ReplayedSound : public SoundPeer {
 public:
  explicit ReplayedSound(Replay& replay) : replay_(replay), live_(replay.live_) {}
  bool open(const std::string& file) override;
  void silence(bool silent) override { isSilent_ = silent; }
  void rewind() override {}
  void play() override;
  void stop() override;

 private:
  Replay& replay_;
  std::shared_ptr<Replay::Live> live_;
  std::string file_;
  bool isSilent_ = false;
};

class ReplayedMusic : public MusicPeer {
 public:
  explicit ReplayedMusic(Replay& replay) : replay_(replay), live_(replay.live_) {}
  void play(const std::string& file) override;
  void stop() override;
  PlayState playState() const override;

 private:
  Replay& replay_;
  std::shared_ptr<Replay::Live> live_;
};

}  // namespace kelvora::recording
