#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "generated/sourceFolder.h"

/// Reads the project's own files for the tests of its rules.
namespace tree {

struct File {
  std::string path;  ///< from the project's folder, with slashes
  std::string text;
};

inline bool isSkipped(const std::filesystem::path& folder) {
  const std::string name = folder.filename().string();
  return name.rfind("build", 0) == 0 || (name.rfind('.', 0) == 0 && name != ".ci");
}

/// Every file below the project's folder with one of these extensions ("" for none), sorted by path. Skips build
/// folders.
inline std::vector<File> files(const std::set<std::string>& extensions) {
  namespace fs = std::filesystem;
  const fs::path root = KELVORA_SOURCE_DIR;
  std::vector<File> found;
  for (fs::recursive_directory_iterator entry(root), end; entry != end; ++entry) {
    if (entry->is_directory()) {
      if (isSkipped(entry->path())) entry.disable_recursion_pending();
      continue;
    }
    // In a linked worktree .git is a file with a path of this machine.
    if (entry->path().filename() == ".git" || !extensions.contains(entry->path().extension().string())) continue;
    std::ifstream stream(entry->path(), std::ios::binary);
    found.push_back({entry->path().lexically_relative(root).generic_string(),
                     {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()}});
  }
  std::ranges::sort(found, {}, &File::path);
  return found;
}

/// The contents of one file; empty if it doesn't exist.
inline std::string text(const std::string& path) {
  std::ifstream stream(std::filesystem::path(KELVORA_SOURCE_DIR) / path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline bool startsWith(const std::string& path, const std::string& beginning) { return path.rfind(beginning, 0) == 0; }

}  // namespace tree
