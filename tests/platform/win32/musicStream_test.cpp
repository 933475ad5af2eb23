#include "platform/win32/musicStream.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "generated/sourceFolder.h"
#include "tests/support/temporaryFolder.h"

namespace kelvora {
namespace {

namespace fs = std::filesystem;

/// The system removes no file that is open.
bool canBeRemoved(const fs::path& file) {
  std::error_code error;
  fs::remove(file, error);
  return !error;
}

TEST(MusicStreams, CloseTheFileThatNoDevicePlays) {
  const TemporaryFolder folder;
  const fs::path file = folder.path() / "music.mp3";
  fs::copy_file(fs::path(KELVORA_SOURCE_DIR) / "sounds" / "music1.mp3", file);
  MusicStream music;
  if (music.start(file.wstring())) {
    EXPECT_FALSE(canBeRemoved(file)) << "while it plays";
    music.stop();
  }
  EXPECT_FALSE(music.isPlaying());
  EXPECT_TRUE(canBeRemoved(file));
}

}  // namespace
}  // namespace kelvora
