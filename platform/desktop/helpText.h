#pragma once

namespace kelvora {

/// The answer to --help.
inline constexpr const char* helpText =
    "Usage: kelvora [nosound] [nomusic]\n"
    "An arena game for up to six players.\n"
    "\n"
    "  nosound    no sound effects\n"
    "  nomusic    no music\n"
    "  --version  print the version and the folders in use\n"
    "  --help     print this help\n"
    "\n"
    "Environment, with defaults:\n"
    "  KELVORA_FRAME_MS  milliseconds per frame; 10 is the design pace, 0 no pace (10 on Windows, else 0)\n"
    "  KELVORA_DATA      folder that holds assets and sounds (found automatically)\n"
    "  KELVORA_RECORD    file to record the game into (none)\n"
    "  KELVORA_WEB_HOST  host, or host:port, that serves the list of games and the update file\n";

}  // namespace kelvora
