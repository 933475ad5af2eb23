#include "tests/platform/windowModel/hands.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTest>
#include <QWindow>

#include "frontend/frmConnect.h"
#include "frontend/frmFonts.h"
#include "frontend/frmGameFind.h"
#include "frontend/frmMain.h"
#include "platform/qt/qtForm.h"
#include "platform/qt/widgetPeer.h"
#include "store/frmPowerups.h"

namespace kelvora::hands {

namespace {

int timestamp = 0;  // ms

void mouse(QWindow& window, QPoint place, QEvent::Type type) {
  timestamp += 10;
  const bool isDown = type == QEvent::MouseButtonPress;
  qt_handleMouseEvent(&window, place, window.mapToGlobal(place), isDown ? Qt::LeftButton : Qt::NoButton, Qt::LeftButton,
                      type, Qt::NoModifier, timestamp);
}

void clickAt(QWindow& window, QPoint place) {
  const QPointer<QWindow> still = &window;
  mouse(window, place, QEvent::MouseButtonPress);
  if (still && still->isVisible()) mouse(window, place, QEvent::MouseButtonRelease);
}

/// Late enough not to form a double-click with the previous press.
void clickAfterAWhile(QWindow& window, QPoint place) {
  timestamp += 1000;
  clickAt(window, place);
}

void pressIn(QWindow& window, int key, const QString& text, Qt::KeyboardModifiers modifiers) {
  const QPointer<QWindow> still = &window;
  qt_handleKeyEvent(&window, QEvent::KeyPress, key, modifiers, text);
  if (still && still->isVisible()) qt_handleKeyEvent(&window, QEvent::KeyRelease, key, modifiers, text);
}

/// A point where the widget can be clicked, in pixels of its window; null if it isn't visible.
QPoint placeOf(const QWidget& widget, QPoint inside) {
  if (!widget.isVisible() || !widget.isEnabled()) return {};
  const QPoint place = widget.mapTo(widget.window(), inside);
  const QWidget* hit = widget.window()->childAt(place);
  return hit && (hit == &widget || widget.isAncestorOf(hit)) ? place : QPoint();
}

template <class FormType>
void addVisible(std::vector<Form*>& forms, FormSlot<FormType>& slot) {
  if (slot.isVisible()) forms.push_back(&*slot);
}

/// Records whether input of one kind reaches the widgets of a window, and keeps all input from all widgets.
class Interceptor : public QObject {
 public:
  Interceptor(const QWidget& window, QEvent::Type type) : window_(window), type_(type) {
    qApp->installEventFilter(this);
  }
  bool hasMet() const { return hasMet_; }

  bool eventFilter(QObject* receiver, QEvent* event) override {
    const bool isInput = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease ||
                         event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (!isInput || !receiver->isWidgetType()) return false;
    if (event->type() == type_ && static_cast<QWidget*>(receiver)->window() == &window_) hasMet_ = true;
    return true;
  }

 private:
  const QWidget& window_;
  QEvent::Type type_;
  bool hasMet_ = false;
};

}  // namespace

std::vector<Form*> visibleForms() {
  std::vector<Form*> forms;
  addVisible(forms, frmMain);
  addVisible(forms, frmConnect);
  addVisible(forms, frmGameFind);
  addVisible(forms, frmFonts);
  addVisible(forms, frmPowerups);
  return forms;
}

std::vector<QWidget*> visibleBoxes() {
  std::vector<QWidget*> boxes;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (qobject_cast<QMessageBox*>(window) && window->isVisible()) boxes.push_back(window);
  }
  return boxes;
}

QWidget& windowOf(Form& form) { return dynamic_cast<FormPeer&>(*form.peer).window(); }

void click(QWidget& widget) {
  const QPoint place = placeOf(widget, widget.rect().center());
  if (!place.isNull()) clickAfterAWhile(*widget.window()->windowHandle(), place);
}

void click(Control& control) {
  if (control.peer) click(*dynamic_cast<WidgetPeer&>(*control.peer).widget());
}

void doubleClick(QWidget& widget, QPoint inside) {
  const QPoint place = placeOf(widget, inside);
  if (place.isNull()) return;
  QWindow& window = *widget.window()->windowHandle();
  clickAfterAWhile(window, place);
  if (widget.isVisible()) clickAt(window, place);
}

void choose(const QString& menu, const QString& item) {
  QMenuBar& bar = *dynamic_cast<FormWindow&>(windowOf(*frmMain)).menuBar();
  for (QAction* title : bar.actions()) {
    if (title->text() != menu) continue;
    const QPoint place = bar.mapTo(bar.window(), bar.actionGeometry(title).center());
    clickAfterAWhile(*bar.window()->windowHandle(), place);
    QMenu& list = *title->menu();
    for (QAction* action : list.actions()) {
      if (action->text() == item && list.isVisible()) {
        clickAfterAWhile(*list.windowHandle(), list.actionGeometry(action).center());
      }
    }
    list.close();  // a disabled item leaves it open
  }
}

void press(int key, const QString& text) {
  QWindow* window = QGuiApplication::focusWindow();
  if (window && window->isVisible()) pressIn(*window, key, text, Qt::NoModifier);
}

void replaceText(Control& box, const QString& text) {
  click(box);
  QWindow& window = *dynamic_cast<WidgetPeer&>(*box.peer).widget()->window()->windowHandle();
  pressIn(window, Qt::Key_A, {}, Qt::ControlModifier);
  pressIn(window, Qt::Key_Backspace, {}, Qt::NoModifier);
  for (const QChar letter : text) pressIn(window, letter.toUpper().unicode(), letter, Qt::NoModifier);
}

void activate(QWidget& window) { window.windowHandle()->requestActivate(); }

void close(QWidget& window) {
  // A modal window stops the window system's request like a click, but not this call.
  if (takesClicks(window)) window.windowHandle()->close();
}

bool takesClicks(QWidget& window) {
  const Interceptor interceptor(window, QEvent::MouseButtonPress);
  clickAfterAWhile(*window.windowHandle(), {window.width() - 2, window.height() - 2});
  return interceptor.hasMet();
}

bool takesKeys(QWidget& window) {
  const QPointer<QWindow> before = QGuiApplication::focusWindow();
  activate(window);
  QCoreApplication::processEvents();
  bool arrived = false;
  {
    const Interceptor interceptor(window, QEvent::KeyPress);
    press(Qt::Key_F12);
    arrived = interceptor.hasMet();
  }
  if (before && before->isVisible()) before->requestActivate();
  QCoreApplication::processEvents();
  return arrived;
}

}  // namespace kelvora::hands
