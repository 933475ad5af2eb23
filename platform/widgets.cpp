#include "platform/widgets.h"

#include <algorithm>
#include <utility>

namespace kelvora {

Label::Label(Control* container, Place place, std::string caption, LabelDesign labelDesign)
    : Control(container, place),
      Caption(*this, PropertyId::Caption, std::move(caption)),
      ForeColor(*this, PropertyId::ForeColor, labelDesign.fore),
      BackColor(*this, PropertyId::BackColor, labelDesign.back),
      BorderStyle(*this, PropertyId::BorderStyle, labelDesign.border ? 1 : 0),
      FontSize(*this, PropertyId::FontSize, labelDesign.font.size),
      design(std::move(labelDesign)) {}

TextBox::TextBox(Control* container, Place place, std::string text, Design boxDesign)
    : Control(container, place),
      Text(*this, PropertyId::Text, std::move(text)),
      SelStart(*this, PropertyId::SelStart, 0),
      design(std::move(boxDesign)) {}

Button::Button(Control* container, Place place, std::string caption, Role buttonRole)
    : Control(container, place), Caption(*this, PropertyId::Caption, std::move(caption)), role(buttonRole) {}

CheckBox::CheckBox(Control* container, Place place, std::string caption, int value)
    : Control(container, place),
      Caption(*this, PropertyId::Caption, std::move(caption)),
      Value(*this, PropertyId::Value, value) {}

Frame::Frame(Control* container, Place place, std::string caption, Colour fore, Colour back, bool hasBorder)
    : Control(container, place), Caption(std::move(caption)), ForeColor(fore), BackColor(back), border(hasBorder) {}

Image::Image(Control* container, Place place) : Control(container, place), Picture(*this, PropertyId::Picture) {}

Shape::Shape(Control* container, Place place, Colour fill)
    : Control(container, place),
      FillColor(fill),
      BorderColor(*this, PropertyId::BorderColor),
      BorderStyle(*this, PropertyId::BorderStyle, 1),
      BorderWidth(*this, PropertyId::BorderWidth, 1) {}

Slider::Slider(Control* container, Place place, int min, int max)
    : Control(container, place), Min(min), Max(max), Value(*this) {}

Slider::Position& Slider::Position::operator=(int value) {
  Property::operator=(std::clamp(value, slider_.Min, slider_.Max));
  return *this;
}

IntervalTimer::IntervalTimer(Control* container, int intervalMs)
    : Control(container, {}),
      Interval(*this, PropertyId::Interval, intervalMs),
      Enabled(*this, PropertyId::Enabled, true) {}

void IntervalTimer::wake() {
  if (!isResting) return;
  isResting = false;
  notifyPeer(*this, PropertyId::Interval);
}

}  // namespace kelvora
