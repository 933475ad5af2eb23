#include "tests/platform/windowModel/process.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <thread>

#include "platform/win32/win32.h"
#include "tests/platform/windowModel/walker.h"

// Each walk runs this program again, with the numbers of its steps in the environment.

namespace kelvora {

namespace {

constexpr const wchar_t* walkVariable = L"KELVORA_WALK";
constexpr auto maxWalkLength = std::chrono::minutes(4);
constexpr int tookTooLong = 5;  // exit status

/// Ends the test if the system refuses something.
void require(BOOL result, const char* call) {
  if (result != FALSE) return;
  std::fprintf(stderr, "%s failed with error %lu\n", call, GetLastError());
  std::abort();
}

/// The steps of this process, if it is a walk.
bool stepsHere(Steps& found) {
  const wchar_t* text = _wgetenv(walkVariable);
  if (text == nullptr) return false;
  std::wistringstream numbers(text);
  for (std::size_t number = 0; numbers >> number;) found.push_back(&steps()[number]);
  return true;
}

}  // namespace

std::shared_ptr<void> prepareWalks() {
  Steps here;
  if (!stepsHere(here)) return nullptr;
  std::thread([] {
    std::this_thread::sleep_for(maxWalkLength);
    std::_Exit(tookTooLong);
  }).detach();
  _putenv_s("KELVORA_FRAME_MS", "");
  walkHere(here, [](const std::string& line) {
    std::puts(line.c_str());
    std::fflush(stdout);
  });
}

// This process can't be copied to try it.
bool closingEndsTheProcess() { return true; }

Ended runApart(const Steps& sequence) {
  std::wstring numbers = L" ";  // an empty variable would not exist
  for (const Step* step : sequence) numbers += std::to_wstring(step - steps().data()) + L" ";
  SetEnvironmentVariableW(walkVariable, numbers.c_str());
  SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
  HANDLE reader = nullptr;
  HANDLE writer = nullptr;
  require(CreatePipe(&reader, &writer, &inheritable, 0), "CreatePipe");
  SetHandleInformation(reader, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW how{};
  how.cb = sizeof how;
  how.dwFlags = STARTF_USESTDHANDLES;
  how.hStdOutput = writer;
  how.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION started{};
  wchar_t program[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  require(CreateProcessW(program, nullptr, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &how, &started),
          "CreateProcess");
  SetEnvironmentVariableW(walkVariable, nullptr);
  CloseHandle(writer);
  Ended ended;
  char piece[4096];
  for (DWORD size = 0; ReadFile(reader, piece, sizeof piece, &size, nullptr) != FALSE && size > 0;) {
    ended.report.append(piece, size);
  }
  WaitForSingleObject(started.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(started.hProcess, &status);
  if (status != 0) ended.failure = "the process ended with status " + std::to_string(status);
  for (const HANDLE handle : {reader, started.hThread, started.hProcess}) CloseHandle(handle);
  return ended;
}

}  // namespace kelvora
