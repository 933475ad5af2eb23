#include <gtest/gtest.h>

#include <algorithm>

#include "base/fault.h"
#include "platform/headless/blockGlyphs.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class Headless : public GameTest {};

TEST_F(Headless, ClockStandsStillUntilAdvanced) {
  EXPECT_EQ(GetTickCount(), 1'000'000);
  EXPECT_EQ(GetTickCount(), 1'000'000);
  machine.seconds = 10;
  tick(1500);
  EXPECT_EQ(GetTickCount(), 1'001'500);
  EXPECT_EQ(Timer(), 11.5F);
}

TEST_F(Headless, ScriptedDrawsComeFirst) {
  machine.scriptedDraws = {0.25F, 0.75F};
  EXPECT_EQ(Rnd(), 0.25F);
  EXPECT_EQ(Rnd(), 0.75F);
  machine.generator.randomize(5);
  RandomGenerator same;
  same.randomize(5);
  EXPECT_EQ(Rnd(), same.next());
}

TEST_F(Headless, SettingsAreKeptAndMissingOnesFallBack) {
  EXPECT_EQ(GetSetting("section", "key", "fallback"), "fallback");
  SaveSetting("section", "key", "value");
  EXPECT_EQ(GetSetting("section", "key", "fallback"), "value");
  EXPECT_EQ(GetSetting("other", "key", "fallback"), "fallback");
}

TEST_F(Headless, EventsRunInOrderAndOnlyInsideDoEvents) {
  std::string order;
  machine.post([&] {
    order += 'a';
    machine.post([&order] { order += 'c'; });
  });
  machine.post([&order] { order += 'b'; });
  EXPECT_EQ(order, "");
  DoEvents();
  EXPECT_EQ(order, "abc");
}

TEST_F(Headless, EventsCanRunWhileABoxIsOpen) {
  bool ran = false;
  machine.post([&ran] { ran = true; });
  machine.onMessageBox = [this](const std::string&) { passEvents(); };
  MsgBox("Hello");
  EXPECT_TRUE(ran);
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Hello"});
}

TEST_F(Headless, TimerFiresOnceHoweverLateAndNeverWhileDisabled) {
  frmMain->Show();
  int fired = 0;
  frmMain->tmrCheckNetStatus.Timer = [&fired] { ++fired; };
  tick(5000);
  passEvents();
  passEvents();
  EXPECT_EQ(fired, 1);
  tick(1000);
  frmMain->tmrCheckNetStatus.Enabled = false;
  passEvents();
  EXPECT_EQ(fired, 1);
  frmMain->tmrCheckNetStatus.Enabled = true;
  passEvents();
  EXPECT_EQ(fired, 1) << "the interval restarts";
  tick(1000);
  passEvents();
  EXPECT_EQ(fired, 2);
}

TEST_F(Headless, SocketConnectsWhenTheFarEndAccepts) {
  Winsock socket;
  HeadlessSocket& far = machine.socketOf(socket);
  int connected = 0;
  socket.onConnect = [&connected] { ++connected; };
  EXPECT_EQ(socket.State(), sckClosed);
  EXPECT_THROW(socket.SendData("x"), RuntimeFault);
  socket.RemoteHost = "arena";
  socket.RemotePort = 99;
  socket.Connect();
  EXPECT_EQ(socket.State(), sckConnecting);
  EXPECT_THROW(socket.Connect(), RuntimeFault);
  far.acceptConnection();
  EXPECT_EQ(connected, 0);
  passEvents();
  EXPECT_EQ(connected, 1);
  EXPECT_EQ(socket.State(), sckConnected);
  socket.SendData("one");
  socket.SendData("two");
  EXPECT_EQ(far.sent, "onetwo");
  EXPECT_EQ(far.sends, (std::vector<std::string>{"one", "two"}));
  EXPECT_EQ(far.connects, (std::vector<std::pair<std::string, int>>{{"arena", 99}}));
}

TEST_F(Headless, DataInTransitBeforeACloseNeverArrives) {
  Winsock socket;
  HeadlessSocket& far = machine.socketOf(socket);
  int arrivals = 0;
  socket.onDataArrival = [&arrivals] { ++arrivals; };
  socket.Connect();
  far.acceptConnection();
  far.deliver("old");
  socket.Close();
  socket.Connect();
  far.acceptConnection();
  passEvents();
  EXPECT_EQ(arrivals, 0);
  EXPECT_EQ(socket.State(), sckConnected);
  far.deliver("new", 2);
  passEvents();
  EXPECT_EQ(arrivals, 1);
  EXPECT_EQ(socket.GetData(), "ne");
  EXPECT_EQ(socket.GetData(), "w");
  EXPECT_EQ(socket.GetData(), "");
}

TEST_F(Headless, ARefusalAndAHangUpShowInTheState) {
  Winsock socket;
  HeadlessSocket& far = machine.socketOf(socket);
  int closed = 0;
  socket.onClose = [&closed] { ++closed; };
  socket.Connect();
  far.refuse();
  passEvents();
  EXPECT_EQ(socket.State(), sckError);
  EXPECT_EQ(closed, 0);
  socket.Close();
  socket.Connect();
  far.acceptConnection();
  far.closeByServer();
  passEvents();
  EXPECT_EQ(socket.State(), sckClosing);
  EXPECT_EQ(closed, 1);
}

TEST_F(Headless, ThePointerAndTheEndAreRecorded) {
  SetCursorPos(3, 4);
  EXPECT_EQ(machine.pointerPlacements, (std::vector<std::pair<int, int>>{{3, 4}}));
  EXPECT_THROW(endProcess(), ProcessEnded);
}

TEST_F(Headless, GlyphOfEveryCharacterIsWellFormed) {
  BlockGlyphs face;
  for (const float size : {8.25F, 9.0F, 16.0F, 48.0F}) {
    for (const bool bold : {false, true}) {
      const FontSpec font{"any", size, bold};
      for (int character = 0; character < 256; ++character) {
        const Glyph glyph = face.glyph(font, static_cast<unsigned char>(character));
        ASSERT_GT(glyph.advance, glyph.width) << character;
        ASSERT_GT(glyph.height, 0) << character;
        ASSERT_LE(glyph.top + glyph.height, face.lineHeight(font)) << character;
        ASSERT_EQ(glyph.coverage.size(), static_cast<std::size_t>(glyph.width * glyph.height)) << character;
      }
    }
  }
}

TEST_F(Headless, GlyphsDifferByCharacterSizeAndWeight) {
  BlockGlyphs face;
  const FontSpec small{"any", 9, false};
  const FontSpec bold{"any", 9, true};
  const FontSpec large{"any", 16, false};
  EXPECT_LT(face.glyph(small, 'I').advance, face.glyph(small, 'W').advance);
  EXPECT_LT(face.glyph(small, 'A').advance, face.glyph(large, 'A').advance);
  EXPECT_LT(face.glyph(small, 'A').advance, face.glyph(bold, 'A').advance);
  EXPECT_LT(face.glyph(small, 'a').height, face.glyph(small, 'A').height);
  EXPECT_NE(face.glyph(small, 'O').coverage, face.glyph(small, 'C').coverage);
  const Glyph blank = face.glyph(small, ' ');
  EXPECT_EQ(std::count(blank.coverage.begin(), blank.coverage.end(), 0), std::ssize(blank.coverage));
}

TEST_F(Headless, GlyphsHaveABoundedSize) {
  BlockGlyphs face;
  const auto height = [&](float points) { return face.glyph({"Any", points, false}, 'A').height; };
  EXPECT_EQ(height(9), 9) << "12 pixels, of which a capital takes three quarters";
  EXPECT_EQ(height(150), 150);
  EXPECT_EQ(height(32767), 9) << "a size from tampered settings";
}

}  // namespace
}  // namespace kelvora
