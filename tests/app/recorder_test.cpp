// Games of a few windows, recorded in memory and played again.

#include "platform/recording/recorder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/form.h"
#include "platform/grid.h"
#include "platform/headless/headlessBackend.h"
#include "platform/recording/replay.h"
#include "platform/widgets.h"
#include "raster/surface.h"
#include "tests/app/memorySink.h"

namespace kelvora {
namespace {

using namespace recording;

/// A window that notes its events.
class Window : public Form {
 public:
  Window(std::string name, std::vector<std::string>& notes) : Form(name, {.clientWidth = 3000, .clientHeight = 3000}) {
    const auto noting = [name, &notes](const std::string& what) {
      return [name, &notes, what](auto... values) {
        notes.push_back(name + " " + what + ((" " + std::to_string(values)) + ... + std::string()));
      };
    };
    Click = noting("click");
    text.KeyDown = noting("down");
    text.KeyPress = noting("press");
    text.secretAt = [](const std::string& line) { return line.find('!'); };
    timer.Timer = noting("timer");
    timer.mayRest = [] { return true; };
    Show();
  }
  TextBox text{this, {0, 0, 900, 300}, ""};
  Grid grid{this, {0, 300, 900, 300}};
  IntervalTimer timer{this, 100};
};

class RecorderTest : public testing::Test {
 protected:
  /// Records a game. `world` is called in each of its calls of DoEvents, with the number of calls before.
  void record(const std::function<void()>& game, const std::function<void(HeadlessBackend&, int)>& world) {
    contents.clear();
    notes.clear();
    HeadlessBackend machine;
    int calls = 0;
    machine.onDoEvents = [&] { world(machine, calls++); };
    Recorder recorder(machine, std::make_unique<MemorySink>(contents), nullptr);
    installBackend(&recorder);
    game();
    installBackend(nullptr);
  }

  /// Plays a recording. Returns why it ended; empty if the game came to its end.
  std::string replay(const std::function<void()>& game) {
    notes.clear();
    std::string end;
    try {
      Replay replay(sourceOf(contents), "", nullptr);
      played = &replay;
      installBackend(&replay);
      game();
    } catch (const ReplayEnd& reason) {
      end = "ended: " + reason.text;
    } catch (const Damaged& reason) {
      end = reason.what();
    }
    installBackend(nullptr);
    played = nullptr;
    return end;
  }

  /// Records a game and plays it again. Its notes must be the same.
  void expectSame(const std::function<void()>& game, const std::function<void(HeadlessBackend&, int)>& world) {
    record(game, world);
    const std::vector<std::string> recorded = notes;
    ASSERT_FALSE(recorded.empty());
    EXPECT_EQ(replay(game), "");
    EXPECT_EQ(notes, recorded);
  }

  std::string contents;
  std::vector<std::string> notes;
  Replay* played = nullptr;  ///< while a game is being replayed
};

TEST_F(RecorderTest, AWindowKeepsItsNumberWhenAnEarlierOneIsDestroyed) {
  Window* second = nullptr;
  const auto game = [&] {
    auto first = std::make_unique<Window>("first", notes);
    Window other("second", notes);
    second = &other;
    first.reset();
    backend().doEvents(true);
    if (played != nullptr) {
      EXPECT_EQ(played->forms(), (std::vector<Form*>{nullptr, &other}));
    }
  };
  expectSame(game, [&](HeadlessBackend&, int) { second->Click(); });
}

TEST_F(RecorderTest, AnEventOfADestroyedWindowIsDamage) {
  Window* first = nullptr;
  bool isEarly = false;
  const auto game = [&] {
    auto window = std::make_unique<Window>("first", notes);
    first = window.get();
    if (isEarly) window.reset();
    backend().doEvents(true);
  };
  record(game, [&](HeadlessBackend&, int) { first->Click(); });
  isEarly = true;
  EXPECT_EQ(replay(game), "a window doesn't exist");
}

TEST_F(RecorderTest, AWindowMayBeDestroyedInItsOwnEvent) {
  std::unique_ptr<Form> window;
  const auto game = [&] {
    window = std::make_unique<Form>("window", Form::Design{});
    window->DblClick = [&] {
      notes.emplace_back("closes");
      window.reset();
    };
    window->Show();
    backend().doEvents(true);
    EXPECT_EQ(window, nullptr);
  };
  expectSame(game, [&](HeadlessBackend&, int) {
    const std::function<void()> event = window->DblClick;
    event();
  });
}

TEST_F(RecorderTest, WhatTheUserChangesComesBack) {
  Window* window = nullptr;
  const auto game = [&] {
    Window own("window", notes);
    own.grid.Rows = 5;
    window = &own;
    backend().doEvents(true);
    notes.push_back(own.text.Text);
    for (const int number : {own.text.SelStart.get(), int{own.grid.Row}, int{own.grid.Col}}) {
      notes.push_back(std::to_string(number));
    }
    notes.push_back(std::to_string(own.Left.get()) + " " + std::to_string(own.Width.get()));
  };
  expectSame(game, [&](HeadlessBackend&, int) {
    window->text.Text.adopt("typed");
    window->text.SelStart.adopt(3);
    window->grid.adoptCell(3, 1);
    window->Left.adopt(-75);
    window->clientResized(4500, 1500);
  });
  EXPECT_EQ(notes, (std::vector<std::string>{"typed", "3", "3", "1", "-75.000000 4700.000000"}));
}

TEST_F(RecorderTest, ATimersPauseComesBackAndEndsWhenItIsWoken) {
  Window* window = nullptr;
  const auto game = [&] {
    Window own("window", notes);
    window = &own;
    backend().doEvents(true);
    if (played != nullptr) {
      EXPECT_TRUE(own.timer.isResting);
    }
    own.timer.wake();
    if (played != nullptr) {
      EXPECT_FALSE(own.timer.isResting);
    }
    backend().doEvents(true);
  };
  expectSame(game, [&](HeadlessBackend&, int) {
    window->timer.Timer();
    window->timer.mayRest();
  });
}

TEST_F(RecorderTest, ClockAndTimeOfDayAreTheRecordedOnes) {
  const auto game = [&] {
    for (int i = 0; i < 3; ++i) {
      notes.push_back(std::to_string(backend().tickCount()) + " " + std::to_string(backend().secondsSinceMidnight()));
      backend().doEvents(false);
    }
  };
  expectSame(game, [&](HeadlessBackend& machine, int) { machine.advance(43'200'000); });
  EXPECT_EQ(notes, (std::vector<std::string>{"1000000 43200.000000", "44200000 0.000000", "87400000 43200.000000"}));
}

TEST_F(RecorderTest, LettersAndLineHeightsAreTheRecordedOnes) {
  const FontSpec font{"MS Sans Serif", 12, true};
  const auto game = [&] {
    const Glyph glyph = Surface::glyphSource()->glyph(font, 'k');
    std::string dots;
    for (const std::uint8_t value : glyph.coverage) dots += std::to_string(value) + " ";
    notes.push_back(std::to_string(glyph.advance) + ": " + dots);
    notes.push_back(std::to_string(Surface::glyphSource()->lineHeight(font)));
    EXPECT_GT(glyph.coverage.size(), 10U);
    backend().doEvents(true);
  };
  expectSame(game, [](HeadlessBackend&, int) {});
}

TEST_F(RecorderTest, BoxesNest) {
  Form* form = nullptr;
  const auto game = [&] {
    Form own("window", {});
    form = &own;
    own.Click = [&] {
      notes.emplace_back("click");
      backend().messageBox("inner");
      if (played != nullptr) {
        EXPECT_EQ(played->boxes(), std::vector<std::string>{"outer"});
      }
    };
    own.KeyPress = [&](int) {
      notes.emplace_back("press");
      if (played != nullptr) {
        EXPECT_EQ(played->boxes(), (std::vector<std::string>{"outer", "inner"}));
      }
    };
    own.Show();
    backend().doEvents(true);
    backend().messageBox("outer");
  };
  expectSame(game, [&](HeadlessBackend& machine, int) {
    machine.onMessageBox = [&](const std::string& text) { text == "outer" ? form->Click() : form->KeyPress(65); };
  });
  EXPECT_EQ(notes, (std::vector<std::string>{"click", "press"}));
}

TEST_F(RecorderTest, KeysTellNoLetterWhileASecretIsTyped) {
  Window* window = nullptr;
  const auto game = [&] {
    Window own("window", notes);
    window = &own;
    backend().doEvents(true);
    notes.push_back(own.text.Text);
  };
  const auto press = [&] {
    for (const int code : {13, 27, 32, 37, 40, 47, 48, 90, 111, 112, 117, 135, 136, 189, 222}) {
      window->text.KeyDown(code, shiftBit);
    }
    for (const int code : {8, 13, 31, 32, 33, 112, 255}) window->text.KeyPress(code);
  };
  record(game, [&](HeadlessBackend&, int) {
    window->text.Text.adopt("plain");
    press();
  });
  std::vector<std::string> real = notes;
  EXPECT_EQ(replay(game), "");
  EXPECT_EQ(notes, real);

  record(game, [&](HeadlessBackend&, int) {
    window->text.Text.adopt("a !");
    press();
    window->text.Text.adopt("a !secret");
  });
  EXPECT_EQ(notes.back(), "a !secret");
  EXPECT_EQ(replay(game), "");
  std::vector<std::string> expected;
  for (const int code : {13, 27, 0, 37, 40, 47, 0, 0, 0, 112, 117, 135, 0, 0, 0}) {
    expected.push_back("window down " + std::to_string(code) + " 1");
  }
  for (const int code : {8, 13, 31, 42, 42, 42, 42}) expected.push_back("window press " + std::to_string(code));
  expected.emplace_back("a *******");
  EXPECT_EQ(notes, expected);
}

/// Fails once it is told to.
class FullDisk : public MemorySink {
 public:
  FullDisk(std::string& contents, const bool& isFull) : MemorySink(contents), isFull_(isFull) {}
  bool isGood() const override { return !isFull_; }

 private:
  const bool& isFull_;
};

TEST_F(RecorderTest, TellsOnceThatTheSinkHasFailed) {
  HeadlessBackend machine;
  bool isFull = false;
  int sums = 0;
  int losses = 0;
  machine.onDoEvents = [&] { machine.advance(10); };
  Recorder recorder(machine, std::make_unique<FullDisk>(contents, isFull), [&] {
    ++sums;
    return std::vector<StatePart>{};
  });
  recorder.onLoss = [&] { ++losses; };
  installBackend(&recorder);
  const auto playFrames = [](int count) {
    for (int i = 0; i < count; ++i) backend().doEvents(false);
  };
  playFrames(200);
  EXPECT_EQ(losses, 0);
  EXPECT_EQ(sums, 2);
  EXPECT_TRUE(recorder.isRecording());
  isFull = true;
  playFrames(300);
  EXPECT_EQ(losses, 1);
  EXPECT_EQ(sums, 2) << "nobody needs the sums any more";
  EXPECT_FALSE(recorder.isRecording());
  recorder.fault("late");
  EXPECT_EQ(losses, 1);
  installBackend(nullptr);
}

TEST_F(RecorderTest, TellsThatAFaultWasLost) {
  HeadlessBackend machine;
  bool isFull = false;
  int losses = 0;
  Recorder recorder(machine, std::make_unique<FullDisk>(contents, isFull), nullptr);
  recorder.onLoss = [&] {
    ++losses;
    EXPECT_FALSE(recorder.isRecording());
  };
  isFull = true;
  recorder.fault("Overflow");
  EXPECT_EQ(losses, 1);
}

TEST_F(RecorderTest, RecordsAFaultOnce) {
  {
    HeadlessBackend machine;
    Recorder recorder(machine, std::make_unique<MemorySink>(contents), nullptr);
    recorder.fault("Overflow");
    EXPECT_FALSE(recorder.isRecording());
    recorder.fault("Overflow");
  }
  EXPECT_EQ(contents.find("Overflow"), contents.rfind("Overflow"));
  EXPECT_NE(contents.find("Overflow"), std::string::npos);
}

}  // namespace
}  // namespace kelvora
