#include "tests/rendering/paintTest.h"

#include <filesystem>
#include <memory>

namespace kelvora {

namespace {

struct Plain {
  int width, height, columns, rows;
  int green;     // of the image cells; -1: all cells are mattes
  int matteRow;  // -1: none
  int matteColumn;
};

Plain plainFor(const std::string& name) {
  const int number = name.back() >= '0' && name.back() <= '9' ? name.back() - '0' : 0;
  if (name == "playerMatte") return {196, 49, 4, 1, -1, -1, -1};
  if (name == "shield") return {196, 98, 4, 2, shieldGreen, 1, -1};
  if (name == "opponentArrowMatte") return {144, 18, 8, 1, -1, -1, -1};
  if (name == "balls") return {231, 21, 11, 1, ballsGreen, -1, -1};
  if (name == "ballMatte") return {21, 21, 1, 1, -1, -1, -1};
  if (name == "arrows") return {294, 49, 12, 2, pointerGreen, 1, -1};
  if (name == "radarBlips") return {64, 9, 7, 1, blipGreen, -1, 6};
  if (name == "action0") return {41, 42, 1, 1, -1, -1, -1};
  if (name.starts_with("action")) return {41, 42, 1, 1, iconGreen + number - 1, -1, -1};
  if (name.starts_with("player")) return {196, 49, 4, 1, playerGreen + number, -1, -1};
  if (name.starts_with("opponentArrow")) return {144, 18, 8, 1, arrowGreen + number, -1, -1};
  return {};
}

}  // namespace

PicturePointer plainSheet(const std::string& path) {
  const Plain plain = plainFor(std::filesystem::path(path).stem().string());
  if (plain.width == 0) return testPicture(path);
  auto picture = std::make_shared<Picture>();
  picture->width = plain.width;
  picture->height = plain.height;
  for (int y = 0; y < plain.height; ++y) {
    for (int x = 0; x < plain.width; ++x) {
      const int column = x * plain.columns / plain.width;
      const int row = y * plain.rows / plain.height;
      const bool matte = plain.green < 0 || row == plain.matteRow || column == plain.matteColumn;
      const int shade = 16 * (column + 1);
      picture->pixels.push_back(toPixel(matte ? RGB(0, 0, shade) : RGB(shade, plain.green, 0)));
    }
  }
  return picture;
}

PaintTest::PaintTest() {
  machine.pictureSource = plainSheet;
  for (PictureBox* surface : {&canvas(), &radar()}) {
    surface->setPicture(nullptr);
    surface->BackColor = RGB(255, 255, 255);
    surface->Cls();
  }
}

clsPlayer& PaintTest::placeLocal(float x, float y) {
  clsPlayer& player = modMain::world.localPlayer;
  player.init(redPlayer, -1, 7, "Ann");
  player.position = {x, y};
  player.awaitingFirstPosition = false;
  player.breaksOn = false;
  modMain::world.particleCount = 0;
  modMain::world.particles.clear();
  return player;
}

clsPlayer& PaintTest::placeOpponent(PlayerColour colour, float x, float y) {
  clsPlayer& player = modMain::world.opponents.emplace_back();
  player.init(colour, modMain::world.opponentCount, static_cast<std::int16_t>(20 + modMain::world.opponentCount),
              "Bob");
  player.position = {x, y};
  player.awaitingFirstPosition = false;
  ++modMain::world.opponentCount;
  return player;
}

}  // namespace kelvora
