#pragma once

#include <QPainter>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "platform/control.h"
#include "raster/colour.h"

namespace kelvora {

class Button;
class CheckBox;
class Frame;
class Grid;
class Image;
class IntervalTimer;
class Label;
class PictureBox;
class Shape;
class Slider;
class TextBox;

inline QColor toQColor(Colour colour) { return {colour.red, colour.green, colour.blue}; }

/// The place of a control in pixels of its container.
QRect pixelPlace(const Control& control);

/// A line of one pixel along the inside of `place`. It is whole on a screen of any scale; of the line that a pen draws
/// there, the left and the upper one lie half outside.
void drawBorder(QPainter& painter, const QRect& place, const QColor& colour);

/// Copies `part` of the picture to the same place. Where the screen's scale is no whole number, its pixels are blended;
/// otherwise each would be one or two of the screen's by chance.
void drawPixels(QPainter& painter, const QImage& picture, const QRect& part);

/// A widget for a control that the game draws or that the desktop has no native counterpart for. Turns the mouse into
/// the control's events; while a button is held moves and the release come from outside too.
class ControlWidget : public QWidget {
 public:
  ControlWidget(Control& control, QWidget* parent);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  Control& control_;
};

/// A control's widget and what every one of them shows: place and visibility. Owns the widget, unless the widget's
/// parent was destroyed first.
class WidgetPeer : public Peer {
 public:
  WidgetPeer(Control& control, QWidget* widget);
  ~WidgetPeer() override;

  void changed(PropertyId id) final;
  void takeFocus() override;
  QWidget* widget() const { return widget_; }

 protected:
  /// A property other than place and visibility, or after the place has been applied.
  virtual void show(PropertyId id) = 0;

 private:
  Control& control_;
  QPointer<QWidget> widget_;
};

// One function a kind of control, each in the file of its kind.
std::unique_ptr<WidgetPeer> makePeer(Label& label, QWidget* parent);
std::unique_ptr<WidgetPeer> makePeer(TextBox& textBox, QWidget* parent);
std::unique_ptr<WidgetPeer> makePeer(Button& button, QWidget* parent);
std::unique_ptr<WidgetPeer> makePeer(Frame& frame, QWidget* parent);
std::unique_ptr<WidgetPeer> makePeer(Image& image, QWidget* parent);
std::unique_ptr<WidgetPeer> makePeer(Shape& shape, QWidget* parent);
std::unique_ptr<WidgetPeer> makePeer(Slider& slider, QWidget* parent);
std::unique_ptr<WidgetPeer> makePeer(CheckBox& box, QWidget* parent);
std::unique_ptr<WidgetPeer> makePeer(Grid& grid, QWidget* parent);
std::unique_ptr<WidgetPeer> makePeer(PictureBox& pictureBox, QWidget* parent);
std::unique_ptr<Peer> makePeer(IntervalTimer& timer);

/// Gives every control on `container` its peer, in the order of their declaration; later ones lie on top.
void realizeChildren(Control& container, QWidget* parent);

}  // namespace kelvora
