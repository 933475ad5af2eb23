// Compares the whole particle field with a twin that follows the rules literally and draws the same numbers.

#include "tests/particles/particleTwin.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class ParticleTwin : public GameTest {
 protected:
  int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(random); }
  bool oneIn(int n) { return below(n) == 0; }
  Vector near(Vector place, int reach) {
    return {place.x + static_cast<float>(below(2 * reach + 1) - reach) / 2,
            place.y + static_cast<float>(below(2 * reach + 1) - reach) / 2};
  }
  std::string anyId() { return std::string(1, static_cast<char>('a' + below(6))); }

  void beginLife(std::uint32_t seed) {
    random.seed(seed);
    modMain::world = {};
    frmMain->mnuQuarkStars.Checked = oneIn(2);
    machine.generator.randomize(static_cast<float>(seed) / 7);
    twin = {};
    twin.generator = machine.generator;
    setClock();
    resize();
    travel(100'000);
    createField();
    for (const char* id : {"a", "b", "c", "d"}) {
      twin.receiveParticleNew(id, 1, twin.player.x, twin.player.y, 0, 0);
      modMain::receiveParticleNew(id, 1, twin.player.x, twin.player.y, 0, 0);
    }
  }
  void setClock() {
    constexpr std::array seconds = {0.0, 0.25, 0.5, 0.75, 1.0, 43'200.0, 86'399.5};
    twin.seconds = machine.seconds = seconds.at(static_cast<std::size_t>(below(seconds.size())));
    modMain::world.frameTime = below(3) * 7;
    twin.timeScale = std::max(1.0, modMain::world.frameTime / 10.0);
  }
  void resize() {
    frmMain->clientResized(static_cast<float>(6'000 + below(9'000)), static_cast<float>(4'000 + below(6'000)));
    twin.canvasWidth = frmMain->canvas.Width;
    twin.canvasHeight = frmMain->canvas.Height;
  }
  void travel(int reach) {
    const Vector place = near(twin.player, reach);
    twin.player = {std::clamp(place.x, 0.0F, 100'000.0F), std::clamp(place.y, 0.0F, 100'000.0F)};
    modMain::world.localPlayer.position = twin.player;
  }
  void createField() {
    twin.createParticleField();
    modMain::createParticleField();
  }

  void moveAll() {
    for (std::size_t i = 0; i < twin.particles.size(); ++i) {
      twin.wrap(twin.particles[i]);
      modMain::world.particles[i].wrap();
      if (frmMain->mnuQuarkStars.Checked) continue;
      twin.move(twin.particles[i]);
      modMain::world.particles[i].move();
    }
    for (std::size_t i = 0; i < twin.explosionParticles.size(); ++i) {
      twin.move(twin.explosionParticles[i]);
      modMain::world.explosionParticles[i].move();
    }
    for (std::size_t i = 0; i < twin.netParticles.size(); ++i) {
      twin.moveNormal(twin.netParticles[i]);
      modMain::world.netParticles[i].moveNormal();
    }
  }

  void changeType() {
    const int type = below(5);
    for (std::size_t i = 0; i < twin.particles.size(); ++i) {
      const Vector at = twin.particles[i].position;
      const auto number = static_cast<double>(i);
      twin.init(twin.particles[i], number, type, at.x, at.y, 3, 4);
      modMain::world.particles[i].init(number, static_cast<ParticleType>(type), at.x, at.y, 3, 4);
    }
  }

  void paintExplosions() {
    for (int i = 0; i < static_cast<int>(twin.explosionParticles.size()); ++i) {
      twin.paintExplosion(i);
      modMain::world.explosionParticles[static_cast<std::size_t>(i)].paintSelf();
      ASSERT_EQ(modMain::world.explosionCount, static_cast<double>(twin.explosionParticles.size()));
    }
  }

  void stepOfExplosions() {
    const auto count = static_cast<int>(twin.explosionParticles.size());
    switch (below(4)) {
      case 0: {
        const Vector place = near(twin.player, 3'000);
        const int more = below(4);
        twin.addExplosion(place, more);
        modMain::addExplosion(place, static_cast<std::int16_t>(more));
        break;
      }
      case 1: {
        if (!oneIn(6)) break;
        const int index = below(count + 2) - 1;
        twin.removeExplosionParticle(index);
        modMain::removeExplosionParticle(static_cast<std::int16_t>(index));
        break;
      }
      default:
        for (int paints = 1 + below(6); paints > 0; --paints) paintExplosions();
    }
  }

  void stepOfTheServer() {
    const std::string id = anyId();
    const Vector place = oneIn(8) ? near({50'000, 50'000}, 110'000) : near(twin.player, 9'000);
    switch (below(8)) {
      case 0: {
        const auto dx = static_cast<float>(below(5) * 50 - 100);
        const auto dy = static_cast<float>(below(5) * 50 - 100);
        const int kind = below(256);
        twin.receiveParticleNew(id, kind, place.x, place.y, dx, dy);
        modMain::receiveParticleNew(id, static_cast<std::int16_t>(kind), place.x, place.y, dx, dy);
        break;
      }
      case 1:
        twin.receiveParticleRemove(id);
        modMain::receiveParticleRemove(id);
        break;
      case 2:
        if (twin.netParticles.empty()) break;
        twin.netParticles.back().hasPosition = modMain::world.netParticles.back().hasPosition = false;
        break;
      default:
        twin.receiveParticlePosition(id, place.x, place.y);
        modMain::receiveParticlePosition(id, place.x, place.y);
    }
  }

  void step() {
    switch (below(16)) {
      case 0:
        setClock();
        break;
      case 1:
        frmMain->mnuQuarkStars.Checked = !frmMain->mnuQuarkStars.Checked;
        break;
      case 2:
        travel(oneIn(3) ? 30'000 : 1'000);
        break;
      case 3:
        if (oneIn(4)) resize();
        if (oneIn(12)) createField();
        if (oneIn(6)) changeType();
        EXPECT_EQ(modMain::coinFlip(), twin.coinFlip());
        break;
      case 4:
      case 5:
      case 6:
        stepOfExplosions();
        break;
      case 7:
      case 8:
      case 9:
      case 10:
        stepOfTheServer();
        break;
      default:
        for (int frames = 1 + below(5); frames > 0; --frames) moveAll();
    }
  }

  /// The names of the fields that differ.
  static std::string difference(const clsParticle& it, const TwinParticle& twin) {
    std::string names;
    const auto compare = [&names](bool isSame, const char* name) {
      if (!isSame) names += std::string(" ") + name;
    };
    compare(it.num_ == twin.num, "num");
    compare(it.type == static_cast<ParticleType>(twin.type), "type");
    compare(it.position == twin.position, "position");
    compare(it.kind == twin.kind, "kind");
    compare(it.fieldWidth == twin.fieldWidth && it.fieldHeight == twin.fieldHeight, "field");
    compare(it.velocity == twin.velocity, "velocity");
    compare(it.maxSpeed == twin.maxSpeed, "maxSpeed");
    compare(it.first == twin.first && it.second == twin.second, "first or second");
    compare(it.depth == twin.depth, "depth");
    compare(it.id == twin.id, "id");
    compare(it.spawned == twin.spawned, "spawned");
    compare(it.red == twin.red && it.green == twin.green && it.blue == twin.blue, "colour");
    compare(it.previousPosition == twin.previousPosition, "previousPosition");
    compare(std::equal(it.positionQueue.begin(), it.positionQueue.end(), twin.positionQueue.begin(),
                       twin.positionQueue.end() - 1),
            "positionQueue");
    compare(it.hasPosition == twin.hasPosition, "hasPosition");
    compare(it.stepSet == twin.stepSet, "stepSet");
    compare(it.blink == twin.blink, "blink");
    compare(it.age == twin.age, "age");
    return names;
  }
  template <class Pool>
  void expectSamePool(const char* name, const Pool& pool, double count, const std::vector<TwinParticle>& twins) {
    ASSERT_EQ(count, static_cast<double>(twins.size())) << name;
    for (std::size_t i = 0; i < twins.size(); ++i) ASSERT_EQ(difference(pool[i], twins[i]), "") << name << i;
  }
  void expectSame() {
    expectSamePool("background ", modMain::world.particles, modMain::world.particleCount, twin.particles);
    expectSamePool("explosion ", modMain::world.explosionParticles, modMain::world.explosionCount,
                   twin.explosionParticles);
    expectSamePool("network ", modMain::world.netParticles, modMain::world.netParticleCount, twin.netParticles);
    RandomGenerator game = machine.generator;
    RandomGenerator own = twin.generator;
    EXPECT_EQ(game.next(), own.next()) << "as many draws";
  }

  std::mt19937 random;
  TwinField twin;
};

TEST_F(ParticleTwin, MatchesTheTwinInHundredsOfFields) {
  int wrapped = 0;
  int steps = 0;
  int jumps = 0;
  int removed = 0;
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    beginLife(seed);
    for (int stepsLeft = below(200); stepsLeft > 0; --stepsLeft) {
      step();
      expectSame();
      if (HasFailure()) return;
    }
    wrapped += twin.wrapped;
    steps += twin.steps;
    jumps += twin.jumps;
    removed += twin.removed;
  }
  // Every branch has been taken often.
  EXPECT_GT(wrapped, 5'000);
  EXPECT_GT(steps, 1'000);
  EXPECT_GT(jumps, 700);
  EXPECT_GT(removed, 400);
}

}  // namespace
}  // namespace kelvora
