#include "platform/qt/qtForm.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QWindow>
#include <algorithm>

#include "platform/qt/codePage.h"
#include "platform/qt/coveredWindows.h"
#include "platform/qt/gameLooks.h"
#include "platform/qt/qtMenu.h"
#include "platform/qt/widgetPeer.h"
#include "platform/widgets.h"
#include "platform/windowing/answerKey.h"
#include "platform/windowing/controlWalk.h"
#include "platform/windowing/handlerCall.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

/// The first form shown. The others stay in front of it.
QPointer<FormWindow> mainWindow;

class ClientArea : public QWidget {
 public:
  ClientArea(const Form& form, FormPeer& peer, QWidget* parent) : QWidget(parent), peer_(peer) {
    setAutoFillBackground(true);
    setPalette(formPalette(form));
  }

 protected:
  void resizeEvent(QResizeEvent*) override { peer_.clientResized(size()); }

 private:
  FormPeer& peer_;
};

QSize clientSize(const Form& form) {
  return {toPixels(form.Width - Form::frameWidth), toPixels(form.Height - Form::frameHeight)};
}

/// The screen with the window's middle, or else the one that the window reports.
QScreen* screenOf(const QWidget& window) {
  QScreen* shown = QGuiApplication::screenAt(window.frameGeometry().center());
  return shown ? shown : window.screen();
}

Qt::WindowFlags formWindowFlags(const Form& form) {
  if (form.design.border == Form::Border::Sizable) return Qt::Window;
  return Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
         Qt::WindowCloseButtonHint;
}

}  // namespace

QPalette formPalette(const Form& form) {
  return form.design.systemColours ? QApplication::palette() : gamePalette(looksOn(form.design.back));
}

FormWindow::FormWindow(Form& form, FormPeer& peer)
    : QMainWindow(nullptr, formWindowFlags(form)), form_(form), peer_(peer), client_(new ClientArea(form, peer, this)) {
  setCentralWidget(client_);
  setWindowTitle(toQString(form.Caption.get()));
}

void FormWindow::resizeClient(QSize client) {
  ensurePolished();
  QSize whole = client;
  if (auto* bar = findChild<QMenuBar*>(QString(), Qt::FindDirectChildrenOnly); bar && !bar->isNativeMenuBar()) {
    bar->ensurePolished();
    whole.rheight() += bar->heightForWidth(client.width());
  }
  if (form_.design.border == Form::Border::Fixed) {
    setFixedSize(whole);
  } else {
    resize(whole);
  }
}

void FormWindow::scrollClient(QSize client, QSize room) {
  auto* view = new QScrollArea(this);
  view->setFrameShape(QFrame::NoFrame);
  view->setFocusPolicy(Qt::NoFocus);
  client_->setFixedSize(client);
  view->setWidget(takeCentralWidget());
  setCentralWidget(view);
  const int bar = view->verticalScrollBar()->sizeHint().width();
  const QSize bars(client.height() > room.height() ? bar : 0, client.width() > room.width() ? bar : 0);
  setFixedSize((client + bars).boundedTo(room));
}

bool FormWindow::event(QEvent* event) {
  const bool handled = QMainWindow::event(event);
  if (event->type() == QEvent::WindowActivate) raiseEvent(form_, form_.Activate);
  return handled;
}

void FormWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // unloading hides the window
  if (takesEvents(form_)) runHandler([this] { form_.closedByUser(); });
}

void FormWindow::moveEvent(QMoveEvent*) { peer_.moved(); }

void FormWindow::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  const bool escape = event->key() == Qt::Key_Escape;
  event->setAccepted((enter || escape) && answerKey(form_, enter));
}

FormPeer::FormPeer(Form& form) : form_(form), window_(std::make_unique<FormWindow>(form, *this)) {
  placedByGame_ = form.Left != 0.0F || form.Top != 0.0F;
  realizeMenu(form, *window_, formPalette(form));
  window_->resizeClient(clientSize(form));
}

void FormPeer::changed(PropertyId id) {
  switch (id) {
    case PropertyId::Caption:
      window_->setWindowTitle(toQString(form_.Caption.get()));
      break;
    case PropertyId::Left:
    case PropertyId::Top:
      placedByGame_ = true;
      window_->move(toPixels(form_.Left), toPixels(form_.Top));
      break;
    case PropertyId::Width:
    case PropertyId::Height:
      window_->resizeClient(clientSize(form_));
      break;
    case PropertyId::Visible:
      form_.Visible ? showWindow() : hideWindow();
      break;
    default:
      break;
  }
}

void FormPeer::takeFocus() {
  window_->raise();
  window_->activateWindow();
}

void FormPeer::showWindow() {
  if (!mainWindow) mainWindow = window_.get();
  const bool modal = form_.modality() == Form::Modality::Modal;
  window_->setWindowModality(modal ? Qt::ApplicationModal : Qt::NonModal);
  if (!shownBefore_) {
    orderTabs();
    // Before the native window exists: afterwards, a position would be taken for the client area's.
    placeWindow();
  }
  if (!window_->isVisible() && window_.get() != mainWindow) {
    window_->winId();  // the native window must exist to be assigned its parent
    QWidget* active = QApplication::activeWindow();
    QWidget* owner = modal && active && active != window_.get() ? active : mainWindow.data();
    if (owner && owner->windowHandle()) window_->windowHandle()->setTransientParent(owner->windowHandle());
  }
  // The desktop activates a window that appears. A request of the window's own would only be sent once the desktop has
  // told of its appearance, and could then take the focus from a dialog that has opened meanwhile.
  if (window_->isVisible()) {
    takeFocus();
  } else {
    window_->show();
  }
  if (!shownBefore_) watchCover(*window_);
  shownBefore_ = true;
}

void FormPeer::hideWindow() {
  const bool isModal = window_->isVisible() && window_->isModal();
  window_->hide();
  QWindow* owner = isModal ? window_->windowHandle()->transientParent() : nullptr;
  // The desktop may still take this window for inactive, because a box in front of it has only just closed. It would
  // activate no other one then.
  if (owner != nullptr && owner->isVisible()) owner->requestActivate();
}

/// Centres a form that the game hasn't placed, on the screen or on the main window. Every window starts on the game's
/// screen and no larger than it, so that it can be seen. The position is known at once, without waiting for the window
/// manager.
void FormPeer::placeWindow() {
  const bool isMain = !mainWindow || window_.get() == mainWindow;
  const QRect screen = (isMain ? window_->screen() : screenOf(*mainWindow))->availableGeometry();
  const QSize frame(toPixels(Form::frameWidth), toPixels(Form::frameHeight));
  const QSize client = clientSize(form_);
  const QSize room = screen.size() - frame;
  const QSize seen = client.boundedTo(room);
  if (seen != client && form_.design.border == Form::Border::Sizable) window_->resizeClient(seen);
  if (seen != client && form_.design.border == Form::Border::Fixed) window_->scrollClient(client, room);
  const QSize outer = seen + frame;
  QPoint corner(toPixels(form_.Left), toPixels(form_.Top));
  if (!placedByGame_) {
    // The window manager's frames are equally thick around all windows.
    const QSize margin = (isMain ? screen.size() - outer : mainWindow->size() - seen) / 2;
    corner = (isMain ? screen.topLeft() : mainWindow->pos()) + QPoint(margin.width(), margin.height());
  }
  const QPoint inside(std::clamp(corner.x(), screen.left(), std::max(screen.right() - outer.width(), screen.left())),
                      std::clamp(corner.y(), screen.top(), std::max(screen.bottom() - outer.height(), screen.top())));
  window_->move(inside);
  // Keeps the game's position between two pixels.
  if (placedByGame_ && inside == corner) return;
  form_.Left.adopt(static_cast<float>(inside.x() * twipsPerPixel));
  form_.Top.adopt(static_cast<float>(inside.y() * twipsPerPixel));
}

/// The tab order follows TabIndex. The lowest one has the focus when the form opens.
void FormPeer::orderTabs() {
  QWidget* previous = nullptr;
  for (const Control* control : controlsInTabOrder(form_)) {
    const auto* peer = dynamic_cast<WidgetPeer*>(control->peer.get());
    if (!peer || peer->widget()->focusPolicy() == Qt::NoFocus) continue;
    QWidget* widget = peer->widget();
    if (previous) QWidget::setTabOrder(previous, widget);
    if (!previous) widget->setFocus(Qt::OtherFocusReason);
    previous = widget;
  }
}

void FormPeer::clientResized(QSize client) {
  if (client == clientSize(form_) || !takesEvents(form_)) return;
  runHandler([this, client] {
    form_.clientResized(static_cast<float>(client.width() * twipsPerPixel),
                        static_cast<float>(client.height() * twipsPerPixel));
  });
}

void FormPeer::moved() {
  if (!window_ || !window_->isVisible()) return;
  const QPoint corner = window_->pos();
  // Keeps the game's position between two pixels until the window moves.
  if (corner == QPoint(toPixels(form_.Left), toPixels(form_.Top))) return;
  form_.Left.adopt(static_cast<float>(corner.x() * twipsPerPixel));
  form_.Top.adopt(static_cast<float>(corner.y() * twipsPerPixel));
}

}  // namespace kelvora
