#include <algorithm>
#include <vector>

#include "platform/pictureBox.h"
#include "platform/win32/controlPeer.h"
#include "platform/win32/formPeer.h"

namespace kelvora {

namespace {

class PictureBoxPeer : public ControlPeer {
 public:
  PictureBoxPeer(PictureBox& box, FormPeer& form) : ControlPeer(box, form), box_(box) { box_.fitImage(); }

  // Quirk Q-020: no moves outside the picture's edges, even while a button is held. So a fast mouse escapes the canvas,
  // which confines the pointer in this event.
  bool takesMovesOutside() const override { return false; }
  bool takesKeys() const override { return box_.KeyDown || box_.KeyPress; }
  HWND window() const override { return box_.TabIndex >= 0 || takesKeys() ? form().window() : nullptr; }

  void changed(PropertyId id) override {
    if (id == PropertyId::Width || id == PropertyId::Height) box_.fitImage();
    if (id != PropertyId::MousePointer) ControlPeer::changed(id);
  }

  void paint(const Painter& painter, const Box& place) override {
    painter.picture(place.left, place.top, box_.pixels(), box_.pixelWidth(), box_.pixelHeight());
  }

  /// At once, because the next frame begins now. Only the rows from the first to the last that changed.
  void present() override {
    if (!isShown() || !form().isShown()) return;
    const auto pixels = box_.pixels();
    const auto width = static_cast<std::size_t>(box_.pixelWidth());
    if (width == 0) return;
    const std::size_t rows = pixels.size() / width;
    std::size_t first = 0;
    std::size_t end = rows;
    if (shown_.size() == pixels.size() && shownWidth_ == width) {
      const auto isSame = [&](std::size_t row) {
        const auto from = static_cast<std::ptrdiff_t>(row * width);
        return std::equal(pixels.begin() + from, pixels.begin() + from + static_cast<std::ptrdiff_t>(width),
                          shown_.begin() + from);
      };
      while (first < end && isSame(first)) ++first;
      while (end > first && isSame(end - 1)) --end;
    }
    if (first == end) return;
    shown_.assign(pixels.begin(), pixels.end());
    shownWidth_ = width;
    const Box place = box();
    form().presentNow({place.left, place.top + static_cast<int>(first), place.width, static_cast<int>(end - first)});
  }

 private:
  PictureBox& box_;
  std::vector<Pixel> shown_;  ///< as presented last
  std::size_t shownWidth_ = 0;
};

}  // namespace

std::unique_ptr<ControlPeer> makePeer(PictureBox& box, FormPeer& form) {
  return std::make_unique<PictureBoxPeer>(box, form);
}

}  // namespace kelvora
