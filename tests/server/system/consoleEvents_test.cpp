#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace {

/// The real server on a console that it shares with this program.
class RunningServer {
 public:
  RunningServer() {
    AllocConsole();  // fails if there is one
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    HANDLE writer = nullptr;
    CreatePipe(&output_, &writer, &inheritable, 0);
    SetHandleInformation(output_, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOA how{};
    how.cb = sizeof how;
    how.dwFlags = STARTF_USESTDHANDLES;
    how.hStdOutput = writer;
    how.hStdError = writer;
    std::string line = "\"" KELVORA_SERVER_PROGRAM "\" --port 0";
    // A group of its own, so that the event doesn't reach this program.
    EXPECT_TRUE(CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NEW_PROCESS_GROUP, nullptr, nullptr,
                               &how, &process_));
    CloseHandle(writer);
  }
  RunningServer(const RunningServer&) = delete;
  RunningServer& operator=(const RunningServer&) = delete;
  ~RunningServer() {
    TerminateProcess(process_.hProcess, 1);
    for (const HANDLE handle : {output_, process_.hThread, process_.hProcess}) CloseHandle(handle);
  }

  /// Reads until the text has come. False if the server ends before.
  bool awaitText(const std::string& text) {
    char letter = 0;
    DWORD size = 0;
    while (printed_.find(text) == std::string::npos) {
      if (ReadFile(output_, &letter, 1, &size, nullptr) == FALSE || size == 0) return false;
      printed_ += letter;
    }
    return true;
  }
  void send(DWORD event) const { EXPECT_TRUE(GenerateConsoleCtrlEvent(event, process_.dwProcessId)); }
  DWORD exitCode() const {
    WaitForSingleObject(process_.hProcess, INFINITE);
    DWORD code = STILL_ACTIVE;
    GetExitCodeProcess(process_.hProcess, &code);
    return code;
  }

 private:
  PROCESS_INFORMATION process_{};
  HANDLE output_ = nullptr;
  std::string printed_;
};

TEST(ConsoleEvents, EndTheServerInOrder) {
  RunningServer server;
  ASSERT_TRUE(server.awaitText("listening on 127.0.0.1:"));
  server.send(CTRL_BREAK_EVENT);
  EXPECT_TRUE(server.awaitText("asked to end: shutting down"));
  EXPECT_TRUE(server.awaitText("ended"));
  EXPECT_EQ(server.exitCode(), 0U);
}

}  // namespace
