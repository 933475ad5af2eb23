#include "platform/win32/messagePump.h"

#include <algorithm>

#include "platform/sockets/networkSignal.h"
#include "platform/win32/eventQueue.h"
#include "platform/win32/win32.h"

namespace kelvora {

namespace {

constexpr UINT turnLength = 10;            // ms between the game's turns during a loop of the system's
constexpr SIZE_T pumpStack = 1024 * 1024;  // bytes

LPVOID gameFiber = nullptr;
LPVOID pumpFiber = nullptr;
UINT_PTR turnTimer = 0;
int systemLoops = 0;
bool isPumping = false;  ///< the pump's fiber runs

void leavePump() {
  isPumping = false;
  SwitchToFiber(gameFiber);
}

void CALLBACK giveTurn(HWND, UINT, UINT_PTR, DWORD) {
  if (isPumping) leavePump();
}

void CALLBACK pump(LPVOID) {
  for (;;) {
    MSG message;
    while (!isInputQueued() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
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

bool isInSystemLoop() { return systemLoops > 0; }

void systemLoopBegins() {
  if (systemLoops++ == 0) turnTimer = SetTimer(nullptr, 0, turnLength, giveTurn);
}

void systemLoopEnds() {
  systemLoops = std::max(systemLoops - 1, 0);
  if (systemLoops == 0) KillTimer(nullptr, turnTimer);
}

}  // namespace kelvora
