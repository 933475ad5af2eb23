#include <gtest/gtest.h>

#include "audio/soundMan.h"
#include "base/fault.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class PowerupRules : public GameTest {
 protected:
  PowerupRules() { login(0, 7); }

  clsPlayer& player() { return modMain::world.localPlayer; }
  static const std::string& lastLine() { return modMain::world.chatLines[0].text; }
  static Colour lastColour() { return modMain::world.chatLines[0].colour; }
  /// Lines without a configurable font are white as well. Their size distinguishes them from white lines with one.
  static bool isPlain() { return lastColour() == RGB(255, 255, 255) && modMain::world.chatLines[0].size == 0; }
  /// Clears the console and the centre message to a marker, so that the next text shows.
  static void forgetTexts() {
    modMain::world.chatLines = {};
    modMain::showCentreMessage("");
  }
  void nextSecond(clsPlayer& who) {
    tick(1000);
    who.tickPowerups();
  }
};

constexpr Colour errorRed = RGB(255, 0, 0);

TEST_F(PowerupRules, ActivationFollowsTheTable) {
  struct Row {
    PowerupSlot slot;
    std::int16_t seconds;
    bool active;
    const char* message;
  };
  for (const Row& row : {Row{shieldSlot, 15, true, "Shields up"}, Row{turboSlot, 5, true, "Turbo Boost"},
                         Row{chargedTailSlot, 5, true, "Charged Tail"}, Row{extendedTailSlot, 5, true, "Extended Tail"},
                         Row{laserSlot, 1, true, "Laser Blast"}, Row{pulseSlot, 0, false, "Electro-Magnetic Pulse"}}) {
    forgetTexts();
    PowerupState& powerup = player().powerups[indexOf(row.slot)];
    powerup = {3, 99, false};
    player().activatePowerup(row.slot);
    EXPECT_EQ(powerup.count, 2) << row.slot;
    EXPECT_EQ(powerup.timeLeft, row.seconds) << row.slot;
    EXPECT_EQ(powerup.active, row.active) << row.slot;
    EXPECT_EQ(modMain::world.centreMessage, row.message);
  }
}

TEST_F(PowerupRules, KeysAndSoundsFollowTheTable) {
  soundMan::initAudio();
  join(8, 1, "Bob");
  struct Row {
    int key;
    const char* sound;
  };
  // F1 to F6. The pulse needs a shield.
  const Row rows[] = {{112, "puShield.wav"},   {113, "puTurbo.wav"}, {114, "puChargedTail.wav"},
                      {115, "puLongTail.wav"}, {116, "puLaser.wav"}, {117, "puMissile.wav"}};
  for (PowerupState& powerup : player().powerups) powerup.count = 1;
  for (int slot = 0; slot < 6; ++slot) {
    const std::string number = std::to_string(slot);
    forgetSent();
    (slot % 2 == 0 ? frmMain->canvas.KeyDown : frmMain->txtChat.KeyDown)(rows[slot].key, 0);
    EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{155, {number}}}));
    machine.soundCommands.clear();
    serverSends(156, {"8", number});
    EXPECT_TRUE(machine.soundCommands.empty()) << "an opponent's makes no sound";
    serverSends(156, {"7", number});
    ASSERT_FALSE(machine.soundCommands.empty());
    EXPECT_EQ(machine.soundCommands.back(), std::string(rows[slot].sound) + " play");
  }
}

TEST_F(PowerupRules, TheTotalIsTheSumOfTheStock) {
  EXPECT_EQ(player().totalPowerups(), 0);
  for (std::size_t i = 0; i < 6; ++i) player().powerups[i].count = static_cast<std::int16_t>(i + 1);
  EXPECT_EQ(player().totalPowerups(), 21);
}

TEST_F(PowerupRules, RequestIsSentWithStock) {
  player().powerups[turboSlot].count = 1;
  player().requestActivatePowerup(turboSlot);
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{155, {"1"}}}));
  EXPECT_EQ(player().powerups[turboSlot].count, 1) << "the server decides";
  EXPECT_FALSE(player().powerups[turboSlot].active);
}

TEST_F(PowerupRules, WithoutStockNothingIsPrintedOrSent) {
  forgetTexts();
  player().requestActivatePowerup(turboSlot);
  EXPECT_TRUE(server().sent.empty());
  EXPECT_EQ(lastLine(), "");
}

TEST_F(PowerupRules, ARunningPowerupIsNotReady) {
  player().powerups[shieldSlot] = {2, 10, true};
  frmMain->canvas.KeyDown(112, 0);
  EXPECT_EQ(lastLine(), "That ability isn't ready yet.");
  EXPECT_EQ(lastColour(), errorRed);
  EXPECT_TRUE(server().sent.empty());
}

TEST_F(PowerupRules, Q044TheDeadAreRefusedButStillRequest) {
  player().alive = false;
  player().powerups[turboSlot].count = 1;
  player().requestActivatePowerup(turboSlot);
  EXPECT_EQ(lastLine(), "You can't use abilities in your current state (ie:dead).");
  EXPECT_EQ(lastColour(), errorRed);
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{155, {"1"}}}));
}

TEST_F(PowerupRules, Q045APulseWithoutAShieldIsRefusedEvenWithNoneInStock) {
  for (const std::int16_t count : {std::int16_t{0}, std::int16_t{2}}) {
    forgetTexts();
    player().powerups[pulseSlot].count = count;
    frmMain->canvas.KeyDown(117, 0);
    EXPECT_EQ(lastLine(), "Refusing to activate EMP, doing so without your shield active will kill you too!!!");
    EXPECT_TRUE(isPlain());
    EXPECT_TRUE(server().sent.empty());
  }
}

TEST_F(PowerupRules, PulseBehindAShieldIsRequested) {
  player().powerups[shieldSlot].active = true;
  player().powerups[pulseSlot].count = 1;
  player().requestActivatePowerup(pulseSlot);
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{155, {"5"}}}));
}

TEST_F(PowerupRules, ADeadPlayersPulseGetsBothTexts) {
  player().alive = false;
  player().requestActivatePowerup(pulseSlot);
  EXPECT_EQ(modMain::world.chatLines[1].text, "You can't use abilities in your current state (ie:dead).");
  EXPECT_EQ(lastLine(), "Refusing to activate EMP, doing so without your shield active will kill you too!!!");
}

TEST_F(PowerupRules, ASecondMessageForARunningSlotChangesNothing) {
  player().powerups[turboSlot].count = 2;
  serverSends(156, {"7", "1"});
  EXPECT_EQ(player().powerups[turboSlot].count, 1);
  nextSecond(player());
  ASSERT_EQ(player().powerups[turboSlot].timeLeft, 4);
  forgetTexts();
  serverSends(156, {"7", "1"});
  EXPECT_EQ(player().powerups[turboSlot].count, 1);
  EXPECT_EQ(player().powerups[turboSlot].timeLeft, 4);
  EXPECT_EQ(modMain::world.centreMessage, "");
}

TEST_F(PowerupRules, Q046AnActivationWithoutStockRuns) {
  serverSends(156, {"7", "3"});
  EXPECT_EQ(player().powerups[extendedTailSlot].count, 0);
  EXPECT_TRUE(player().powerups[extendedTailSlot].active);
  EXPECT_EQ(player().powerups[extendedTailSlot].timeLeft, 5);
}

TEST_F(PowerupRules, OpponentsPowerupRunsSilently) {
  const std::int16_t bob = join(8, 1, "Bob");
  clsPlayer& opponent = modMain::playerAt(bob);
  opponent.powerups[turboSlot].count = 1;
  forgetTexts();
  serverSends(156, {"8", "1"});
  EXPECT_EQ(opponent.powerups[turboSlot].count, 0);
  EXPECT_TRUE(opponent.powerups[turboSlot].active);
  EXPECT_EQ(modMain::world.centreMessage, "");
  for (int second = 0; second < 5; ++second) nextSecond(opponent);
  EXPECT_FALSE(opponent.powerups[turboSlot].active);
  EXPECT_EQ(modMain::world.centreMessage, "");
  EXPECT_EQ(lastLine(), "");
}

TEST_F(PowerupRules, AnOpponentsPulseIsNotAnnounced) {
  join(8, 1, "Bob");
  forgetTexts();
  serverSends(156, {"8", "5"});
  EXPECT_EQ(modMain::world.centreMessage, "");
  serverSends(156, {"7", "5"});
  EXPECT_EQ(modMain::world.centreMessage, "Electro-Magnetic Pulse");
}

TEST_F(PowerupRules, UnknownSlotIsAFaultOnlyInTheActivation) {
  EXPECT_THROW(player().activatePowerup(PowerupSlot{6}), RuntimeFault);
  EXPECT_THROW(player().activatePowerup(PowerupSlot{-1}), RuntimeFault);
  forgetTexts();
  player().unactivatePowerup(PowerupSlot{6});
  player().unactivatePowerup(PowerupSlot{-1});
  EXPECT_EQ(lastLine(), "");
}

TEST_F(PowerupRules, SmallestStockOverflowsInTheActivation) {
  serverSends(wire::msgBuyAccepted, {"0", "-32768", "5"});
  ASSERT_EQ(player().powerups[shieldSlot].count, -32768);
  EXPECT_THROW(player().activatePowerup(shieldSlot), RuntimeFault);
  EXPECT_FALSE(player().powerups[shieldSlot].active);
  player().powerups[shieldSlot].count = -32767;
  player().activatePowerup(shieldSlot);
  EXPECT_EQ(player().powerups[shieldSlot].count, 0);
  EXPECT_TRUE(player().powerups[shieldSlot].active);
}

TEST_F(PowerupRules, ATickIsOneWholeSecond) {
  machine.seconds = 1000;
  player().powerups[shieldSlot] = {0, 15, true};
  player().tickPowerups();
  EXPECT_EQ(player().powerups[shieldSlot].timeLeft, 14);
  tick(400);  // 1000.4 is still 1000
  player().tickPowerups();
  EXPECT_EQ(player().powerups[shieldSlot].timeLeft, 14);
  tick(200);  // 1000.6 is 1001
  player().tickPowerups();
  EXPECT_EQ(player().powerups[shieldSlot].timeLeft, 13);
  EXPECT_EQ(player().lastPowerupTick, 1001);
}

TEST_F(PowerupRules, Q268APartOfTheFirstSecondIsLost) {
  machine.seconds = 1000.4;
  player().tickPowerups();
  player().activatePowerup(turboSlot);  // five seconds
  tick(200);                            // 1000.6 is the second 1001
  player().tickPowerups();
  EXPECT_EQ(player().powerups[turboSlot].timeLeft, 4) << "a whole second after 0.2 s";
  for (int second = 0; second < 3; ++second) nextSecond(player());
  EXPECT_TRUE(player().powerups[turboSlot].active) << "at 1003.6";
  nextSecond(player());
  EXPECT_FALSE(player().powerups[turboSlot].active) << "at 1004.6, after 4.2 seconds";
}

TEST_F(PowerupRules, Q269APauseOfSeveralSecondsIsOneTick) {
  machine.seconds = 1000;
  player().tickPowerups();
  player().activatePowerup(turboSlot);
  tick(60'000);
  player().tickPowerups();
  EXPECT_EQ(player().powerups[turboSlot].timeLeft, 4);
  player().tickPowerups();
  EXPECT_EQ(player().powerups[turboSlot].timeLeft, 4) << "the pause is not made up for";
  EXPECT_EQ(player().lastPowerupTick, 1060);
}

TEST_F(PowerupRules, HalfSecondsRoundToTheEvenOne) {
  player().powerups[shieldSlot] = {0, 15, true};
  machine.seconds = 1000.5;
  player().tickPowerups();
  EXPECT_EQ(player().lastPowerupTick, 1000);
  machine.seconds = 1001.5;
  player().tickPowerups();
  EXPECT_EQ(player().lastPowerupTick, 1002);
}

TEST_F(PowerupRules, TheLaserEndsAtTheNextTick) {
  player().tickPowerups();
  player().powerups[laserSlot].count = 1;
  player().activatePowerup(laserSlot);
  player().tickPowerups();
  EXPECT_TRUE(player().powerups[laserSlot].active) << "still the same second";
  forgetTexts();
  nextSecond(player());
  EXPECT_FALSE(player().powerups[laserSlot].active);
  EXPECT_EQ(lastLine(), "Powerup faded...");
  EXPECT_TRUE(isPlain());
  EXPECT_EQ(modMain::world.centreMessage, "Powerup faded");
}

TEST_F(PowerupRules, AllThatEndInOneTickAreReported) {
  for (const PowerupSlot slot : {shieldSlot, turboSlot, laserSlot}) player().powerups[indexOf(slot)] = {0, 1, true};
  player().powerups[extendedTailSlot] = {0, 2, true};
  forgetTexts();
  nextSecond(player());
  for (const PowerupSlot slot : {shieldSlot, turboSlot, laserSlot})
    EXPECT_FALSE(player().powerups[indexOf(slot)].active) << slot;
  EXPECT_TRUE(player().powerups[extendedTailSlot].active);
  EXPECT_EQ(player().powerups[extendedTailSlot].timeLeft, 1);
  for (std::size_t line = 0; line < 3; ++line) EXPECT_EQ(modMain::world.chatLines[line].text, "Powerup faded...");
  EXPECT_EQ(modMain::world.chatLines[3].text, "");

  join(8, 1, "Bob");
  clsPlayer& bob = modMain::world.opponents[0];
  for (const PowerupSlot slot : {shieldSlot, turboSlot}) bob.powerups[indexOf(slot)] = {0, 1, true};
  nextSecond(bob);
  for (const PowerupSlot slot : {shieldSlot, turboSlot}) EXPECT_FALSE(bob.powerups[indexOf(slot)].active) << slot;
}

TEST_F(PowerupRules, NoSoundStopsWhenAPowerupRunsOut) {
  soundMan::initAudio();
  for (int slot = 0; slot < powerupSlotCount; ++slot) player().powerups[static_cast<std::size_t>(slot)] = {0, 1, true};
  machine.soundCommands.clear();
  nextSecond(player());
  ASSERT_EQ(lastLine(), "Powerup faded...");
  EXPECT_TRUE(machine.soundCommands.empty());
}

TEST_F(PowerupRules, IdleSlotsDoNotTick) {
  player().powerups[turboSlot] = {1, 5, false};
  nextSecond(player());
  EXPECT_EQ(player().powerups[turboSlot].timeLeft, 5);
}

TEST_F(PowerupRules, Q047TimersStandStillAfterMidnight) {
  machine.seconds = 86'399;
  player().tickPowerups();
  player().powerups[shieldSlot] = {0, 15, true};
  machine.seconds = 0;
  for (int second = 0; second < 100; ++second) nextSecond(player());
  EXPECT_EQ(player().powerups[shieldSlot].timeLeft, 15);
  machine.seconds = 86'400;
  player().tickPowerups();
  EXPECT_EQ(player().powerups[shieldSlot].timeLeft, 14);
}

TEST_F(PowerupRules, EarlyEndIsReported) {
  struct Row {
    const char* slot;
    const char* line;
  };
  for (const Row& row :
       {Row{"0", "Ann's shield has collapsed!!"}, Row{"1", "Ann's turbo has shorted out!!"},
        Row{"2", "Ann's charged tails ended abruptly!!"}, Row{"3", "Ann's long tails ended abruptly!!"},
        Row{"4", "Ann's laser has shorted out!!"}, Row{"5", ""}}) {
    forgetTexts();
    PowerupState& powerup = player().powerups[static_cast<std::size_t>(row.slot[0] - '0')];
    powerup = {2, 4, true};
    serverSends(161, {"7", row.slot});
    EXPECT_FALSE(powerup.active) << row.slot;
    EXPECT_EQ(powerup.timeLeft, 4) << "the time stays";
    EXPECT_EQ(powerup.count, 2);
    EXPECT_EQ(lastLine(), row.line);
    if (row.line[0] != '\0') {
      EXPECT_TRUE(isPlain());
    }
  }
}

TEST_F(PowerupRules, Q273AnEarlyEndIsReportedForOpponentsAndIdlePowerups) {
  clsPlayer& opponent = modMain::playerAt(join(8, 1, "Bob"));
  opponent.activatePowerup(shieldSlot);
  forgetTexts();
  serverSends(161, {"8", "0"});
  EXPECT_FALSE(opponent.powerups[shieldSlot].active);
  EXPECT_EQ(lastLine(), "Bob's shield has collapsed!!");
  EXPECT_EQ(modMain::world.centreMessage, "");
  ASSERT_FALSE(player().powerups[laserSlot].active);
  serverSends(161, {"7", "4"});
  EXPECT_EQ(lastLine(), "Ann's laser has shorted out!!");
}

TEST_F(PowerupRules, Q049ARunningPowerupSurvivesDeathAndRespawn) {
  player().powerups[shieldSlot] = {0, 10, true};
  player().die();
  EXPECT_TRUE(player().powerups[shieldSlot].active);
  player().respawn();
  EXPECT_TRUE(player().powerups[shieldSlot].active);
  EXPECT_EQ(player().powerups[shieldSlot].timeLeft, 10);
}

TEST_F(PowerupRules, NewLoginEndsThemButKeepsTheTimeLeft) {
  player().powerups[shieldSlot] = {3, 10, true};
  player().init(redPlayer, -1, 7, "Ann");
  EXPECT_FALSE(player().powerups[shieldSlot].active);
  EXPECT_EQ(player().powerups[shieldSlot].count, 0);
  EXPECT_EQ(player().powerups[shieldSlot].timeLeft, 10);
}

}  // namespace
}  // namespace kelvora
