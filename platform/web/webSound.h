#pragma once

#include <string>

#include "platform/audio.h"
#include "platform/web/pageEvents.h"

namespace kelvora {

/// An effect of the page's, fetched when it is opened.
class WebSound : public SoundPeer, public PageObject {
 public:
  ~WebSound() override;
  bool open(const std::string& file) override;
  void silence(bool silent) override;
  void rewind() override;
  void play() override;
  void stop() override;
  void take(const PageEvent&) override {}
};

/// The page's one piece of music, fetched while it plays.
class WebMusic : public MusicPeer {
 public:
  void play(const std::string& file) override;
  void stop() override;
  PlayState playState() const override;
};

}  // namespace kelvora
