#include <gtest/gtest.h>

#include <string>

#include "base/fault.h"
#include "rendering/sprites.h"
#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

/// The program's own sheets.
class Assets : public GameTest {};

void expectSize(const SheetImage& sheet, float width, float height, const std::string& name) {
  EXPECT_EQ(sheet.Width.get(), width) << name;
  EXPECT_EQ(sheet.Height.get(), height) << name;
  EXPECT_EQ(sheet.cells().pixels.size(), static_cast<std::size_t>(sheet.cells().width * sheet.cells().height));
}

TEST_F(Assets, TheSheetsHaveTheirSizes) {
  FrmGfx& gfx = *frmGfx;
  for (int i = 0; i < 6; ++i) expectSize(gfx.imgPlayer[i], 2940, 735, "player");
  expectSize(gfx.imgPlayerMatte, 2940, 735, "playerMatte");
  expectSize(gfx.imgShield, 2940, 1470, "shield");
  for (int i = 0; i < 6; ++i) expectSize(gfx.imgOpponentArrow[i], 2160, 270, "opponentArrow");
  expectSize(gfx.imgOpponentArrowMatte, 2160, 270, "opponentArrowMatte");
  expectSize(gfx.imgBalls, 3465, 315, "balls");
  expectSize(gfx.imgBallMatte, 315, 315, "ballMatte");
  expectSize(gfx.imgArrows, 4410, 735, "arrows");
  expectSize(gfx.imgRadarBlips, 960, 135, "radarBlips");
  expectSize(gfx.imgCaps, 975, 165, "caps");
  for (int i = 0; i < 7; ++i) expectSize(gfx.imgAction[i], 615, 630, "action");
  for (int i = 0; i < 2; ++i) expectSize(gfx.imgBtnPlay[i], 1470, 600, "btnPlay");
  for (int i = 0; i < 2; ++i) expectSize(gfx.imgBtnStore[i], 1470, 600, "btnStore");
  expectSize(gfx.imgNull, 510, 510, "null");
}

TEST_F(Assets, ASheetOutsideItsArrayIsAFault) {
  EXPECT_THROW(frmGfx->imgPlayer[6], RuntimeFault);
  EXPECT_THROW(frmGfx->imgAction[7], RuntimeFault);
  EXPECT_EQ(frmGfx->imgAction.UBound, 6);
}

TEST_F(Assets, OutsideItsShapeAMatteIsWhiteAndAnImageBlack) {
  const Picture& matte = frmGfx->imgPlayerMatte.cells();
  EXPECT_EQ(matte.pixels[0], toPixel(RGB(255, 255, 255)));
  EXPECT_EQ(matte.pixels[24 * 196 + 24], 0U) << "black inside";
  for (int i = 0; i < 6; ++i) {
    const Picture& image = frmGfx->imgPlayer[i].cells();
    EXPECT_EQ(image.pixels[0], 0U);
    EXPECT_NE(image.pixels[24 * 196 + 24], 0U);
  }
}

TEST_F(Assets, TheFormIsNeverShown) {
  EXPECT_TRUE(frmGfx->imgBalls.Width > 0);
  EXPECT_FALSE(frmGfx.isVisible());
}

using Sprites = PaintTest;

TEST_F(Sprites, TheMattePunchesAndTheImageFills) {
  canvas().BackColor = RGB(255, 200, 100);
  canvas().Cls();
  const FrmGfx& gfx = *frmGfx;
  paintSprite(canvas(), {gfx.imgBallMatte, 0, 0}, {gfx.imgBalls, 315 * 2, 0}, {1500, 1500, 315, 315});
  // (RGB(255, 200, 100) AND RGB(0, 0, 16)) OR RGB(48, 80, 0): bit 16 is not set in 100.
  EXPECT_EQ(pixelAt(canvas(), 110, 110), RGB(48, ballsGreen, 0));
  paintSprite(canvas(), {gfx.imgBallMatte, 0, 0}, {gfx.imgBalls, 315 * 2, 0}, {3000, 1500, 315, 315}, exchangedSprite);
  // (RGB(255, 200, 100) OR RGB(0, 0, 16)) AND RGB(48, 80, 0): 200 AND 80 is 64.
  EXPECT_EQ(pixelAt(canvas(), 210, 110), RGB(48, 64, 0));
}

class StartLogo : public PaintTest {};

TEST_F(StartLogo, ShowsThePictureAndClearsThePanel) {
  auto logo = std::make_shared<Picture>();
  logo->width = 1;
  logo->height = 1;
  logo->pixels = {toPixel(RGB(1, 2, 3))};
  std::string asked;
  machine.path = "/somewhere";
  frmMain->lbUserName[2].Caption = "Ann";
  frmMain->lbUserName[2].BackColor = RGB(128, 0, 0);
  frmMain->picCaps[4].ForeColor = RGB(255, 0, 0);
  frmMain->picCaps[4].Line(0, 0, 500, 0);
  ASSERT_GT(countPixels(frmMain->picCaps[4], RGB(255, 0, 0)), 30);
  frmMain->canvas.MousePointer = 99;
  frmMain->lbcConnect.Visible = false;
  machine.pictureSource = [&](const std::string& path) {
    asked = path;
    return logo;
  };
  modMain::showStartLogo();
  EXPECT_EQ(asked, "/somewhere/kelvora.jpg");
  EXPECT_EQ(frmMain->canvas.MousePointer, 0);
  EXPECT_EQ(frmMain->canvas.background(), logo);
  EXPECT_EQ(pixelAt(canvas(), 0, 0), RGB(1, 2, 3));
  EXPECT_TRUE(frmMain->lbcConnect.Visible);
  EXPECT_EQ(frmMain->lbUserName[2].Caption.get(), "");
  EXPECT_EQ(frmMain->lbUserName[2].BackColor.get(), RGB(0, 0, 0));
  EXPECT_EQ(countPixels(frmMain->picCaps[4], frmMain->picCaps[4].BackColor),
            frmMain->picCaps[4].pixelWidth() * frmMain->picCaps[4].pixelHeight());
}

TEST_F(StartLogo, MissingFileSkipsOnlyThePicture) {
  frmMain->lbcConnect.Visible = false;
  frmMain->lbUserName[0].Caption = "Ann";
  machine.pictureSource = [](const std::string&) -> PicturePointer { throw RuntimeFault("File not found"); };
  modMain::showStartLogo();
  EXPECT_EQ(frmMain->canvas.background(), nullptr);
  EXPECT_TRUE(frmMain->lbcConnect.Visible);
  EXPECT_EQ(frmMain->lbUserName[0].Caption.get(), "");
}

TEST_F(StartLogo, HidingRemovesThePictureAndThePointer) {
  machine.pictureSource = testPicture;
  modMain::showStartLogo();
  modMain::hideStartLogo();
  EXPECT_EQ(frmMain->canvas.background(), nullptr);
  EXPECT_EQ(frmMain->canvas.MousePointer, 99);
  EXPECT_FALSE(frmMain->lbcConnect.Visible);
}

}  // namespace
}  // namespace kelvora
