// Everything that can be typed: chat lines, console commands, keys and clicks, with music and the store.

#include "frontend/frmMain.h"
#include "tests/fuzz/fuzzClient.h"

namespace kelvora {
namespace {

using fuzz::FuzzClient;
using fuzz::Input;

void act(FuzzClient& client, char what, Input& input) {
  switch (what) {
    case 'k':
      frmMain->txtChat.KeyDown(input.byte(), 0);
      break;
    case 'p':
      frmMain->txtChat.KeyPress(input.byte());
      break;
    case 'c':
      frmMain->canvas.KeyPress(input.byte());
      break;
    case 'l':
      frmMain->lblPrivChat.MouseDown(1, 0, 0, 0);
      frmMain->lblPrivChat.MouseUp(1, 0, 0, 0);
      break;
    case 'n':
      frmMain->lbUserName[input.byte() % 6].MouseUp(1, 0, 0, 0);
      break;
    case 's':
      client.server().deliver(std::string(input.upTo('\n')));
      break;
    case 't':
      client.tick(input.byte() * Millis{64});
      client.machine.playState = static_cast<PlayState>(input.byte() % 4);
      break;
    default:
      break;
  }
  client.passEvents();
}

void run(Input input) {
  FuzzClient client;
  client.survives([&] {
    netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
    client.server().acceptConnection();
    client.passEvents();
    client.play(
        input,
        [&](std::string piece) {
          frmMain->txtChat.Text = std::move(piece);
          frmMain->txtChat.KeyDown(keyEnter, 0);
          frmMain->txtChat.KeyPress(keyEnter);
          client.passEvents();
        },
        [&](char what, Input& rest) { act(client, what, rest); });
  });
  // Nothing that is typed may break a frame.
  client.requireSoundFrames();
}

}  // namespace
}  // namespace kelvora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kelvora::run({data, size});
  return 0;
}
