#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/form.h"
#include "platform/grid.h"
#include "platform/widgets.h"
#include "platform/winsock.h"

namespace kelvora {

/// A server in the published list.
struct hostEntry {
  std::string address;
  std::int16_t port = 0;
  bool passwordRequired = false;
  std::string notes;
  std::int16_t players = 0;
  std::int16_t maxPlayers = 0;
};

/// Lists the servers published on the web host, and connects to one on a double-click. Positions are twips in the
/// client area.
class FrmGameFind : public Form {
 public:
  FrmGameFind();
  /// Starts the first fetch.
  void load() override;
  /// Aborts a running fetch.
  void unloaded() override;

  std::int16_t hostCount = 0;
  std::vector<hostEntry> hosts = std::vector<hostEntry>(1);  ///< 1 to hostCount; element 0 is unused
  std::string hostBuffer;                                    ///< the answer so far, at most `maxAnswerSize` bytes

  Label lblHeader{this, {120, 120, 5055, 255}, "", {.systemColours = true}};
  Button cmdRefresh{this, {5340, 120, 1455, 255}, "Refresh"};
  CheckBox chkPassword{this, {6840, 120, 2535, 255}, "Include password protected", 0};
  CheckBox chkEmpty{this, {6840, 420, 2535, 255}, "Include empty hosts", 1};
  CheckBox chkFull{this, {6840, 720, 2535, 255}, "Include full hosts", 0};
  Grid grid{this, {60, 1080, 9435, 4815}};
  Label lblStatus{this, {60, 5940, 9375, 315}, "", {.systemColours = true}};

  Winsock websock;

  /// Starts a new fetch and aborts a running one.
  void requestHostList();
  /// Parses `hostBuffer` into `hosts` and shows them. RuntimeFault for a number out of range, a password flag that is
  /// not a number, or too many records.
  void parseHostList();
  /// Gives the list its columns and headings, without servers.
  void initGrid();
  /// Shows `hosts`, one row each.
  void fillGrid();

 private:
  void sendRequest();
  void readAnswer();
  void takeField(hostEntry& host, int fieldIndex, const std::string& text);
  void connectToChosen();
};

extern FormSlot<FrmGameFind> frmGameFind;

}  // namespace kelvora
