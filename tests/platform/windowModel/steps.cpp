#include "tests/platform/windowModel/steps.h"

#include "frontend/frmConnect.h"
#include "frontend/frmFonts.h"
#include "frontend/frmGameFind.h"
#include "frontend/frmMain.h"
#include "protocol/messages.h"
#include "store/frmPowerups.h"
#include "tests/platform/windowModel/hands.h"
#include "tests/platform/windowModel/scriptedDesktop.h"
#include "tests/support/wireMessage.h"

namespace kelvora {

namespace {

using Desktop = ScriptedDesktop&;

template <class FormType>
void closeForm(FormSlot<FormType>& slot) {
  if (slot.isVisible()) hands::close(hands::windowOf(*slot));
}

template <class FormType, class ControlType>
void clickOn(FormSlot<FormType>& slot, ControlType FormType::*control) {
  if (slot.isVisible()) hands::click((*slot).*control);
}

void typeName(const std::string& name) {
  if (frmConnect.isVisible()) hands::replaceText(frmConnect->txtPlayerName, name);
}

void doubleClickHost() {
  if (frmGameFind.isVisible()) hands::doubleClick(frmGameFind->grid);
}

void answerBox() {
  const hands::Window newest = hands::newestModal();
  if (newest != nullptr && hands::isBox(newest)) hands::answer(newest);
}

void say(Desktop desktop, std::int16_t id, const std::vector<std::string>& fields) {
  desktop.farEnd(frmMain->sock).deliver(frameOf(id, fields));
}

void listOfHosts(Desktop desktop) {
  if (!frmGameFind.isLoaded()) return;
  desktop.farEnd(frmGameFind->websock).accept();
  desktop.farEnd(frmGameFind->websock).deliver("[192.0.2.7|2010|0|friendly game|3|8]-END-");
}

void newVersion(Desktop desktop) {
  ScriptedSocket& host = desktop.farEnd(frmMain->sockUpdates);
  host.accept();
  host.deliver("tvqver:9.9.9\r\n");
  host.hangUp();
}

constexpr Step table[] = {
    {"wait", [](Desktop) {}},
    {"click the title", [](Desktop) { clickOn(frmMain, &FrmMain::lbcConnect); }},
    {"File > Connect", [](Desktop) { hands::choose("File", "Connect to server"); }},
    {"File > Disconnect", [](Desktop) { hands::choose("File", "Disconnect"); }},
    {"Escape", [](Desktop) { hands::press(hands::Key::Escape); }},
    {"Enter", [](Desktop) { hands::press(hands::Key::Enter); }},
    {"activate the connect dialog",
     [](Desktop) {
       if (frmConnect.isVisible()) hands::activate(hands::windowOf(*frmConnect));
     }},
    {"Connect", [](Desktop) { clickOn(frmConnect, &FrmConnect::cmdConnect); }},
    {"Cancel", [](Desktop) { clickOn(frmConnect, &FrmConnect::cmdCancel); }},
    {"close the connect dialog", [](Desktop) { closeForm(frmConnect); }},
    {"empty the name", [](Desktop) { typeName(""); }},
    {"type a name", [](Desktop) { typeName("ann"); }},
    {"open the finder", [](Desktop) { clickOn(frmConnect, &FrmConnect::cmdGetList); }},
    {"close the finder", [](Desktop) { closeForm(frmGameFind); }},
    {"the list of hosts comes", listOfHosts},
    {"double-click a host", [](Desktop) { doubleClickHost(); }},
    {"open the store", [](Desktop) { clickOn(frmMain, &FrmMain::btnShop); }},
    {"Done in the store", [](Desktop) { clickOn(frmPowerups, &FrmPowerups::cmdDone); }},
    {"close the store", [](Desktop) { closeForm(frmPowerups); }},
    {"Settings > Fonts", [](Desktop) { hands::choose("Settings", "Fonts"); }},
    {"Done in the fonts", [](Desktop) { clickOn(frmFonts, &FrmFonts::cmdClose); }},
    {"close the fonts", [](Desktop) { closeForm(frmFonts); }},
    {"answer the box", [](Desktop) { answerBox(); }},
    {"ask for a respawn", [](Desktop) { clickOn(frmMain, &FrmMain::btnSpawn); }},
    {"the server accepts the connection", [](Desktop desktop) { desktop.farEnd(frmMain->sock).accept(); }},
    {"the server accepts the login",
     [](Desktop desktop) {
       say(desktop, wire::msgLoginAccepted, {"2", "7", "50000", "50000"});
     }},
    {"the server denies the login", [](Desktop desktop) { say(desktop, wire::msgLoginDenied, {"full"}); }},
    {"the server refuses a respawn", [](Desktop desktop) { say(desktop, wire::msgSpawnDenied, {""}); }},
    {"the server respawns", [](Desktop desktop) { say(desktop, wire::msgRespawn, {"7"}); }},
    {"the server ends the round", [](Desktop desktop) { say(desktop, wire::msgRoundOver, {"Ann wins"}); }},
    {"the server hangs up", [](Desktop desktop) { desktop.farEnd(frmMain->sock).hangUp(); }},
    {"the connection fails", [](Desktop desktop) { desktop.farEnd(frmMain->sock).fail(); }},
    {"a new version is announced", newVersion},
};

}  // namespace

std::span<const Step> steps() { return table; }

}  // namespace kelvora
