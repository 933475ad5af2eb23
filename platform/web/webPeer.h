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

/// A control's element on the page and what all of them share: place, visibility, mouse.
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
  /// The browser tabs in the order of the game's numbers.
  void showTabIndex() const;
  /// The element shows the place and the properties of the control.
  void showPlace();

  Control& control_;
};

/// Sets what is asked first about a finger on a picture with keys, at a place in twips. True if it has handled it.
/// Any other finger steers like the mouse.
void setTouchHandler(bool (*handler)(float x, float y));

/// The font as a style sheet spells it; `points` in place of the font's own size.
std::string cssFont(const FontSpec& font, float points);

// One function a kind of control. Each gives the control its peer.
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

/// Gives every control on `container` its peer, in the order of their declaration; later ones lie on top.
void realizeChildren(Control& container, int parent);

}  // namespace kelvora
