#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

namespace kelvora {

/// The rate of all samples. Those of both speakers are interleaved.
inline constexpr int sampleRate = 44100;

/// A sound effect, held in memory. Without samples there is nothing to play.
struct Effect {
  bool isStereo = false;
  std::vector<std::int16_t> samples;
};

/// A piece of music that is decoded while it plays.
class Track {
 public:
  virtual ~Track() = default;
  /// Replaces all of `stereo` with the next samples, and with silence after the end. False once the last sample has
  /// been handed over.
  virtual bool read(std::span<std::int16_t> stereo) = 0;
};

/// Adds up one effect per channel and one track. Channels are 0 or more. Thread-safe.
class Mix {
 public:
  /// The channel's new effect is neither playing nor silenced.
  void setEffect(int channel, Effect effect);
  /// A silenced effect plays inaudibly.
  void silence(int channel, bool silent);
  /// Plays from the first sample, even if it is playing.
  void startEffect(int channel);
  void stopEffect(int channel);

  void startTrack(std::unique_ptr<Track> track);
  void stopTrack() { startTrack(nullptr); }
  bool isTrackPlaying() const { return isTrackPlaying_; }

  bool isPlaying() const;
  void stopAll();
  /// Replaces all of `stereo` with the next samples. Sums beyond the range of a sample are clipped.
  void read(std::span<std::int16_t> stereo);

 private:
  struct Channel {
    Effect effect;
    std::size_t next = 0;  ///< index of the next sample; the number of samples if it isn't playing
    bool isSilent = false;
  };

  /// Null if the channel has never had an effect.
  Channel* find(int channel);
  void add(Channel& channel);

  mutable std::mutex mutex_;
  std::vector<Channel> channels_;
  std::unique_ptr<Track> track_;
  std::atomic<bool> isTrackPlaying_ = false;
  std::vector<std::int32_t> sums_;
};

}  // namespace kelvora
