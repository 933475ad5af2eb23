#pragma once

#include <filesystem>
#include <string>

namespace kelvora {

/// The folder of the running program; empty if the system does not tell.
std::filesystem::path programFolder();

/// Where assets and sounds are: the folder that KELVORA_DATA names, else beside the program, or where an installation
/// puts them, or the source folder of a build tree.
std::string dataFolder();

}  // namespace kelvora
