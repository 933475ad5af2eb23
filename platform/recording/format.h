#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/recordingMagic.h"

namespace kelvora::recording {

/// A file begins with these bytes and the format's version in one byte. The rest is compressed.
inline constexpr std::string_view magic = gameMagic;
inline constexpr std::uint8_t formatVersion = 1;

/// Frames from one comparison of the state to the next.
inline constexpr std::uint64_t checkInterval = 100;

/// Contents consist of blocks, whose numbers stand in planes of the same kind. Compression profits from that.
enum class Plane : std::uint8_t { Records, Times, Across, Down, Nodes, PointAcross, PointDown };
inline constexpr std::size_t planeCount = 7;
inline constexpr std::size_t maxBlock = 64 * 1024;  ///< bytes of all planes of a block

/// The kinds of records. docs/recordings.md has their contents.
enum class Kind : std::uint8_t {
  Return = 1,   ///< DoEvents, a message box, a modal form or a call of a peer is over
  Call,         ///< one of the game's next calls lets the world in
  Tick,         ///< the clock has moved on within the game
  Event,        ///< a control's handler runs
  Adopted,      ///< the user or the window system has changed a property
  Resting,      ///< a timer pauses
  SocketState,  ///< a socket has another state
  SocketEvent,  ///< a socket's handler runs
  SocketBytes,  ///< what the game has read
  Setting,      ///< what the game has read
  CommandLine,  ///< what the game has asked for
  WebHost,      ///< what the game has asked for
  Picture,      ///< whether a picture could be loaded
  SoundFile,    ///< whether a sound effect could be loaded
  MusicState,   ///< what the game has asked for
  Glyph,        ///< the shape of a letter
  LineHeight,   ///< of a font
  Check,        ///< sums of the game's state
  Fault,        ///< a run-time fault has ended the game
  End,          ///< the game has ended
};

/// Handlers of controls.
enum class EventId : std::uint8_t {
  Click = 1,
  MouseDown,
  MouseMove,
  MouseUp,
  KeyDown,
  KeyPress,
  DblClick,
  Resize,
  Activate,
  Closing,
  Change,
  Scroll,
  Timer,
};

/// Handlers of sockets.
enum class SocketEventId : std::uint8_t { Connect = 1, Close, DataArrival };

inline constexpr std::int64_t dayLength = 24 * 3600 * 1000;  ///< ms

// Bounds of what a file may contain.
inline constexpr std::size_t maxFile = 256 * 1024 * 1024;    ///< bytes
inline constexpr std::size_t maxText = 1024 * 1024;          ///< bytes of a text
inline constexpr std::size_t maxPortion = 64 * 1024 * 1024;  ///< bytes that a socket delivers at once
inline constexpr std::size_t maxName = 100;                  ///< bytes of the name of a font or a sum
inline constexpr std::size_t maxParts = 100;                 ///< sums in one check
inline constexpr std::size_t maxFonts = 1000;                ///< with letters, and as many with a line height
inline constexpr int maxGlyphSide = 512;                     ///< pixels
inline constexpr std::size_t maxGlyphBytes = 64 * 1024 * 1024;
inline constexpr int maxNesting = 100;        ///< calls within handlers within calls
inline constexpr float maxTwips = 1'000'000;  ///< of coordinates and lengths
inline constexpr float maxSide = 8192 * 15;   ///< twips, of a window

}  // namespace kelvora::recording
