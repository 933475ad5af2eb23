#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <system_error>

#include "server/system/process.h"

namespace kelvora::server {

namespace fs = std::filesystem;

std::vector<std::string> commandLine(int argc, char** argv) { return {argv + std::min(argc, 1), argv + argc}; }

fs::path programFolder() {
  std::error_code ignored;
  return fs::read_symlink("/proc/self/exe", ignored).parent_path();
}

fs::path pathFromUtf8(std::string_view text) { return text; }

std::string utf8FromPath(const fs::path& path) { return path.native(); }

bool mustReusePorts() { return true; }

std::size_t provideDescriptors(std::size_t wanted) {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return wanted;
  if (limit.rlim_cur < wanted) {
    limit.rlim_cur = std::min<rlim_t>(wanted, limit.rlim_max);
    ::setrlimit(RLIMIT_NOFILE, &limit);
    ::getrlimit(RLIMIT_NOFILE, &limit);
  }
  return limit.rlim_cur;
}

void ignoreFatalSignals() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

// The system has no such consoles.
void ignoreConsoleClicks() {}

std::vector<int> stopSignals(bool withTerminal) {
  std::vector<int> signals{SIGINT, SIGTERM};
  // nohup ignores it.
  if (withTerminal && std::signal(SIGHUP, SIG_IGN) != SIG_IGN) signals.push_back(SIGHUP);
  return signals;
}

std::optional<int> rereadSignal() { return SIGHUP; }

std::string signalName(int signal) {
  if (signal == SIGHUP) return "SIGHUP";
  return signal == SIGINT ? "SIGINT" : "SIGTERM";
}

void ignoreFurtherSignals() {
  sigset_t all;
  sigfillset(&all);
  ::sigprocmask(SIG_BLOCK, &all, nullptr);
}

bool isLoggingToJournal() {
  const char* stream = std::getenv("JOURNAL_STREAM");
  struct stat file {};
  if (stream == nullptr || ::fstat(STDERR_FILENO, &file) != 0) return false;
  return std::string(stream) == std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino);
}

}  // namespace kelvora::server
