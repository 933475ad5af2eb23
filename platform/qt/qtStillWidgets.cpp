#include <QChildEvent>
#include <algorithm>

#include "platform/qt/codePage.h"
#include "platform/qt/qtFonts.h"
#include "platform/qt/widgetPeer.h"
#include "platform/widgets.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

/// A frame's line and title, on top of the frame's controls, so that a picture at the edge doesn't cut the line.
class FrameLine : public QWidget {
 public:
  FrameLine(Frame& frame, QWidget* parent) : QWidget(parent), frame_(frame) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setFont(toQFont(FontSpec{}));
    const QString title = toQString(frame_.Caption);
    const QFontMetrics metrics = painter.fontMetrics();
    drawBorder(painter, rect().adjusted(0, metrics.height() / 2, 0, 0), Qt::gray);
    if (title.isEmpty()) return;
    constexpr int indent = 8;
    const QRect place(indent, 0, metrics.horizontalAdvance(title) + 4, metrics.height());
    painter.fillRect(place, toQColor(frame_.BackColor));
    painter.setPen(toQColor(frame_.ForeColor));
    painter.drawText(place, Qt::AlignCenter, title);
  }

 private:
  Frame& frame_;
};

class FrameWidget : public ControlWidget {
 public:
  FrameWidget(Frame& frame, QWidget* parent) : ControlWidget(frame, parent), frame_(frame) {
    if (frame.border) line_ = new FrameLine(frame, this);
  }

 protected:
  void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), toQColor(frame_.BackColor)); }

  void resizeEvent(QResizeEvent*) override {
    if (line_) line_->setGeometry(rect());
  }

  void childEvent(QChildEvent* event) override {
    if (line_ && event->added() && event->child() != line_) line_->raise();
  }

 private:
  Frame& frame_;
  FrameLine* line_ = nullptr;
};

class ImageWidget : public ControlWidget {
 public:
  ImageWidget(Image& image, QWidget* parent) : ControlWidget(image, parent), image_(image) {}

 protected:
  void paintEvent(QPaintEvent*) override {
    const PicturePointer& picture = image_.Picture.get();
    if (!picture) return;
    QPainter painter(this);
    const QImage image(reinterpret_cast<const uchar*>(picture->pixels.data()), picture->width, picture->height,
                       QImage::Format_RGB32);
    drawPixels(painter, image, image.rect());
  }

 private:
  Image& image_;
};

/// Covers the whole container, so that a thick border may extend beyond the shape. Ignores the mouse.
class ShapeWidget : public QWidget {
 public:
  ShapeWidget(Shape& shape, QWidget* parent) : QWidget(parent), shape_(shape) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    constexpr int dotted = 3;
    const int side = std::min(toPixels(shape_.Width), toPixels(shape_.Height));
    const QPointF centre = QRectF(rect()).center();
    const bool isDotted = shape_.BorderStyle == dotted && shape_.BorderWidth <= 1;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(toQColor(shape_.FillColor));
    painter.setPen(QPen(toQColor(shape_.BorderColor), shape_.BorderWidth, isDotted ? Qt::DotLine : Qt::SolidLine));
    painter.drawEllipse(centre, side / 2.0 - 0.5, side / 2.0 - 0.5);
  }

 private:
  Shape& shape_;
};

/// A widget that is simply repainted when a property changes.
class StillPeer : public WidgetPeer {
 public:
  using WidgetPeer::WidgetPeer;

 protected:
  void show(PropertyId) override { widget()->update(); }
};

class ShapePeer : public WidgetPeer {
 public:
  ShapePeer(Shape& shape, QWidget* parent) : WidgetPeer(shape, new ShapeWidget(shape, parent)), shape_(shape) {
    show(PropertyId::Left);
  }

 protected:
  void show(PropertyId) override {
    const int margin = std::max(shape_.BorderWidth.get(), 0);
    widget()->setGeometry(pixelPlace(shape_).adjusted(-margin, -margin, margin, margin));
    widget()->update();
  }

 private:
  Shape& shape_;
};

}  // namespace

std::unique_ptr<WidgetPeer> makePeer(Frame& frame, QWidget* parent) {
  return std::make_unique<StillPeer>(frame, new FrameWidget(frame, parent));
}

std::unique_ptr<WidgetPeer> makePeer(Image& image, QWidget* parent) {
  return std::make_unique<StillPeer>(image, new ImageWidget(image, parent));
}

std::unique_ptr<WidgetPeer> makePeer(Shape& shape, QWidget* parent) {
  return std::make_unique<ShapePeer>(shape, parent);
}

}  // namespace kelvora
