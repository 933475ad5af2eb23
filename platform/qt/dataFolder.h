#pragma once

#include <string>

namespace kelvora {

/// Where assets and sounds are: the folder that KELVORA_DATA names, else beside the program, or where an installation
/// puts them, or the source folder of a build tree. The program's own place must be known to the toolkit.
std::string dataFolder();

}  // namespace kelvora
