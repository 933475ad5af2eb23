#include <windows.h>
// Needs <windows.h>.
#include <shellapi.h>

#include <csignal>

#include "server/system/process.h"

namespace kelvora::server {

namespace fs = std::filesystem;

namespace {

/// Called on a system thread.
BOOL WINAPI takeConsoleEvent(DWORD event) {
  // Closing the console leaves a few seconds, too few for a round to play out.
  std::raise(event == CTRL_BREAK_EVENT ? SIGTERM : SIGINT);
  // The system ends the program when this returns, or after a few seconds. The server ends by itself before that.
  if (event == CTRL_CLOSE_EVENT) Sleep(INFINITE);
  return TRUE;
}

/// Keeps clicks into the console from selecting text. The mode is the console's, so the destructor restores the old
/// one.
class NoSelecting {
 public:
  NoSelecting() {
    // Fails without a console.
    if (GetConsoleMode(input_, &before_) == 0) return;
    isChanged_ = SetConsoleMode(input_, (before_ & ~DWORD{ENABLE_QUICK_EDIT_MODE}) | ENABLE_EXTENDED_FLAGS) != 0;
  }
  ~NoSelecting() {
    if (isChanged_) SetConsoleMode(input_, before_ | ENABLE_EXTENDED_FLAGS);
  }
  NoSelecting(const NoSelecting&) = delete;
  NoSelecting& operator=(const NoSelecting&) = delete;

 private:
  /// The console's input, also if the standard input is redirected. Closed by the system.
  const HANDLE input_ = CreateFileW(L"CONIN$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
  DWORD before_ = 0;
  bool isChanged_ = false;
};

}  // namespace

std::vector<std::string> commandLine(int, char**) {
  // The arguments as the system has them, because those of `main` lack characters.
  int count = 0;
  LPWSTR* const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> line;
  for (int i = 1; i < count; ++i) line.push_back(utf8FromPath(arguments[i]));
  LocalFree(arguments);
  return line;
}

fs::path programFolder() {
  constexpr std::size_t maxPath = 32'768;  // characters
  std::wstring path(maxPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return fs::path(path).parent_path();
}

fs::path pathFromUtf8(std::string_view text) {
  const int size = static_cast<int>(text.size());
  std::wstring path(text.size(), L'\0');
  const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, path.data(), size);
  path.resize(static_cast<std::size_t>(length));
  return path;
}

std::string utf8FromPath(const fs::path& path) {
  constexpr std::size_t maxBytes = 3;  // bytes for a part of the path
  const int size = static_cast<int>(path.native().size());
  std::string text(path.native().size() * maxBytes, '\0');
  text.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, path.c_str(), size, text.data(),
                                                           static_cast<int>(text.size()), nullptr, nullptr)));
  return text;
}

bool mustReusePorts() { return false; }

// The system has no such limit.
std::size_t provideDescriptors(std::size_t wanted) { return wanted; }

// The system has no such signals.
void ignoreFatalSignals() {}

void ignoreConsoleClicks() { static const NoSelecting untilTheEnd; }

std::vector<int> stopSignals(bool) {
  SetConsoleCtrlHandler(&takeConsoleEvent, TRUE);
  return {SIGINT, SIGTERM};
}

std::optional<int> rereadSignal() { return std::nullopt; }

std::string signalName(int signal) { return signal == SIGINT ? "Ctrl+C or a closed console" : "Ctrl+Break"; }

void ignoreFurtherSignals() {
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGTERM, SIG_IGN);
}

bool isLoggingToJournal() { return false; }

}  // namespace kelvora::server
