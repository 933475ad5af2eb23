#include <gtest/gtest.h>

#include <array>

#include "tests/audio/audioTest.h"

namespace kelvora {
namespace {

/// The events that make a sound.
class SoundEvents : public AudioTest {
 protected:
  SoundEvents() {
    login();
    openSounds();
  }
  /// Moves the local player one step from a position, with a velocity from which the brakes take 3.
  void step(Vector from, Vector velocity) {
    clsPlayer& player = modMain::world.localPlayer;
    player.position = from;
    player.velocity = velocity;
    player.breaksOn = true;
    player.move();
  }
  static std::vector<std::string> twice(const std::vector<std::string>& commands) {
    std::vector<std::string> both = commands;
    both.insert(both.end(), commands.begin(), commands.end());
    return both;
  }
};

TEST_F(SoundEvents, BounceSoundsAtEveryEdge) {
  struct Row {
    Vector from;
    Vector velocity;
  };
  for (const Row& row : {Row{{10, 50'000}, {-100, 0}}, Row{{99'990, 50'000}, {100, 0}}, Row{{50'000, 10}, {0, -100}},
                         Row{{50'000, 99'990}, {0, 100}}}) {
    machine.soundCommands.clear();
    step(row.from, row.velocity);
    EXPECT_EQ(machine.soundCommands, playing("bounce.wav")) << row.from.x << ' ' << row.from.y;
  }
}

TEST_F(SoundEvents, StepInsideTheWorldIsSilent) {
  step({50'000, 50'000}, {100, 100});
  step({103, 50'000}, {-106, 0});  // to exactly 0
  EXPECT_EQ(modMain::world.localPlayer.position.x, 0);
  EXPECT_TRUE(machine.soundCommands.empty());
}

TEST_F(SoundEvents, CornerSoundsTwice) {
  step({10, 10}, {-100, -100});
  EXPECT_EQ(machine.soundCommands, twice(playing("bounce.wav")));
}

TEST_F(SoundEvents, OffScreenBounceIsSilent) {
  // The canvas shows 5722.5 units to each side of the local player; a step of 9000 leaves it.
  modMain::world.localPlayer.powerups[turboSlot].active = true;
  step({10, 50'000}, {-9003, 0});
  EXPECT_EQ(modMain::world.localPlayer.position.x, 1000);
  EXPECT_TRUE(machine.soundCommands.empty());
}

TEST_F(SoundEvents, DeathSoundsOnlyOnScreen) {
  const std::int16_t seen = join(3, 1, "Bob", 51'000, 50'000);
  const std::int16_t far = join(4, 2, "Cid", 80'000, 50'000);
  modMain::playerAt(seen).position = {51'000, 50'000};
  modMain::playerAt(far).position = {80'000, 50'000};
  machine.soundCommands.clear();
  modMain::playerAt(far).die();
  EXPECT_TRUE(machine.soundCommands.empty());
  modMain::playerAt(seen).die();
  EXPECT_EQ(machine.soundCommands, playing("capture.wav"));
}

TEST_F(SoundEvents, LocalPlayersDeathMakesASound) {
  modMain::world.localPlayer.die();
  EXPECT_EQ(machine.soundCommands, playing("capture.wav"));
}

TEST_F(SoundEvents, EachPowerupOfTheLocalPlayerHasItsSound) {
  constexpr std::array<const char*, 6> sounds = {"puShield.wav",   "puTurbo.wav", "puChargedTail.wav",
                                                 "puLongTail.wav", "puLaser.wav", "puMissile.wav"};
  for (const PowerupSlot slot : powerupSlots) {
    machine.soundCommands.clear();
    modMain::world.localPlayer.activatePowerup(slot);
    EXPECT_EQ(machine.soundCommands, playing(sounds[static_cast<std::size_t>(slot)])) << slot;
  }
}

TEST_F(SoundEvents, RunningPowerupMakesNoSecondSound) {
  modMain::world.localPlayer.activatePowerup(shieldSlot);
  machine.soundCommands.clear();
  modMain::world.localPlayer.activatePowerup(shieldSlot);
  EXPECT_TRUE(machine.soundCommands.empty());
}

TEST_F(SoundEvents, PowerupsOfOpponentsAreSilent) {
  const std::int16_t bob = join(3, 1, "Bob");
  for (const PowerupSlot slot : powerupSlots) modMain::playerAt(bob).activatePowerup(slot);
  EXPECT_TRUE(machine.soundCommands.empty());
}

TEST_F(SoundEvents, Q180AnEarlyEndStopsTheSoundOfThePowerupsOwnNumber) {
  constexpr std::array<const char*, 6> stopped = {"capture.wav",  "bounce.wav",  "error.wav",
                                                  "puShield.wav", "puTurbo.wav", "puChargedTail.wav"};
  for (const PowerupSlot slot : powerupSlots) {
    machine.soundCommands.clear();
    modMain::world.localPlayer.unactivatePowerup(slot);
    EXPECT_EQ(machine.soundCommands, stopping(stopped[static_cast<std::size_t>(slot)])) << slot;
  }
  modMain::world.localPlayer.activatePowerup(turboSlot);
  modMain::world.localPlayer.unactivatePowerup(turboSlot);
  EXPECT_FALSE(frmSound->mm(4).Silent()) << "puTurbo.wav runs on";
  EXPECT_TRUE(frmSound->mm(1).Silent());
}

TEST_F(SoundEvents, EarlyEndOfAnOpponentsPowerupAlsoStopsASound) {
  const std::int16_t bob = join(3, 1, "Bob");
  machine.soundCommands.clear();
  modMain::playerAt(bob).unactivatePowerup(turboSlot);
  EXPECT_EQ(machine.soundCommands, stopping("bounce.wav"));
}

TEST_F(SoundEvents, EarlyEndOfAnUnknownSlotStopsNothing) {
  modMain::world.localPlayer.unactivatePowerup(PowerupSlot{6});
  modMain::world.localPlayer.unactivatePowerup(PowerupSlot{-1});
  EXPECT_TRUE(machine.soundCommands.empty());
}

TEST_F(SoundEvents, PulseFromTheServerSoundsAndIsAnnounced) {
  serverSends(wire::msgPowerupOn, {"7", "5"});
  EXPECT_EQ(machine.soundCommands, playing("puMissile.wav"));
  EXPECT_EQ(modMain::world.centreMessage, "Electro-Magnetic Pulse");
}

}  // namespace
}  // namespace kelvora
