#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>

#include "raster/picture.h"

namespace kelvora {

/// An image's pixels, initially black. The system supplies zeroed memory page by page as it is touched, so a large
/// image costs nothing before it is drawn on.
class PixelStore {
 public:
  PixelStore() = default;
  explicit PixelStore(std::size_t size) : pixels_(static_cast<Pixel*>(std::calloc(size, sizeof(Pixel)))), size_(size) {
    if (!pixels_ && size > 0) throw std::bad_alloc();
  }

  Pixel* data() { return pixels_.get(); }
  std::span<const Pixel> all() const { return {pixels_.get(), size_}; }

 private:
  struct Release {
    void operator()(Pixel* pixels) const { std::free(pixels); }
  };

  std::unique_ptr<Pixel[], Release> pixels_;
  std::size_t size_ = 0;
};

}  // namespace kelvora
