#include <QKeyEvent>
#include <QPushButton>

#include "platform/qt/codePage.h"
#include "platform/qt/inputEvents.h"
#include "platform/qt/qtFonts.h"
#include "platform/qt/widgetPeer.h"
#include "platform/widgets.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

class PushButton : public QPushButton {
 public:
  PushButton(Button& button, QWidget* parent) : QPushButton(parent), button_(button) {
    setFont(toQFont(FontSpec{}));
    setFocusPolicy(button.TabIndex >= 0 ? Qt::StrongFocus : Qt::ClickFocus);
    setDefault(button.role == Button::Role::Default);
    connect(this, &QPushButton::clicked, this, [this] { raiseEvent(button_, button_.Click); });
  }

 protected:
  void mousePressEvent(QMouseEvent* event) override {
    raiseMouseDown(button_, *event);
    QPushButton::mousePressEvent(event);
  }

  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
      click();
      return;
    }
    QPushButton::keyPressEvent(event);
  }

 private:
  Button& button_;
};

class ButtonPeer : public WidgetPeer {
 public:
  ButtonPeer(Button& button, QWidget* parent) : ButtonPeer(button, new PushButton(button, parent)) {}

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::Caption) showCaption();
  }

 private:
  ButtonPeer(Button& button, PushButton* pushButton)
      : WidgetPeer(button, pushButton), button_(button), pushButton_(pushButton) {
    showCaption();
  }

  /// The game's buttons have no access keys, so an ampersand is literal.
  void showCaption() { pushButton_->setText(toQString(button_.Caption.get()).replace('&', "&&")); }

  Button& button_;
  PushButton* pushButton_;
};

}  // namespace

std::unique_ptr<WidgetPeer> makePeer(Button& button, QWidget* parent) {
  return std::make_unique<ButtonPeer>(button, parent);
}

}  // namespace kelvora
