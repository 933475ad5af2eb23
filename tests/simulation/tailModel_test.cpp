// Compares tails and position queues with twins that follow the rules literally, for thousands of random lives.

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <random>

#include "base/numbers.h"
#include "core/timeScale.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

/// A tail in arrays that grow slot by slot and are copied whole at each removal.
class LiteralTail {
 public:
  struct Vertex {
    double num = 0;
    int age = 0;
    Millis tick = 0;
    Vector position;
    bool isCharged = false;
  };

  void addTail(Vector position) {
    if (!isAlive) return;
    tails.emplace_back();
    tails[tailCount] = {static_cast<double>(tailCount), 0, 0, position, isCharged};
    tailCount += 1;
  }

  void killTail(double num) {
    std::vector<Vertex> copied;
    for (std::size_t i = 0; i < tailCount; ++i) {
      if (static_cast<double>(i) != num) copied.push_back(tails[i]);
    }
    tailCount = 0;
    tails.clear();
    for (const Vertex& vertex : copied) {
      tails.push_back(vertex);
      tails[tailCount].num = static_cast<double>(tailCount);
      tailCount += 1;
    }
  }

  void ageTails(Millis clock) {
    if (tailCount < 1) return;
    if (isExtended) return;
    const Millis t = clock + moved();
    if (lastAgeTick == 0) lastAgeTick = t;
    if (t - lastAgeTick <= 0) return;
    std::size_t i = 0;
    while (i < tailCount) {
      if (age(i, clock)) {
        i = 0;
      } else {
        ++i;
      }
    }
    lastAgeTick = t;
  }

  double getTailNumByPos(Vector position) const {
    for (std::size_t i = 0; i < tailCount; ++i) {
      if (tails[i].position == position) return static_cast<double>(i);
    }
    return -1;
  }

  /// How far the clock has advanced during the pass, if each expiry of a vertex takes this long.
  Millis moved() const { return msForEachEnd * ended; }

  std::vector<Vertex> tails;
  std::size_t tailCount = 0;
  Millis lastAgeTick = 0;
  bool isAlive = true;
  bool isCharged = false;
  bool isExtended = false;
  Millis msForEachEnd = 0;
  Millis ended = 0;

 private:
  bool age(std::size_t index, Millis clock) {
    Vertex& vertex = tails[index];
    const Millis t = clock + moved();
    const Millis d = t - vertex.tick;
    if (d >= 32001) {
      vertex.tick = t;
      return false;
    }
    if (d <= 10) return false;
    vertex.age += static_cast<int>(roundToEven(static_cast<double>(d) / 10));
    vertex.tick = t;
    if (vertex.age <= 200) return false;
    killTail(vertex.num);
    ++ended;
    return true;
  }
};

/// A machine on which a vertex's expiry takes time.
class SlowMachine : public HeadlessBackend {
 public:
  Millis tickCount() override {
    return ticks + msForEachEnd * (vertices - static_cast<Millis>(modMain::world.localPlayer.tailCount()));
  }

  Millis msForEachEnd = 0;
  Millis vertices = 0;  ///< laid and not killed explicitly
};

class TailModel : public GameTest {
 protected:
  TailModel() {
    slow.pictureSource = testPicture;
    slow.path = machine.path;
  }
  ~TailModel() override { installBackend(&machine); }

  void expectSame(const LiteralTail& literal) {
    ASSERT_EQ(player.tailCount(), static_cast<double>(literal.tailCount));
    EXPECT_EQ(player.lastAgeTick, literal.lastAgeTick);
    for (std::size_t i = 0; i < literal.tailCount; ++i) {
      const clsTail& vertex = player.tails[i];
      EXPECT_EQ(vertex.num(), literal.tails[i].num) << i;
      EXPECT_EQ(vertex.getAge(), literal.tails[i].age) << i;
      EXPECT_EQ(vertex.getPosition(), literal.tails[i].position) << i;
      EXPECT_EQ(vertex.isCharged(), literal.tails[i].isCharged) << i;
    }
  }

  SlowMachine slow;
  clsPlayer& player = modMain::world.localPlayer;
};

TEST_F(TailModel, MatchesTheReferenceTailForThousandsOfLives) {
  frmMain->clientResized(2'500, 2'500);  // a small picture, because each ageing pass paints
  double ended = 0;
  for (std::uint32_t seed = 1; seed <= 2'000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&](int limit) { return std::uniform_int_distribution(0, limit - 1)(random); };
    player = {};
    player.playerIndex = -1;
    player.alive = true;
    LiteralTail literal;
    literal.msForEachEnd = slow.msForEachEnd = below(2) * below(30);
    slow.vertices = 0;
    slow.ticks = 1'000'000;
    installBackend(&slow);
    for (int step = below(120); step > 0; --step) {
      const Vector point{static_cast<float>(below(12)), static_cast<float>(below(3))};
      switch (below(8)) {
        case 0:
          literal.isAlive = player.alive = below(4) > 0;
          break;
        case 1:
          literal.isCharged = player.powerups[chargedTailSlot].active = below(2) == 0;
          literal.isExtended = player.powerups[extendedTailSlot].active = below(3) == 0;
          break;
        case 2: {
          const double num = below(2) == 0 ? below(30) - 3 : below(30) / 4.0;
          const double before = player.tailCount();
          literal.killTail(num);
          player.killTail(num);
          slow.vertices -= static_cast<Millis>(before - player.tailCount());
          break;
        }
        case 3:
        case 4:
          slow.ticks += below(10) == 0 ? 31'000 + below(2'000) : below(700);
          literal.ageTails(slow.ticks);
          player.paintSelf();
          break;
        case 5:
          EXPECT_EQ(player.getTailNumByPos(point), literal.getTailNumByPos(point));
          break;
        default:
          for (int i = below(4); i >= 0; --i) {
            literal.addTail(point);
            player.addTail(point);
            if (player.alive) ++slow.vertices;
          }
      }
      expectSame(literal);
      if (HasFailure()) return;
    }
    installBackend(&machine);
    ended += static_cast<double>(literal.ended);
  }
  EXPECT_GT(ended, 5'000) << "many vertices have expired";
}

/// An opponent's path through the position queue, in arrays that are rebuilt entry by entry.
class LiteralOpponent {
 public:
  void queuePosition(Vector p) {
    if (p.x < 0 || p.x > 100000 || p.y < 0 || p.y > 100000) return;
    if (awaitingFirstPosition) {
      awaitingFirstPosition = false;
      position = p;
      return;
    }
    positionQueue[positionQueueCount] = p;
    positionQueueCount += 1;
    positionQueue.emplace_back();
  }

  void moveAsOpponent() {
    if (positionQueueCount < 1) return;
    if (velocity.x == 0 || velocity.y == 0) steering = false;
    Vector target;
    while (positionQueueCount > 0) {
      if (modMain::isOnScreen(positionQueue[0])) {
        target = positionQueue[0];
        break;
      }
      arrive();
      steering = false;
    }
    if (positionQueueCount < 1) return;
    const float d = modMain::getDistance(position, target);
    if (d < 500) {
      arrive();
      target = positionQueue[0];
      steering = false;
    } else if (d > 10000) {
      arrive();
      return;
    }
    if (positionQueueCount < 1) return;
    if (!steering) {
      velocity.x = step(target.x, position.x);
      velocity.y = step(target.y, position.y);
      steering = true;
    }
    velocity.x = static_cast<float>(velocity.x * modMain::getTimeScale());
    velocity.y = static_cast<float>(velocity.y * modMain::getTimeScale());
    if (velocity.x > 300) velocity.x = 300;
    if (velocity.y > 300) velocity.y = 300;
    position = {position.x + velocity.x, position.y + velocity.y};
    laid.push_back(position);
    bound(position.x, velocity.x);
    bound(position.y, velocity.y);
  }

  std::vector<Vector> positionQueue{1};
  std::size_t positionQueueCount = 0;
  bool awaitingFirstPosition = true;
  bool steering = false;
  Vector position;
  Vector velocity;
  std::vector<Vector> laid;

 private:
  void arrive() {
    position = positionQueue[0];
    laid.push_back(position);
    std::vector<Vector> copied;
    for (std::size_t i = 1; i < positionQueueCount; ++i) copied.push_back(positionQueue[i]);
    positionQueueCount = 0;
    positionQueue.assign(1, {});
    for (const Vector& p : copied) {
      positionQueue[positionQueueCount] = p;
      positionQueueCount += 1;
      positionQueue.emplace_back();
    }
  }
  static float step(float target, float from) {
    const float whole = static_cast<float>((static_cast<double>(target) - from) / 7);
    if (whole != 0) return whole;
    return target < from ? -1.0F : 1.0F;
  }
  static void bound(float& x, float& v) {
    if (x < 0) {
      v = std::fabs(v);
      x = 0;
    }
    if (x > 100000) {
      v = -std::fabs(v);
      x = 100000;
    }
  }
};

class PositionQueueModel : public GameTest {};

TEST_F(PositionQueueModel, MatchesTheReferenceQueueForThousandsOfPaths) {
  login();
  std::size_t laid = 0;
  for (std::uint32_t seed = 1; seed <= 3'000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&](int limit) { return std::uniform_int_distribution(0, limit - 1)(random); };
    // The local player, at the centre of the view, can be anywhere, even at an edge.
    modMain::world.localPlayer.position = {static_cast<float>(below(11) * 10'000),
                                           static_cast<float>(below(11) * 10'000)};
    modMain::world.frameTime = below(3) * 6;
    clsPlayer player;
    player.init(yellowPlayer, 0, 8, "Bob");
    LiteralOpponent literal;
    Vector point = modMain::world.localPlayer.position;
    for (int stepsLeft = below(150); stepsLeft > 0; --stepsLeft) {
      switch (below(4)) {
        case 0:
          if (below(12) == 0) {
            point = {static_cast<float>(below(110'000) - 5'000), static_cast<float>(below(110'000) - 5'000)};
          } else {
            const int reach = below(3) == 0 ? 20'000 : 3'000;
            point = {point.x + static_cast<float>(below(reach) - reach / 2),
                     below(8) == 0 ? point.y : point.y + static_cast<float>(below(reach) - reach / 2)};
          }
          literal.queuePosition(point);
          player.queuePosition(point);
          break;
        case 1:
          if (below(10) == 0) {
            const Vector velocity{static_cast<float>(below(3) * 400 - 400), static_cast<float>(below(800) - 400)};
            literal.velocity = velocity;
            player.setVelocity(velocity);
          }
          break;
        default:
          literal.moveAsOpponent();
          player.moveAsOpponent();
      }
      ASSERT_EQ(player.positionQueueCount(), static_cast<double>(literal.positionQueueCount));
      for (std::size_t i = 0; i < literal.positionQueueCount; ++i) {
        EXPECT_EQ(player.positionQueue[i], literal.positionQueue[i]) << i;
      }
      EXPECT_EQ(player.position, literal.position);
      EXPECT_EQ(player.velocity, literal.velocity);
      EXPECT_EQ(player.steering, literal.steering);
      EXPECT_EQ(player.awaitingFirstPosition, literal.awaitingFirstPosition);
      ASSERT_EQ(player.tailCount(), static_cast<double>(literal.laid.size()));
      if (!literal.laid.empty()) {
        EXPECT_EQ(player.tails.back().getPosition(), literal.laid.back());
      }
      if (HasFailure()) return;
    }
    laid += literal.laid.size();
  }
  EXPECT_GT(laid, 50'000U);
}

}  // namespace
}  // namespace kelvora
