#include "tests/support/gameTest.h"

namespace kelvora {

void GameTest::connect(const std::string& name, PlayerColour colour) {
  netMan::connectToServer(name, "127.0.0.1", 2010, "", colour);
  server().acceptConnection();
  passEvents();
}

void GameTest::login(std::int16_t colour, std::int16_t node, float x, float y, const std::string& name) {
  connect(name, PlayerColour{colour});
  serverSends(wire::msgLoginAccepted,
              {std::to_string(colour), std::to_string(node), std::to_string(x), std::to_string(y)});
  ASSERT_TRUE(modMain::world.localPlayer.isConnected) << "the login is accepted";
  forgetSent();
}

std::int16_t GameTest::join(std::int16_t node, std::int16_t colour, const std::string& name, float x, float y) {
  serverSends(wire::msgPlayerJoined,
              {std::to_string(node), std::to_string(colour), name, std::to_string(x), std::to_string(y), "1", "0"});
  return static_cast<std::int16_t>(modMain::world.opponentCount - 1);
}

void GameTest::serverSends(const std::string& bytes) {
  server().deliver(bytes);
  passEvents();
}

void GameTest::serverSends(std::int16_t id, const std::vector<std::string>& fields) {
  serverSends(frameOf(id, fields));
}

}  // namespace kelvora
