#pragma once

#include "platform/win32/controlPeer.h"

namespace kelvora {

/// Shows a control's tip while the mouse rests on it. For the controls that a form paints.
class ToolTip {
 public:
  explicit ToolTip(HWND form) : form_(form) {}
  ToolTip(const ToolTip&) = delete;
  ToolTip& operator=(const ToolTip&) = delete;

  /// Call it with each mouse message of the form, and the control under the mouse, if any.
  void follow(const ControlPeer* under, double scale, UINT message, WPARAM first, LPARAM second);

 private:
  void create();

  HWND form_;
  HWND tip_ = nullptr;  // created with the first tip; the form owns and destroys it
  int shown_ = 0;       // id of the control whose tip it has
};

}  // namespace kelvora
