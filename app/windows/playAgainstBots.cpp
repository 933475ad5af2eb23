#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>

namespace {

struct Close {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<HANDLE>, Close>;

/// The file of this name beside this program.
std::wstring beside(const wchar_t* name) {
  constexpr DWORD maxPath = 32'768;  // characters
  std::wstring path(maxPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), maxPath));
  return path.substr(0, path.rfind(L'\\') + 1) + name;
}

/// Says why a program of this folder didn't start, and what to do.
int fail(const std::wstring& program) {
  const bool isMissing = GetFileAttributesW(beside(program.c_str()).c_str()) == INVALID_FILE_ATTRIBUTES;
  const std::wstring text =
      isMissing ? program + L" is missing. Unpack the whole archive into one folder, or install the game again."
                : program + L" could not be started. Start it in a command prompt to see why.";
  MessageBoxW(nullptr, text.c_str(), L"Kelvora", MB_OK | MB_ICONERROR);
  return 1;
}

/// This program's arguments as they were given.
std::wstring arguments() {
  const std::wstring line = GetCommandLineW();
  const std::size_t end = line.starts_with(L'"') ? line.find(L'"', 1) : line.find(L' ');
  return end == std::wstring::npos ? L"" : line.substr(end + 1);
}

/// Starts a program of this folder. Returns null if that fails.
Handle start(const wchar_t* program, const std::wstring& itsArguments, STARTUPINFOW& how, DWORD flags) {
  const std::wstring path = beside(program);
  std::wstring line = L'"' + path + L"\" " + itsArguments;
  how.cb = sizeof how;
  PROCESS_INFORMATION started{};
  const BOOL inherits = (how.dwFlags & STARTF_USESTDHANDLES) != 0 ? TRUE : FALSE;
  if (CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, inherits, flags, nullptr, nullptr, &how, &started) ==
      FALSE) {
    return nullptr;
  }
  CloseHandle(started.hThread);
  return Handle(started.hProcess);
}

/// A job whose processes die with this program.
Handle makeJob() {
  Handle job(CreateJobObjectW(nullptr, nullptr));
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return job;
}

/// Reads what a program prints until a line begins with "listening on ", and returns the rest of that line. Empty if
/// the program ends before.
std::string readEndpoint(HANDLE output) {
  constexpr char start[] = "listening on ";
  std::string line;
  char letter = 0;
  DWORD size = 0;
  while (ReadFile(output, &letter, 1, &size, nullptr) != FALSE && size == 1) {
    if (letter != '\n') {
      line += letter;
      continue;
    }
    if (line.starts_with(start)) return line.substr(sizeof start - 1, line.find('\r') - (sizeof start - 1));
    line.clear();
  }
  return {};
}

/// Starts the server on this port, 0 for any free one. Returns where it listens; empty if it doesn't.
std::string startServer(const std::wstring& port, HANDLE job) {
  SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
  HANDLE reader = nullptr;
  HANDLE writer = nullptr;
  if (CreatePipe(&reader, &writer, &inheritable, 0) == FALSE) return {};
  const Handle output(reader);
  Handle input(writer);
  SetHandleInformation(reader, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW how{};
  how.dwFlags = STARTF_USESTDHANDLES;
  how.hStdOutput = writer;
  const Handle server =
      start(L"kelvora-server.exe", L"--port " + port + L" --notes \"on this machine\" --bots 3 --skill mixed", how,
            CREATE_NO_WINDOW);
  if (!server) return {};
  AssignProcessToJobObject(job, server.get());
  input.reset();
  return readEndpoint(output.get());
}

/// Starts the game with this program's arguments, and waits. Returns its exit code.
int play() {
  STARTUPINFOW how{};
  const Handle game = start(L"kelvora.exe", arguments(), how, 0);
  if (!game) return fail(L"kelvora.exe");
  WaitForSingleObject(game.get(), INFINITE);
  DWORD result = 1;
  GetExitCodeProcess(game.get(), &result);
  return static_cast<int>(result);
}

}  // namespace

/// Starts a local server with bots and the game. The server ends with the game or with this program.
int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  const Handle job = makeJob();
  // The connect dialog's default port. If it is taken, the game finder shows the other one.
  std::string endpoint = startServer(L"2010", job.get());
  if (endpoint.empty()) endpoint = startServer(L"0", job.get());
  if (endpoint.empty()) return fail(L"kelvora-server.exe");
  constexpr const wchar_t* webHost = L"KELVORA_WEB_HOST";
  if (GetEnvironmentVariableW(webHost, nullptr, 0) == 0) {
    SetEnvironmentVariableW(webHost, std::wstring(endpoint.begin(), endpoint.end()).c_str());
  }
  return play();
}
