#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "raster/surface.h"

namespace kelvora::bench {

// One drawing call with the surface properties that it used. Positions and lengths are pixels.
struct ClearCall {
  Colour back;
  const Picture* background = nullptr;
};
struct LineCall {
  int x1, y1, x2, y2, width;
  Colour colour;
};
struct CircleCall {
  int x, y, radius;
  Colour outline, fill;
};
struct CopyCall {
  const Picture* source;
  int x, y, width, height, sourceX, sourceY;
  RasterOperation operation;
};
struct SpriteCall {
  CopyCall matte, image;
};
struct PrintCall {
  int x, y;
  FontSpec font;
  Colour colour;
  std::string text;
};

struct DrawingCall {
  const Surface* surface;
  std::variant<ClearCall, LineCall, CircleCall, CopyCall, PrintCall, SpriteCall> what;
};

/// Records all drawing calls of all surfaces while it exists; they still draw. The linker inserts the recorder between
/// callers and surface (--wrap), so the game's own code runs.
class SurfaceRecorder {
 public:
  SurfaceRecorder();
  SurfaceRecorder(const SurfaceRecorder&) = delete;
  SurfaceRecorder& operator=(const SurfaceRecorder&) = delete;
  ~SurfaceRecorder();
  std::vector<DrawingCall> calls;
  std::function<void(const DrawingCall&)> onCall;  ///< called before each drawing; may be empty
};

}  // namespace kelvora::bench
