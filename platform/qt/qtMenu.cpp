#include "platform/qt/qtMenu.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <memory>

#include "platform/menuItem.h"
#include "platform/qt/codePage.h"
#include "platform/qt/widgetPeer.h"
#include "platform/windowing/handlerCall.h"
#include "platform/windowing/looks.h"

namespace kelvora {

namespace {

/// The action belongs to the parent menu, which lives as long as the window.
class MenuPeer : public Peer {
 public:
  MenuPeer(MenuItem& item, QAction* action) : item_(item), action_(action) {
    QObject::connect(action, &QAction::triggered, action, [this] {
      showChecked();  // only the handler may check the item, not the click
      raiseEvent(item_, item_.Click);
    });
    for (const PropertyId id : {PropertyId::Caption, PropertyId::Checked, PropertyId::Enabled, PropertyId::Visible}) {
      changed(id);
    }
  }

  void changed(PropertyId id) override {
    if (!action_) return;
    if (id == PropertyId::Caption) action_->setText(toQString(item_.Caption.get()).replace('&', "&&"));
    if (id == PropertyId::Checked) showChecked();
    if (id == PropertyId::Enabled) action_->setEnabled(item_.Enabled);
    if (id == PropertyId::Visible) action_->setVisible(item_.Visible);
  }

 private:
  /// An unchecked item looks like one that can't be checked.
  void showChecked() {
    action_->setCheckable(item_.Checked);
    action_->setChecked(item_.Checked);
  }

  MenuItem& item_;
  QPointer<QAction> action_;
};

template <class Menu>
void addItems(Control& container, Menu& menu) {
  for (Control* child : container.children()) {
    auto* item = dynamic_cast<MenuItem*>(child);
    if (!item) continue;
    if (item->Caption.get() == "-") {
      menu.addSeparator();
      continue;
    }
    QAction* action = nullptr;
    if (item->children().empty()) {
      action = menu.addAction(QString());
    } else {
      QMenu* submenu = menu.addMenu(QString());
      submenu->setPalette(menu.palette());
      addItems(*item, *submenu);
      action = submenu->menuAction();
    }
    action->setMenuRole(QAction::NoRole);
    item->peer = std::make_unique<MenuPeer>(*item, action);
  }
}

}  // namespace

void realizeMenu(Form& form, QMainWindow& window, QPalette colours) {
  for (Control* child : form.children()) {
    if (!dynamic_cast<MenuItem*>(child)) continue;
    if (!form.design.systemColours) {
      // Disabled entries have no light edge.
      const QColor ground = toQColor(dialogLooks.menu);
      for (const auto role : {QPalette::Window, QPalette::Base}) colours.setColor(role, ground);
      colours.setColor(QPalette::Disabled, QPalette::Light, ground);
    }
    window.menuBar()->setPalette(colours);
    addItems(form, *window.menuBar());
    return;
  }
}

}  // namespace kelvora
