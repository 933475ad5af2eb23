#include "frontend/frmMain.h"

#include <gtest/gtest.h>

#include "frontend/frmConnect.h"
#include "rendering/frmGfx.h"
#include "store/frmPowerups.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class MainWindow : public GameTest {
 protected:
  struct Row {
    const char* name;
    const Control* control;
    const Control* container;
    float left, top, width, height;
  };

  static void expectPlace(const Row& row) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.control->container(), row.container);
    EXPECT_EQ(row.control->Left.get(), row.left);
    EXPECT_EQ(row.control->Top.get(), row.top);
    EXPECT_EQ(row.control->Width.get(), row.width);
    EXPECT_EQ(row.control->Height.get(), row.height);
  }

  std::vector<std::string> lines() const {
    std::vector<std::string> texts;
    for (const ChatLine& line : modMain::world.chatLines) texts.push_back(line.text);
    return texts;
  }
};

constexpr Colour black = RGB(0, 0, 0);
constexpr Colour white = RGB(255, 255, 255);
constexpr Colour green = RGB(0, 255, 0);
constexpr Colour paleGreen = RGB(128, 255, 128);

TEST_F(MainWindow, IsALargeBlackSizableWindow) {
  EXPECT_EQ(frmMain->Caption.get(), "Kelvora");
  EXPECT_EQ(frmMain->design.clientWidth, 13410);
  EXPECT_EQ(frmMain->design.clientHeight, 10050);
  EXPECT_EQ(frmMain->design.border, Form::Border::Sizable);
  EXPECT_EQ(frmMain->design.back, black);
  EXPECT_FALSE(frmMain->design.systemColours);
}

TEST_F(MainWindow, ControlsHaveTheirPositions) {
  FrmMain& f = *frmMain;
  for (const Row& row : {
           Row{"canvas", &f.canvas, &f, 0, 0, 11445, 9120},
           Row{"lbcConnect", &f.lbcConnect, &f.canvas, 180, 5100, 3555, 975},
           Row{"lblTmp", &f.lblTmp, &f.canvas, 960, 900, 45, 195},
           Row{"frmUsers", &f.frmUsers, &f, 11580, 60, 1755, 3675},
           Row{"Label2", &f.Label2, &f, 11700, 3960, 1515, 735},
           Row{"lblCredits", &f.lblCredits, &f, 11760, 4320, 1395, 375},
           Row{"btnShop", &f.btnShop, &f, 11700, 4800, 1620, 765},
           Row{"btnSpawn", &f.btnSpawn, &f, 11700, 5760, 1620, 765},
           Row{"Label3", &f.Label3, &f, 11520, 6600, 1875, 1815},
           Row{"picRadar", &f.picRadar, &f, 11580, 6900, 1755, 1397},
           Row{"lblPrivChat", &f.lblPrivChat, &f, 60, 9240, 1275, 255},
           Row{"txtChat", &f.txtChat, &f, 1440, 9225, 10035, 360},
           Row{"frame_Status", &f.frame_Status, &f, 0, 9600, 13215, 375},
           Row{"lblNetStatus", &f.lblNetStatus, &f.frame_Status, 60, 60, 1335, 255},
           Row{"lblLag", &f.lblLag, &f.frame_Status, 1500, 60, 1035, 255},
       }) {
    expectPlace(row);
  }
  for (int i = 0; i < 6; ++i) {
    const float down = 540.0F * static_cast<float>(i);
    expectPlace({"lbUserName", &f.lbUserName[i], &f.frmUsers, 360, 300 + down, 1275, 255});
    expectPlace({"lblKills", &f.lblKills[i], &f.frmUsers, 60, 600 + down, 555, 255});
    expectPlace({"picCaps", &f.picCaps[i], &f.frmUsers, 660, 600 + down, 975, 165});
    expectPlace({"imgUserColor", &f.imgUserColor[i], &f.frmUsers, 0, 300 + down, 315, 315});
  }
}

TEST_F(MainWindow, ThereAreSixRowsOfPlayers) {
  EXPECT_EQ(frmMain->lbUserName.UBound, 5);
  EXPECT_EQ(frmMain->lblKills.UBound, 5);
  EXPECT_EQ(frmMain->picCaps.UBound, 5);
  EXPECT_EQ(frmMain->imgUserColor.UBound, 5);
  EXPECT_THROW(frmMain->lbUserName[6], RuntimeFault);
}

TEST_F(MainWindow, TheCanvasIsBlackWithItsFontAndAnInvisiblePointer) {
  EXPECT_EQ(frmMain->canvas.BackColor, black);
  EXPECT_EQ(frmMain->canvas.Font, (FontSpec{"Comic Sans MS", 9, true}));
  EXPECT_EQ(frmMain->canvas.MousePointer.get(), 99);
  EXPECT_EQ(frmMain->canvas.pixelWidth(), 763);
  EXPECT_EQ(frmMain->canvas.pixelHeight(), 608);
}

TEST_F(MainWindow, CanvasLabelsAreAClickAreaAndAHiddenMeasure) {
  EXPECT_TRUE(frmMain->lbcConnect.design.transparent);
  EXPECT_EQ(frmMain->lbcConnect.Caption.get(), "");
  EXPECT_FALSE(frmMain->lblTmp.Visible.get());
  EXPECT_TRUE(frmMain->lblTmp.design.autoSize);
}

TEST_F(MainWindow, PlayerListIsAsDesigned) {
  EXPECT_EQ(frmMain->frmUsers.Caption, "Users");
  EXPECT_EQ(frmMain->frmUsers.ForeColor, RGB(255, 255, 128));
  EXPECT_EQ(frmMain->frmUsers.BackColor, black);
  for (int i = 0; i < 6; ++i) {
    const Label& name = frmMain->lbUserName[i];
    EXPECT_EQ(name.ForeColor.get(), white);
    EXPECT_EQ(name.BackColor.get(), black);
    EXPECT_TRUE(name.design.font.bold);
    EXPECT_FALSE(name.design.transparent);
    const Label& kills = frmMain->lblKills[i];
    EXPECT_TRUE(kills.design.transparent);
    EXPECT_EQ(kills.ForeColor.get(), RGB(255, 255, 0));
    EXPECT_EQ(kills.design.alignment, Alignment::Centre);
    ASSERT_TRUE(frmMain->imgUserColor[i].Picture.get());
    EXPECT_EQ(frmMain->imgUserColor[i].Picture.get()->width, 21);
    EXPECT_EQ(frmMain->imgUserColor[i].Picture.get()->height, 21);
  }
}

TEST_F(MainWindow, TheHeadingBoxesShareTheirLook) {
  const FontSpec heading{"Kristen ITC", 9, true};
  EXPECT_EQ(frmMain->Label2.Caption.get(), "Credits");
  EXPECT_EQ(frmMain->Label2.ForeColor.get(), green);
  EXPECT_EQ(frmMain->Label2.BackColor.get(), black);
  EXPECT_EQ(frmMain->Label2.BorderStyle.get(), 1);
  EXPECT_EQ(frmMain->Label2.design.font, heading);
  EXPECT_EQ(frmMain->lblCredits.Caption.get(), "0");
  EXPECT_EQ(frmMain->lblCredits.ForeColor.get(), green);
  EXPECT_TRUE(frmMain->lblCredits.design.transparent);
  EXPECT_EQ(frmMain->lblCredits.design.font, heading);
  EXPECT_EQ(frmMain->Label3.Caption.get(), "-- Radar --");
  EXPECT_EQ(frmMain->Label3.ForeColor.get(), paleGreen);
  EXPECT_EQ(frmMain->Label3.BackColor.get(), black);
  EXPECT_EQ(frmMain->Label3.BorderStyle.get(), 1);
  EXPECT_EQ(frmMain->Label3.design.font, heading);
}

TEST_F(MainWindow, TheRadarHasItsGrid) {
  ASSERT_TRUE(frmMain->picRadar.background());
  EXPECT_EQ(frmMain->picRadar.background()->width, 117);
  EXPECT_EQ(frmMain->picRadar.background()->height, 93);
}

TEST_F(MainWindow, ChatEntryAndTargetAreAsDesigned) {
  EXPECT_EQ(frmMain->lblPrivChat.Caption.get(), "Public Chat");
  EXPECT_EQ(frmMain->lblPrivChat.BackColor.get(), white);
  EXPECT_EQ(frmMain->lblPrivChat.BorderStyle.get(), 1);
  EXPECT_EQ(frmMain->lblPrivChat.design.alignment, Alignment::Centre);
  EXPECT_EQ(frmMain->txtChat.Text.get(), "");
  EXPECT_EQ(frmMain->txtChat.design.fore, RGB(0, 255, 255));
  EXPECT_EQ(frmMain->txtChat.design.back, RGB(64, 0, 64));
  EXPECT_EQ(frmMain->txtChat.design.font, (FontSpec{"MS Sans Serif", 9.75F, true}));
  EXPECT_FALSE(frmMain->txtChat.design.systemColours);
  EXPECT_EQ(frmMain->txtChat.TabIndex, 0);
}

TEST_F(MainWindow, TextsAreCentredExceptForNamesAndLag) {
  FrmMain& f = *frmMain;
  for (const Label* label : {&f.Label2, &f.lblCredits, &f.Label3, &f.lblPrivChat, &f.lblNetStatus}) {
    EXPECT_EQ(label->design.alignment, Alignment::Centre) << label->Caption.get();
  }
  EXPECT_EQ(f.lblLag.design.alignment, Alignment::Left);
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(f.lbUserName[i].design.alignment, Alignment::Left);
    EXPECT_EQ(f.lblKills[i].design.alignment, Alignment::Centre);
  }
}

TEST_F(MainWindow, StatusBarIsAsDesigned) {
  EXPECT_EQ(frmMain->frame_Status.Caption, "");
  EXPECT_EQ(frmMain->frame_Status.BackColor, black);
  EXPECT_EQ(frmMain->lblNetStatus.Caption.get(), "Disconnected");
  EXPECT_EQ(frmMain->lblNetStatus.BackColor.get(), RGB(255, 128, 128));
  EXPECT_EQ(frmMain->lblNetStatus.BorderStyle.get(), 1);
  EXPECT_EQ(frmMain->lblLag.Caption.get(), "0");
  EXPECT_EQ(frmMain->lblLag.ForeColor.get(), paleGreen);
  EXPECT_EQ(frmMain->lblLag.BackColor.get(), black);
  EXPECT_TRUE(frmMain->lblLag.design.font.bold);
  EXPECT_EQ(frmMain->tmrCheckNetStatus.Interval.get(), 1000);
  EXPECT_TRUE(frmMain->tmrCheckNetStatus.Enabled.get());
}

TEST_F(MainWindow, ButtonsAreLitAndGreyed) {
  FrmMain& f = *frmMain;
  modMain::setButtonsState(true);
  EXPECT_EQ(f.btnSpawn.background(), frmGfx->imgBtnPlay[1].Picture.get());
  EXPECT_EQ(f.btnShop.background(), frmGfx->imgBtnStore[1].Picture.get());
  modMain::setButtonsState(false);
  EXPECT_EQ(f.btnSpawn.background(), frmGfx->imgBtnPlay[0].Picture.get());
  EXPECT_EQ(f.btnShop.background(), frmGfx->imgBtnStore[0].Picture.get());
}

TEST_F(MainWindow, Q037AGreySpawnButtonTakesClicks) {
  login();
  modMain::setButtonsState(false);
  frmMain->btnSpawn.Click();
  EXPECT_EQ(server().sent, "\x80\x98\x81");
  EXPECT_EQ(lines()[0], "Requesting spawn permission from the server...");
  EXPECT_EQ(modMain::world.chatLines[0].colour, white);
}

TEST_F(MainWindow, Q037TheShopOpensInEitherState) {
  for (const bool lit : {false, true}) {
    modMain::setButtonsState(lit);
    frmMain->btnShop.Click();
    EXPECT_TRUE(frmPowerups.isVisible()) << lit;
    frmPowerups.unload();
  }
}

TEST_F(MainWindow, Q234TheChatEntryAndTheStatusBarKeepTheirWidths) {
  frmMain->clientResized(20'000, 12'000);
  ASSERT_EQ(frmMain->canvas.Width.get(), 18'035);
  EXPECT_EQ(frmMain->txtChat.Width.get(), 10'035);
  EXPECT_EQ(frmMain->txtChat.Left.get(), 1440);
  EXPECT_EQ(frmMain->frame_Status.Width.get(), 13'215);
  EXPECT_EQ(frmMain->frame_Status.Left.get(), 0);
}

TEST_F(MainWindow, ResizingMovesControlsBesideAndBelowTheCanvas) {
  FrmMain& f = *frmMain;
  f.Width = 15000;
  f.Height = 12000;
  f.Resize();
  EXPECT_EQ(f.canvas.Width.get(), 12835);   // 15000 - 2165
  EXPECT_EQ(f.canvas.Height.get(), 10245);  // 12000 - 1755
  EXPECT_EQ(f.frmUsers.Left.get(), 12940);
  EXPECT_EQ(f.Label2.Left.get(), 13060);
  EXPECT_EQ(f.lblCredits.Left.get(), 13120);
  EXPECT_EQ(f.btnShop.Left.get(), 13060);
  EXPECT_EQ(f.btnSpawn.Left.get(), 13060);
  EXPECT_EQ(f.Label3.Left.get(), 12880);
  EXPECT_EQ(f.picRadar.Left.get(), 12940);
  EXPECT_EQ(f.lblPrivChat.Top.get(), 10350);
  EXPECT_EQ(f.txtChat.Top.get(), 10350);
  EXPECT_EQ(f.frame_Status.Top.get(), 10710);
  EXPECT_EQ(f.txtChat.Width.get(), 10035) << "widths stay the same";
  EXPECT_EQ(f.frame_Status.Width.get(), 13215);
  EXPECT_EQ(f.frmUsers.Top.get(), 60);
}

TEST_F(MainWindow, DesignSizeGivesTheDesignCanvas) {
  frmMain->clientResized(13410, 10050);
  EXPECT_EQ(frmMain->canvas.Width.get(), 11445);
  EXPECT_EQ(frmMain->canvas.Height.get(), 9120);
}

TEST_F(MainWindow, TheImageOfTheCanvasFollowsItsSize) {
  frmMain->Show();
  frmMain->clientResized(14965, 11925);  // canvas 13000 by 10995
  EXPECT_EQ(frmMain->canvas.pixelWidth(), 867);
  EXPECT_EQ(frmMain->canvas.pixelHeight(), 733);
}

TEST_F(MainWindow, Q038InATooSmallWindowTheCanvasKeepsItsSize) {
  FrmMain& f = *frmMain;
  f.Width = 15000;
  f.Height = 12000;
  f.Resize();
  f.Width = 2164;
  f.Height = 1754;
  f.Resize();
  EXPECT_EQ(f.canvas.Width.get(), 12835);
  EXPECT_EQ(f.canvas.Height.get(), 10245);
  EXPECT_EQ(f.frmUsers.Left.get(), 12940);
  EXPECT_EQ(f.frame_Status.Top.get(), 10710);
}

TEST_F(MainWindow, ATooNarrowWindowStillFollowsItsHeight) {
  FrmMain& f = *frmMain;
  f.Width = 1000;
  f.Height = 12000;
  f.Resize();
  EXPECT_EQ(f.canvas.Width.get(), 11445);
  EXPECT_EQ(f.canvas.Height.get(), 10245);
  EXPECT_EQ(f.lblPrivChat.Top.get(), 10350);
}

TEST_F(MainWindow, ClicksOnTheChatControlsReachTheChat) {
  login();
  join(8, 1, "Bob");
  frmMain->lbUserName[1].MouseDown(1, 0, 10, 10);
  EXPECT_EQ(frmMain->lbUserName[1].BorderStyle.get(), 1);
  frmMain->lbUserName[1].MouseUp(1, 0, 10, 10);
  EXPECT_EQ(frmMain->lbUserName[1].BorderStyle.get(), 0);
  EXPECT_EQ(frmMain->lblPrivChat.Caption.get(), "Bob");
  frmMain->lblPrivChat.MouseDown(1, 0, 10, 10);
  EXPECT_EQ(frmMain->lblPrivChat.BorderStyle.get(), 1);
  frmMain->lblPrivChat.MouseUp(1, 0, 10, 10);
  EXPECT_EQ(frmMain->lblPrivChat.BorderStyle.get(), 0);
  EXPECT_EQ(frmMain->lblPrivChat.Caption.get(), "Public Chat");
}

TEST_F(MainWindow, EnterInTheChatEntrySendsTheLine) {
  login();
  frmMain->txtChat.Text = "hi";
  frmMain->txtChat.KeyDown(13, 0);
  frmMain->txtChat.KeyPress(13);
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{144, {"-1", "hi"}}}));
  EXPECT_EQ(frmMain->txtChat.Text.get(), "");
}

}  // namespace
}  // namespace kelvora
