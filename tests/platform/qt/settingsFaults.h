#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <new>
#include <string>

#include "platform/qt/qtSettings.h"

namespace kelvora {

using std::chrono::milliseconds;

/// Memory shared by this process and its children.
template <class Content>
class Shared {
 public:
  Shared()
      : content_(static_cast<Content*>(
            mmap(nullptr, sizeof(Content), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
    new (content_) Content{};
  }
  ~Shared() { munmap(content_, sizeof(Content)); }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;
  Content* operator->() const { return content_; }
  Content& operator*() const { return *content_; }

 private:
  Content* content_;
};

/// Another run of the game in its own process. It executes its orders and ends with status 0.
class OtherRun {
 public:
  explicit OtherRun(const std::function<void()>& work) : process_(fork()) {
    if (process_ != 0) return;
    work();
    _exit(0);
  }
  ~OtherRun() {
    if (process_ > 0) kill();
  }
  OtherRun(const OtherRun&) = delete;
  OtherRun& operator=(const OtherRun&) = delete;

  /// Stops it, wherever it is.
  void suspend() const {
    ::kill(process_, SIGSTOP);
    waitpid(process_, nullptr, WUNTRACED);
  }
  void resume() const { ::kill(process_, SIGCONT); }
  void kill() {
    ::kill(process_, SIGKILL);
    status();
  }
  /// Waits for its end.
  int status() {
    int status = -1;
    waitpid(process_, &status, 0);
    process_ = -1;
    return status;
  }

 private:
  pid_t process_;
};

/// A settings file exposed to other runs, full disks and kills.
class SettingsFaults : public ::testing::Test {
 protected:
  SettingsFaults() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvora-faults-XXXXXX").string();
    home_ = mkdtemp(pattern.data());
  }
  ~SettingsFaults() override { std::filesystem::remove_all(home_); }

  std::string file() const { return home_ / "kelvora" / "kelvora.ini"; }

  /// `patience` is how long it waits for a run that hangs while it saves.
  void write(const std::string& key, const std::string& value, milliseconds patience = std::chrono::minutes(1)) const {
    QtSettings(file(), patience).write("misc", key, value);
  }
  /// The value that a later run would read: the same bytes under a path that this process hasn't cached.
  std::string readInLaterRun(const std::string& key) {
    const std::filesystem::path copy = home_ / ("later" + std::to_string(++copies_) + ".ini");
    std::filesystem::copy_file(file(), copy);
    return QtSettings(copy.string()).read("misc", key, "missing");
  }

  /// True if no run holds the turn to write, so that nobody has to wait.
  bool isTurnFree() const {
    const int folder = ::open(std::filesystem::path(file()).parent_path().c_str(), O_RDONLY | O_DIRECTORY);
    const bool isFree = ::flock(folder, LOCK_EX | LOCK_NB) == 0;
    ::close(folder);
    return isFree;
  }

  /// True if no draft is left.
  bool isTidy() const {
    const std::filesystem::directory_iterator entries(std::filesystem::path(file()).parent_path());
    return std::ranges::none_of(
        entries, [](const auto& entry) { return entry.path().string().find(".saving") != std::string::npos; });
  }

  std::filesystem::path home_;

 private:
  int copies_ = 0;
};

}  // namespace kelvora
