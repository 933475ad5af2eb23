#pragma once

#include <string>

namespace kelvora {

/// A path of at most 127 characters to the same file, because the media control opens no longer ones. The path itself
/// if it is as short, or if its drive has no short names.
std::wstring shortPath(const std::wstring& path);

}  // namespace kelvora
