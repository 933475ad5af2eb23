#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <span>

#include "platform/pictureBox.h"
#include "platform/qt/coveredWindows.h"
#include "platform/qt/inputEvents.h"
#include "platform/qt/widgetPeer.h"
#include "platform/qt/windowImage.h"

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

class PictureBoxPeer : public WidgetPeer {
 public:
  PictureBoxPeer(PictureBox& box, QWidget* parent) : WidgetPeer(box, new PictureBoxWidget(box, parent)), box_(box) {
    box_.fitImage();
    showPointer();
  }

  /// Presents at once: the next frame begins before the event loop runs.
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
