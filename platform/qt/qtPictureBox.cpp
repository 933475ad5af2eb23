#include <QBackingStore>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QRegion>
#include <QWindow>
#include <cstddef>
#include <span>
#include <vector>

#include "platform/pictureBox.h"
#include "platform/qt/coveredWindows.h"
#include "platform/qt/inputEvents.h"
#include "platform/qt/widgetPeer.h"

namespace kelvora {

namespace {

class PictureBoxWidget : public ControlWidget {
 public:
  PictureBoxWidget(PictureBox& box, QWidget* parent) : ControlWidget(box, parent), box_(box) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(QString::fromLatin1(box.name));
    setAttribute(Qt::WA_InputMethodEnabled);
    // Clicking a picture without key handlers leaves the focus alone. For others, mousePressEvent takes it.
    setFocusPolicy(box.TabIndex >= 0 ? Qt::TabFocus : Qt::NoFocus);
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QPainter painter(this);
    const QImage image(reinterpret_cast<const uchar*>(box_.pixels().data()), box_.pixelWidth(), box_.pixelHeight(),
                       QImage::Format_RGB32);
    drawPixels(painter, image, event->rect());
  }

  void mousePressEvent(QMouseEvent* event) override {
    if (takesKeys()) setFocus(Qt::MouseFocusReason);
    ControlWidget::mousePressEvent(event);
  }

  void mouseMoveEvent(QMouseEvent* event) override {
    // Quirk Q-020: no moves outside the picture's edges, even while a button is held. So a fast mouse escapes the
    // canvas, which confines the pointer in this event.
    if (!rect().contains(event->position().toPoint())) return;
    ControlWidget::mouseMoveEvent(event);
  }

  void keyPressEvent(QKeyEvent* event) override {
    event->ignore();  // the form may handle Enter and Esc
    raiseKey(box_, *event);
  }

  void inputMethodEvent(QInputMethodEvent* event) override { raiseComposedText(box_, *event); }

 private:
  bool takesKeys() const { return box_.KeyDown || box_.KeyPress; }

  PictureBox& box_;
};

// True if the window shows every pixel of the widget, and nothing else there.
bool isUncovered(const QWidget& widget) {
  if (widget.visibleRegion() != QRegion(widget.rect())) return false;
  for (const QWidget* part = &widget; !part->isWindow(); part = part->parentWidget()) {
    const QObjectList& siblings = part->parentWidget()->children();  // from the lowest to the topmost
    for (qsizetype i = siblings.indexOf(part) + 1; i < siblings.size(); ++i) {
      const auto* const above = qobject_cast<const QWidget*>(siblings[i]);
      if (above && above->isVisible() && !above->isWindow() && above->geometry().intersects(part->geometry()))
        return false;
    }
  }
  return true;
}

// The highest byte of the game's pixels is 0, which an image with an alpha channel would show as transparent.
void copyRow(const Pixel* source, int width, Pixel* target) {
  constexpr Pixel opaque = 0xFF000000;
  for (int column = 0; column < width; ++column) target[column] = source[column] | opaque;
}

// Copies the areas straight into the window's image and shows them. A painter takes many times as long: it blends what
// it clips and converts the pixels first. Does nothing and returns false where only a painter gives the right picture:
// on covered widgets and scaled screens.
bool copyToWindow(const QWidget& widget, const PictureBox& box, std::span<const PixelArea> changes) {
  QBackingStore* const store = widget.backingStore();
  QWindow* const window = widget.window()->windowHandle();
  if (!store || !window || !window->isExposed() || !isUncovered(widget)) return false;
  const QPoint corner = widget.mapTo(widget.window(), QPoint());
  static std::vector<QRect> places;  // keeps its memory, because this runs in every frame
  places.clear();
  for (const PixelArea& area : changes) {
    places.push_back(QRect(area.x, area.y, area.width, area.height).translated(corner));
  }
  QRegion region;
  region.setRects(places.data(), static_cast<int>(places.size()));
  store->beginPaint(region);
  QPaintDevice* const device = store->paintDevice();
  auto* const image = device && device->devType() == QInternal::Image ? static_cast<QImage*>(device) : nullptr;
  const bool fits =
      image && image->depth() == 32 && image->devicePixelRatio() == 1 && image->rect().contains(region.boundingRect());
  if (fits) {
    for (const PixelArea& area : changes) {
      const Pixel* source = box.pixels().data() + std::ptrdiff_t{area.y} * box.pixelWidth() + area.x;
      for (int row = area.y; row < area.y + area.height; ++row, source += box.pixelWidth()) {
        auto* const line = reinterpret_cast<Pixel*>(image->scanLine(row + corner.y()));
        copyRow(source, area.width, line + area.x + corner.x());
      }
    }
  }
  store->endPaint();
  if (fits) store->flush(region, window);
  return fits;
}

class PictureBoxPeer : public WidgetPeer {
 public:
  PictureBoxPeer(PictureBox& box, QWidget* parent) : WidgetPeer(box, new PictureBoxWidget(box, parent)), box_(box) {
    box_.fitImage();
    showPointer();
  }

  /// At once, not at the next turn of the event loop, because the next frame begins now.
  void present() override {
    if (!widget() || isCovered(*widget()->window())) return;
    const std::span<const PixelArea> changes = box_.takeChanges();
    if (!copyToWindow(*widget(), box_, changes)) widget()->repaint();
  }

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::MousePointer) showPointer();
    if (id == PropertyId::Width || id == PropertyId::Height) {
      box_.fitImage();
      widget()->update();
    }
  }

 private:
  void showPointer() {
    constexpr int invisible = 99;
    widget()->setCursor(box_.MousePointer == invisible ? Qt::BlankCursor : Qt::ArrowCursor);
  }

  PictureBox& box_;
};

}  // namespace

std::unique_ptr<WidgetPeer> makePeer(PictureBox& pictureBox, QWidget* parent) {
  return std::make_unique<PictureBoxPeer>(pictureBox, parent);
}

}  // namespace kelvora
