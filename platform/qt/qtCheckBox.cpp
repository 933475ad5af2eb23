#include <QCheckBox>
#include <QMouseEvent>

#include "platform/qt/codePage.h"
#include "platform/qt/inputEvents.h"
#include "platform/qt/qtFonts.h"
#include "platform/qt/widgetPeer.h"
#include "platform/widgets.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

class TickBox : public QCheckBox {
 public:
  TickBox(CheckBox& box, QWidget* parent) : QCheckBox(parent), box_(box) {
    setFont(toQFont(FontSpec{}));
    setFocusPolicy(box.TabIndex >= 0 ? Qt::StrongFocus : Qt::ClickFocus);
    setChecked(box.Value != 0);
    connect(this, &QCheckBox::clicked, this, [this](bool isTicked) {
      box_.Value.adopt(isTicked ? 1 : 0);
      raiseEvent(box_, box_.Click);
    });
  }

 protected:
  void mousePressEvent(QMouseEvent* event) override {
    raiseMouseDown(box_, *event);
    QCheckBox::mousePressEvent(event);
  }

  /// The whole control reacts to a press, not only the box and its caption.
  bool hitButton(const QPoint& pixel) const override { return rect().contains(pixel); }

 private:
  CheckBox& box_;
};

class CheckBoxPeer : public WidgetPeer {
 public:
  CheckBoxPeer(CheckBox& box, QWidget* parent) : CheckBoxPeer(box, new TickBox(box, parent)) {}

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::Caption) showCaption();
    if (id == PropertyId::Value) tickBox_->setChecked(box_.Value != 0);
  }

 private:
  CheckBoxPeer(CheckBox& box, TickBox* tickBox) : WidgetPeer(box, tickBox), box_(box), tickBox_(tickBox) {
    showCaption();
  }

  void showCaption() { tickBox_->setText(toQString(box_.Caption.get()).replace('&', "&&")); }

  CheckBox& box_;
  TickBox* tickBox_;
};

}  // namespace

std::unique_ptr<WidgetPeer> makePeer(CheckBox& box, QWidget* parent) {
  return std::make_unique<CheckBoxPeer>(box, parent);
}

}  // namespace kelvora
