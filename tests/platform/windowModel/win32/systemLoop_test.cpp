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

/// Lets a test answer a form's messages first. The test returns true to keep one from the form.
class Interceptor {
 public:
  using Answer = bool (*)(UINT message, LPARAM second);

  Interceptor(HWND form, Answer answer) : form_(form) {
    answer_ = answer;
    own_ = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(form, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure)));
  }
  ~Interceptor() { SetWindowLongPtrW(form_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(own_)); }
  Interceptor(const Interceptor&) = delete;
  Interceptor& operator=(const Interceptor&) = delete;

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    return answer_(message, second) ? 0 : CallWindowProcW(own_, window, message, first, second);
  }

  static inline Answer answer_ = nullptr;
  static inline WNDPROC own_ = nullptr;
  HWND form_;
};

/// The list of Windows stays in a loop while a button is held on a row, that of Wine doesn't.
TEST_F(ControlLoops, GiveTurnsWhileARowOfAListIsHeld) {
  Grid grid(&form_, {0, 0, 3000, 3000});
  for (int row = 0; row < 3; ++row) grid.AddItem("cell");
  show();
  const Interceptor loop(windowOf(form_), [](UINT message, LPARAM second) {
    if (message != WM_NOTIFY || reinterpret_cast<const NMHDR*>(second)->code != LVN_ITEMCHANGED) return false;
    const HWND capture = SetCapture(reinterpret_cast<const NMHDR*>(second)->hwndFrom);
    MSG held;
    while (GetCapture() != capture && GetMessageW(&held, nullptr, 0, 0) > 0) DispatchMessageW(&held);
    return false;
  });
  constexpr int firstRow = 27;  // pixels, below the headings
  expectTurns(windowOf(grid), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(firstRow, firstRow));
}

/// Windows waits for half a second for a drag, or until the mouse moves. Wine doesn't wait.
TEST_F(ControlLoops, APressOnTheTitleIsFollowedByAMove) {
  show();
  static bool isMoveNext;
  isMoveNext = false;
  const Interceptor wait(windowOf(form_), [](UINT message, LPARAM) {
    if (message != WM_SYSCOMMAND) return false;
    MSG move;
    isMoveNext = PeekMessageW(&move, nullptr, WM_MOUSEMOVE, WM_MOUSEMOVE, PM_REMOVE) != FALSE;
    return true;
  });
  RECT outer{};
  GetWindowRect(windowOf(form_), &outer);
  post(windowOf(form_), WM_NCLBUTTONDOWN, HTCAPTION, MAKELPARAM(outer.left + 60, outer.top + 10));
  EXPECT_TRUE(isMoveNext);
}

}  // namespace
}  // namespace kelvora
