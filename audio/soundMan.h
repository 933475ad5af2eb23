#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace kelvora {

/// Nine sound effects and the rotation of the music. Failures in audio are always silent.
namespace soundMan {

/// The effects by slot. Those of the powerups are in the powerups' order.
enum class Sound : std::int16_t { Capture, Bounce, Error, Shield, Turbo, ChargedTail, LongTail, Laser, Missile };
inline constexpr std::int16_t soundCount = 9;
inline constexpr std::int16_t storeTrack = 0;
inline constexpr std::int16_t lastTrack = 5;  ///< last track of the rotation, which begins at 1

extern std::array<std::string, lastTrack + 1> musicFiles;  ///< paths by track; empty before initAudio
extern std::int16_t currentMusic;                          ///< rotation's track started or drawn last; 0 at first

/// Resets the module to its initial state.
void clear();

/// Fills musicFiles and opens all effects. Failures are silent.
void initAudio();
/// Closes the effects' devices except for the first, then opens whatever isn't open.
void reloadSounds();
/// Plays an effect from the start, unless effects are switched off. Numbers outside the enum do nothing.
void playSound(Sound sound);
/// Stops an effect. Numbers outside the enum do nothing.
void stopSound(Sound sound);

/// Loads the player, starts its timer and draws currentMusic, after which the rotation begins, unless music is switched
/// off.
void startMusic();
/// Plays a track, 0 to 5, unless music is switched off. Other numbers do nothing.
void playMusic(std::int16_t index);
/// Plays the track after the current one. Does nothing while the store is open.
void nextMusic();

/// True if the command line contains the word anywhere, in any case.
bool isOnCommandLine(const char* word);

}  // namespace soundMan

}  // namespace kelvora
