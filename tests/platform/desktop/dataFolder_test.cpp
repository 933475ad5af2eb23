#include "platform/desktop/dataFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

TEST(DataFolder, HasAPathWithoutDetours) {
  const fs::path folder = fs::canonical(fs::temp_directory_path());
  EXPECT_EQ(withoutLinks(folder / ".." / folder.filename()), folder.string());
}

TEST(DataFolder, KeepsAPathThatCannotBeResolved) {
  const fs::path missing = fs::temp_directory_path() / "kelvora no such folder";
  EXPECT_EQ(withoutLinks(missing), missing.string());
}

}  // namespace
}  // namespace kelvora
