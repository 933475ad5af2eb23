#include "tests/support/golden.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <string_view>

#include "generated/sourceFolder.h"
#include "platform/pictures/pictureFile.h"
#include "platform/pictures/writePng.h"

namespace kelvora {

namespace {

constexpr Pixel gapGrey = 0x404040;
constexpr Pixel whitePixel = 0xFFFFFF;
constexpr int gap = 2;

Picture blank(int width, int height, Pixel pixel) {
  const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  return {width, height, std::vector<Pixel>(count, pixel)};
}

std::size_t indexOf(const Picture& picture, int x, int y) {
  return static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) + static_cast<std::size_t>(x);
}

std::string sizeText(const Picture& picture) {
  return std::to_string(picture.width) + " by " + std::to_string(picture.height);
}

/// White where two pictures of the same size differ.
Picture difference(const Picture& one, const Picture& other, int& count) {
  Picture result = blank(one.width, one.height, 0);
  for (std::size_t i = 0; i < one.pixels.size(); ++i) {
    if (one.pixels[i] == other.pixels[i]) continue;
    result.pixels[i] = whitePixel;
    ++count;
  }
  return result;
}

}  // namespace

Picture cropped(const Surface& surface, const Part& part) {
  Picture picture = blank(part.width, part.height, 0);
  for (int y = 0; y < part.height; ++y) {
    for (int x = 0; x < part.width; ++x) {
      const int column = part.left + x;
      const int row = part.top + y;
      if (column < 0 || row < 0 || column >= surface.pixelWidth() || row >= surface.pixelHeight()) continue;
      const auto at = static_cast<std::size_t>(row) * static_cast<std::size_t>(surface.pixelWidth()) +
                      static_cast<std::size_t>(column);
      picture.pixels[indexOf(picture, x, y)] = surface.pixels()[at];
    }
  }
  return picture;
}

Picture sideBySide(const std::vector<Picture>& pictures, int columns) {
  const int width = pictures.front().width;
  const int height = pictures.front().height;
  const int count = static_cast<int>(pictures.size());
  const int rows = (count + columns - 1) / columns;
  Picture sheet = blank(columns * (width + gap) - gap, rows * (height + gap) - gap, gapGrey);
  for (int i = 0; i < count; ++i) {
    const Picture& picture = pictures[static_cast<std::size_t>(i)];
    const int left = i % columns * (width + gap);
    const int top = i / columns * (height + gap);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        sheet.pixels[indexOf(sheet, left + x, top + y)] = picture.pixels[indexOf(picture, x, y)];
      }
    }
  }
  return sheet;
}

std::string compareWithGolden(const std::string& name, const Picture& actual, const GoldenFolders& folders,
                              bool renew) {
  const std::filesystem::path kept = folders.kept / (name + ".png");
  if (renew) return writePng(kept, actual) ? "" : "cannot write " + kept.string();

  std::filesystem::create_directories(folders.left);
  const auto leave = [&](const char* what, const Picture& picture) {
    const std::filesystem::path path = folders.left / (name + "-" + what + ".png");
    return writePng(path, picture) ? "\n  " + path.string() : "\n  (cannot write " + path.string() + ")";
  };
  if (!std::filesystem::exists(kept)) {
    return "there is no " + kept.string() + "; what was painted is left in" + leave("actual", actual);
  }
  const PicturePointer expected = loadPictureFile(kept.string());
  const bool isSameSize = expected->width == actual.width && expected->height == actual.height;
  if (isSameSize && expected->pixels == actual.pixels) return "";

  std::string fault;
  std::string files = leave("actual", actual) + leave("expected", *expected);
  if (isSameSize) {
    int count = 0;
    const Picture differing = difference(actual, *expected, count);
    files += leave("difference", differing);
    fault = count == 1 ? "1 pixel differs" : std::to_string(count) + " pixels differ";
  } else {
    fault = "it is " + sizeText(actual) + " pixels and not " + sizeText(*expected);
  }
  return fault + "; the pictures are left in" + files;
}

void expectGolden(const std::string& name, const Picture& actual) {
  const char* update = std::getenv("KELVORA_UPDATE_GOLDEN");
  const bool renew = update != nullptr && std::string_view(update) == "1";
  const std::string fault =
      compareWithGolden(name, actual, {KELVORA_SOURCE_DIR "/tests/golden", KELVORA_GOLDEN_LEFT}, renew);
  if (fault.empty()) return;
  ADD_FAILURE() << "golden picture " << name << ": " << fault
                << "\nLook at them. To accept the new picture, run the test again with KELVORA_UPDATE_GOLDEN=1.";
}

void expectGolden(const std::string& name, const Surface& surface, const Part& part) {
  expectGolden(name, cropped(surface, part));
}

void expectGolden(const std::string& name, const Surface& surface) {
  expectGolden(name, surface, {0, 0, surface.pixelWidth(), surface.pixelHeight()});
}

}  // namespace kelvora
