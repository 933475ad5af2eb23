#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace kelvora {

/// A new folder, which is removed with everything in it afterwards.
class TemporaryFolder {
 public:
  TemporaryFolder() { std::filesystem::create_directories(path_); }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_ =
      std::filesystem::temp_directory_path() / ("kelvora-" + std::to_string(std::random_device{}()));
};

}  // namespace kelvora
