#include "frontend/frmFonts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/fault.h"
#include "frontend/console.h"
#include "frontend/fontMan.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class FontDialog : public GameTest {
 protected:
  std::string stored(const std::string& key) {
    const auto found = machine.settings.find({"fonts", key});
    return found == machine.settings.end() ? "(nothing)" : found->second;
  }
  void open() { frmMain->mnuFonts.Click(); }
  static ControlArray<Label, 5>& bars(int channel) {
    ControlArray<Label, 5>* const all[] = {&frmFonts->lblColorRed, &frmFonts->lblColorGreen, &frmFonts->lblColorBlue};
    return *all[channel];
  }
  static void drag(Label& bar, float x) { bar.MouseMove(1, 0, x, 90); }
  /// Moves a slider as the user does, by a drag or otherwise.
  static void slide(int purpose, int value, bool byDrag = false) {
    Slider& slider = frmFonts->sldSize[purpose];
    slider.Value = value;
    byDrag ? slider.Scroll() : slider.Change();
  }
  static int channelOf(int purpose, int channel) {
    const Colour colour = fontMan::getFontColour(static_cast<std::int16_t>(purpose));
    const int channels[] = {colour.red, colour.green, colour.blue};
    return channels[channel];
  }
};

TEST_F(FontDialog, IsASmallBlackWindowOfFixedSize) {
  FrmFonts f;
  EXPECT_EQ(f.Caption.get(), "Configure Fonts");
  EXPECT_EQ(f.design.clientWidth, 6765);
  EXPECT_EQ(f.design.clientHeight, 5715);
  EXPECT_EQ(f.design.border, Form::Border::Fixed);
  EXPECT_EQ(f.design.back, RGB(0, 0, 0));
  EXPECT_FALSE(f.design.systemColours);
}

TEST_F(FontDialog, EveryPurposeHasItsBlock) {
  FrmFonts f;
  const char* const names[] = {"Public Chat", "Private Chat (Send)", "Private Chat (Receive)", "Server Message",
                               "Error Message"};
  EXPECT_EQ(decltype(f.lblFontLabel)::UBound, 4);
  for (int i = 0; i < 5; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(f.lblFontLabel[i].Caption.get(), names[i]);
    EXPECT_TRUE(f.lblFontLabel[i].design.transparent);
    EXPECT_TRUE(f.lblFontLabel[i].design.autoSize);
    EXPECT_EQ(f.lblFontLabel[i].ForeColor.get(), RGB(255, 255, 255));

    EXPECT_EQ(f.lblFontDemo[i].Caption.get(), "This is a sample of the font.");
    EXPECT_EQ(f.lblFontDemo[i].design.font, (FontSpec{"Comic Sans MS", 9, true}));
    EXPECT_EQ(f.lblFontDemo[i].FontSize, 9.0F);

    EXPECT_EQ(f.sldSize[i].Min, 9);
    EXPECT_EQ(f.sldSize[i].Max, 16);
    EXPECT_EQ(f.sldSize[i].Value, 9);

    EXPECT_EQ(f.lblFontColor[i].Width, 615.0F);
    EXPECT_EQ(f.lblFontColor[i].Height, 315.0F);

    const struct {
      Label& bar;
      Colour solid;
    } rows[] = {
        {f.lblColorRed[i], RGB(255, 0, 0)}, {f.lblColorGreen[i], RGB(0, 255, 0)}, {f.lblColorBlue[i], RGB(0, 0, 255)}};
    for (const auto& row : rows) {
      EXPECT_EQ(row.bar.Width, 855.0F);
      EXPECT_EQ(row.bar.Height, 180.0F);
      EXPECT_EQ(row.bar.BackColor.get(), row.solid);
      EXPECT_EQ(row.bar.BorderStyle, 1);
      EXPECT_FALSE(row.bar.design.transparent);
    }
  }
  EXPECT_EQ(f.cmdClose.Caption.get(), "Done");
}

TEST_F(FontDialog, TabMovesThroughTheSlidersToDone) {
  FrmFonts f;
  for (int i = 0; i < 5; ++i) EXPECT_EQ(f.sldSize[i].TabIndex, i);
  EXPECT_EQ(f.cmdClose.TabIndex, 5);
}

TEST_F(FontDialog, NothingIsCutOffAndNothingOverlaps) {
  FrmFonts f;
  const auto& controls = f.children();
  ASSERT_EQ(controls.size(), 5U * 7 + 1);
  for (const Control* control : controls) {
    EXPECT_GE(control->Left, 0);
    EXPECT_GE(control->Top, 0);
    EXPECT_LE(control->Left + control->Width, 6765);
    EXPECT_LE(control->Top + control->Height, 5715);
    for (const Control* other : controls) {
      if (other == control) continue;
      const bool apart = control->Left + control->Width <= other->Left || other->Left + other->Width <= control->Left ||
                         control->Top + control->Height <= other->Top || other->Top + other->Height <= control->Top;
      EXPECT_TRUE(apart) << control->Left << " " << control->Top << " and " << other->Left << " " << other->Top;
    }
  }
}

TEST_F(FontDialog, BlocksAreEvenlySpacedInTheOrderOfThePurposes) {
  FrmFonts f;
  const std::vector<Control*>& controls = f.children();
  // Corresponding controls of neighbouring blocks are always the same distance apart.
  for (std::size_t kind = 0; kind < 7; ++kind) {
    for (std::size_t i = 1; i < 5; ++i) {
      const Control& control = *controls[kind * 5 + i];
      const Control& above = *controls[kind * 5 + i - 1];
      EXPECT_EQ(control.Left, above.Left);
      EXPECT_EQ(control.Top - above.Top, f.lblFontLabel[1].Top - f.lblFontLabel[0].Top);
    }
  }
  EXPECT_GT(f.lblFontLabel[1].Top, f.lblFontDemo[0].Top);
}

TEST_F(FontDialog, TheMenuShowsItBesideTheGame) {
  open();
  EXPECT_TRUE(frmFonts.isVisible());
  EXPECT_EQ(frmFonts->modality(), Form::Modality::Modeless);
  EXPECT_TRUE(machine.modalForms.empty());
  open();  // opening it again does no harm
  EXPECT_TRUE(frmFonts.isVisible());
}

TEST_F(FontDialog, ShowsTheFontsWhenItLoads) {
  fontMan::setFontColour(1, 0, 10);
  fontMan::setFontColour(1, 1, 20);
  fontMan::setFontColour(1, 2, 30);
  fontMan::setFontSize(1, 14);
  open();
  const struct {
    Colour colour;
    int size;
  } rows[] = {{RGB(128, 255, 128), 9},
              {RGB(10, 20, 30), 14},
              {RGB(255, 0, 255), 9},
              {RGB(255, 255, 0), 9},
              {RGB(255, 0, 0), 9}};
  for (int i = 0; i < 5; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(frmFonts->lblFontColor[i].BackColor.get(), rows[i].colour);
    EXPECT_EQ(frmFonts->lblFontDemo[i].ForeColor.get(), rows[i].colour);
    EXPECT_EQ(frmFonts->lblFontDemo[i].FontSize, static_cast<float>(rows[i].size));
    EXPECT_EQ(frmFonts->sldSize[i].Value, rows[i].size);
  }
}

TEST_F(FontDialog, OpeningAndClosingChangesNoFont) {
  machine.settings[{"fonts", "0size"}] = "20";
  machine.settings[{"fonts", "1size"}] = "3";
  fontMan::initFonts();
  const auto before = machine.settings;
  open();
  EXPECT_EQ(frmFonts->sldSize[0].Value, 16) << "as far as the slider goes";
  EXPECT_EQ(frmFonts->sldSize[1].Value, 9);
  frmFonts->cmdClose.Click();
  EXPECT_FALSE(frmFonts.isLoaded());
  EXPECT_EQ(machine.settings, before);
  EXPECT_EQ(fontMan::getFontSize(0), 20);
  EXPECT_EQ(fontMan::getFontSize(1), 3);
}

TEST_F(FontDialog, EachBarSetsItsPurposesChannel) {
  open();
  const char* const letters = "RGB";
  for (int purpose = 0; purpose < 5; ++purpose) {
    for (int channel = 0; channel < 3; ++channel) {
      const float x = static_cast<float>(171 * (channel + 1));  // 20, 40 and 60 percent of 855
      drag(bars(channel)[purpose], x);
      EXPECT_EQ(stored(std::to_string(purpose) + "color" + letters[channel]), std::to_string(20 * (channel + 1)));
    }
    EXPECT_EQ(fontMan::getFontColour(static_cast<std::int16_t>(purpose)), RGB(20, 40, 60));
    EXPECT_EQ(frmFonts->lblFontColor[purpose].BackColor.get(), RGB(20, 40, 60));
    EXPECT_EQ(frmFonts->lblFontDemo[purpose].ForeColor.get(), RGB(20, 40, 60));
  }
  EXPECT_EQ(machine.settings.size(), 15U);
}

TEST_F(FontDialog, Q140TheBarEndsAtAHundred) {
  open();
  Label& red = frmFonts->lblColorRed[4];
  drag(red, 855);  // the right edge
  EXPECT_EQ(fontMan::getFontColour(4).red, 100);
  EXPECT_EQ(stored("4colorR"), "100");
}

TEST_F(FontDialog, ChannelIsThePositionOnTheBarRoundedDown) {
  open();
  const struct {
    float x;
    int value;
  } rows[] = {{0, 0},      {8, 0},      {9, 1},      {-1, 0},      {-5000, 0},  {427, 49},
              {428, 50},   {854, 99},   {855, 100},  {2171, 253},  {2172, 254}, {2180, 254},
              {2181, 255}, {2188, 255}, {2189, 255}, {20000, 255}, {1e30F, 255}};
  for (const auto& row : rows) {
    drag(frmFonts->lblColorGreen[0], row.x);
    EXPECT_EQ(channelOf(0, 1), row.value) << row.x;
    EXPECT_EQ(stored("0colorG"), std::to_string(row.value)) << row.x;
  }
}

TEST_F(FontDialog, OnlyTheLeftButtonByItselfDrags) {
  open();
  for (const int buttons : {0, 2, 3, 4, 5, 7}) {
    for (int channel = 0; channel < 3; ++channel) bars(channel)[0].MouseMove(buttons, 0, 400, 90);
  }
  EXPECT_TRUE(machine.settings.empty());
  EXPECT_EQ(fontMan::getFontColour(0), RGB(128, 255, 128));
  frmFonts->lblColorRed[0].MouseMove(1, 7, 400, 90);  // modifier keys make no difference: 46.78
  EXPECT_EQ(fontMan::getFontColour(0), RGB(46, 255, 128));
}

TEST_F(FontDialog, Q142APressAloneDoesNothing) {
  open();
  for (int channel = 0; channel < 3; ++channel) {
    EXPECT_FALSE(bars(channel)[2].MouseDown);
    EXPECT_FALSE(bars(channel)[2].MouseUp);
    EXPECT_FALSE(bars(channel)[2].Click);
  }
}

TEST_F(FontDialog, EitherEventSavesTheSizeAtOnce) {
  open();
  for (int purpose = 0; purpose < 5; ++purpose) {
    const std::string key = std::to_string(purpose) + "size";
    slide(purpose, 12, true);
    EXPECT_EQ(stored(key), "12");
    EXPECT_EQ(fontMan::getFontSize(static_cast<std::int16_t>(purpose)), 12);
    EXPECT_EQ(frmFonts->lblFontDemo[purpose].FontSize, 12.0F);
    slide(purpose, 16);
    EXPECT_EQ(stored(key), "16");
    EXPECT_EQ(frmFonts->lblFontDemo[purpose].FontSize, 16.0F);
  }
  EXPECT_TRUE(frmFonts.isVisible()) << "no Done needed";
}

TEST_F(FontDialog, SliderIsClampedToItsEnds) {
  Slider& slider = frmFonts->sldSize[0];
  const int rows[][2] = {{8, 9}, {9, 9}, {16, 16}, {17, 16}, {-32768, 9}, {32767, 16}, {12, 12}};
  for (const auto& row : rows) {
    slider.Value = row[0];
    EXPECT_EQ(slider.Value, row[1]);
  }
}

TEST_F(FontDialog, AssigningASliderRaisesNoEvent) {
  Slider& slider = frmFonts->sldSize[0];
  slider.Value = 15;
  EXPECT_EQ(fontMan::getFontSize(0), 9);
  EXPECT_TRUE(machine.settings.empty());
}

TEST_F(FontDialog, OutsideChangesShowInTheOpenDialog) {
  open();
  fontMan::setFontColour(3, 2, 77);
  fontMan::setFontSize(3, 11);
  EXPECT_EQ(frmFonts->lblFontColor[3].BackColor.get(), RGB(255, 255, 77));
  EXPECT_EQ(frmFonts->lblFontDemo[3].FontSize, 11.0F);
  EXPECT_EQ(frmFonts->sldSize[3].Value, 11);
}

TEST_F(FontDialog, ChangesDoNotLoadTheClosedDialog) {
  fontMan::setFontColour(3, 2, 77);
  fontMan::setFontSize(3, 11);
  EXPECT_FALSE(frmFonts.isLoaded());
  EXPECT_EQ(stored("3colorB"), "77");
  EXPECT_EQ(stored("3size"), "11");
}

TEST_F(FontDialog, HiddenDialogIsNotUpdated) {
  open();
  frmFonts->Hide();
  fontMan::setFontSize(3, 11);
  EXPECT_EQ(frmFonts->sldSize[3].Value, 9);
  fontMan::showFontsToForm();
  EXPECT_EQ(frmFonts->sldSize[3].Value, 11);
}

TEST_F(FontDialog, DoneUnloadsItAndItOpensAgain) {
  open();
  slide(2, 13);
  frmFonts->cmdClose.Click();
  EXPECT_FALSE(frmFonts.isLoaded());
  open();
  EXPECT_EQ(frmFonts->sldSize[2].Value, 13);
}

TEST_F(FontDialog, ClosingTheWindowUnloadsItToo) {
  open();
  frmFonts->closedByUser();
  EXPECT_FALSE(frmFonts.isLoaded());
  EXPECT_TRUE(frmMain.isLoaded());
}

TEST_F(FontDialog, OldLinesKeepTheirLookAndTheSampleFollowsAtOnce) {
  printChat("before", LineType::Error);
  open();
  drag(frmFonts->lblColorRed[4], 855);
  EXPECT_EQ(modMain::world.chatLines[0].colour, RGB(255, 0, 0));
  EXPECT_EQ(frmFonts->lblFontDemo[4].ForeColor.get(), RGB(100, 0, 0));
  printChat("after", LineType::Error);
  EXPECT_EQ(modMain::world.chatLines[0].colour, RGB(100, 0, 0));
}

TEST_F(FontDialog, AFontWithoutARowShowsNothing) {
  for (const std::int16_t purpose : {std::int16_t{-1}, std::int16_t{5}}) {
    clsFont font;
    EXPECT_THROW(font.init(purpose), RuntimeFault) << "it has no defaults";
    font.showToForm();
    EXPECT_FALSE(frmFonts.isLoaded());
  }
}

TEST_F(FontDialog, Q141AStoredFamilyChangesNothing) {
  machine.settings[{"fonts", "0family"}] = "Wingdings";
  fontMan::initFonts();
  open();
  EXPECT_EQ(frmFonts->lblFontDemo[0].design.font.family, "Comic Sans MS");
  EXPECT_EQ(frmMain->canvas.Font.family, "Comic Sans MS");
  slide(0, 12);
  drag(frmFonts->lblColorRed[0], 100);
  EXPECT_EQ(stored("0family"), "Wingdings");
}

}  // namespace
}  // namespace kelvora
