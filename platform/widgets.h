#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "platform/control.h"
#include "raster/colour.h"
#include "raster/font.h"
#include "raster/picture.h"

namespace kelvora {

enum class Alignment { Left, Right, Centre };

/// A label's initial design. Colours and border can change later.
struct LabelDesign {
  Colour fore = RGB(0, 0, 0);
  Colour back = RGB(255, 255, 255);
  bool transparent = false;  ///< the background shows through; the label still takes clicks
  bool border = false;       ///< BorderStyle 1
  Alignment alignment = Alignment::Left;
  FontSpec font = {};
  bool autoSize = false;       ///< Width adapts to the caption
  bool systemColours = false;  ///< the dialog's own text and background colours
};

class Label : public Control {
 public:
  Label(Control* container, Place place, std::string caption, LabelDesign design);

  Property<std::string> Caption;
  Property<Colour> ForeColor;
  Property<Colour> BackColor;
  Property<int> BorderStyle;  ///< 0 none, 1 a single line
  Property<float> FontSize;   ///< points
  const LabelDesign design;
};

class TextBox : public Control {
 public:
  struct Design {
    Colour fore = RGB(0, 0, 0);
    Colour back = RGB(255, 255, 255);
    FontSpec font = {};
    bool systemColours = true;  ///< the dialog's own colours instead of the two above
    bool isSecret = false;      ///< no recording may contain the text
  };
  TextBox(Control* container, Place place, std::string text, Design design);
  TextBox(Control* container, Place place, std::string text) : TextBox(container, place, std::move(text), Design{}) {}

  Property<std::string> Text;  ///< a single line
  Property<int> SelStart;      ///< caret position in characters, 0 before the first
  /// If set, returns from which character on no recording may contain a text; npos if it may contain all.
  std::function<std::size_t(const std::string& text)> secretAt;
  const Design design;
};

class Button : public Control {
 public:
  enum class Role { Plain, Default, Cancel };  ///< Default reacts to Enter, Cancel to Esc, anywhere on the form
  Button(Control* container, Place place, std::string caption, Role role = Role::Plain);

  Property<std::string> Caption;
  const Role role;
};

/// A check box with its caption to the right. MouseDown is raised before a press changes the value, Click after any
/// change.
class CheckBox : public Control {
 public:
  CheckBox(Control* container, Place place, std::string caption, int value);

  Property<std::string> Caption;
  Property<int> Value;  ///< 0 unchecked, 1 checked
};

/// A titled or plain box around other controls.
class Frame : public Control {
 public:
  Frame(Control* container, Place place, std::string caption, Colour fore, Colour back, bool border);

  const std::string Caption;
  const Colour ForeColor;
  const Colour BackColor;
  const bool border;
};

/// A static picture at its own size.
class Image : public Control {
 public:
  Image(Control* container, Place place);
  Property<PicturePointer> Picture;
};

/// A filled circle or oval, the largest that fits its place.
class Shape : public Control {
 public:
  Shape(Control* container, Place place, Colour fill);

  const Colour FillColor;
  Property<Colour> BorderColor;
  Property<int> BorderStyle;  ///< 1 solid, 3 dotted (a border wider than 1 is always drawn solid)
  Property<int> BorderWidth;  ///< pixels
};

/// A horizontal scale of whole numbers with a handle that the user moves in steps of 1. Value is clamped to the ends.
/// Only the user raises events: Scroll at each step of a drag, Change at its end and at any other move.
class Slider : public Control {
 public:
  class Position : public Property<int> {
   public:
    Position(Slider& owner) : Property(owner, PropertyId::Value, owner.Min), slider_(owner) {}
    Position& operator=(int value);

   private:
    const Slider& slider_;
  };

  Slider(Control* container, Place place, int min, int max);

  const int Min;
  const int Max;
  Position Value;

  std::function<void()> Change;
  std::function<void()> Scroll;
};

/// Calls its handler every Interval ms while events are processed.
class IntervalTimer : public Control {
 public:
  IntervalTimer(Control* container, int intervalMs);
  Property<int> Interval;  ///< ms
  Property<bool> Enabled;
  std::function<void()> Timer;

  /// Returns true if the handler has nothing to do until `wake` is called. The desktop asks after each tick and then
  /// pauses the timer. The first tick after waking comes one interval later.
  std::function<bool()> mayRest;
  /// Resumes a paused timer.
  void wake();
  bool isResting = false;  ///< set by the peer
};

}  // namespace kelvora
