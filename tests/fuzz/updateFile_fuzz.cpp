// A hostile web host and the update check, while the game continues.

#include "frontend/frmMain.h"
#include "frontend/updateCheck.h"
#include "tests/fuzz/fuzzClient.h"

namespace kelvora {
namespace {

using fuzz::FuzzClient;
using fuzz::Input;

void run(Input input) {
  FuzzClient client;
  const bool stands = client.survives([&] {
    const std::size_t portion = input.byte();
    updateCheck::checkForUpdates();
    HeadlessSocket& host = client.machine.socketOf(frmMain->sockUpdates);
    host.acceptConnection();
    client.passEvents();
    const auto deliver = [&](const std::string& piece) {
      host.deliver(piece, portion);
      client.passEvents();
    };
    client.read = deliver;
    client.play(input, deliver, [&](char what, Input&) {
      if (what == 'c') FuzzClient::hangUp(host);
      client.passEvents();
    });
    FuzzClient::hangUp(host);
    client.passEvents();
  });
  // Whatever the host sends, the check shows at most one box.
  fuzz::require(stands && client.machine.messageBoxes.size() <= 1);
}

}  // namespace
}  // namespace kelvora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kelvora::run({data, size});
  return 0;
}
