#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "raster/picture.h"
#include "raster/surface.h"

namespace kelvora {

/// A rectangle of a surface, in pixels.
struct Part {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
};

/// The pixels of a part; black outside the surface.
Picture cropped(const Surface& surface, const Part& part);
/// Arranges at least one picture, all of the same size, in rows of `columns`, separated by two grey pixels.
Picture sideBySide(const std::vector<Picture>& pictures, int columns);

/// The folder of the golden pictures, and the one for the pictures of failures.
struct GoldenFolders {
  std::filesystem::path kept;
  std::filesystem::path left;
};

/// Compares every pixel of a picture with "<name>.png". Returns an empty text if they are the same. Otherwise returns a
/// description and writes "<name>-actual.png", "<name>-expected.png" and "<name>-difference.png" (white where they
/// differ). With `renew`, replaces the golden picture instead.
std::string compareWithGolden(const std::string& name, const Picture& actual, const GoldenFolders& folders, bool renew);

/// The same with tests/golden and the build folder's golden/, as an expectation of the running test. Replaces golden
/// pictures if KELVORA_UPDATE_GOLDEN=1 is in the environment.
void expectGolden(const std::string& name, const Picture& actual);
void expectGolden(const std::string& name, const Surface& surface, const Part& part);
void expectGolden(const std::string& name, const Surface& surface);

}  // namespace kelvora
