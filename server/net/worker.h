#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace kelvora::server {

/// A thread for work that would hold up the game, such as hashes and files. Runs its jobs one after the other.
class Worker {
 public:
  static constexpr std::size_t maxPending = 32;  ///< jobs

  Worker() = default;
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  /// Finishes the pending jobs.
  ~Worker();

  /// Starts the thread with the first job. False if too many jobs are pending, or if the system has no thread.
  bool post(std::function<void()> job);

 private:
  void run();

  std::mutex mutex_;  // guards jobs_, isEnding_ and the start of thread_
  std::condition_variable changed_;
  std::deque<std::function<void()>> jobs_;
  bool isEnding_ = false;
  std::thread thread_;
};

}  // namespace kelvora::server
