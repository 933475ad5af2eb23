#include "tests/platform/windowModel/hands.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "frontend/frmMain.h"
#include "platform/qt/qtForm.h"
#include "platform/qt/widgetPeer.h"

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

void pressInActive(int key, const QString& text = {}) {
  QWindow* window = QGuiApplication::focusWindow();
  if (window && window->isVisible()) pressIn(*window, key, text, Qt::NoModifier);
}

QWidget& widgetOf(Window window) { return *static_cast<QWidget*>(window); }

/// A point where the widget can be clicked, in pixels of its window; null if it isn't visible.
QPoint placeOf(const QWidget& widget, QPoint inside) {
  if (!widget.isVisible() || !widget.isEnabled()) return {};
  const QPoint place = widget.mapTo(widget.window(), inside);
  const QWidget* hit = widget.window()->childAt(place);
  return hit && (hit == &widget || widget.isAncestorOf(hit)) ? place : QPoint();
}

void clickOn(QWidget& widget) {
  const QPoint place = placeOf(widget, widget.rect().center());
  if (!place.isNull()) clickAfterAWhile(*widget.window()->windowHandle(), place);
}

void doubleClickAt(QWidget& widget, QPoint inside) {
  const QPoint place = placeOf(widget, inside);
  if (place.isNull()) return;
  QWindow& window = *widget.window()->windowHandle();
  clickAfterAWhile(window, place);
  if (widget.isVisible()) clickAt(window, place);
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

bool isBoxVisible() {
  return std::ranges::any_of(QApplication::topLevelWidgets(), [](const QWidget* window) {
    return qobject_cast<const QMessageBox*>(window) && window->isVisible();
  });
}

Window newestModal() {
  QWidget* newest = QApplication::activeModalWidget();
  return newest && newest->isVisible() ? newest : nullptr;
}

bool isBox(Window window) { return qobject_cast<QMessageBox*>(&widgetOf(window)) != nullptr; }

Window windowOf(Form& form) { return &dynamic_cast<FormPeer&>(*form.peer).window(); }

void click(Control& control) {
  if (control.peer) clickOn(*dynamic_cast<WidgetPeer&>(*control.peer).widget());
}

void doubleClick(Grid& grid) {
  auto* view = dynamic_cast<WidgetPeer&>(*grid.peer).widget()->window()->findChild<QTableView*>();
  doubleClickAt(*view->viewport(), {20, view->rowHeight(0) / 2 + 1});
}

void choose(const std::string& menu, const std::string& item) {
  QMenuBar& bar = *dynamic_cast<FormWindow&>(widgetOf(windowOf(*frmMain))).menuBar();
  for (QAction* title : bar.actions()) {
    if (title->text().toStdString() != menu) continue;
    const QPoint place = bar.mapTo(bar.window(), bar.actionGeometry(title).center());
    clickAfterAWhile(*bar.window()->windowHandle(), place);
    QMenu& list = *title->menu();
    for (QAction* action : list.actions()) {
      if (action->text().toStdString() == item && list.isVisible()) {
        clickAfterAWhile(*list.windowHandle(), list.actionGeometry(action).center());
      }
    }
    list.close();  // a disabled item leaves it open
  }
}

void press(Key key) {
  if (key == Key::Enter) {
    pressInActive(Qt::Key_Return, "\r");
  } else {
    pressInActive(Qt::Key_Escape);
  }
}

void replaceText(Control& box, const std::string& text) {
  click(box);
  QWindow& window = *dynamic_cast<WidgetPeer&>(*box.peer).widget()->window()->windowHandle();
  pressIn(window, Qt::Key_A, {}, Qt::ControlModifier);
  pressIn(window, Qt::Key_Backspace, {}, Qt::NoModifier);
  for (const QChar letter : QString::fromStdString(text))
    pressIn(window, letter.toUpper().unicode(), letter, Qt::NoModifier);
}

void activate(Window window) { widgetOf(window).windowHandle()->requestActivate(); }

void close(Window window) {
  // A modal window stops the window system's request like a click, but not this call.
  if (takesClicks(window)) widgetOf(window).windowHandle()->close();
}

void answer(Window box) { clickOn(*dynamic_cast<QMessageBox&>(widgetOf(box)).button(QMessageBox::Ok)); }

bool takesClicks(Window window) {
  QWidget& widget = widgetOf(window);
  const Interceptor interceptor(widget, QEvent::MouseButtonPress);
  clickAfterAWhile(*widget.windowHandle(), {widget.width() - 2, widget.height() - 2});
  return interceptor.hasMet();
}

bool takesKeys(Window window) {
  const QPointer<QWindow> before = QGuiApplication::focusWindow();
  activate(window);
  QCoreApplication::processEvents();
  bool arrived = false;
  {
    const Interceptor interceptor(widgetOf(window), QEvent::KeyPress);
    pressInActive(Qt::Key_F12);
    arrived = interceptor.hasMet();
  }
  if (before && before->isVisible()) before->requestActivate();
  QCoreApplication::processEvents();
  return arrived;
}

void atNextTurn(std::function<void()> turn) { QTimer::singleShot(0, std::move(turn)); }

}  // namespace kelvora::hands
