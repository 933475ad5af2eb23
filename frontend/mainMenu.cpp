#include "audio/frmMusic.h"
#include "audio/soundMan.h"
#include "base/fault.h"
#include "base/text.h"
#include "frontend/frmFonts.h"
#include "frontend/frmMain.h"
#include "network/session.h"
#include "platform/backend.h"

namespace kelvora {

namespace {

void clickSwitch(MenuItem& item, const std::string& section, const std::string& key) {
  item.Checked = !item.Checked;
  SaveSetting(section, key, booleanText(item.Checked));
}

bool readSwitch(const std::string& section, const std::string& key) {
  return strictBoolean(GetSetting(section, key, booleanText(true)));
}

}  // namespace

void FrmMain::load() {
  mnuAudioMusic.Checked = readSwitch("audio", "music");
  mnuAudioSfx.Checked = readSwitch("audio", "sfx");

  const std::string directionalLine = lowerCase(GetSetting("misc", "directionalLine", "click"));
  for (const MenuItem* item : {&mnuDirLineNever, &mnuDirLineClick, &mnuDirLineAlways}) {
    if (directionalLine == menuWord(*item)) checkDirectionalLine(*item);
  }

  // Quirk Q-039: compared as it stands, unlike the directional line's setting. "Stars" means quarks.
  const bool stars = GetSetting("misc", "quarks", "stars") == "stars";
  mnuQuarkStars.Checked = stars;
  mnuQuarkQuarks.Checked = !stars;

  mnuUpdates.Checked = readSwitch("misc", "updates");
}

void FrmMain::connectMenu() {
  mnuFileConnect.Click = [this] { openConnectDialog(); };
  mnuFileDisconnect.Click = [] { netMan::disconnectFromServer(); };
  mnuFileExit.Click = [] { endProcess(); };
  mnuAudioMusic.Click = [this] { clickMusic(); };
  mnuAudioSfx.Click = [this] { clickSwitch(mnuAudioSfx, "audio", "sfx"); };
  mnuFonts.Click = [] { frmFonts->Show(); };
  mnuUpdates.Click = [this] { clickSwitch(mnuUpdates, "misc", "updates"); };
  mnuQuarkStars.Click = [this] { clickBackgroundObjects(mnuQuarkStars, mnuQuarkQuarks); };
  mnuQuarkQuarks.Click = [this] { clickBackgroundObjects(mnuQuarkQuarks, mnuQuarkStars); };
  for (MenuItem* item : {&mnuDirLineNever, &mnuDirLineClick, &mnuDirLineAlways}) {
    item->Click = [this, item] { clickDirectionalLine(*item); };
  }
}

void FrmMain::clickMusic() {
  resumeNext([this] { mnuAudioMusic.Checked = !mnuAudioMusic.Checked; });
  if (mnuAudioMusic.Checked) {
    resumeNext([] { soundMan::startMusic(); });
    resumeNext([] { soundMan::nextMusic(); });
  } else {
    resumeNext([] { frmMusic.unload(); });
  }
  resumeNext([this] { SaveSetting("audio", "music", booleanText(mnuAudioMusic.Checked)); });
}

void FrmMain::checkDirectionalLine(const MenuItem& item) {
  for (MenuItem* each : {&mnuDirLineNever, &mnuDirLineClick, &mnuDirLineAlways}) each->Checked = each == &item;
}

void FrmMain::clickBackgroundObjects(MenuItem& clicked, MenuItem& other) {
  clicked.Checked = !clicked.Checked;
  other.Checked = !clicked.Checked;
  SaveSetting("misc", "quarks", menuWord(clicked.Checked ? clicked : other));
}

void FrmMain::clickDirectionalLine(MenuItem& clicked) {
  clicked.Checked = !clicked.Checked;
  // Quirk Q-040: unchecking an item leaves none of the three checked, and the old setting stored.
  if (!clicked.Checked) return;
  checkDirectionalLine(clicked);
  SaveSetting("misc", "directionalLine", menuWord(clicked));
}

const char* FrmMain::menuWord(const MenuItem& item) const {
  if (&item == &mnuQuarkStars) return "stars";
  if (&item == &mnuQuarkQuarks) return "quarks";
  if (&item == &mnuDirLineNever) return "never";
  if (&item == &mnuDirLineClick) return "click";
  return "always";
}

}  // namespace kelvora
