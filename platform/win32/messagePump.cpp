#include "platform/win32/messagePump.h"

#include "platform/sockets/networkSignal.h"
#include "platform/win32/eventQueue.h"
#include "platform/win32/win32.h"

namespace kelvora {

namespace {

constexpr UINT turnLength = 10;            // ms between the game's turns during a loop of the system's
constexpr SIZE_T pumpStack = 1024 * 1024;  // bytes

LPVOID gameFiber = nullptr;
LPVOID pumpFiber = nullptr;
UINT_PTR turnTimer = 0;  ///< runs during a loop of the system's; 0 for none
bool isPumping = false;  ///< the pump's fiber runs

void leavePump() {
  isPumping = false;
  SwitchToFiber(gameFiber);
}

void CALLBACK giveTurn(HWND, UINT, UINT_PTR, DWORD) {
  if (isPumping) leavePump();
}

void endTurns() {
  if (turnTimer != 0) KillTimer(nullptr, turnTimer);
  turnTimer = 0;
}

void CALLBACK pump(LPVOID) {
  for (;;) {
    MSG message;
    while (!isInputQueued() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    // A loop lasts as long as a dispatch. A window that was destroyed meanwhile doesn't hear of the loop's end.
    endTurns();
    leavePump();
  }
}

}  // namespace

void pumpMessages() {
  if (pumpFiber == nullptr) {
    gameFiber = ConvertThreadToFiber(nullptr);
    pumpFiber = CreateFiber(pumpStack, pump, nullptr);
  }
  isPumping = true;
  SwitchToFiber(pumpFiber);
}

void waitForMessages(int milliseconds) {
  // A loop of the system is taking the messages. It returns here with the next turn.
  if (isInSystemLoop()) return;
  const auto event = reinterpret_cast<HANDLE>(networkSignal());
  const DWORD patience = milliseconds < 0 ? INFINITE : static_cast<DWORD>(milliseconds);
  MsgWaitForMultipleObjectsEx(1, &event, patience, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
}

bool isInSystemLoop() { return turnTimer != 0; }

void systemLoopBegins() {
  if (turnTimer == 0) turnTimer = SetTimer(nullptr, 0, turnLength, giveTurn);
}

}  // namespace kelvora
