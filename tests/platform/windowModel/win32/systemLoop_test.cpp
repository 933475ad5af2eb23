#include <gtest/gtest.h>

#include <memory>

#include "platform/widgets.h"
#include "platform/win32/eventQueue.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/messagePump.h"

namespace kelvora {
namespace {

/// Pumps until a loop of the system runs or ends, for some seconds at most.
void pumpUntilLoops(bool expected) {
  for (int i = 0; i < 500 && isInSystemLoop() != expected; ++i) {
    pumpMessages();
    while (serveInput()) {
    }
  }
}

TEST(SystemLoops, EndWithoutTheirWindow) {
  Form form("Dragged", {.clientWidth = 3000, .clientHeight = 3000});
  form.peer = std::make_unique<FormPeer>(form);
  form.Visible = true;
  // The user drags the window by its title, which runs a loop of the system until the button is released.
  PostMessageW(dynamic_cast<FormPeer&>(*form.peer).window(), WM_SYSCOMMAND, SC_MOVE | HTCAPTION, 0);
  pumpUntilLoops(true);
  ASSERT_TRUE(isInSystemLoop());
  form.peer.reset();
  pumpMessages();  // returns although the button is still down
  PostThreadMessageW(GetCurrentThreadId(), WM_LBUTTONUP, 0, 0);
  pumpUntilLoops(false);
  EXPECT_FALSE(isInSystemLoop());
}

TEST(SystemLoops, GiveTurnsWhileATextBoxShowsItsMenu) {
  Form form("Chat", {.clientWidth = 3000, .clientHeight = 3000});
  TextBox line(&form, {0, 0, 3000, 300}, "");
  auto peer = std::make_unique<FormPeer>(form);
  FormPeer& window = *peer;
  form.peer = std::move(peer);
  realizeChildren(form, window);
  form.Visible = true;
  // If the menu gives no turns, this ends it, and the test fails.
  constexpr UINT patience = 5000;  // ms
  const UINT_PTR last = SetTimer(nullptr, 0, patience, [](HWND, UINT, UINT_PTR, DWORD) { EndMenu(); });
  const HWND box = peerOf(line)->window();
  PostMessageW(box, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(box), 0);
  pumpUntilLoops(true);
  EXPECT_TRUE(isInSystemLoop());
  KillTimer(nullptr, last);
  EndMenu();
  pumpUntilLoops(false);
  EXPECT_FALSE(isInSystemLoop());
}

}  // namespace
}  // namespace kelvora
