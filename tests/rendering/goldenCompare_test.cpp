#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "platform/pictures/pictureFile.h"
#include "tests/support/golden.h"

namespace kelvora {
namespace {

namespace fs = std::filesystem;

class GoldenCompare : public testing::Test {
 protected:
  GoldenCompare() {
    fs::create_directories(folders.kept);
    picture.width = 2;
    picture.height = 1;
    picture.pixels = {0x0A0B0C, 0xFF0080};
  }
  ~GoldenCompare() override { fs::remove_all(root); }
  bool isLeft(const std::string& what) { return fs::exists(folders.left / ("spot-" + what + ".png")); }
  std::string compare(bool renew = false) { return compareWithGolden("spot", picture, folders, renew); }

  const fs::path root = fs::path(testing::TempDir()) / ("kelvora-golden-" + std::to_string(getpid()));
  const GoldenFolders folders{root / "kept", root / "left"};
  Picture picture;
};

TEST_F(GoldenCompare, WithoutAGoldenPictureThePaintedOneIsWritten) {
  EXPECT_NE(compare().find("there is no "), std::string::npos);
  EXPECT_TRUE(isLeft("actual"));
}

TEST_F(GoldenCompare, UpdatedPictureIsTheSameByteForByte) {
  EXPECT_EQ(compare(true), "");
  EXPECT_EQ(loadPictureFile((folders.kept / "spot.png").string())->pixels, picture.pixels);
  EXPECT_EQ(compare(), "");
  EXPECT_FALSE(isLeft("actual"));
}

TEST_F(GoldenCompare, SmallestDifferenceIsFoundAndThreePicturesAreWritten) {
  compare(true);
  picture.pixels[1] = 0xFF0081;
  EXPECT_EQ(compare().substr(0, 15), "1 pixel differs");
  EXPECT_EQ(loadPictureFile((folders.left / "spot-actual.png").string())->pixels[1], 0xFF0081U);
  EXPECT_EQ(loadPictureFile((folders.left / "spot-expected.png").string())->pixels[1], 0xFF0080U);
  EXPECT_EQ(loadPictureFile((folders.left / "spot-difference.png").string())->pixels,
            (std::vector<Pixel>{0, 0xFFFFFF}));
}

TEST_F(GoldenCompare, DifferentSizeIsADifference) {
  compare(true);
  picture.width = 1;
  picture.height = 2;
  EXPECT_NE(compare().find("it is 1 by 2 pixels and not 2 by 1"), std::string::npos);
  EXPECT_TRUE(isLeft("actual"));
  EXPECT_TRUE(isLeft("expected"));
}

}  // namespace
}  // namespace kelvora
