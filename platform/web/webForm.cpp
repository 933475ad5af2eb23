#include <memory>

#include "platform/form.h"
#include "platform/web/page.h"
#include "platform/web/webPeer.h"
#include "platform/widgets.h"
#include "platform/windowing/answerKey.h"
#include "platform/windowing/handlerCall.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

class FormPeer : public WebPeer {
 public:
  explicit FormPeer(Form& form) : WebPeer(form, noParent, "Form"), form_(form) {
    if (form.design.systemColours) {
      set("SystemColours", 1);
    } else {
      set("BackColor", form.design.back);
    }
    show(PropertyId::Caption);
    for (const PropertyId id : {PropertyId::Left, PropertyId::Top, PropertyId::Width, PropertyId::Height}) changed(id);
    isMade_ = true;
  }

  void changed(PropertyId id) override {
    switch (id) {
      case PropertyId::Left:
      case PropertyId::Top:
        // The game places dialogs, which have the system's colours, for a window of the designed size. Pages have any
        // size, so they centre dialogs, and other forms that the game hasn't placed.
        if (form_.design.systemColours) return;
        if (isMade_ || form_.Left != 0.0F || form_.Top != 0.0F) WebPeer::changed(id);
        return;
      case PropertyId::Width:
        return set("Width", toPixels(form_.Width - Form::frameWidth));
      case PropertyId::Height:
        return set("Height", toPixels(form_.Height - Form::frameHeight));
      case PropertyId::Visible:
        set("Modal", form_.modality() == Form::Modality::Modal ? 1 : 0);
        return WebPeer::changed(id);
      default:
        WebPeer::changed(id);
    }
  }

  void take(const PageEvent& event) override {
    const auto x = static_cast<float>(event.x * twipsPerPixel);
    const auto y = static_cast<float>(event.y * twipsPerPixel);
    switch (event.kind) {
      case PageEventKind::Resized:
        if (x + Form::frameWidth == form_.Width && y + Form::frameHeight == form_.Height) return;
        if (takesEvents(form_)) runHandler([&] { form_.clientResized(x, y); });
        return;
      case PageEventKind::Moved:
        form_.Left.adopt(x);
        form_.Top.adopt(y);
        return;
      case PageEventKind::Closed:
        if (takesEvents(form_)) runHandler([this] { form_.closedByUser(); });
        return;
      case PageEventKind::Activated:
        return raiseEvent(form_, form_.Activate);
      case PageEventKind::KeyDown:
        answerKey(form_, event.first == keyEnter);
        return;
      default:
        return;
    }
  }

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::Caption) set("Caption", form_.Caption.get());
  }

 private:
  Form& form_;
  bool isMade_ = false;
};

}  // namespace

void makePeer(Form& form) {
  auto peer = std::make_unique<FormPeer>(form);
  const int id = peer->id();
  form.peer = std::move(peer);
  realizeChildren(form, id);
}

}  // namespace kelvora
