#include <windows.h>

/// A window of the game's size with nothing in it.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  WNDCLASSA kind{};
  kind.lpfnWndProc = [](HWND window, UINT message, WPARAM first, LPARAM second) -> LRESULT {
    if (message == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcA(window, message, first, second);
  };
  kind.hInstance = instance;
  kind.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  kind.lpszClassName = "Empty";
  RegisterClassA(&kind);
  CreateWindowA("Empty", "Empty", WS_OVERLAPPEDWINDOW | WS_VISIBLE, CW_USEDEFAULT, CW_USEDEFAULT, 900, 720, nullptr,
                nullptr, instance, nullptr);
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
  return 0;
}
