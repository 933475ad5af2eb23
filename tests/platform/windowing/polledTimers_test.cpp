#include "platform/windowing/polledTimers.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/form.h"
#include "platform/headless/headlessBackend.h"
#include "platform/widgets.h"

namespace kelvora {
namespace {

constexpr Millis never = std::numeric_limits<Millis>::max();

class TimerForm : public Form {
 public:
  TimerForm() : Form("Timers", {}) {
    timer.Timer = [this] { ++ticks; };
  }
  IntervalTimer timer{this, 100};
  IntervalTimer soon{this, 30};  // has no peer yet
  int ticks = 0;
};

class PolledTimers : public testing::Test {
 protected:
  PolledTimers() {
    installBackend(&backend);
    form.timer.peer = makePolledTimer(form.timer);
  }

  ~PolledTimers() override { installBackend(nullptr); }

  // How often the timer ticks in one turn after these milliseconds.
  int ticksAfter(Millis ms) {
    form.ticks = 0;
    backend.advance(ms);
    serveTimers(GetTickCount());
    return form.ticks;
  }

  HeadlessBackend backend;
  TimerForm form;
};

TEST_F(PolledTimers, TickOnceAnIntervalHasPassed) {
  EXPECT_EQ(ticksAfter(99), 0);
  EXPECT_EQ(ticksAfter(1), 1);
  EXPECT_EQ(ticksAfter(99), 0);
  EXPECT_EQ(ticksAfter(1), 1);
}

TEST_F(PolledTimers, TickOnceAfterSeveralIntervals) {
  EXPECT_EQ(ticksAfter(1000), 1);
  EXPECT_EQ(ticksAfter(99), 0);
}

TEST_F(PolledTimers, TellWhenTheNextOneIsDue) {
  const Millis begin = GetTickCount();
  EXPECT_EQ(nextTimer(), begin + 100);
  form.soon.peer = makePolledTimer(form.soon);
  EXPECT_EQ(nextTimer(), begin + 30);
  form.soon.peer.reset();
  EXPECT_EQ(nextTimer(), begin + 100);
}

TEST_F(PolledTimers, RestWhileDisabledOrWithoutAnInterval) {
  form.timer.Enabled = false;
  EXPECT_EQ(nextTimer(), never);
  EXPECT_EQ(ticksAfter(1000), 0);
  form.timer.Enabled = true;
  EXPECT_EQ(nextTimer(), GetTickCount() + 100);
  form.timer.Interval = 0;
  EXPECT_EQ(nextTimer(), never);
}

TEST_F(PolledTimers, StartAnewWithANewInterval) {
  EXPECT_EQ(ticksAfter(50), 0);
  form.timer.Interval = 70;
  EXPECT_EQ(ticksAfter(69), 0);
  EXPECT_EQ(ticksAfter(1), 1);
}

TEST_F(PolledTimers, RestUntilWokenWhenTheyMay) {
  form.timer.mayRest = [] { return true; };
  EXPECT_EQ(ticksAfter(100), 1);
  EXPECT_TRUE(form.timer.isResting);
  EXPECT_EQ(nextTimer(), never);
  form.timer.wake();
  EXPECT_FALSE(form.timer.isResting);
  EXPECT_EQ(ticksAfter(99), 0);
  EXPECT_EQ(ticksAfter(1), 1);
}

TEST_F(PolledTimers, MayEndInsideAHandler) {
  form.soon.Timer = form.timer.Timer;
  form.soon.peer = makePolledTimer(form.soon);
  form.timer.Timer = [this] { form.soon.peer.reset(); };
  EXPECT_EQ(ticksAfter(100), 0);
}

}  // namespace
}  // namespace kelvora
