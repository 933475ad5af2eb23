#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include "platform/qt/codePage.h"
#include "platform/qt/inputEvents.h"
#include "platform/qt/qtFonts.h"
#include "platform/qt/widgetPeer.h"
#include "platform/widgets.h"
#include "platform/windowing/lineText.h"

namespace kelvora {

namespace {

/// A line of code page 1252.
QString cleaned(const QString& text) { return toQString(cleanLine(toBytes(text))); }

class LineEdit : public QLineEdit {
 public:
  LineEdit(TextBox& box, QWidget* parent) : QLineEdit(parent), box_(box) {
    setFont(toQFont(box.design.font));
    setFocusPolicy(box.TabIndex >= 0 ? Qt::StrongFocus : Qt::ClickFocus);
    if (!box.design.systemColours) {
      QPalette colours = palette();
      colours.setColor(QPalette::Base, toQColor(box.design.back));
      colours.setColor(QPalette::Text, toQColor(box.design.fore));
      setPalette(colours);
    }
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) { adoptEdit(text); });
    connect(this, &QLineEdit::cursorPositionChanged, this,
            [this](int, int position) { box_.SelStart.adopt(position); });
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const bool goesToForm =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Escape;
    if (goesToForm && formAnswers(*event)) return;
    raiseKey(box_, *event);
    QLineEdit::keyPressEvent(event);
  }

  void inputMethodEvent(QInputMethodEvent* event) override {
    raiseComposedText(box_, *event);
    QLineEdit::inputMethodEvent(event);
  }

 private:
  /// True if a default or cancel button of the form takes the key, which then doesn't reach the box.
  bool formAnswers(QKeyEvent& event) {
    event.ignore();
    QCoreApplication::sendEvent(window(), &event);
    return event.isAccepted();
  }

  void adoptEdit(const QString& text) {
    const QString clean = cleaned(text);
    if (clean != text) {
      const auto caret = cleaned(text.left(cursorPosition())).size();
      setText(clean);
      setCursorPosition(static_cast<int>(caret));
    }
    box_.Text.adopt(toBytes(clean));
    box_.SelStart.adopt(cursorPosition());
  }

  TextBox& box_;
};

class TextBoxPeer : public WidgetPeer {
 public:
  TextBoxPeer(TextBox& box, QWidget* parent) : TextBoxPeer(box, new LineEdit(box, parent)) {}

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::Text) {
      const QString text = toQString(box_.Text.get());
      if (edit_->text() == text) return;
      edit_->setText(text);
      edit_->setCursorPosition(0);
      box_.SelStart.adopt(0);
    }
    if (id == PropertyId::SelStart) edit_->setCursorPosition(box_.SelStart);
  }

 private:
  TextBoxPeer(TextBox& box, LineEdit* edit) : WidgetPeer(box, edit), box_(box), edit_(edit) {
    const int caret = box.SelStart;
    edit_->setText(toQString(box.Text.get()));
    edit_->setCursorPosition(caret);
    box.SelStart.adopt(edit_->cursorPosition());
  }

  TextBox& box_;
  LineEdit* edit_;
};

}  // namespace

std::unique_ptr<WidgetPeer> makePeer(TextBox& textBox, QWidget* parent) {
  return std::make_unique<TextBoxPeer>(textBox, parent);
}

}  // namespace kelvora
