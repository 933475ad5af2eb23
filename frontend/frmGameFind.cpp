#include "frontend/frmGameFind.h"

#include <algorithm>
#include <initializer_list>

#include "base/numbers.h"
#include "base/text.h"
#include "frontend/frmConnect.h"
#include "frontend/webAddress.h"
#include "platform/backend.h"

namespace kelvora {

FormSlot<FrmGameFind> frmGameFind;

FrmGameFind::FrmGameFind()
    : Form("Game Finder", {.clientWidth = 9525, .clientHeight = 6285, .border = Border::Fixed, .systemColours = true}) {
  int tabIndex = 0;
  for (Control* control : std::initializer_list<Control*>{&cmdRefresh, &chkPassword, &chkEmpty, &chkFull, &grid}) {
    control->TabIndex = tabIndex++;
  }
  cmdRefresh.Click = [this] { requestHostList(); };
  for (CheckBox* box : {&chkPassword, &chkEmpty, &chkFull}) {
    // Quirk Q-160: the press starts the fetch before the box changes, and the value is read once the socket is
    // connected. A host that answers while the button is down gets the old value.
    // Quirk Q-282: only a mouse press fetches. Keys change a box without a fetch, the right button does the reverse.
    box->MouseDown = [this](int, int, float, float) { requestHostList(); };
  }
  grid.DblClick = [this] { connectToChosen(); };

  // Quirk Q-161: nothing handles a fetch that fails or ends early, so lblStatus keeps its last text.
  websock.onConnect = [this] { sendRequest(); };
  websock.onDataArrival = [this] { readAnswer(); };
}

void FrmGameFind::load() {
  lblHeader.Caption = "Servers published less than one hour ago matching your version: " + appVersionText();
  requestHostList();
}

void FrmGameFind::unloaded() { websock.Close(); }

void FrmGameFind::requestHostList() {
  hostBuffer.clear();
  if (websock.State() != sckClosed) websock.Close();
  const WebAddress host = webAddress();
  websock.RemoteHost = host.host;
  websock.RemotePort = host.port;
  lblStatus.Caption = "Connecting to game find server...";
  websock.Connect();
}

void FrmGameFind::sendRequest() {
  lblStatus.Caption = "Requesting list...";
  const auto flag = [](const CheckBox& box) { return numberText(std::int32_t{box.Value}); };
  const std::string path = "/games/kelvora/gethosts.php?version=" + appVersionText() +
                           "&password=" + flag(chkPassword) + "&full=" + flag(chkFull) + "&empty=" + flag(chkEmpty);
  // Quirk Q-162: identifies the game as a web browser.
  websock.SendData("GET " + path + " HTTP/1.1\r\n" +  //
                   "Host: " + webAddress().authority() + "\r\n" +
                   "User-Agent: Mozilla/5.0 (Windows; U; Windows NT 5.1; en-US; rv:1.9.0.3) "
                   "Gecko/2008092417 Firefox/3.0.3\r\n"
                   "Accept: text/html,application/xhtml+xml,application/xml;q=0.9,*/*;q=0.8\r\n"
                   "Accept-Language: en-us,en;q=0.5\r\n"
                   "Accept-Charset: ISO-8859-1,utf-8;q=0.7,*;q=0.7\r\n"
                   "Keep-Alive: 300\r\n"
                   "Connection: keep-alive\r\n"
                   "\r\n");
}

void FrmGameFind::readAnswer() {
  constexpr std::string_view endMark = "-END-";
  // The mark may have begun in an earlier read. Anything before that has been searched.
  const std::size_t unsearched = hostBuffer.size() - std::min(hostBuffer.size(), endMark.size() - 1);
  const bool fits = appendAnswer(hostBuffer, readArrived(websock));
  if (hostBuffer.find(endMark, unsearched) != std::string::npos) {
    websock.Close();
    parseHostList();
  } else if (!fits) {
    websock.Close();
  }
}

void FrmGameFind::parseHostList() {
  lblStatus.Caption = "Processing data...";
  hostCount = 0;
  hosts.assign(1, {});
  bool inList = false;
  int fieldIndex = 0;
  std::string current;
  // Quirk Q-163: parses the answer's headers as part of the list, so a bracket in them begins a record.
  for (const char c : hostBuffer) {
    if (c == '[') {
      hostCount = toInt16(hostCount + 1.0);
      hosts.emplace_back();
      inList = true;
      fieldIndex = 0;
    } else if (c == '|' || c == ']') {
      if (!inList) continue;
      takeField(hosts.back(), fieldIndex, current);
      if (c == '|') ++fieldIndex;
      current.clear();
    } else if (c != '\r' && c != '\x14' && inList) {
      // Quirk Q-164: no record ever ends: text after one is prefixed to the next address. So is a line feed (10),
      // because the second skipped code is 20.
      current += c;
    }
  }
  fillGrid();
}

void FrmGameFind::takeField(hostEntry& host, int fieldIndex, const std::string& text) {
  switch (fieldIndex) {
    case 0:
      host.address = text;
      break;
    case 1:
      host.port = toInt16(readNumber(text));
      break;
    case 2:
      // Quirk Q-165: other numbers are read leniently. An empty or non-numeric flag ends the program.
      if (strictNumber(text) == 1) host.passwordRequired = true;
      break;
    case 3:
      host.notes = text;
      break;
    case 4:
      host.players = toInt16(readNumber(text));
      break;
    case 5:
      host.maxPlayers = toInt16(readNumber(text));
      break;
    default:
      break;
  }
}

void FrmGameFind::initGrid() {
  grid.Rows = 0;
  grid.Cols = 5;
  grid.AddItem("IP Addr\tPort\tPass?\tPlayers\tNotes");
}

void FrmGameFind::fillGrid() {
  initGrid();
  for (std::size_t i = 1; i < hosts.size(); ++i) {
    const hostEntry& host = hosts[i];
    const auto number = [](std::int16_t value) { return numberText(std::int32_t{value}); };
    grid.AddItem(host.address + "\t" + number(host.port) + "\t" + (host.passwordRequired ? "REQUIRED" : "open") + "\t" +
                 number(host.players) + " / " + number(host.maxPlayers) + "\t" + host.notes);
  }
  if (grid.Rows >= 2) {
    grid.FixedRows = 1;
    grid.FixedCols = 0;
    grid.ColWidth(0, 2000);
    grid.ColWidth(4, 5000);
    for (int column = 0; column < grid.Cols; ++column) grid.ColAlignment(column, 1);
  }
  lblStatus.Caption = "Done";
}

void FrmGameFind::connectToChosen() {
  // Quirk Q-166: in an empty list the heading is the current row. Its port "Port" is refused.
  grid.Col = 0;
  frmConnect->txtServerAddress.Text = grid.Text();
  grid.Col = 1;
  frmConnect->txtServerPort.Text = grid.Text();
  DoEvents();
  // Quirk Q-272: uses the password in the connect dialog, even for a server marked "REQUIRED".
  frmConnect->cmdConnect_Click();
  // Quirk Q-167: the finder closes whether or not the values are accepted.
  frmGameFind.unload();
}

}  // namespace kelvora
