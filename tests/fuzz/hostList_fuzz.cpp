// A hostile web host and the game finder.

#include "frontend/frmConnect.h"
#include "frontend/frmGameFind.h"
#include "tests/fuzz/fuzzClient.h"

namespace kelvora {
namespace {

using fuzz::FuzzClient;
using fuzz::Input;

void act(FuzzClient& client, char what, Input& input) {
  FrmGameFind& finder = *frmGameFind;
  switch (what) {
    case 'r':
      finder.cmdRefresh.Click();
      client.machine.socketOf(finder.websock).acceptConnection();
      break;
    case 'c':
      FuzzClient::hangUp(client.machine.socketOf(finder.websock));
      break;
    case 'p':
      finder.chkPassword.MouseDown(1, 0, 0, 0);
      client.machine.socketOf(finder.websock).acceptConnection();
      break;
    case 'd': {
      const int row = input.byte();
      if (row < finder.grid.Rows) finder.grid.Row = row;
      finder.grid.DblClick();
      break;
    }
    default:
      break;
  }
  client.passEvents();
}

void run(Input input) {
  FuzzClient client;
  client.survives([&] {
    frmConnect->txtPlayerName.Text = "Ann";
    client.machine.socketOf(frmGameFind->websock).acceptConnection();
    client.passEvents();
    const std::size_t portion = input.byte();
    client.play(
        input,
        [&](std::string piece) {
          client.machine.socketOf(frmGameFind->websock).deliver(std::move(piece), portion);
          client.passEvents();
        },
        [&](char what, Input& rest) { act(client, what, rest); });
  });
}

}  // namespace
}  // namespace kelvora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kelvora::run({data, size});
  return 0;
}
