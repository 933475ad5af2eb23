#pragma once

#include <map>
#include <memory>
#include <vector>

#include "bench/surfaceRecorder.h"
#include "raster/surface.h"

namespace kelvora::bench {

/// Repeats a list of drawing calls with the game's own surface, on separate surfaces. Pictures used by the calls must
/// outlive it.
class SurfaceReplay {
 public:
  explicit SurfaceReplay(const std::vector<DrawingCall>& calls);
  /// Draws on images of this size instead of the original ones.
  SurfaceReplay(const std::vector<DrawingCall>& calls, int width, int height);
  void draw();
  Surface& image(const Surface& surface) const { return *targets_.at(&surface); }

 private:
  struct Step {
    Surface* target = nullptr;
    decltype(DrawingCall::what) call;
  };
  Surface& targetFor(const Surface& surface);

  std::map<const Surface*, std::unique_ptr<Surface>> targets_;
  std::vector<Step> steps_;
};

}  // namespace kelvora::bench
