#include "bench/scene.h"

#include <cmath>
#include <cstddef>
#include <random>

#include "core/centreMessage.h"
#include "core/modMain.h"
#include "particles/pools.h"
#include "rendering/paintFrame.h"
#include "simulation/clsPlayer.h"

namespace kelvora::bench {

namespace {

/// A wandering course over the canvas, 250 units per step, with the player at its end.
void layTail(clsPlayer& player, std::mt19937& draws) {
  std::uniform_real_distribution<float> places(-4000, 4000);
  std::uniform_real_distribution<float> turns(-0.3F, 0.3F);
  const Vector middle{50000, 2000};
  Vector place{middle.x + places(draws), middle.y + places(draws)};
  float heading = turns(draws) * 10;
  for (int i = 0; i < 300; ++i) {
    heading += turns(draws);
    Vector next{place.x + 250 * std::cos(heading), place.y + 250 * std::sin(heading)};
    if (std::fabs(next.x - middle.x) > 5600 || std::fabs(next.y - middle.y) > 4400) {
      heading += 2;
      next = place;
    }
    place = next;
    player.addTail(place);
  }
  if (player.playerIndex >= 0) player.position = place;
  player.powerups[shieldSlot].active = true;
}

}  // namespace

Scene::Scene(bool heavy, GlyphSource* glyphs) {
  Surface::setGlyphSource(glyphs);
  machine.generator.randomize(1);
  clsPlayer& local = modMain::world.localPlayer;
  local.position = {50000, 50000};
  local.init(redPlayer, -1, 1, "Ann");
  modMain::world.mousePos = {8000, 3000};
  modMain::world.centreMessageAge = messageAge_;
  if (heavy) fill();
  if (glyphs) write();
  paint();
}

Scene::~Scene() { Surface::setGlyphSource(nullptr); }

void Scene::paint() {
  modMain::world.localPlayer.lastAgeTick = machine.ticks - 1;
  for (clsPlayer& player : modMain::world.opponents) player.lastAgeTick = machine.ticks - 1;
  modMain::world.centreMessageAge = messageAge_;
  modMain::paintFrame();
  modMain::world.frameTime = 0;
}

void Scene::fill() {
  std::mt19937 draws(42);
  clsPlayer& local = modMain::world.localPlayer;
  local.position = {50000, 2000};
  modMain::createParticleField();
  for (std::int16_t i = 0; i < 5; ++i) {
    clsPlayer& player = modMain::world.opponents.emplace_back();
    player.init(static_cast<PlayerColour>(i + 1), i, static_cast<std::int16_t>(i + 2), "Bob");
    player.awaitingFirstPosition = false;
    ++modMain::world.opponentCount;
  }
  layTail(local, draws);
  for (clsPlayer& player : modMain::world.opponents) layTail(player, draws);
  local.position = {50000, 2000};
}

void Scene::write() {
  for (std::size_t i = 0; i < modMain::world.chatLines.size(); ++i) {
    modMain::world.chatLines[i] = {"Ann: that was a close one, see you at the next corner", RGB(200, 220, 255), 10};
  }
  modMain::showCentreMessage("Capture your opponents in a loop of your tail");
  messageAge_ = 0;
}

}  // namespace kelvora::bench
