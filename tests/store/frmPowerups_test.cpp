#include "store/frmPowerups.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/fault.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

constexpr Colour dear = RGB(128, 95, 95);

class StoreWindow : public GameTest {
 protected:
  static std::string capacity() { return frmPowerups->lblCapacity.Caption; }
  /// "w" for a white price, "d" for a darkened one, in the order of the items.
  static std::string prices() {
    std::string text;
    for (const Label& price : frmPowerups->lblItemCost) {
      const Colour back = price.BackColor;
      text += back == white ? 'w' : back == dear ? 'd' : '?';
    }
    return text;
  }
};

TEST_F(StoreWindow, HasAFixedSizeAndItsTitle) {
  EXPECT_EQ(frmPowerups->Caption.get(), "Powerups");
  EXPECT_EQ(frmPowerups->design.clientWidth, 11370);
  EXPECT_EQ(frmPowerups->design.clientHeight, 9060);
  EXPECT_EQ(frmPowerups->design.border, Form::Border::Fixed) << "no minimise or maximise button";
}

TEST_F(StoreWindow, ShowsItsPictures) {
  const PicturePointer background = frmPowerups->imgBackground.Picture;
  ASSERT_TRUE(background);
  EXPECT_EQ(background->width, 761);
  EXPECT_EQ(background->height, 606);
  modMain::openStore();
  for (int i = 0; i < 6; ++i) {
    const PicturePointer item = testPicture(machine.path + "/assets/storeItem" + std::to_string(i) + ".png");
    PictureBox& box = frmPowerups->picPowerup[i];
    EXPECT_EQ(box.pixelWidth(), 57);
    EXPECT_EQ(box.pixelHeight(), 57);
    EXPECT_TRUE(std::equal(item->pixels.begin(), item->pixels.end(), box.pixels().begin())) << i;
    EXPECT_EQ(box.ToolTipText.get(), "Click to purchase this item");
  }
}

TEST_F(StoreWindow, ItemsFollowTheTable) {
  struct Row {
    const char* name;
    const char* cost;
    const char* description;
  };
  const Row rows[] = {
      {"Shield", "20",
       "Protects you from charged tails, lasers, and EMP's for 15 seconds.  Warning: EMP's will disable the shield."},
      {"Turbo Boost", "10", "Vastly increases your speed.  Lasts for 5 seconds."},
      {"Charged Tail", "30",
       "Your tail will be electrically charged.  Any opponents who come in contact with it will perish.  Lasts for 5 "
       "seconds."},
      {"Extra Long Tail", "20",
       "Your tail will extend far longer than normal.  This will make it easier to entrap your opponents.  Lasts for 5 "
       "seconds."},
      {"Laser Beam", "20", "A one second beam that will attack anything in it's path."},
      {"EMP", "70",
       "An electromagnetic pulse that will attack all near you.  Warning: You will be affected as well, you must be "
       "shielded when you use this!"},
  };
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(frmPowerups->lblItemName[i].Caption.get(), rows[i].name);
    EXPECT_EQ(frmPowerups->lblItemName[i].ForeColor.get(), yellow);
    EXPECT_EQ(frmPowerups->lblItemCost[i].Caption.get(), rows[i].cost);
    EXPECT_EQ(frmPowerups->lblItemDescription[i].Caption.get(), rows[i].description);
    EXPECT_EQ(frmPowerups->cmdBuy[i].Caption.get(), "Buy");
    EXPECT_EQ(frmPowerups->cmdSell[i].Caption.get(), "Sell");
  }
}

TEST_F(StoreWindow, HeadingsAndTextsAreAsDesigned) {
  EXPECT_EQ(frmPowerups->lblCredits.Caption.get(), "Credits");
  EXPECT_EQ(frmPowerups->Label6.Caption.get(), "Capacity");
  EXPECT_EQ(capacity(), "0 / 25");
  EXPECT_EQ(frmPowerups->Label2.Caption.get(), "Item");
  EXPECT_EQ(frmPowerups->Label3.Caption.get(), "Cost");
  EXPECT_EQ(frmPowerups->Label4.Caption.get(), "Description");
  EXPECT_EQ(frmPowerups->Label5.Caption.get(), "Current");
  EXPECT_EQ(frmPowerups->cmdDone.Caption.get(), "Done");
  for (const Label* label : {&frmPowerups->lblCredits, &frmPowerups->lblFunds}) {
    EXPECT_EQ(label->FontSize.get(), 9.75F);
    EXPECT_TRUE(label->design.font.bold);
  }
}

TEST_F(StoreWindow, NumbersAreCentredAndTextsLeftAligned) {
  FrmPowerups& f = *frmPowerups;
  for (const Label* label : {&f.Label6, &f.lblCapacity, &f.lblCredits, &f.lblFunds, &f.Label3, &f.Label5}) {
    EXPECT_EQ(label->design.alignment, Alignment::Centre) << label->Caption.get();
  }
  for (const Label* label : {&f.Label2, &f.Label4, &f.lblWinners}) {
    EXPECT_EQ(label->design.alignment, Alignment::Left) << label->Caption.get();
  }
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(f.lblItemCost[i].design.alignment, Alignment::Centre);
    EXPECT_EQ(f.lblCurrentStock[i].design.alignment, Alignment::Centre);
    EXPECT_EQ(f.lblItemName[i].design.alignment, Alignment::Left);
    EXPECT_EQ(f.lblItemDescription[i].design.alignment, Alignment::Left);
  }
}

TEST_F(StoreWindow, EverythingFitsAndNothingOverlaps) {
  FrmPowerups& form = *frmPowerups;
  for (const Control* a : form.children()) {
    if (a == &form.imgBackground) continue;
    EXPECT_TRUE(a->Left >= 0 && a->Top >= 0 && a->Left + a->Width <= 11370 && a->Top + a->Height <= 9060)
        << a->Left.get() << ", " << a->Top.get();
    for (const Control* b : form.children()) {
      if (a == b || b == &form.imgBackground) continue;
      EXPECT_TRUE(a->Left + a->Width <= b->Left || b->Left + b->Width <= a->Left || a->Top + a->Height <= b->Top ||
                  b->Top + b->Height <= a->Top)
          << a->Left.get() << ", " << a->Top.get() << " and " << b->Left.get() << ", " << b->Top.get();
    }
  }
  EXPECT_EQ(form.children().front(), &form.imgBackground) << "everything is on the background";
}

TEST_F(StoreWindow, TabMovesThroughTheButtonsRowByRow) {
  FrmPowerups& f = *frmPowerups;
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(f.cmdBuy[i].TabIndex, 2 * i);
    EXPECT_EQ(f.cmdSell[i].TabIndex, 2 * i + 1);
  }
  EXPECT_EQ(f.cmdDone.TabIndex, 12);
}

TEST_F(StoreWindow, PricesAreAboveBuyAndStocksAboveSell) {
  FrmPowerups& form = *frmPowerups;
  for (int i = 0; i < 6; ++i) {
    EXPECT_LT(form.lblItemCost[i].Top.get(), form.cmdBuy[i].Top.get());
    EXPECT_EQ(form.lblItemCost[i].Left.get(), form.cmdBuy[i].Left.get());
    EXPECT_LT(form.lblCurrentStock[i].Top.get(), form.cmdSell[i].Top.get());
    EXPECT_EQ(form.lblCurrentStock[i].Left.get(), form.cmdSell[i].Left.get());
  }
}

TEST_F(StoreWindow, IsPlacedOverTheMainWindowOnLoad) {
  frmMain->Left = 3000;
  frmMain->Top = 1500;
  EXPECT_EQ(frmPowerups->Left.get(), 3120);
  EXPECT_EQ(frmPowerups->Top.get(), 1620);
}

TEST_F(StoreWindow, Q207JumpsBackWheneverItGetsTheFocus) {
  modMain::openStore();
  frmPowerups->Left = 9000;
  frmPowerups->Top = 9000;
  frmMain->Left = 600;
  frmMain->Top = 450;
  frmPowerups->Activate();
  EXPECT_EQ(frmPowerups->Left.get(), 720);
  EXPECT_EQ(frmPowerups->Top.get(), 570);
}

TEST_F(StoreWindow, InitShowsTheFundsAndColoursThePrices) {
  frmPowerups->init(25);
  EXPECT_EQ(frmPowerups->lblFunds.Caption.get(), "25");
  EXPECT_EQ(prices(), "wwdwwd") << "20 10 30 20 20 70";
}

TEST_F(StoreWindow, APriceOfExactlyTheFundsStaysWhite) {
  frmPowerups->init(20);
  EXPECT_EQ(prices(), "wwdwwd");
  frmPowerups->init(19);
  EXPECT_EQ(prices(), "dwdddd");
  frmPowerups->init(70);
  EXPECT_EQ(prices(), "wwwwww");
  frmPowerups->init(9);
  EXPECT_EQ(prices(), "dddddd");
}

TEST_F(StoreWindow, Q276ColoursDependOnTheLabelsNotOnTheStoredCopies) {
  frmPowerups->init(70);
  frmPowerups->lblFunds.Caption = " 12.5 credits";
  frmPowerups->lblItemCost[1].Caption = "12.6";
  frmPowerups->lblItemCost[5].Caption = "free";
  frmPowerups->colourPrices();
  EXPECT_EQ(prices(), "dddddw");
}

TEST_F(StoreWindow, HaveShowsTheStockOfOneItem) {
  frmPowerups->have(laserSlot, 7);
  EXPECT_EQ(frmPowerups->lblCurrentStock[4].Caption.get(), "7");
  EXPECT_EQ(frmPowerups->lblCurrentStock[3].Caption.get(), "0");
  EXPECT_THROW(frmPowerups->have(PowerupSlot{6}, 1), RuntimeFault);
}

TEST_F(StoreWindow, DoneUnloadsIt) {
  modMain::openStore();
  ASSERT_TRUE(frmPowerups.isVisible());
  frmPowerups->cmdDone.Click();
  EXPECT_FALSE(frmPowerups.isLoaded());
}

TEST_F(StoreWindow, AFreshWindowHasItsDesignTextsAgain) {
  modMain::openStore();
  modMain::world.localPlayer.showStoreStatus("done");
  ASSERT_NE(capacity(), "0 / 25");
  frmPowerups->closedByUser();
  ASSERT_FALSE(frmPowerups.isLoaded());
  modMain::openStore();
  EXPECT_EQ(capacity(), "0 / 25");
}

}  // namespace
}  // namespace kelvora
