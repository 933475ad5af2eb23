#include "server/net/worker.h"

#include <gtest/gtest.h>

#include <future>
#include <vector>

#include "tests/support/noThreads.h"

namespace kelvora::server {
namespace {

TEST(Worker, RunsItsJobsInOrderAndFinishesThePendingOnes) {
  std::vector<int> done;
  {
    Worker worker;
    for (int i = 0; i < 10; ++i) EXPECT_TRUE(worker.post([&done, i] { done.push_back(i); }));
  }
  EXPECT_EQ(done, (std::vector{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(Worker, RefusesMoreThan32PendingJobs) {
  std::promise<void> begun;
  std::promise<void> mayEnd;
  Worker worker;
  ASSERT_TRUE(worker.post([&] {
    begun.set_value();
    mayEnd.get_future().wait();
  }));
  begun.get_future().wait();
  for (int i = 0; i < 32; ++i) EXPECT_TRUE(worker.post([] {}));
  EXPECT_FALSE(worker.post([] {}));
  mayEnd.set_value();
}

TEST(Worker, RefusesJobsWhileTheSystemHasNoThread) {
  bool isDone = false;
  {
    Worker worker;
    {
      const NoThreads machine;
      EXPECT_FALSE(worker.post([] { FAIL() << "a refused job ran"; }));
    }
    EXPECT_TRUE(worker.post([&isDone] { isDone = true; }));
  }
  EXPECT_TRUE(isDone);
}

}  // namespace
}  // namespace kelvora::server
