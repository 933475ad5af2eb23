#pragma once

#include <string>

namespace kelvora::player {

/// Shows a recording in windows until the user closes them. Throws Damaged if the file is none. `program` is argv[0].
void playRecording(const std::string& file, char* program);

}  // namespace kelvora::player
