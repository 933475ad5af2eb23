// Compares whole worlds of players, with their tails, captures and movements, with a twin that follows the rules
// literally.

#include "tests/simulation/captureTwin.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "audio/soundMan.h"
#include "rendering/frmGfx.h"
#include "tests/support/gameTest.h"
#include "tests/support/shortTests.h"

namespace kelvora {
namespace {

/// No two of 99999 consecutive draws are equal, so no two vertices get the same tailID.
class DistinctDraws : public HeadlessBackend {
 public:
  using HeadlessBackend::random;
  float random() override { return (static_cast<float>(count_++ % 99'999) + 0.5F) / 99'999; }

 private:
  int count_ = 0;
};

class CaptureTwin : public GameTest {
 protected:
  static constexpr int firstNode = 8;

  CaptureTwin() {
    distinct.pictureSource = testPicture;
    distinct.path = machine.path;
    frmMain->clientResized(2'500, 2'500);  // a small picture, because ageing paints
    soundMan::initAudio();
    installBackend(&distinct);
  }
  ~CaptureTwin() override { installBackend(&machine); }

  int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(random); }
  bool oneIn(int n) { return below(n) == 0; }
  clsPlayer& real(int index) { return modMain::playerAt(static_cast<std::int16_t>(index)); }
  int anyIndex() { return below(static_cast<int>(twin.opponents.size()) + 1) - 1; }
  /// Usually a player's node; sometimes 0 or an unused one.
  int anyNode() { return oneIn(8) ? below(3) * 20 : twin.player(anyIndex()).node; }
  Vector near(Vector place, int reach) {
    return {place.x + static_cast<float>(below(2 * reach + 1) - reach) / 2,
            place.y + static_cast<float>(below(2 * reach + 1) - reach) / 2};
  }

  void begin(TwinPlayer& player, int index, int node) {
    player.index = index;
    player.node = node;
    player.colour = index + 1;
    player.name = std::string(1, static_cast<char>('B' + index));
    clsPlayer& it = real(index);
    it.init(static_cast<PlayerColour>(player.colour), static_cast<std::int16_t>(index), static_cast<std::int16_t>(node),
            player.name);
    it.setKills(0);
    frmMain->picCaps[player.colour].Cls();
    player.breaksOn = it.breaksOn;  // a player's initial state is not tested here
  }

  void beginLife(std::uint32_t seed) {
    random.seed(seed);
    modMain::world = {};
    modMain::fillTips();
    machine.soundCommands.clear();
    twin = {};
    twin.clock = distinct.ticks = 1'000'000 + below(1'000'000);
    twin.canvasWidth = frmMain->canvas.Width;
    twin.canvasHeight = frmMain->canvas.Height;
    twin.tips.assign(modMain::world.tips.begin(), modMain::world.tips.end());
    modMain::world.frameTime = below(3) * 7;
    twin.timeScale = std::max(1.0, modMain::world.frameTime / 10.0);
    // A departed player is taken for the owner of node 0.
    begin(twin.local, -1, oneIn(4) ? 0 : 7);
    const int count = 1 + below(4);
    for (int i = 0; i < count; ++i) {
      modMain::world.opponents.emplace_back();
      modMain::world.opponentCount += 1;
      twin.opponents.emplace_back();
      begin(twin.opponents.back(), i, oneIn(10) ? 0 : firstNode + i);
    }
    const Vector place{static_cast<float>(below(11) * 10'000), static_cast<float>(below(11) * 10'000)};
    modMain::world.localPlayer.position = twin.local.position = place;
  }

  void capture() {
    const int winnerNode = anyNode();
    const TwinPlayer& winner = twin.player(twin.getPlayerIndex(winnerNode));
    Vector place = near(winner.position, 3000);
    if (!winner.tails.empty() && !oneIn(5)) {
      place = winner.tails[static_cast<std::size_t>(below(static_cast<int>(winner.tails.size())))].position;
    }
    const int loserNode = anyNode();
    if (!twin.killerTails.empty() && oneIn(4)) {  // again at the last position
      const auto end = twin.killerTails.back().location.size() - 2;
      const std::string inner = twin.killerTails.back().location.substr(1, end);
      const Vector again{std::stof(inner), std::stof(inner.substr(inner.find(',') + 1))};
      place = again;
    }
    twin.addKillerTail(winnerNode, loserNode, place.x, place.y);
    modMain::addKillerTail(static_cast<std::int16_t>(winnerNode), static_cast<std::int16_t>(loserNode), place.x,
                           place.y);
  }

  void paint(int index) {
    TwinPlayer& player = twin.player(index);
    if (!player.isConnected) return;
    twin.paintTail(player);
    real(index).paintSelf();
  }

  void changeState(int index) {
    TwinPlayer& player = twin.player(index);
    clsPlayer& it = real(index);
    switch (below(6)) {
      case 0:
        twin.respawn(player);
        it.respawn();
        break;
      case 1: {
        const bool alive = !oneIn(3);
        twin.setAlive(player, alive);
        it.setAlive(alive);
        break;
      }
      case 2:
        if (index >= 0) player.isConnected = it.isConnected = oneIn(2);
        break;
      case 3:
        player.laysChargedTail = it.powerups[chargedTailSlot].active = oneIn(2);
        player.hasExtendedTail = it.powerups[extendedTailSlot].active = oneIn(3);
        break;
      case 4:
        player.breaksOn = !player.breaksOn;
        it.toggleBreaks();
        break;
      default:
        player.kills = below(100);
        it.setKills(static_cast<std::int16_t>(player.kills));
    }
  }

  void travel(int index) {
    TwinPlayer& player = twin.player(index);
    clsPlayer& it = real(index);
    const TwinPlayer& crossed = twin.player(anyIndex());
    if (!crossed.tails.empty() && oneIn(3)) {
      const Vector point = crossed.tails.back().position;
      twin.addTail(player, point);
      it.addTail(point);
    }
    if (index == -1) {
      if (oneIn(6)) it.position = player.position = near(player.position, 4000);
      const Vector echo = near(player.position, 200);
      twin.addTail(player, echo);
      it.addTail(echo);
      return;
    }
    if (oneIn(2)) {
      const Vector point = oneIn(10) ? near({50'000, 50'000}, 110'000) : near(twin.local.position, 6000);
      twin.queuePosition(player, point);
      it.queuePosition(point);
    }
    if (oneIn(20)) {
      const Vector velocity{static_cast<float>(below(3) * 400 - 400), static_cast<float>(below(800) - 400)};
      player.velocity = velocity;
      it.setVelocity(velocity);
    }
    for (int frames = below(4); frames > 0; --frames) {
      twin.moveAsOpponent(player);
      it.moveAsOpponent();
    }
  }

  void step() {
    const int index = anyIndex();
    switch (below(16)) {
      case 0:
        changeState(index);
        break;
      case 1:
      case 2:
        capture();
        break;
      case 3: {
        const int winner = anyNode();
        const int loser = anyNode();
        if (!oneIn(6)) break;
        twin.executeCapture(winner, loser);
        modMain::executeCapture(static_cast<std::int16_t>(winner), static_cast<std::int16_t>(loser));
        break;
      }
      case 4: {
        if (!oneIn(3)) break;
        const double num = oneIn(2) ? below(30) - 3 : below(30) / 4.0;
        twin.killTail(twin.player(index), num);
        real(index).killTail(num);
        break;
      }
      case 5:
      case 6:
      case 7:
      case 8:
        twin.clock += oneIn(60) ? 31'000 + below(2'000) : below(400);
        distinct.ticks = twin.clock;
        for (int i = -1; i < static_cast<int>(twin.opponents.size()); ++i) paint(i);
        break;
      case 9:
        paint(index);
        break;
      case 10:
        if (!oneIn(10)) break;
        twin.removeKillerTails(index);
        modMain::removeKillerTails(static_cast<std::int16_t>(index));
        break;
      default:
        travel(index);
    }
  }

  void expectSamePlayer(int index) {
    SCOPED_TRACE("player " + std::to_string(index));
    const TwinPlayer& player = twin.player(index);
    const clsPlayer& it = real(index);
    EXPECT_EQ(it.alive, player.alive);
    EXPECT_EQ(it.breaksOn, player.breaksOn);
    EXPECT_EQ(it.position, player.position);
    EXPECT_EQ(it.lastPosition, player.lastPosition);
    EXPECT_EQ(it.velocity, player.velocity);
    EXPECT_EQ(it.steering, player.steering);
    EXPECT_EQ(it.awaitingFirstPosition, player.awaitingFirstPosition);
    EXPECT_EQ(std::vector<Vector>(it.positionQueue.begin(), it.positionQueue.end()),
              std::vector<Vector>(player.positionQueue.begin(), player.positionQueue.end() - 1));
    EXPECT_EQ(it.kills, player.kills);
    EXPECT_EQ(frmMain->lblKills[player.colour].Caption.get(), std::to_string(player.kills));
    EXPECT_EQ(std::vector<int>(it.captures.begin(), it.captures.end()), player.captures);
    EXPECT_EQ(it.lastAgeTick, player.lastAgeTick);
    ASSERT_EQ(it.tails.size(), player.tails.size());
    for (std::size_t i = 0; i < player.tails.size(); ++i) {
      const TwinVertex& vertex = player.tails[i];
      EXPECT_EQ(it.tails[i].num(), vertex.num) << i;
      EXPECT_EQ(it.tails[i].getAge(), vertex.age) << i;
      EXPECT_EQ(it.tails[i].getPosition(), vertex.position) << i;
      EXPECT_EQ(it.tails[i].isCharged(), vertex.isCharged) << i;
    }
    const PictureBox& strip = frmMain->picCaps[player.colour];
    const Picture& marks = frmGfx->imgCaps.cells();
    for (std::size_t colour = 0; colour < 6; ++colour) {
      // Marks start 162.5 twips, 10.8 pixels, apart. Their fifth pixel in the fifth row is never black.
      const std::size_t place = static_cast<std::size_t>(marks.width) * 5 + colour * 65 / 6 + 5;
      const Pixel shown = player.strip[colour] ? marks.pixels[place] : toPixel(strip.BackColor);
      EXPECT_EQ(strip.pixels()[static_cast<std::size_t>(strip.pixelWidth()) * 5 + colour * 65 / 6 + 5], shown)
          << "mark " << colour;
    }
  }

  void expectSame() {
    for (int i = -1; i < static_cast<int>(twin.opponents.size()); ++i) expectSamePlayer(i);
    EXPECT_EQ(modMain::world.centreMessage, twin.centreMessage);
    EXPECT_EQ(modMain::world.nextTip, twin.nextTip);
    for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(modMain::world.chatLines[i].text, twin.chat[i]) << "line " << i;
    EXPECT_EQ(std::count(machine.soundCommands.begin(), machine.soundCommands.end(), "capture.wav play"),
              twin.captureSounds);
    ASSERT_EQ(modMain::world.explosionCount, static_cast<double>(twin.explosions.size()));
    for (std::size_t i = 0; i < twin.explosions.size(); ++i) {
      EXPECT_EQ(modMain::world.explosionParticles[i].position, twin.explosions[i]) << i;
    }
    ASSERT_EQ(modMain::world.killerTails.size(), twin.killerTails.size());
    for (std::size_t i = 0; i < twin.killerTails.size(); ++i) {
      const KillerTail& record = modMain::world.killerTails[i];
      const TwinRecord& expected = twin.killerTails[i];
      EXPECT_EQ(record.owner, expected.owner) << i;
      EXPECT_EQ(record.location, expected.location) << i;
      EXPECT_EQ(std::vector<int>(record.victims.begin(), record.victims.end()), expected.victims) << i;
      // Both refer to the same vertex, or both to a removed one.
      const auto& tail = twin.player(expected.owner).tails;
      const auto vertex = std::find_if(
          tail.begin(), tail.end(), [&](const TwinVertex& candidate) { return candidate.serial == expected.serial; });
      const double num = vertex == tail.end() ? -1 : vertex->num;
      EXPECT_EQ(real(expected.owner).getTailNumByID(record.tailID), num) << i;
    }
  }

  DistinctDraws distinct;
  std::mt19937 random;
  TwinGame twin;
};

TEST_F(CaptureTwin, MatchesTheTwinInHundredsOfGames) {
  constexpr int games = hasShortTests ? 300 : 1'000;
  int executed = 0;
  int atOnce = 0;
  int shared = 0;
  int dropped = 0;
  int expired = 0;
  for (int seed = 1; seed <= games; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    beginLife(static_cast<std::uint32_t>(seed));
    for (int stepsLeft = 40 + below(160); stepsLeft > 0; --stepsLeft) {
      step();
      expectSame();
      if (HasFailure()) return;
    }
    executed += twin.executed;
    atOnce += twin.atOnce;
    shared += twin.shared;
    dropped += twin.dropped;
    expired += twin.expired;
  }
  // Every branch has been taken often.
  EXPECT_GT(executed, games * 8 / 10);
  EXPECT_GT(atOnce, games);
  EXPECT_GT(shared, games * 4 / 10);
  EXPECT_GT(dropped, games / 4);
  EXPECT_GT(expired, games * 5 / 2);
}

}  // namespace
}  // namespace kelvora
