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

/// A control's position and size in pixels of its container.
QRect pixelPlace(const Control& control);

/// Draws a one-pixel border along the inside of `place`, whole at any screen scale. A pen's left and upper lines would
/// be half outside.
void drawBorder(QPainter& painter, const QRect& place, const QColor& colour);

/// Copies `part` of the picture to the same place. Blends pixels if the screen's scale isn't a whole number. Otherwise
/// some would be twice as large as others.
void drawPixels(QPainter& painter, const QImage& picture, const QRect& part);

/// A widget for controls that the game draws or that have no native counterpart. Turns mouse input into the control's
/// events. While a button is held, moves and the release arrive from outside as well.
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

/// The base of the peers that own a widget. It applies place and visibility. The widget is destroyed with the peer,
/// unless its parent was destroyed first.
class WidgetPeer : public Peer {
 public:
  WidgetPeer(Control& control, QWidget* widget);
  ~WidgetPeer() override;

  void changed(PropertyId id) final;
  void takeFocus() override;
  QWidget* widget() const { return widget_; }

 protected:
  /// Called for a change of any other property, and after the place has been applied.
  virtual void show(PropertyId id) = 0;

 private:
  Control& control_;
  QPointer<QWidget> widget_;
};

// One function per kind of control, each in that kind's file.
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

/// Creates the peers of all controls on `container`, in order of declaration. Later ones are on top.
void realizeChildren(Control& container, QWidget* parent);

}  // namespace kelvora
