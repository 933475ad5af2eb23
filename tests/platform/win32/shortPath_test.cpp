#include "platform/win32/shortPath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

TEST(ShortPath, LeadsToTheSameFile) {
  const fs::path folder = fs::temp_directory_path() / "kelvora-short" / std::string(60, 'a') / std::string(60, 'b');
  fs::create_directories(folder);
  const fs::path file = folder / "a sound.wav";
  std::ofstream(file) << "sound";
  const std::wstring path = shortPath(folder.wstring() + L"/a sound.wav");
  EXPECT_LE(path.size(), 127U);
  std::string content;
  std::ifstream(fs::path(path)) >> content;
  EXPECT_EQ(content, "sound");
  fs::remove_all(folder.parent_path().parent_path());
}

TEST(ShortPath, IsThePathItselfIfThatIsShortOrLeadsNowhere) {
  EXPECT_EQ(shortPath(L"C:\\Program Files"), L"C:\\Program Files");
  const std::wstring missing = L"C:\\" + std::wstring(200, L'a');
  EXPECT_EQ(shortPath(missing), missing);
}

}  // namespace
}  // namespace kelvora
