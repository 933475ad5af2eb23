#include <gtest/gtest.h>

#include "base/fault.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class Menu : public GameTest {
 protected:
  std::string stored(const std::string& section, const std::string& key) {
    const auto found = machine.settings.find({section, key});
    return found == machine.settings.end() ? "(nothing)" : found->second;
  }
  void store(const std::string& section, const std::string& key, const std::string& value) {
    machine.settings[{section, key}] = value;
  }
  /// The checked items among Never, Click and Always.
  static std::string line() {
    std::string marks;
    for (const MenuItem* item : {&frmMain->mnuDirLineNever, &frmMain->mnuDirLineClick, &frmMain->mnuDirLineAlways}) {
      marks += item->Checked ? 'x' : '-';
    }
    return marks;
  }
  /// The checked items among Stars and Quarks.
  static std::string quarks() {
    std::string marks;
    for (const MenuItem* item : {&frmMain->mnuQuarkStars, &frmMain->mnuQuarkQuarks}) marks += item->Checked ? 'x' : '-';
    return marks;
  }
};

TEST_F(Menu, ItemsAreInTheirMenusAsDesigned) {
  FrmMain f;  // not loaded: as designed
  using enum MenuItem::Design;
  struct Row {
    const MenuItem* item;
    const Control* container;
    const char* caption;
    MenuItem::Design design;
  };
  const Row rows[] = {
      {&f.mnuFile, &f, "File", Plain},
      {&f.mnuFileConnect, &f.mnuFile, "Connect to server", Plain},
      {&f.mnuFileDisconnect, &f.mnuFile, "Disconnect", Disabled},
      {&f.mnuFileSep1, &f.mnuFile, "-", Plain},
      {&f.mnuFileExit, &f.mnuFile, "Exit", Plain},
      {&f.mnuSettings, &f, "Settings", Plain},
      {&f.mnuAudio, &f.mnuSettings, "Audio", Plain},
      {&f.mnuAudioMusic, &f.mnuAudio, "Enable Music", Checked},
      {&f.mnuAudioSfx, &f.mnuAudio, "Enable Sound Effects", Checked},
      {&f.mnuFonts, &f.mnuSettings, "Fonts", Plain},
      {&f.mnuQuark, &f.mnuSettings, "Background Objects", Plain},
      {&f.mnuQuarkStars, &f.mnuQuark, "Stars", Checked},
      {&f.mnuQuarkQuarks, &f.mnuQuark, "Quarks", Plain},
      {&f.mnuMisc, &f.mnuSettings, "Misc", Plain},
      {&f.mnuLine, &f.mnuMisc, "Directional Line Visible", Plain},
      {&f.mnuDirLineNever, &f.mnuLine, "Never", Checked},
      {&f.mnuDirLineClick, &f.mnuLine, "Only while clicking", Plain},
      {&f.mnuDirLineAlways, &f.mnuLine, "Always", Plain},
      {&f.mnuUpdates, &f.mnuMisc, "Check for updates on startup", Checked},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.caption);
    EXPECT_EQ(row.item->container(), row.container);
    EXPECT_EQ(row.item->Caption.get(), row.caption);
    EXPECT_EQ(row.item->Checked.get(), row.design == Checked);
    EXPECT_EQ(row.item->Enabled.get(), row.design != Disabled);
  }
}

TEST_F(Menu, ItemsAreInOrder) {
  FrmMain& f = *frmMain;
  EXPECT_EQ(f.mnuFile.children(),
            (std::vector<Control*>{&f.mnuFileConnect, &f.mnuFileDisconnect, &f.mnuFileSep1, &f.mnuFileExit}));
  EXPECT_EQ(f.mnuSettings.children(), (std::vector<Control*>{&f.mnuAudio, &f.mnuFonts, &f.mnuQuark, &f.mnuMisc}));
  EXPECT_EQ(f.mnuAudio.children(), (std::vector<Control*>{&f.mnuAudioMusic, &f.mnuAudioSfx}));
  EXPECT_EQ(f.mnuQuark.children(), (std::vector<Control*>{&f.mnuQuarkStars, &f.mnuQuarkQuarks}));
  EXPECT_EQ(f.mnuMisc.children(), (std::vector<Control*>{&f.mnuLine, &f.mnuUpdates}));
  EXPECT_EQ(f.mnuLine.children(), (std::vector<Control*>{&f.mnuDirLineNever, &f.mnuDirLineClick, &f.mnuDirLineAlways}));
}

TEST_F(Menu, EmptySettingsGiveTheDefaults) {
  EXPECT_TRUE(frmMain->mnuAudioMusic.Checked.get());
  EXPECT_TRUE(frmMain->mnuAudioSfx.Checked.get());
  EXPECT_TRUE(frmMain->mnuUpdates.Checked.get());
  EXPECT_EQ(line(), "-x-") << "the design is Never, the default is not";
  EXPECT_EQ(quarks(), "x-");
  EXPECT_TRUE(machine.settings.empty()) << "reading stores nothing";
}

TEST_F(Menu, Q233TheLineIsDesignedAsNeverButDefaultsToClick) {
  const FrmMain designed;  // not loaded
  EXPECT_TRUE(designed.mnuDirLineNever.Checked.get());
  EXPECT_FALSE(designed.mnuDirLineClick.Checked.get());
  EXPECT_EQ(line(), "-x-");
}

TEST_F(Menu, StoredSettingsAreApplied) {
  store("audio", "music", "False");
  store("audio", "sfx", "False");
  store("misc", "directionalLine", "always");
  store("misc", "quarks", "quarks");
  store("misc", "updates", "False");
  EXPECT_FALSE(frmMain->mnuAudioMusic.Checked.get());
  EXPECT_FALSE(frmMain->mnuAudioSfx.Checked.get());
  EXPECT_FALSE(frmMain->mnuUpdates.Checked.get());
  EXPECT_EQ(line(), "--x");
  EXPECT_EQ(quarks(), "-x");
}

TEST_F(Menu, LineSettingIgnoresCase) {
  store("misc", "directionalLine", "ALWAYS");
  EXPECT_EQ(line(), "--x");
}

TEST_F(Menu, NeverIsAValidLineSetting) {
  store("misc", "directionalLine", "Never");
  EXPECT_EQ(line(), "x--");
}

TEST_F(Menu, UnknownLineSettingKeepsTheDesign) {
  store("misc", "directionalLine", "sometimes");
  EXPECT_EQ(line(), "x--");
}

TEST_F(Menu, Q039StarsWithACapitalMeansQuarks) {
  store("misc", "quarks", "Stars");
  EXPECT_EQ(quarks(), "-x");
}

TEST_F(Menu, AMalformedBooleanIsATypeError) {
  store("audio", "music", "perhaps");
  EXPECT_THROW(*frmMain, RuntimeFault);
}

TEST_F(Menu, ABooleanMayBeANumber) {
  store("audio", "music", "0");
  store("audio", "sfx", "-1");
  EXPECT_FALSE(frmMain->mnuAudioMusic.Checked.get());
  EXPECT_TRUE(frmMain->mnuAudioSfx.Checked.get());
}

TEST_F(Menu, SwitchesToggleAndSave) {
  struct Row {
    MenuItem* item;
    const char* section;
    const char* key;
  };
  for (const Row& row : {Row{&frmMain->mnuAudioMusic, "audio", "music"}, Row{&frmMain->mnuAudioSfx, "audio", "sfx"},
                         Row{&frmMain->mnuUpdates, "misc", "updates"}}) {
    row.item->Click();
    EXPECT_FALSE(row.item->Checked.get()) << row.key;
    EXPECT_EQ(stored(row.section, row.key), "False");
    row.item->Click();
    EXPECT_TRUE(row.item->Checked.get()) << row.key;
    EXPECT_EQ(stored(row.section, row.key), "True");
  }
}

TEST_F(Menu, ExactlyOneOfStarsAndQuarksIsChecked) {
  frmMain->mnuQuarkQuarks.Click();
  EXPECT_EQ(quarks(), "-x");
  EXPECT_EQ(stored("misc", "quarks"), "quarks");
  frmMain->mnuQuarkStars.Click();
  EXPECT_EQ(quarks(), "x-");
  EXPECT_EQ(stored("misc", "quarks"), "stars");
}

TEST_F(Menu, ClickingTheCheckedOneOfThePairChecksTheOther) {
  frmMain->mnuQuarkStars.Click();
  EXPECT_EQ(quarks(), "-x");
  EXPECT_EQ(stored("misc", "quarks"), "quarks");
  frmMain->mnuQuarkQuarks.Click();
  EXPECT_EQ(quarks(), "x-");
  EXPECT_EQ(stored("misc", "quarks"), "stars");
}

TEST_F(Menu, ClickingAnotherOfTheTripleMovesTheCheckMark) {
  frmMain->mnuDirLineNever.Click();
  EXPECT_EQ(line(), "x--");
  EXPECT_EQ(stored("misc", "directionalLine"), "never");
  frmMain->mnuDirLineAlways.Click();
  EXPECT_EQ(line(), "--x");
  EXPECT_EQ(stored("misc", "directionalLine"), "always");
  frmMain->mnuDirLineClick.Click();
  EXPECT_EQ(line(), "-x-");
  EXPECT_EQ(stored("misc", "directionalLine"), "click");
}

TEST_F(Menu, Q040ClickingTheCheckedOneOfTheTripleChecksNoneAndKeepsTheOldSetting) {
  frmMain->mnuDirLineNever.Click();
  machine.journal.clear();
  frmMain->mnuDirLineNever.Click();
  EXPECT_EQ(line(), "---");
  EXPECT_TRUE(machine.journal.empty()) << "nothing is saved";
  frmMain.unload();
  EXPECT_EQ(line(), "x--") << "the old setting applies at the next start";
}

TEST_F(Menu, FromNoneOneCanBeCheckedAgain) {
  frmMain->mnuDirLineClick.Click();
  ASSERT_EQ(line(), "---");
  frmMain->mnuDirLineClick.Click();
  EXPECT_EQ(line(), "-x-");
  EXPECT_EQ(stored("misc", "directionalLine"), "click");
}

TEST_F(Menu, SettingsAreReadInOrder) {
  frmMain->Show();
  std::vector<std::string> reads;
  for (const std::string& entry : machine.journal) {
    if (entry.starts_with("read ")) reads.push_back(entry.substr(5));
  }
  EXPECT_EQ(reads, (std::vector<std::string>{"audio/music", "audio/sfx", "misc/directionalLine", "misc/quarks",
                                             "misc/updates"}));
}

}  // namespace
}  // namespace kelvora
