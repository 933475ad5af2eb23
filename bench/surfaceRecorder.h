#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "raster/surface.h"

namespace kelvora::bench {

// One call of a surface's drawing operations with what it used of the surface's properties. Places and lengths are
// pixels.
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
struct PrintCall {
  int x, y;
  FontSpec font;
  Colour colour;
  std::string text;
};

struct DrawingCall {
  const Surface* surface;
  std::variant<ClearCall, LineCall, CircleCall, CopyCall, PrintCall> what;
};

/// Notes every drawing call of all surfaces while it lives; the calls draw as ever. The linker puts the notes between
/// the callers and the surface (--wrap), so the game's own code is what runs.
class SurfaceRecorder {
 public:
  SurfaceRecorder();
  SurfaceRecorder(const SurfaceRecorder&) = delete;
  SurfaceRecorder& operator=(const SurfaceRecorder&) = delete;
  ~SurfaceRecorder();
  std::vector<DrawingCall> calls;
  std::function<void(const DrawingCall&)> onCall;  ///< told of each call ahead of the drawing; may be empty
};

}  // namespace kelvora::bench
