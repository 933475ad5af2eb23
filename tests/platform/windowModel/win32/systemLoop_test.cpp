#include <memory>

#include "platform/grid.h"
#include "platform/widgets.h"
#include "tests/platform/windowModel/win32/formTest.h"

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

class ControlLoops : public FormTest {
 protected:
  /// Fails if this message begins no loop of the system, or one that gives the game no turns.
  static void expectTurns(HWND window, UINT message, WPARAM first, LPARAM second) {
    const auto endLoop = [](HWND, UINT, UINT_PTR, DWORD) -> void {
      EndMenu();
      ReleaseCapture();
    };
    constexpr UINT patience = 5000;  // ms
    const UINT_PTR timer = SetTimer(nullptr, 0, patience, endLoop);
    PostMessageW(window, message, first, second);
    pumpUntilLoops(true);
    EXPECT_TRUE(isInSystemLoop());
    // The loop goes on.
    for (int turn = 0; turn < 3; ++turn) pumpMessages();
    EXPECT_TRUE(isInSystemLoop());
    KillTimer(nullptr, timer);
    endLoop(nullptr, 0, 0, 0);
    pumpUntilLoops(false);
    EXPECT_FALSE(isInSystemLoop());
  }
};

TEST_F(ControlLoops, GiveTurnsWhileATextBoxShowsItsMenu) {
  TextBox line(&form_, {0, 0, 3000, 300}, "");
  show();
  expectTurns(windowOf(line), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(windowOf(line)), 0);
}

TEST_F(ControlLoops, GiveTurnsWhileAListIsScrolled) {
  Grid grid(&form_, {0, 0, 3000, 3000});
  for (int row = 0; row < 100; ++row) grid.AddItem("cell");
  show();
  SCROLLBARINFO bar{};
  bar.cbSize = sizeof bar;
  ASSERT_TRUE(GetScrollBarInfo(windowOf(grid), OBJID_VSCROLL, &bar));
  const LONG x = (bar.rcScrollBar.left + bar.rcScrollBar.right) / 2;
  const LONG y = bar.rcScrollBar.top + (bar.xyThumbTop + bar.xyThumbBottom) / 2;
  expectTurns(windowOf(grid), WM_NCLBUTTONDOWN, HTVSCROLL, MAKELPARAM(x, y));
}

}  // namespace
}  // namespace kelvora
