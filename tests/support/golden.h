#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "raster/picture.h"
#include "raster/surface.h"

namespace kelvora {

/// A rectangle of a surface, pixels.
struct Part {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
};

/// The pixels of a part; black where it lies beyond the surface.
Picture cropped(const Surface& surface, const Part& part);
/// Pictures of one size in rows of `columns`, two grey pixels between any two.
Picture sideBySide(const std::vector<Picture>& pictures, int columns);

/// Where pictures are kept, and where those of a failure are left.
struct GoldenFolders {
  std::filesystem::path kept;
  std::filesystem::path left;
};

/// Compares a picture, every pixel, with the one kept as "<name>.png". Empty if they are the same; else what differs,
/// and "<name>-actual.png", "<name>-expected.png" and "<name>-difference.png" (white where they differ) are left. With
/// `renew` the kept one is replaced instead.
std::string compareWithGolden(const std::string& name, const Picture& actual, const GoldenFolders& folders, bool renew);

/// The same with tests/golden and the build folder's golden/, as an expectation of the running test. Renews if the
/// environment has KELVORA_UPDATE_GOLDEN=1.
void expectGolden(const std::string& name, const Picture& actual);
void expectGolden(const std::string& name, const Surface& surface, const Part& part);
void expectGolden(const std::string& name, const Surface& surface);

}  // namespace kelvora
