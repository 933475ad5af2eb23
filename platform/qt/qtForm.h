#pragma once

#include <QMainWindow>
#include <QPalette>
#include <QPointer>
#include <memory>

#include "platform/form.h"

namespace kelvora {

class Button;
class FormPeer;

/// A form's native window: a menu bar, if the form has menus, and the client area below it.
class FormWindow : public QMainWindow {
 public:
  FormWindow(Form& form, FormPeer& peer);
  QWidget* client() const { return client_; }
  /// Resizes the client area (pixels). The menu bar adds to it.
  void resizeClient(QSize client);
  /// Adds scroll bars to a fixed client area that doesn't fit the screen.
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

/// A form's peer, which owns its native window.
class FormPeer : public Peer {
 public:
  explicit FormPeer(Form& form);

  void changed(PropertyId id) override;
  void takeFocus() override;

  FormWindow& window() { return *window_; }
  /// Called when the client area has a new size in pixels.
  void clientResized(QSize client);
  /// Called when the window has been moved.
  void moved();

 private:
  void showWindow();
  void hideWindow();
  void placeWindow();
  void orderTabs();

  Form& form_;
  std::unique_ptr<FormWindow> window_;
  bool placedByGame_ = false;
  bool shownBefore_ = false;
};

/// Colours of a form's native controls: for its own background, or the dialogs' common ones.
QPalette formPalette(const Form& form);

}  // namespace kelvora
