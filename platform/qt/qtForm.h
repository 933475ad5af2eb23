#pragma once

#include <QMainWindow>
#include <QPalette>
#include <QPointer>
#include <memory>

#include "platform/form.h"

namespace kelvora {

class Button;
class FormPeer;

/// The native window of a form: a menu bar if the form has menus, and the client area below it.
class FormWindow : public QMainWindow {
 public:
  FormWindow(Form& form, FormPeer& peer);
  QWidget* client() const { return client_; }
  /// Gives the client area its size in pixels; the menu bar comes on top of it.
  void resizeClient(QSize client);
  /// For a client area of fixed size that has no room on the screen: a part of it is seen, with bars to move it.
  void scrollClient(QSize client, QSize room);

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  Form& form_;
  FormPeer& peer_;
  QWidget* client_;
};

class FormPeer : public Peer {
 public:
  explicit FormPeer(Form& form);

  void changed(PropertyId id) override;
  void takeFocus() override;

  FormWindow& window() { return *window_; }
  /// The client area has a new size in pixels.
  void clientResized(QSize client);
  void moved();
  /// Clicks the form's default (Enter) or cancel (Esc) button; false if it has none.
  bool answerKey(bool enter);

 private:
  void showWindow();
  void placeWindow();
  void orderTabs();

  Form& form_;
  std::unique_ptr<FormWindow> window_;
  bool placedByGame_ = false;
  bool shownBefore_ = false;
};

/// Shades of the native controls of a form: of its own background, or those of all dialogs.
QPalette formPalette(const Form& form);

/// Fills the window's menu bar with the menu items that stand on the form, if there are any.
void realizeMenu(Form& form, FormWindow& window);

}  // namespace kelvora
