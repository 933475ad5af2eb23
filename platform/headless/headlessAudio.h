#pragma once

#include <memory>
#include <string>

#include "platform/audio.h"

namespace kelvora {

struct HeadlessScreen;

/// Records the commands for an effect's device.
class HeadlessSound : public SoundPeer {
 public:
  explicit HeadlessSound(std::shared_ptr<HeadlessScreen> screen);
  bool open(const std::string& file) override;
  void silence(bool silent) override;
  void rewind() override { note("prev"); }
  void play() override { note("play"); }
  void stop() override { note("stop"); }

 private:
  void note(const std::string& command);

  std::shared_ptr<HeadlessScreen> screen_;
  std::string file_;
};

/// Records the tracks. The backend's owner decides when one has ended.
class HeadlessMusic : public MusicPeer {
 public:
  explicit HeadlessMusic(std::shared_ptr<HeadlessScreen> screen);
  void play(const std::string& file) override;
  void stop() override;
  PlayState playState() const override;

 private:
  std::shared_ptr<HeadlessScreen> screen_;
};

}  // namespace kelvora
