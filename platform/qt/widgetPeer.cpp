#include "platform/qt/widgetPeer.h"

#include <QMouseEvent>
#include <QPaintEngine>
#include <cmath>

#include "platform/grid.h"
#include "platform/pictureBox.h"
#include "platform/qt/codePage.h"
#include "platform/qt/inputEvents.h"
#include "platform/widgets.h"
#include "raster/twips.h"

namespace kelvora {

QRect pixelPlace(const Control& control) {
  return {toPixels(control.Left), toPixels(control.Top), toPixels(control.Width), toPixels(control.Height)};
}

void drawBorder(QPainter& painter, const QRect& place, const QColor& colour) {
  painter.fillRect(QRect(place.left(), place.top(), place.width(), 1), colour);
  painter.fillRect(QRect(place.left(), place.bottom(), place.width(), 1), colour);
  painter.fillRect(QRect(place.left(), place.top(), 1, place.height()), colour);
  painter.fillRect(QRect(place.right(), place.top(), 1, place.height()), colour);
}

namespace {

/// True if what is painted on has an alpha channel, as the images of most windows do.
bool hasAlpha(const QPainter& painter) {
  const QPaintDevice* device = painter.paintEngine()->paintDevice();
  return device->devType() == QInternal::Image && static_cast<const QImage*>(device)->hasAlphaChannel();
}

}  // namespace

void drawPixels(QPainter& painter, const QImage& picture, const QRect& part) {
  const double scale = painter.deviceTransform().m11();
  painter.setRenderHint(QPainter::SmoothPixmapTransform, scale != std::floor(scale));
  if (!hasAlpha(painter)) {
    painter.drawImage(part, picture, part);
    return;
  }
  // The highest byte of the game's pixels is 0, which would mean transparent.
  painter.drawImage(part, picture.copy(part).convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

ControlWidget::ControlWidget(Control& control, QWidget* parent) : QWidget(parent), control_(control) {
  setMouseTracking(true);
}

void ControlWidget::mousePressEvent(QMouseEvent* event) { raiseMouseDown(control_, *event); }
void ControlWidget::mouseMoveEvent(QMouseEvent* event) { raiseMouseMove(control_, *event); }
void ControlWidget::mouseReleaseEvent(QMouseEvent* event) {
  raiseMouseUp(control_, *event, rect().contains(event->position().toPoint()));
}
void ControlWidget::mouseDoubleClickEvent(QMouseEvent* event) { raiseDoubleClick(control_, *event); }

WidgetPeer::WidgetPeer(Control& control, QWidget* widget) : control_(control), widget_(widget) {
  widget->setGeometry(pixelPlace(control));
  widget->setVisible(control.Visible);
  widget->setToolTip(toQString(control.ToolTipText.get()));
}

WidgetPeer::~WidgetPeer() { delete widget_.data(); }

void WidgetPeer::changed(PropertyId id) {
  QWidget* const widget = widget_;
  if (!widget) return;
  switch (id) {
    case PropertyId::Left:
    case PropertyId::Top:
    case PropertyId::Width:
    case PropertyId::Height:
      widget->setGeometry(pixelPlace(control_));
      break;
    case PropertyId::Visible:
      widget->setVisible(control_.Visible);
      return;
    case PropertyId::ToolTipText:
      widget->setToolTip(toQString(control_.ToolTipText.get()));
      return;
    default:
      break;
  }
  show(id);
}

void WidgetPeer::takeFocus() {
  QWidget* const widget = widget_;
  if (!widget) return;
  if (widget->window()->isVisible()) widget->activateWindow();
  widget->setFocus(Qt::OtherFocusReason);
}

namespace {

template <class Kind>
bool realizeAs(Control& control, QWidget* parent) {
  auto* kind = dynamic_cast<Kind*>(&control);
  if (!kind) return false;
  auto peer = makePeer(*kind, parent);
  QWidget* widget = peer->widget();
  control.peer = std::move(peer);
  realizeChildren(control, widget);
  return true;
}

}  // namespace

void realizeChildren(Control& container, QWidget* parent) {
  for (Control* child : container.children()) {
    if (auto* timer = dynamic_cast<IntervalTimer*>(child)) {
      timer->peer = makePeer(*timer);
      continue;
    }
    // Menu items are none of these: the form's peer creates the menu bar.
    [[maybe_unused]] const bool isWidget = realizeAs<Label>(*child, parent) || realizeAs<TextBox>(*child, parent) ||
                                           realizeAs<Button>(*child, parent) || realizeAs<Frame>(*child, parent) ||
                                           realizeAs<Image>(*child, parent) || realizeAs<Shape>(*child, parent) ||
                                           realizeAs<Slider>(*child, parent) || realizeAs<PictureBox>(*child, parent) ||
                                           realizeAs<CheckBox>(*child, parent) || realizeAs<Grid>(*child, parent);
  }
}

}  // namespace kelvora
