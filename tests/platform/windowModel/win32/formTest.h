#pragma once

#include <gtest/gtest.h>

#include "platform/backend.h"
#include "platform/win32/eventQueue.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/messagePump.h"
#include "platform/win32/win32Backend.h"

namespace kelvora {

/// Shows modal forms without waiting for their end.
class PatientDesktop : public Win32Backend {
 public:
  PatientDesktop() : Win32Backend("") { installBackend(this); }
  ~PatientDesktop() override { installBackend(nullptr); }
  void runModal(Form&) override {}
};

inline HWND windowOf(const Form& form) { return dynamic_cast<const FormPeer&>(*form.peer).window(); }
inline HWND windowOf(const Control& control) { return peerOf(control)->window(); }

/// Handles all messages and input until none is left.
inline void serveAll() {
  do {
    pumpMessages();
  } while (serveInput());
}

/// Posts a message and handles it.
inline void post(HWND window, UINT message, WPARAM first, LPARAM second = 1) {
  PostMessageW(window, message, first, second);
  serveAll();
}

/// A form of 400 by 400 pixels. The derived test adds the controls.
class FormTest : public ::testing::Test {
 protected:
  void show() {
    form_.Show();
    serveAll();
  }

  /// Posts a mouse message at a place in the form, in the game's pixels, with the bits of the held buttons.
  void mouse(UINT message, int x, int y, WPARAM held = 0) {
    const double scale = dynamic_cast<FormPeer&>(*form_.peer).scale();
    post(windowOf(form_), message, held, MAKELPARAM(static_cast<int>(x * scale), static_cast<int>(y * scale)));
  }

  PatientDesktop desktop_;
  Form form_{"Test", {.clientWidth = 6000, .clientHeight = 6000, .systemColours = true}};
};

}  // namespace kelvora
