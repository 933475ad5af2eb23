#include <gtest/gtest.h>

#include "frontend/frmConnect.h"
#include "generated/version.h"
#include "tests/frontend/gameFinderTest.h"

namespace kelvora {
namespace {

TEST_F(GameFinder, ControlsHaveTheirPositionsAndTexts) {
  FrmGameFind f;
  struct Row {
    const Control* control;
    float left, top, width, height;
  };
  for (const Row& row : {
           Row{&f.lblHeader, 120, 120, 5055, 255},
           Row{&f.cmdRefresh, 5340, 120, 1455, 255},
           Row{&f.chkPassword, 6840, 120, 2535, 255},
           Row{&f.chkEmpty, 6840, 420, 2535, 255},
           Row{&f.chkFull, 6840, 720, 2535, 255},
           Row{&f.grid, 60, 1080, 9435, 4815},
           Row{&f.lblStatus, 60, 5940, 9375, 315},
       }) {
    SCOPED_TRACE(row.top);
    EXPECT_EQ(row.control->container(), &f);
    EXPECT_EQ(row.control->Left.get(), row.left);
    EXPECT_EQ(row.control->Top.get(), row.top);
    EXPECT_EQ(row.control->Width.get(), row.width);
    EXPECT_EQ(row.control->Height.get(), row.height);
  }
  EXPECT_EQ(f.cmdRefresh.Caption.get(), "Refresh");
  EXPECT_EQ(f.chkPassword.Caption.get(), "Include password protected");
  EXPECT_EQ(f.chkPassword.Value.get(), 0);
  EXPECT_EQ(f.chkEmpty.Caption.get(), "Include empty hosts");
  EXPECT_EQ(f.chkEmpty.Value.get(), 1);
  EXPECT_EQ(f.chkFull.Caption.get(), "Include full hosts");
  EXPECT_EQ(f.chkFull.Value.get(), 0);
  EXPECT_EQ(f.lblStatus.Caption.get(), "");
}

TEST_F(GameFinder, TabMovesThroughButtonBoxesAndList) {
  FrmGameFind& f = *frmGameFind;
  const Control* const order[] = {&f.cmdRefresh, &f.chkPassword, &f.chkEmpty, &f.chkFull, &f.grid};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(order[i]->TabIndex, i);
}

TEST_F(GameFinder, IsAFixedWindow) {
  const FrmGameFind f;
  EXPECT_EQ(f.Caption.get(), "Game Finder");
  EXPECT_EQ(f.design.clientWidth, 9525);
  EXPECT_EQ(f.design.clientHeight, 6285);
  EXPECT_EQ(f.design.border, Form::Border::Fixed);
}

TEST_F(GameFinder, GetListOpensItModally) {
  frmConnect->Show();
  bool stood = false;
  machine.onModal = [&stood](Form& form) { stood = &form == &*frmGameFind && form.Visible; };
  frmConnect->cmdGetList.Click();
  EXPECT_TRUE(stood);
  EXPECT_EQ(machine.modalForms, std::vector<std::string>{"Game Finder"});
  EXPECT_TRUE(frmConnect.isVisible());
}

TEST_F(GameFinder, LoadingShowsTheVersionAndStartsAFetch) {
  EXPECT_EQ(frmGameFind->lblHeader.Caption.get(),
            "Servers published less than one hour ago matching your version: " KELVORA_VERSION);
  EXPECT_EQ(status(), "Connecting to game find server...");
  EXPECT_EQ(host().connects, (std::vector<std::pair<std::string, int>>{{"web.invalid", 80}}));
}

TEST_F(GameFinder, ConnectsToTheWebHostsOwnPort) {
  machine.host = "127.0.0.1:8123";
  EXPECT_EQ(frmGameFind->websock.RemoteHost, "127.0.0.1");
  EXPECT_EQ(frmGameFind->websock.RemotePort, 8123);
  EXPECT_EQ(host().connects, (std::vector<std::pair<std::string, int>>{{"127.0.0.1", 8123}}));
  request();
  EXPECT_NE(host().sent.find("\r\nHost: 127.0.0.1:8123\r\n"), std::string::npos);
}

TEST_F(GameFinder, Q162TheRequestIdentifiesItselfAsABrowser) {
  *frmGameFind;
  request();
  EXPECT_EQ(status(), "Requesting list...");
  EXPECT_EQ(host().sends,
            std::vector<std::string>{
                "GET /games/kelvora/gethosts.php?version=" KELVORA_VERSION "&password=0&full=0&empty=1 HTTP/1.1\r\n"
                "Host: web.invalid\r\n"
                "User-Agent: Mozilla/5.0 (Windows; U; Windows NT 5.1; en-US; rv:1.9.0.3) Gecko/2008092417 "
                "Firefox/3.0.3\r\n"
                "Accept: text/html,application/xhtml+xml,application/xml;q=0.9,*/*;q=0.8\r\n"
                "Accept-Language: en-us,en;q=0.5\r\n"
                "Accept-Charset: ISO-8859-1,utf-8;q=0.7,*;q=0.7\r\n"
                "Keep-Alive: 300\r\n"
                "Connection: keep-alive\r\n"
                "\r\n"});
}

TEST_F(GameFinder, QueryHasAllThreeFlagsAsDigits) {
  for (int bits = 0; bits < 8; ++bits) {
    const int password = bits & 1;
    const int full = (bits >> 1) & 1;
    const int empty = (bits >> 2) & 1;
    frmGameFind->chkPassword.Value = password;
    frmGameFind->chkFull.Value = full;
    frmGameFind->chkEmpty.Value = empty;
    frmGameFind->requestHostList();
    request();
    const std::string query = "?version=" KELVORA_VERSION "&password=" + std::to_string(password) +
                              "&full=" + std::to_string(full) + "&empty=" + std::to_string(empty) + " HTTP/1.1\r\n";
    EXPECT_NE(host().sends.back().find(query), std::string::npos) << host().sends.back();
  }
}

TEST_F(GameFinder, RefreshAndEveryBoxStartANewFetch) {
  FrmGameFind& finder = *frmGameFind;
  list("[a|1|0|n|1|2]-END-");
  int fetches = 1;
  finder.cmdRefresh.Click();
  EXPECT_EQ(host().connects.size(), static_cast<std::size_t>(++fetches));
  for (CheckBox* box : {&finder.chkPassword, &finder.chkEmpty, &finder.chkFull}) {
    finder.hostBuffer = "old";
    box->MouseDown(1, 0, 15, 15);
    EXPECT_EQ(host().connects.size(), static_cast<std::size_t>(++fetches));
    EXPECT_EQ(finder.hostBuffer, "");
    EXPECT_EQ(status(), "Connecting to game find server...");
  }
}

TEST_F(GameFinder, NewFetchAbortsTheCurrentOne) {
  *frmGameFind;
  request();
  host().deliver("[a|1|0|n|1|2]");
  passEvents();
  EXPECT_EQ(host().closes, 0);
  frmGameFind->cmdRefresh.Click();
  EXPECT_EQ(host().closes, 1);
  EXPECT_EQ(frmGameFind->websock.State(), sckConnecting);
  list("[b|1|0|n|1|2]-END-");
  ASSERT_EQ(frmGameFind->hostCount, 1);
  EXPECT_EQ(entry(1).address, "b");
}

TEST_F(GameFinder, AnUnconnectedSocketIsNotClosedByTheFirstFetch) {
  *frmGameFind;
  EXPECT_EQ(host().closes, 0);
}

TEST_F(GameFinder, Q160TheBoxesAreReadOnceConnected) {
  *frmGameFind;
  request();
  // Usually the release has changed the box before the host answers.
  frmGameFind->chkFull.MouseDown(1, 0, 15, 15);
  frmGameFind->chkFull.Value = 1;
  request();
  EXPECT_NE(host().sends.back().find("&full=1&"), std::string::npos);
  // A host that answers while the button is still down gets the old value.
  frmGameFind->chkFull.MouseDown(1, 0, 15, 15);
  request();
  frmGameFind->chkFull.Value = 0;
  EXPECT_NE(host().sends.back().find("&full=1&"), std::string::npos);
}

TEST_F(GameFinder, Q282AnyPressOnABoxFetchesButKeysDoNot) {
  FrmGameFind& finder = *frmGameFind;
  ASSERT_EQ(host().connects.size(), 1U);
  for (CheckBox* box : {&finder.chkPassword, &finder.chkEmpty, &finder.chkFull}) {
    box->Value = 1 - box->Value;
    if (box->Click) box->Click();
  }
  EXPECT_EQ(host().connects.size(), 1U);
  finder.chkFull.MouseDown(rightButton, 0, 15, 15);
  EXPECT_EQ(host().connects.size(), 2U);
  EXPECT_EQ(finder.chkFull.Value.get(), 1);
}

}  // namespace
}  // namespace kelvora
