#pragma once

#include "platform/win32/controlPeer.h"
#include "platform/windowing/answerKey.h"

namespace kelvora {

/// The peer of a control with a window of its own.
class NativePeer : public ControlPeer {
 public:
  NativePeer(Control& control, FormPeer& form, const wchar_t* kind, DWORD style, const FontSpec& font);
  ~NativePeer() override;

  void take(const Input& input) override;
  void takeFocus() override;
  void follow() override;
  HWND window() const override { return window_; }

  // The window's reports to its form.
  virtual void command(int) {}
  virtual LRESULT notify(const NMHDR&) { return 0; }
  virtual void scrolled(int) {}
  virtual void draw(const DRAWITEMSTRUCT&) {}
  /// The colours of a window that the system draws.
  virtual HBRUSH colours(HDC dc) const;

 protected:
  /// The window's place within that of the control.
  virtual Box windowBox(const Box& place) const { return place; }
  /// Sees each message for the window first. True to suppress the system's handling.
  virtual bool handle(UINT, WPARAM, LPARAM, LRESULT& /*result*/) { return false; }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second, UINT_PTR, DWORD_PTR self);
  bool handleKey(UINT message, WPARAM first);

  HWND window_;
  FontSpec font_;
  AnsweredKeys answered_;
};

}  // namespace kelvora
