#include <memory>

#include "platform/menuItem.h"
#include "platform/web/page.h"
#include "platform/web/webPeer.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

class MenuPeer : public Peer, public PageObject {
 public:
  MenuPeer(MenuItem& item, int parent) : item_(item), isSeparator_(item.Caption.get() == "-") {
    page_createMenu(id(), parent, isSeparator_ ? 1 : 0);
    for (const PropertyId id : {PropertyId::Caption, PropertyId::Checked, PropertyId::Enabled, PropertyId::Visible}) {
      changed(id);
    }
  }
  ~MenuPeer() override {
    if (!isSeparator_) page_remove(id());
  }

  void changed(PropertyId property) override {
    if (isSeparator_) return;
    const std::string& caption = item_.Caption;
    if (property == PropertyId::Caption) page_setText(id(), "Caption", caption.data(), caption.size());
    if (property == PropertyId::Checked) page_setNumber(id(), "Checked", item_.Checked ? 1 : 0);
    if (property == PropertyId::Enabled) page_setNumber(id(), "Enabled", item_.Enabled ? 1 : 0);
    if (property == PropertyId::Visible) page_setNumber(id(), "Visible", item_.Visible ? 1 : 0);
  }

  void take(const PageEvent& event) override {
    if (event.kind == PageEventKind::Click) raiseEvent(item_, item_.Click);
  }

 private:
  MenuItem& item_;
  bool isSeparator_;
};

}  // namespace

void makePeer(MenuItem& item, int parent) { item.peer = std::make_unique<MenuPeer>(item, parent); }

}  // namespace kelvora
