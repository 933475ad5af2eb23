#include "platform/pictures/pictureFile.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#include <stb_image_write.h>

#include "base/fault.h"
#include "platform/pictures/decode.h"

namespace kelvora {
namespace {

/// A folder for the files of one test, removed afterwards.
class PictureFile : public ::testing::Test {
 protected:
  PictureFile() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvora-picture-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~PictureFile() override { std::filesystem::remove_all(folder_); }

  std::string pathOf(const std::string& name) const { return (folder_ / name).string(); }

  std::string write(const std::string& name, const std::string& bytes) const {
    std::ofstream(pathOf(name), std::ios::binary) << bytes;
    return pathOf(name);
  }

  /// `channels` bytes per pixel: 3 for red, green and blue; 4 with opacity last.
  std::string writePng(const std::string& name, unsigned width, unsigned height,
                       const std::vector<unsigned char>& samples, int channels = 3) const {
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = channels == 4 ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    EXPECT_NE(png_image_write_to_file(&image, pathOf(name).c_str(), 0, samples.data(), 0, nullptr), 0);
    return pathOf(name);
  }

  std::string writeJpeg(const std::string& name, unsigned width, unsigned height, Colour colour) const {
    std::vector<unsigned char> samples;
    for (unsigned i = 0; i < width * height; ++i)
      samples.insert(samples.end(), {colour.red, colour.green, colour.blue});
    constexpr int bestQuality = 100;
    EXPECT_NE(stbi_write_jpg(pathOf(name).c_str(), static_cast<int>(width), static_cast<int>(height), 3, samples.data(),
                             bestQuality),
              0);
    return pathOf(name);
  }

  static std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

 private:
  std::filesystem::path folder_;
};

TEST_F(PictureFile, ReadsPngPixelByPixel) {
  const std::string path = writePng("a.png", 2, 2, {255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3});
  const PicturePointer picture = loadPictureFile(path);
  EXPECT_EQ(picture->width, 2);
  EXPECT_EQ(picture->height, 2);
  EXPECT_EQ(picture->pixels, (std::vector<Pixel>{0xFF0000, 0x00FF00, 0x0000FF, 0x010203}));
}

TEST_F(PictureFile, PutsTransparentPngPixelsOnBlack) {
  const std::string path = writePng("a.png", 2, 1, {200, 100, 50, 0, 200, 100, 50, 255}, 4);
  EXPECT_EQ(loadPictureFile(path)->pixels, (std::vector<Pixel>{0x000000, 0xC86432}));
}

TEST_F(PictureFile, AnIconKeepsItsTransparency) {
  const std::string bytes = contents(writePng("a.png", 2, 1, {200, 100, 50, 128, 1, 2, 3, 255}, 4));
  const std::optional<Picture> icon = decodeIcon({bytes.begin(), bytes.end()});
  ASSERT_TRUE(icon);
  EXPECT_EQ(icon->width, 2);
  EXPECT_EQ(icon->pixels, (std::vector<Pixel>{0x80C86432, 0xFF010203}));
  EXPECT_FALSE(decodeIcon({'n', 'o'}));
}

TEST_F(PictureFile, ReadsJpeg) {
  const PicturePointer picture = loadPictureFile(writeJpeg("a.jpg", 20, 10, RGB(255, 255, 255)));
  EXPECT_EQ(picture->width, 20);
  EXPECT_EQ(picture->height, 10);
  EXPECT_EQ(picture->pixels, std::vector<Pixel>(200, 0xFFFFFF));
}

TEST_F(PictureFile, TellsTheKindByTheContentNotTheName) {
  EXPECT_EQ(loadPictureFile(writePng("logo.jpg", 1, 1, {9, 8, 7}))->pixels, (std::vector<Pixel>{0x090807}));
}

TEST_F(PictureFile, RefusesAMissingFile) { EXPECT_THROW(loadPictureFile(pathOf("none.png")), RuntimeFault); }

TEST_F(PictureFile, RefusesAFolder) { EXPECT_THROW(loadPictureFile(pathOf(".")), RuntimeFault); }

TEST_F(PictureFile, RefusesOtherContent) {
  EXPECT_THROW(loadPictureFile(write("empty.png", "")), RuntimeFault);
  EXPECT_THROW(loadPictureFile(write("text.png", "no picture at all")), RuntimeFault);
}

TEST_F(PictureFile, RefusesEveryTruncationOfAPng) {
  const std::string whole = contents(writePng("a.png", 2, 2, {255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3}));
  // The last 12 bytes are the end mark after the picture's data.
  for (std::size_t length = 0; length + 12 < whole.size(); ++length) {
    EXPECT_THROW(loadPictureFile(write("cut.png", whole.substr(0, length))), RuntimeFault) << length << " bytes";
  }
}

TEST_F(PictureFile, RefusesEveryTruncationOfAJpeg) {
  const std::string whole = contents(writeJpeg("a.jpg", 40, 40, RGB(10, 200, 30)));
  for (std::size_t length = 0; length + 2 < whole.size(); ++length) {
    EXPECT_THROW(loadPictureFile(write("cut.jpg", whole.substr(0, length))), RuntimeFault) << length << " bytes";
  }
}

TEST_F(PictureFile, SurvivesEveryDamagedByte) {
  const std::string sheets[] = {contents(writePng("a.png", 2, 2, {255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3})),
                                contents(writeJpeg("a.jpg", 9, 9, RGB(10, 200, 30)))};
  for (const std::string& whole : sheets) {
    for (std::size_t place = 0; place < whole.size(); ++place) {
      std::string damaged = whole;
      damaged[place] = static_cast<char>(~damaged[place]);
      try {
        const PicturePointer picture = loadPictureFile(write("damaged", damaged));
        EXPECT_EQ(picture->pixels.size(), static_cast<std::size_t>(picture->width * picture->height));
      } catch (const RuntimeFault&) {  // refusing is fine, too
      }
    }
  }
}

TEST_F(PictureFile, RefusesMoreThan8192PixelsOnASide) {
  EXPECT_EQ(loadPictureFile(writePng("wide.png", 8192, 1, std::vector<unsigned char>(8192 * 3)))->width, 8192);
  EXPECT_THROW(loadPictureFile(writePng("wider.png", 8193, 1, std::vector<unsigned char>(8193 * 3))), RuntimeFault);
  EXPECT_THROW(loadPictureFile(writeJpeg("high.jpg", 1, 8193, RGB(0, 0, 0))), RuntimeFault);
}

}  // namespace
}  // namespace kelvora
