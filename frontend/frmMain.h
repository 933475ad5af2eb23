#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "frontend/theme.h"
#include "platform/form.h"
#include "platform/menuItem.h"
#include "platform/pictureBox.h"
#include "platform/widgets.h"
#include "platform/winsock.h"

namespace kelvora {

/// The main window: canvas, player list, credits, the two big buttons, radar, chat entry, status bar and menu. It
/// exists as long as the program. Positions are left, top, width and height in twips at the design size.
class FrmMain : public Form {
 public:
  FrmMain();

  /// Reads the menu settings.
  void load() override;
  /// Ends the process.
  void unloading() override;

  PictureBox canvas{this, {0, 0, 11445, 9120}, {black, canvasFont}};
  Label lbcConnect{&canvas, {180, 5100, 3555, 975}, "", {.transparent = true}};
  Label lblTmp{&canvas, {960, 900, 45, 195}, "", {.autoSize = true}};

  Frame frmUsers{this, {11580, 60, 1755, 3675}, "Users", paleYellow, black, true};
  ControlArray<Label, 6> lbUserName{[this](int i) {
    return Label{&frmUsers, {360, row(i, 300), 1275, 255}, "", {.fore = white, .back = black, .font = panelFontBold}};
  }};
  ControlArray<Label, 6> lblKills{[this](int i) {
    return Label{&frmUsers,
                 {60, row(i, 600), 555, 255},
                 "",
                 {.fore = yellow, .transparent = true, .alignment = Alignment::Centre, .font = panelFont}};
  }};
  ControlArray<PictureBox, 6> picCaps{[this](int i) { return PictureBox{&frmUsers, {660, row(i, 600), 975, 165}}; }};
  ControlArray<Image, 6> imgUserColor{[this](int i) { return Image{&frmUsers, {0, row(i, 300), 315, 315}}; }};

  Label Label2{this,
               {11700, 3960, 1515, 735},
               "Credits",
               {.fore = green, .back = black, .border = true, .alignment = Alignment::Centre, .font = headingFont}};
  Label lblCredits{this,
                   {11760, 4320, 1395, 375},
                   "0",
                   {.fore = green, .transparent = true, .alignment = Alignment::Centre, .font = headingFont}};
  PictureBox btnShop{this, {11700, 4800, 1620, 765}, {.name = "Store"}};
  PictureBox btnSpawn{this, {11700, 5760, 1620, 765}, {.name = "Spawn"}};
  Label Label3{this,
               {11520, 6600, 1875, 1815},
               "-- Radar --",
               {.fore = paleGreen, .back = black, .border = true, .alignment = Alignment::Centre, .font = headingFont}};
  PictureBox picRadar{this, {11580, 6900, 1755, 1397}};

  Label lblPrivChat{this,
                    {60, 9240, 1275, 255},
                    "Public Chat",
                    {.back = white, .border = true, .alignment = Alignment::Centre, .font = panelFont}};
  TextBox txtChat{this,
                  {1440, 9225, 10035, 360},
                  "",
                  {.fore = cyan, .back = RGB(64, 0, 64), .font = chatFont, .systemColours = false}};

  Frame frame_Status{this, {0, 9600, 13215, 375}, "", white, black, false};
  // Quirk Q-235: no state is called Disconnected. The first update replaces this text.
  Label lblNetStatus{&frame_Status,
                     {60, 60, 1335, 255},
                     "Disconnected",
                     {.back = RGB(255, 128, 128), .border = true, .alignment = Alignment::Centre, .font = panelFont}};
  Label lblLag{&frame_Status, {1500, 60, 1035, 255}, "0", {.fore = paleGreen, .back = black, .font = panelFontBold}};
  IntervalTimer tmrCheckNetStatus{this, 1000};

  Winsock sock;
  Winsock sockUpdates;
  std::string updateBuffer;  ///< the update check's answer so far

  MenuItem mnuFile{this, "File"};
  MenuItem mnuFileConnect{&mnuFile, "Connect to server"};
  MenuItem mnuFileDisconnect{&mnuFile, "Disconnect", MenuItem::Design::Disabled};
  MenuItem mnuFileSep1{&mnuFile, "-"};
  MenuItem mnuFileExit{&mnuFile, "Exit"};
  MenuItem mnuSettings{this, "Settings"};
  MenuItem mnuAudio{&mnuSettings, "Audio"};
  MenuItem mnuAudioMusic{&mnuAudio, "Enable Music", MenuItem::Design::Checked};
  MenuItem mnuAudioSfx{&mnuAudio, "Enable Sound Effects", MenuItem::Design::Checked};
  MenuItem mnuFonts{&mnuSettings, "Fonts"};
  MenuItem mnuQuark{&mnuSettings, "Background Objects"};
  MenuItem mnuQuarkStars{&mnuQuark, "Stars", MenuItem::Design::Checked};
  MenuItem mnuQuarkQuarks{&mnuQuark, "Quarks"};
  MenuItem mnuMisc{&mnuSettings, "Misc"};
  MenuItem mnuLine{&mnuMisc, "Directional Line Visible"};
  // Quirk Q-233: the design checks Never, but missing settings check "Only while clicking".
  MenuItem mnuDirLineNever{&mnuLine, "Never", MenuItem::Design::Checked};
  MenuItem mnuDirLineClick{&mnuLine, "Only while clicking"};
  MenuItem mnuDirLineAlways{&mnuLine, "Always"};
  MenuItem mnuUpdates{&mnuMisc, "Check for updates on startup", MenuItem::Design::Checked};

  std::array<std::string, 256> chatHistory;  ///< typed lines, newest first
  std::int16_t chatHistoryPosition = 0;      ///< current index into chatHistory

  /// Shows the socket's state in lblNetStatus.
  void showConnectionState();
  /// True once the mouse has moved with the left button held. Only the canvas's handlers write it.
  bool isLockMouse() const { return isLockMouse_; }

 private:
  static constexpr float row(int colour, float top) { return top + 540.0F * static_cast<float>(colour); }

  void loadPictures();
  void connectHandlers();
  void connectMenu();
  void connectSocket();
  void openConnectDialog();
  void resizeControls();

  /// Starts or ends the music.
  void clickMusic();
  /// Checks one of the directional line's three items and unchecks the others.
  void checkDirectionalLine(const MenuItem& item);
  /// Toggles one of Stars and Quarks, sets the other to the opposite, and saves.
  void clickBackgroundObjects(MenuItem& clicked, MenuItem& other);
  void clickDirectionalLine(MenuItem& clicked);
  const char* menuWord(const MenuItem& item) const;

  // Input on the canvas (canvasInput.cpp).
  void canvasKeyDown(int KeyCode);
  void canvasKeyPress(int KeyAscii);
  void canvasMouseDown(int Button);
  void canvasMouseMove(int Button, float X, float Y);
  /// Pushes the pointer inward when it is near the canvas's edge.
  void confinePointer(float X, float Y);

  bool isLockMouse_ = false;
};

extern FormSlot<FrmMain> frmMain;

}  // namespace kelvora
