#pragma once

#include <filesystem>
#include <string>

namespace kelvora {

/// The folder of the running program; empty if the system doesn't say.
std::filesystem::path programFolder();

/// The path with all links and ".." resolved. Unchanged if the library can't do that, as for network paths of Windows.
std::string withoutLinks(const std::filesystem::path& path);

/// The folder with assets and sounds: KELVORA_DATA if set, else the program's folder, an installation's data folder, or
/// the source folder of a build tree. The program's folder if none of them exists.
std::string dataFolder();

}  // namespace kelvora
