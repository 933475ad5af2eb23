#pragma once

#include <map>
#include <memory>
#include <vector>

#include "bench/surfaceRecorder.h"
#include "raster/surface.h"

namespace kelvora::bench {

/// A list of drawing calls, done again by the game's own surface, on surfaces of its own and with nothing of the game
/// around them. Pictures that the calls copy from must outlive it.
class SurfaceReplay {
 public:
  explicit SurfaceReplay(const std::vector<DrawingCall>& calls);
  /// All on images of this size in place of their own.
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
