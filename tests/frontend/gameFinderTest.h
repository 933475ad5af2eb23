#pragma once

#include <string>
#include <vector>

#include "frontend/frmGameFind.h"
#include "tests/support/gameTest.h"

namespace kelvora {

using Rows = std::vector<std::vector<std::string>>;

/// The game finder with a scripted web host.
class GameFinder : public GameTest {
 protected:
  HeadlessSocket& host() { return machine.socketOf(frmGameFind->websock); }
  /// Accepts the connection, so that the finder sends its request.
  void request() {
    host().acceptConnection();
    passEvents();
  }
  /// Runs a whole fetch that gets this answer.
  void list(const std::string& answer) {
    if (frmGameFind->websock.State() == sckClosed) frmGameFind->requestHostList();
    request();
    host().deliver(answer);
    passEvents();
  }
  static std::string status() { return frmGameFind->lblStatus.Caption; }
  static const hostEntry& entry(int number) { return frmGameFind->hosts.at(static_cast<std::size_t>(number)); }
  static Rows rows() {
    const Grid& grid = frmGameFind->grid;
    Rows found;
    for (int row = 0; row < grid.Rows; ++row) {
      found.emplace_back();
      for (int column = 0; column < grid.Cols; ++column) found.back().push_back(grid.TextMatrix(row, column));
    }
    return found;
  }
  static inline const std::vector<std::string> heading = {"IP Addr", "Port", "Pass?", "Players", "Notes"};
};

}  // namespace kelvora
