#pragma once

#include <pthread.h>

#include <cstddef>

namespace kelvora {

/// While it exists, the process has no memory for another thread's stack. For Linux.
class NoThreads {
 public:
  NoThreads() {
    pthread_getattr_default_np(&before_);
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    pthread_attr_setstacksize(&huge, std::size_t{1} << 46);
    pthread_setattr_default_np(&huge);
    pthread_attr_destroy(&huge);
  }
  ~NoThreads() { pthread_setattr_default_np(&before_); }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

 private:
  pthread_attr_t before_{};
};

}  // namespace kelvora
