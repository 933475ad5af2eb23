#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelvora::server {

/// Replaces a file's contents in one step: after a crash at any moment the file has the old or the new contents. Writes
/// FILE.new first. Returns the error; empty if there was none. Waits for the disk. `path` is UTF-8.
std::string replaceFile(const std::string& path, const std::string& contents);

/// A whole file of at most `maxSize` bytes. `mayBePipe` allows pipes and devices, too, which can block.
struct FileText {
  std::optional<std::string> text{};  ///< nothing if there is no such file
  std::string error{};                ///< empty if it was read or doesn't exist
};
FileText readFile(const std::string& path, std::size_t maxSize, bool mayBePipe = false);

/// The text without the byte order mark at its start, which editors for Windows write.
std::string_view withoutByteOrderMark(std::string_view text);

/// A line of a text file, or a part of it, without blanks, tabs and carriage returns at both ends.
std::string_view trimmedLine(std::string_view line);

/// Throws std::runtime_error if there is no folder for this file, whose path may be mistyped.
void requireFolderOf(const std::string& path);

}  // namespace kelvora::server
