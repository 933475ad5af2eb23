#include <algorithm>

#include "platform/win32/controlPeer.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/gdiFonts.h"
#include "platform/win32/wideText.h"

namespace kelvora {

namespace {

class FramePeer : public ControlPeer {
 public:
  FramePeer(Frame& frame, FormPeer& form) : ControlPeer(frame, form), frame_(frame) {}

  void paint(const Painter& painter, const Box& place) override { painter.fill(place, frame_.BackColor); }

  /// The line and title, so that a picture at the edge doesn't cut the line.
  void paintOver(const Painter& painter, const Box& place) override {
    if (!frame_.border) return;
    const FontMeasure measure(gdiFont(FontSpec{}, 1));
    const int height = measure.lineHeight();
    painter.border({place.left, place.top + height / 2, place.width, place.height - height / 2}, lineGrey);
    if (frame_.Caption.empty()) return;
    constexpr int indent = 8;
    const std::wstring title = toWide(frame_.Caption);
    const Box room{place.left + indent, place.top, measure.width(title.data(), title.size()) + 4, height};
    painter.fill(room, frame_.BackColor);
    painter.text(room, title, FontSpec{}, frame_.ForeColor, DT_CENTER | DT_NOCLIP);
  }

 private:
  Frame& frame_;
};

class ImagePeer : public ControlPeer {
 public:
  ImagePeer(Image& image, FormPeer& form) : ControlPeer(image, form), image_(image) {}

  void paint(const Painter& painter, const Box& place) override {
    const PicturePointer& picture = image_.Picture.get();
    if (picture) painter.picture(place.left, place.top, picture->pixels, picture->width, picture->height);
  }

 private:
  Image& image_;
};

class ShapePeer : public ControlPeer {
 public:
  ShapePeer(Shape& shape, FormPeer& form) : ControlPeer(shape, form), shape_(shape) {}

  bool takesMouse() const override { return false; }

  /// A thick border extends beyond the shape.
  Box reach(const Box& place) const override {
    const int margin = std::max(shape_.BorderWidth.get(), 0);
    return {place.left - margin, place.top - margin, place.width + 2 * margin, place.height + 2 * margin};
  }

  void changed(PropertyId) override { form().repaintAll(); }

  void paint(const Painter& painter, const Box& place) override {
    constexpr int dotted = 3;
    const int side = std::min(place.width, place.height);
    const bool isDotted = shape_.BorderStyle == dotted && shape_.BorderWidth <= 1;
    painter.circle({place.left + (place.width - side) / 2, place.top + (place.height - side) / 2, side, side},
                   shape_.FillColor, shape_.BorderColor, std::max(shape_.BorderWidth.get(), 1), isDotted);
  }

 private:
  Shape& shape_;
};

}  // namespace

std::unique_ptr<ControlPeer> makePeer(Frame& frame, FormPeer& form) { return std::make_unique<FramePeer>(frame, form); }
std::unique_ptr<ControlPeer> makePeer(Image& image, FormPeer& form) { return std::make_unique<ImagePeer>(image, form); }
std::unique_ptr<ControlPeer> makePeer(Shape& shape, FormPeer& form) { return std::make_unique<ShapePeer>(shape, form); }

}  // namespace kelvora
