#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace kelvora {

/// Nine sound effects and the rotation of the music. Audio is a comfort: no failure in it reaches the player.
namespace soundMan {

inline constexpr std::int16_t soundCount = 9;
inline constexpr std::int16_t lastTrack = 5;  ///< of the rotation, which begins at 1; 0 is the store's own

extern std::array<std::string, lastTrack + 1> musicFiles;
extern std::int16_t currentMusic;  ///< the track of the rotation that was last started, 1 to 5

/// Puts the module back to its state at the start of the process.
void clear();

/// Fills musicFiles and opens all effects.
void initAudio();
/// Throws away the effects' devices, but for the first, and opens what is not open.
void reloadSounds();
/// Rewinds and starts an effect, 0 to 8, unless effects are switched off; any other number does nothing.
void playSound(std::int16_t slot);
/// Silences an effect until it is played again.
void stopSound(std::int16_t slot);

/// Loads the player and chooses where the rotation begins, unless music is switched off.
void startMusic();
/// Starts a track, 0 to 5, unless music is switched off; any other number does nothing.
void playMusic(std::int16_t index);
/// Starts the track after the current one; the rotation rests while the store is open.
void nextMusic();

/// True if the command line has the word anywhere in it, in any case.
bool isOnCommandLine(const char* word);

}  // namespace soundMan

}  // namespace kelvora
