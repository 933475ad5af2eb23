#pragma once

#include <string>

#include "platform/control.h"
#include "platform/web/pageEvents.h"
#include "raster/colour.h"
#include "raster/font.h"

namespace kelvora {

class Button;
class CheckBox;
class Form;
class Frame;
class Grid;
class Image;
class Label;
class MenuItem;
class PictureBox;
class Shape;
class Slider;
class TextBox;

inline constexpr int noParent = 0;  ///< of forms

/// The base of the page's peers: a control's element, with its place, visibility and mouse input.
class WebPeer : public Peer, public PageObject {
 public:
  /// `parent`: the id of the container's element.
  WebPeer(Control& control, int parent, const char* kind);
  ~WebPeer() override;

  void changed(PropertyId id) override;
  void takeFocus() override;
  void take(const PageEvent& event) override;

 protected:
  /// A property other than place, visibility and tip.
  virtual void show(PropertyId) {}
  void set(const char* property, double value) const;
  void set(const char* property, const std::string& text) const;
  void set(const char* property, Colour colour) const;
  /// Sets the element's position in the tab order.
  void showTabIndex() const;
  /// Applies the control's place and size.
  void showPlace();

  Control& control_;
};

/// Sets the function that returns the key for a touched place on the canvas, in twips. 0: the touch steers like the
/// mouse.
void setTouchHandler(int (*keyAt)(float x, float y));

/// The font in CSS, with `points` as its size.
std::string cssFont(const FontSpec& font, float points);

// One function for each kind of control.
void makePeer(Label& label, int parent);
void makePeer(TextBox& box, int parent);
void makePeer(Button& button, int parent);
void makePeer(Frame& frame, int parent);
void makePeer(Image& image, int parent);
void makePeer(Shape& shape, int parent);
void makePeer(Slider& slider, int parent);
void makePeer(CheckBox& box, int parent);
void makePeer(Grid& grid, int parent);
void makePeer(PictureBox& box, int parent);
void makePeer(MenuItem& item, int parent);
void makePeer(Form& form);

/// Creates the peers of all controls on `container`, in order of declaration. Later ones are on top.
void realizeChildren(Control& container, int parent);

}  // namespace kelvora
