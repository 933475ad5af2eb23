#include <algorithm>
#include <memory>

#include "platform/web/page.h"
#include "platform/web/webPeer.h"
#include "platform/web/webPixels.h"
#include "platform/widgets.h"
#include "platform/windowing/answerKey.h"
#include "platform/windowing/handlerCall.h"
#include "platform/windowing/shownLabel.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

class LabelPeer : public WebPeer {
 public:
  LabelPeer(Label& label, int parent) : WebPeer(label, parent, "Label"), label_(label) {
    constexpr const char* alignments[] = {"left", "right", "center"};
    set("Alignment", std::string(alignments[static_cast<int>(label.design.alignment)]));
    for (const PropertyId id : {PropertyId::FontSize, PropertyId::Caption, PropertyId::BorderStyle}) display(id);
    if (!label.design.systemColours) {
      display(PropertyId::ForeColor);
      display(PropertyId::BackColor);
    }
  }

 protected:
  void show(PropertyId id) override {
    if (shown_.isNew(id)) display(id);
  }

 private:
  void display(PropertyId id) {
    switch (id) {
      case PropertyId::Caption:
        set("Caption", label_.Caption.get());
        return followCaption();
      case PropertyId::FontSize:
        set("Font", cssFont(label_.design.font, label_.FontSize));
        return followCaption();
      case PropertyId::BorderStyle:
        return set("BorderStyle", label_.BorderStyle);
      case PropertyId::ForeColor:
        return set("ForeColor", label_.ForeColor.get());
      case PropertyId::BackColor:
        if (!label_.design.transparent) set("BackColor", label_.BackColor.get());
        return;
      default:
        return;
    }
  }

  void followCaption() {
    if (fitWidth(label_)) showPlace();
  }

  Label& label_;
  ShownLabel shown_{label_};
};

class TextBoxPeer : public WebPeer {
 public:
  TextBoxPeer(TextBox& box, int parent) : WebPeer(box, parent, "TextBox"), box_(box) {
    set("Font", cssFont(box.design.font, box.design.font.size));
    showTabIndex();
    if (!box.design.systemColours) {
      set("ForeColor", box.design.fore);
      set("BackColor", box.design.back);
    }
    set("Text", shown_);
  }

  void take(const PageEvent& event) override {
    if (event.kind == PageEventKind::Edited) {
      shown_ = event.bytes;
      box_.Text.adopt(event.bytes);
      box_.SelStart.adopt(event.first);
      return;
    }
    const int key = event.first;
    const bool isAnswer = key == keyEnter || key == keyEscape;
    if (event.kind == PageEventKind::KeyDown && isAnswer && answered_.takeDown(box_, key == keyEnter)) return;
    if (event.kind == PageEventKind::KeyPress && isAnswer && answered_.takeCharacter()) return;
    WebPeer::take(event);
  }

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::Text && shown_ != box_.Text.get()) {
      shown_ = box_.Text;
      set("Text", shown_);
      box_.SelStart.adopt(0);
    }
    if (id == PropertyId::SelStart) set("SelStart", box_.SelStart);
  }

 private:
  TextBox& box_;
  std::string shown_ = box_.Text;
  AnsweredKeys answered_;
};

class ButtonPeer : public WebPeer {
 public:
  ButtonPeer(Button& button, int parent) : WebPeer(button, parent, "Button"), button_(button) {
    showTabIndex();
    if (button.role == Button::Role::Default) set("Default", 1);
    show(PropertyId::Caption);
  }

  void take(const PageEvent& event) override {
    if (event.kind == PageEventKind::Click) return raiseEvent(button_, button_.Click);
    if (event.kind != PageEventKind::MouseUp) WebPeer::take(event);
  }

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::Caption) set("Caption", button_.Caption.get());
  }

 private:
  Button& button_;
};

class FramePeer : public WebPeer {
 public:
  FramePeer(Frame& frame, int parent) : WebPeer(frame, parent, "Frame") {
    set("BorderStyle", frame.border ? 1 : 0);
    set("Caption", frame.Caption);
    set("ForeColor", frame.ForeColor);
    set("BackColor", frame.BackColor);
  }
};

class ImagePeer : public WebPeer {
 public:
  ImagePeer(Image& image, int parent) : WebPeer(image, parent, "Image"), image_(image) { show(PropertyId::Picture); }

 protected:
  void show(PropertyId id) override {
    if (id != PropertyId::Picture || !image_.Picture.get()) return;
    const Picture& picture = *image_.Picture.get();
    showPicture(this->id(), picture);
    set("Width", picture.width);
    set("Height", picture.height);
  }

 private:
  Image& image_;
};

class ShapePeer : public WebPeer {
 public:
  ShapePeer(Shape& shape, int parent) : WebPeer(shape, parent, "Shape"), shape_(shape) {
    set("BackColor", shape.FillColor);
    const int width = toPixels(shape.Width);
    const int height = toPixels(shape.Height);
    const int side = std::min(width, height);
    set("Left", toPixels(shape.Left) + (width - side) / 2);
    set("Top", toPixels(shape.Top) + (height - side) / 2);
    set("Width", side);
    set("Height", side);
    for (const PropertyId id : {PropertyId::BorderColor, PropertyId::BorderWidth}) show(id);
  }

 protected:
  void show(PropertyId) override {
    const bool isDotted = shape_.BorderStyle == 3 && shape_.BorderWidth == 1;
    set("BorderColor", shape_.BorderColor.get());
    set("BorderStyle", isDotted ? 3 : 1);
    set("BorderWidth", shape_.BorderWidth);
  }

 private:
  Shape& shape_;
};

class SliderPeer : public WebPeer {
 public:
  SliderPeer(Slider& slider, int parent) : WebPeer(slider, parent, "Slider"), slider_(slider) {
    showTabIndex();
    set("Min", slider.Min);
    set("Max", slider.Max);
    show(PropertyId::Value);
  }

  void take(const PageEvent& event) override {
    const bool isScroll = event.kind == PageEventKind::Scrolled;
    if (!isScroll && event.kind != PageEventKind::Changed) return WebPeer::take(event);
    slider_.Value.adopt(event.first);
    raiseEvent(slider_, isScroll ? slider_.Scroll : slider_.Change);
  }

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::Value) set("Value", slider_.Value);
  }

 private:
  Slider& slider_;
};

class CheckBoxPeer : public WebPeer {
 public:
  CheckBoxPeer(CheckBox& box, int parent) : WebPeer(box, parent, "CheckBox"), box_(box) {
    showTabIndex();
    show(PropertyId::Caption);
    show(PropertyId::Value);
  }

  void take(const PageEvent& event) override {
    if (event.kind == PageEventKind::MouseUp) return;
    if (event.kind != PageEventKind::Ticked) return WebPeer::take(event);
    box_.Value.adopt(event.first);
    raiseEvent(box_, box_.Click);
  }

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::Caption) set("Caption", box_.Caption.get());
    if (id == PropertyId::Value) set("Value", box_.Value);
  }

 private:
  CheckBox& box_;
};

}  // namespace

void makePeer(Label& label, int parent) { label.peer = std::make_unique<LabelPeer>(label, parent); }
void makePeer(TextBox& box, int parent) { box.peer = std::make_unique<TextBoxPeer>(box, parent); }
void makePeer(Button& button, int parent) { button.peer = std::make_unique<ButtonPeer>(button, parent); }
void makePeer(Frame& frame, int parent) { frame.peer = std::make_unique<FramePeer>(frame, parent); }
void makePeer(Image& image, int parent) { image.peer = std::make_unique<ImagePeer>(image, parent); }
void makePeer(Shape& shape, int parent) { shape.peer = std::make_unique<ShapePeer>(shape, parent); }
void makePeer(Slider& slider, int parent) { slider.peer = std::make_unique<SliderPeer>(slider, parent); }
void makePeer(CheckBox& box, int parent) { box.peer = std::make_unique<CheckBoxPeer>(box, parent); }

}  // namespace kelvora
