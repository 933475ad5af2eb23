#pragma once

#include <memory>
#include <span>
#include <vector>

#include "platform/form.h"
#include "platform/win32/controlPeer.h"
#include "platform/win32/toolTip.h"
#include "platform/windowing/looks.h"

namespace kelvora {

/// A form's window. It paints all controls that have no windows of their own, and finds the one under the mouse.
class FormPeer : public Peer, public InputTarget {
 public:
  explicit FormPeer(Form& form);
  ~FormPeer() override;

  void changed(PropertyId id) override;
  void takeFocus() override;
  void take(const Input& input) override;

  HWND window() const { return window_; }
  const Form& form() const { return form_; }
  /// Device pixels for each of the game's.
  double scale() const { return scale_; }
  const Looks& looks() const { return looks_; }
  bool isShown() const { return form_.Visible; }

  void repaint(const Box& box) const;
  void repaintAll() const;
  /// Paints areas of a picture at once.
  void presentNow(ControlPeer& picture, std::span<const PixelArea> areas);
  /// Tells a control and all on it to follow their places.
  void followControls(const Control& control) const;

  /// Moves the focus to a control.
  void focus(const ControlPeer& peer);
  /// Moves the focus to the next control in the tab order, and selects its text.
  void focusNext(bool backwards);

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second);
  LRESULT handle(UINT message, WPARAM first, LPARAM second);
  /// Messages about the controls' own windows and the menu. False for any other.
  bool handleChild(UINT message, WPARAM first, LPARAM second, LRESULT& result);
  bool handleMouse(UINT message, WPARAM first, LPARAM second);
  void handleKey(UINT message, WPARAM first);
  bool hidePointer() const;
  void endWaitForDrag(POINT place) const;

  void paintWindow();
  void paintBuffered(HDC screen, const RECT& part) const;
  /// The topmost control in this part of the window, if it is a picture that fills the part. Otherwise null.
  ControlPeer* pictureAt(const RECT& part) const;
  /// Paints what lies in this part of the window, in device pixels.
  void paintControls(const Painter& painter, const Control& container, const RECT& part) const;
  /// The topmost visible control at a point in the game's pixels, or null.
  ControlPeer* at(const Control& container, int x, int y) const;
  std::vector<ControlPeer*> tabOrder() const;

  void showWindow();
  void hideWindow();
  void placeWindow();
  POINT wantedCorner() const;
  void moveTo(POINT corner);
  void resizeClient(int width, int height);
  void rescale(double scale);
  RECT workArea() const;
  int clientWidth() const;
  int clientHeight() const;
  static FormPeer* newestModal();
  static void enableOnlyTheModal();

  Form& form_;
  Looks looks_;
  HWND window_ = nullptr;
  std::unique_ptr<ToolTip> toolTip_;
  double scale_ = 1;
  double screenScale_ = 1;  ///< that of the window's screen
  int keyTarget_ = 0;       ///< id of the control with the keyboard
  int captured_ = 0;        ///< id of the control that was pressed, or of the form beside the controls; 0 for none
  int below_ = 0;           ///< id of the form that a modal one gives the keyboard back to
  bool isShownBefore_ = false;
  bool isPlacedByGame_ = false;
};

/// Creates the menu bar, if the form has menus.
void realizeMenu(Form& form, FormPeer& peer);
/// Paints what the system leaves light around the bar's entries.
void paintMenuBar(const FormPeer& form);
void measureMenuItem(const FormPeer& form, MEASUREITEMSTRUCT& item);
void drawMenuItem(const FormPeer& form, const DRAWITEMSTRUCT& item);

/// The game's active window, which owns message boxes. If another program is active, the first form shown, or
/// null without one.
HWND activeForm();

/// Device pixels for each of the game's on a screen with this many dots per inch.
double scaleAt(UINT dotsPerInch);
/// The same for the window's screen.
double screenScale(HWND window);

}  // namespace kelvora
