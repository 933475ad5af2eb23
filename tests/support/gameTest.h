#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/bounds.h"
#include "core/centreMessage.h"
#include "core/chance.h"
#include "core/input.h"
#include "core/mainLoop.h"
#include "core/modMain.h"
#include "core/players.h"
#include "core/startUp.h"
#include "core/view.h"
#include "frontend/console.h"
#include "frontend/frmMain.h"
#include "network/chat.h"
#include "network/handlers.h"
#include "network/receive.h"
#include "network/send.h"
#include "network/session.h"
#include "particles/pools.h"
#include "protocol/messages.h"
#include "rendering/paintFrame.h"
#include "rendering/playerPanel.h"
#include "rendering/pointer.h"
#include "rendering/startLogo.h"
#include "simulation/killerTails.h"
#include "simulation/survival.h"
#include "store/store.h"
#include "tests/support/wireMessage.h"
#include "tools/headless/headlessClient.h"

namespace kelvora {

/// The program's own pictures. Each file is read once for all tests.
PicturePointer testPicture(const std::string& path);

/// A whole headless client. Timers run, and the focus is recorded, only on forms that have been shown.
class GameTest : public testing::Test, protected HeadlessClient {
 protected:
  GameTest() { machine.pictureSource = testPicture; }

  /// Connects the socket, so that the client sends its login. Afterwards the state is 7, and the local player is not
  /// connected yet. sentFrames() returns what was sent.
  void connect(const std::string& name = "Ann", PlayerColour colour = redPlayer);
  /// Runs `connect` and accepts the login: the local player is in the game at the position. Discards what was sent.
  void login(std::int16_t colour = 0, std::int16_t node = 7, float x = 50'000, float y = 50'000,
             const std::string& name = "Ann");
  /// Lets an opponent join, alive, in the next slot. Returns the slot's number.
  std::int16_t join(std::int16_t node, std::int16_t colour, const std::string& name, float x = 50'000,
                    float y = 50'000);

  /// Advances the clocks.
  void tick(Millis ms) { machine.advance(ms); }
  /// Runs queued events and due timers.
  void passEvents() { machine.doEvents(false); }
  /// Delivers bytes from the server in one read and handles them.
  void serverSends(const std::string& bytes);
  /// Delivers one message and handles it.
  void serverSends(std::int16_t id, const std::vector<std::string>& fields);

  /// All messages sent so far on the game's socket.
  std::vector<WireMessage> sentFrames() { return parseFrames(server().sent); }
  void forgetSent() { server().sent.clear(); }
};

}  // namespace kelvora
