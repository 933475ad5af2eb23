#include "server/net/worker.h"

#include <system_error>
#include <utility>

namespace kelvora::server {

Worker::~Worker() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
    changed_.notify_one();
  }
  if (thread_.joinable()) thread_.join();
}

bool Worker::post(std::function<void()> job) {
  const std::lock_guard lock(mutex_);
  if (jobs_.size() >= maxPending) return false;
  try {
    if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
  } catch (const std::system_error&) {
    return false;
  }
  jobs_.push_back(std::move(job));
  changed_.notify_one();
  return true;
}

void Worker::run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return isEnding_ || !jobs_.empty(); });
    if (jobs_.empty()) return;
    const auto job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    job();
    lock.lock();
  }
}

}  // namespace kelvora::server
