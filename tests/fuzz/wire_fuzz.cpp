// A hostile server: any bytes, split anywhere, while frames run, boxes are open and the player acts.

#include "frontend/frmConnect.h"
#include "frontend/frmMain.h"
#include "store/frmPowerups.h"
#include "tests/fuzz/fuzzClient.h"

namespace kelvora {
namespace {

using fuzz::FuzzClient;
using fuzz::Input;

void runFrames(FuzzClient& client, int count, Millis ms) {
  for (int i = 0; i < count; ++i) {
    client.tick(ms);
    if (frmMain->sock.State() == sckConnected) modMain::runFrame();
    client.passEvents();
    releaseUnloadedForms();
  }
}

void reconnect(FuzzClient& client) {
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
  client.server().acceptConnection();
  client.passEvents();
}

void press(FuzzClient& client, int key) {
  frmMain->txtChat.KeyDown(key, 0);
  client.passEvents();
}

void clickStore(Input& input) {
  if (!frmPowerups.isVisible()) return modMain::openStore();
  const int item = input.byte() % 6;
  if (input.byte() % 2 == 0) {
    frmPowerups->cmdBuy[item].Click();
  } else {
    frmPowerups->cmdSell[item].Click();
  }
}

void act(FuzzClient& client, char what, Input& input) {
  switch (what) {
    case 'f':
      return runFrames(client, 1 + input.byte() % 8, 10);
    case 't':
      return runFrames(client, 1, input.byte() * Millis{16});
    case 'T':
      return runFrames(client, 1, 40'000);
    case 'c':
      FuzzClient::hangUp(client.server());
      return client.passEvents();
    case 'r':
      return reconnect(client);
    case 's':
      return frmMain->btnSpawn.Click();
    case 'S':
      return clickStore(input);
    case 'd':
      if (frmPowerups.isVisible()) frmPowerups->cmdDone.Click();
      return;
    case 'k':
      return press(client, 112 + input.byte() % 6);
    case 'm':
      return frmMain->canvas.MouseMove(0, 0, static_cast<float>(input.byte()) * 50,
                                       static_cast<float>(input.byte()) * 50);
    case 'B':
      return frmMain->canvas.MouseDown(2, 0, 0, 0);
    case 'n': {
      Label& name = frmMain->lbUserName[input.byte() % 6];
      name.MouseDown(1, 0, 0, 0);
      return name.MouseUp(1, 0, 0, 0);
    }
    case 'w':
      return frmMain->clientResized(static_cast<float>(input.byte()) * 60, static_cast<float>(input.byte()) * 60);
    case 'q':
      return frmMain->mnuQuarkQuarks.Click();
    case 'D':
      return frmMain->mnuFileDisconnect.Click();
    default:
      return;  // a split between two reads
  }
}

void run(Input input) {
  FuzzClient client;
  client.read = [&](const std::string& piece) {
    client.server().deliver(piece);
    client.passEvents();
  };
  client.survives([&] {
    frmMain->Show();
    // Small enough for many frames a second, unless the input enlarges it.
    frmMain->clientResized(5'000, 4'000);
    reconnect(client);
    client.play(
        input, [&](const std::string& piece) { client.read(piece); },
        [&](char what, Input& rest) { act(client, what, rest); });
    runFrames(client, 2, 300);
  });
  client.requireSoundFrames();
}

}  // namespace
}  // namespace kelvora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kelvora::run({data, size});
  return 0;
}
