#pragma once

#include <sys/resource.h>

#include <csignal>

namespace kelvora::server {

/// As long as it exists, this process can't write beyond that size of any file, as on a disk that fills up.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit full = before_;
    full.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &full);
    signalBefore_ = std::signal(SIGXFSZ, SIG_IGN);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signalBefore_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
  void (*signalBefore_)(int) = nullptr;
};

}  // namespace kelvora::server
