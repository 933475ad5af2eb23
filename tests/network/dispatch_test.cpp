#include "network/dispatch.h"

#include "rendering/frmGfx.h"
#include "store/frmPowerups.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using modMain::world;

/// The local player has node 7 and is at (50000, 50000). Bob has node 9. Amy joined before Bob, so she would get
/// messages for an unknown node.
class Dispatch : public GameTest {
 protected:
  Dispatch() {
    login(0, 7, 50'000, 50'000, "Ann");
    join(3, 5, "Amy", 10'000, 10'000);
    join(9, 2, "Bob", 20'000, 20'000);
    modMain::world.chatLines = {};
  }
  static clsPlayer& bob() { return world.opponents[1]; }
  const std::string& lastLine() { return modMain::world.chatLines[0].text; }
};

TEST_F(Dispatch, EveryMessageHasOneRowInOrder) {
  const std::vector<std::int16_t> expected = {134, 147, 138, 137, 136, 144, 132, 145, 140, 141, 148, 142, 150,
                                              151, 153, 154, 156, 157, 159, 160, 161, 162, 164, 168, 165};
  std::vector<std::int16_t> found;
  for (const netMan::Route& route : netMan::routes()) found.push_back(route.id);
  EXPECT_EQ(found, expected);
}

TEST_F(Dispatch, EveryMessageForTheClientHasARow) {
  std::size_t count = 0;
  for (const wire::Message& message : wire::messages) {
    if (message.direction != wire::Direction::toClient) continue;
    EXPECT_NE(netMan::findRoute(message.id), nullptr) << message.name;
    ++count;
  }
  EXPECT_EQ(netMan::routes().size(), count);
}

TEST_F(Dispatch, IdsThatAreNotUsedHaveNoRow) {
  constexpr std::int16_t unused[] = {0,   128, 129, 130, 131, 133, 135, 139, 143,
                                     146, 149, 152, 155, 158, 163, 166, 167, 169};
  for (const std::int16_t id : unused) {
    EXPECT_EQ(netMan::findRoute(wire::MessageId{id}), nullptr) << id;
  }
}

TEST_F(Dispatch, Position) {
  serverSends(wire::msgPosition, {"9", "21000", "22000.5"});
  ASSERT_EQ(bob().positionQueueCount(), 1);
  EXPECT_EQ(bob().positionQueue.front(), (Vector{21'000, 22'000.5F}));

  serverSends(wire::msgPosition, {"7", "50001", "50000"});
  ASSERT_EQ(world.localPlayer.tailCount(), 1);
  EXPECT_EQ(world.localPlayer.tails[0].getPosition(), (Vector{50'001, 50'000}));
}

TEST_F(Dispatch, ExactOwnPositionLaysNoTail) {
  serverSends(wire::msgPosition, {"7", "50000", "50000"});
  EXPECT_EQ(world.localPlayer.tailCount(), 0);
  serverSends(wire::msgPosition, {"7", "50000", "50000.01"});
  EXPECT_EQ(world.localPlayer.tailCount(), 1) << "the smallest difference of that size is 1/256";
}

TEST_F(Dispatch, Q067APositionOfTwoFieldsDoesNothing) {
  serverSends(wire::msgPosition, {"9", "21000"});
  EXPECT_EQ(bob().positionQueueCount(), 0);
  serverSends(wire::msgPosition, {"40000", "21000", "21000"});
  EXPECT_EQ(world.opponents[0].positionQueueCount(), 0) << "a node beyond 16 bits does not wrap to another player's";
  EXPECT_EQ(bob().positionQueueCount(), 0);
  serverSends(wire::msgServerText, {"next"});
  EXPECT_EQ(lastLine(), "next");
}

TEST_F(Dispatch, FieldsBeyondTheListedOnesAreIgnored) {
  serverSends(wire::msgPosition, {"9", "21000", "22000", "more", "9"});
  EXPECT_EQ(bob().positionQueueCount(), 1);
}

TEST_F(Dispatch, Velocity) {
  serverSends(wire::msgVelocity, {"9", "12.5", "-3"});
  EXPECT_EQ(bob().velocity, (Vector{12.5F, -3}));
  const Vector own = world.localPlayer.velocity;
  serverSends(wire::msgVelocity, {"7", "12.5", "-3"});
  EXPECT_EQ(world.localPlayer.velocity, own);
}

TEST_F(Dispatch, PlayerJoined) {
  serverSends(wire::msgPlayerJoined, {"11", "4", "Cat", "300", "400", "0", "6"});
  ASSERT_EQ(modMain::world.opponentCount, 3);
  EXPECT_EQ(world.opponents[2].serverNode, 11);
  EXPECT_EQ(world.opponents[2].playerIndex, 2);
  EXPECT_EQ(world.opponents[2].colour, 4);
  EXPECT_EQ(world.opponents[2].name, "Cat");
  EXPECT_EQ(world.opponents[2].position, (Vector{300, 400}));
  EXPECT_FALSE(world.opponents[2].alive);
  EXPECT_EQ(world.opponents[2].kills, 6);
}

TEST_F(Dispatch, LoginAcceptedTakesTheNameThatWasSent) {
  netMan::playerName = "Sent";
  serverSends(wire::msgLoginAccepted, {"3", "20", "100", "200"});
  EXPECT_EQ(world.localPlayer.name, "Sent");
  EXPECT_EQ(world.localPlayer.colour, cyanPlayer);
  EXPECT_EQ(world.localPlayer.serverNode, 20);
  EXPECT_EQ(world.localPlayer.position, (Vector{100, 200}));
}

TEST_F(Dispatch, LoginDenied) {
  serverSends(wire::msgLoginDenied, {"no room"});
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Login denied: \nno room"});
  EXPECT_EQ(frmMain->sock.State(), sckClosed);
}

TEST_F(Dispatch, LoginDeniedDisconnectsEvenIfItsBoxFails) {
  serverSends("\x80\x88x\x81\x80\x81");
  EXPECT_EQ(machine.messageBoxes.size(), 1U) << "the second run of the handler has no field to show";
  frmMain->mnuFileConnect.Enabled = false;
  netMan::findRoute(wire::msgLoginDenied)->handle(netMan::MessageFields{});
  EXPECT_EQ(machine.messageBoxes.size(), 1U);
  EXPECT_TRUE(frmMain->mnuFileConnect.Enabled);
}

TEST_F(Dispatch, Chat) {
  serverSends(wire::msgChat, {"9", "hello"});
  EXPECT_EQ(lastLine(), "[Bob] hello");
}

TEST_F(Dispatch, Ping) {
  tick(250);
  serverSends(wire::msgPing, {"42"});
  EXPECT_EQ(world.localPlayer.pingTick, 1'000'250);
  ASSERT_FALSE(sentFrames().empty());
  EXPECT_EQ(sentFrames()[0], (WireMessage{wire::msgPingReply, {"43200.25"}}));
}

TEST_F(Dispatch, LatencyReport) {
  serverSends(wire::msgPing, {"42"});
  tick(30);
  serverSends(wire::msgLatencyReport, {"55"});
  EXPECT_EQ(frmMain->lblLag.Caption.get(), "30/55");
}

TEST_F(Dispatch, PingAndLatencyAreIgnoredBeforeTheLogin) {
  world.localPlayer.isConnected = false;
  serverSends(wire::msgPing, {"42"});
  serverSends(wire::msgLatencyReport, {"55"});
  EXPECT_TRUE(sentFrames().empty());
  EXPECT_EQ(world.localPlayer.pingTick, 0);
  EXPECT_EQ(frmMain->lblLag.Caption.get(), "0");
}

TEST_F(Dispatch, PlayerLeft) {
  serverSends(wire::msgPlayerLeft, {"9"});
  EXPECT_FALSE(bob().isConnected);
}

TEST_F(Dispatch, TailCapture) {
  serverSends(wire::msgPosition, {"7", "51000", "52000"});
  serverSends(wire::msgTailCapture, {"7", "9", "51000", "52000"});
  ASSERT_EQ(modMain::world.killerTails.size(), 1U);
  EXPECT_EQ(modMain::world.killerTails[0].owner, -1);
  EXPECT_EQ(modMain::world.killerTails[0].victims, std::vector<std::int16_t>{1});
}

TEST_F(Dispatch, Funds) {
  serverSends(wire::msgFunds, {"7", "1234"});
  EXPECT_EQ(world.localPlayer.funds(), 1234);
  serverSends(wire::msgFunds, {"9", "3000000000"});
  EXPECT_EQ(bob().funds(), 3e9);
  EXPECT_EQ(world.localPlayer.funds(), 1234);
}

TEST_F(Dispatch, RoundOver) {
  serverSends(wire::msgRoundOver, {"Bob wins"});
  EXPECT_FALSE(world.localPlayer.alive);
  EXPECT_EQ(modMain::world.roundMessage, "Bob wins");
}

TEST_F(Dispatch, SpawnDenied) {
  serverSends(wire::msgSpawnDenied, {""});
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Respawn request denied from server"});
  EXPECT_EQ(frmMain->sock.State(), sckConnected);
}

TEST_F(Dispatch, Respawn) {
  world.localPlayer.alive = false;
  bob().alive = false;
  modMain::setButtonsState(true);
  serverSends(wire::msgRespawn, {"9"});
  EXPECT_TRUE(bob().alive);
  EXPECT_FALSE(world.localPlayer.alive);
  EXPECT_EQ(frmMain->btnSpawn.background(), frmGfx->imgBtnPlay[1].Picture.get());
  serverSends(wire::msgRespawn, {"7"});
  EXPECT_TRUE(world.localPlayer.alive);
  EXPECT_EQ(frmMain->btnSpawn.background(), frmGfx->imgBtnPlay[0].Picture.get()) << "only your own respawn greys it";
}

TEST_F(Dispatch, PowerupOnAndOff) {
  serverSends(wire::msgPowerupOn, {"7", "1"});
  EXPECT_TRUE(world.localPlayer.powerups[1].active);
  serverSends(wire::msgPowerupOn, {"9", "0"});
  EXPECT_TRUE(bob().powerups[0].active);
  serverSends(wire::msgPowerupOff, {"7", "1"});
  EXPECT_FALSE(world.localPlayer.powerups[1].active);
  EXPECT_EQ(lastLine(), "Ann's turbo has shorted out!!");
  serverSends(wire::msgPowerupOff, {"9", "0"});
  EXPECT_FALSE(bob().powerups[0].active);
  serverSends(wire::msgPowerupOn, {"7", "6"});
  serverSends(wire::msgServerText, {"still there"});
  EXPECT_EQ(lastLine(), "still there") << "a slot out of range ends the handler, not the client";
}

TEST_F(Dispatch, AliveStateOfTheLocalPlayer) {
  serverSends(wire::msgAliveState, {"7", "0"});
  EXPECT_FALSE(world.localPlayer.alive);
  serverSends(wire::msgAliveState, {"7", "-5"});
  EXPECT_TRUE(world.localPlayer.alive);
}

TEST_F(Dispatch, AnAliveStateOfTheLocalPlayerShowsTheNextTip) {
  modMain::showCentreMessage("old");
  serverSends(wire::msgAliveState, {"7", "0"});
  EXPECT_EQ(modMain::world.centreMessage, "old");
  serverSends(wire::msgAliveState, {"7", "1"});
  EXPECT_EQ(modMain::world.centreMessage, "Right-Click to release or engage breaks");
  serverSends(wire::msgAliveState, {"7", "1"});
  EXPECT_EQ(modMain::world.centreMessage, "Hold down the mouse button to prevent mouse from leaving viewport");
}

TEST_F(Dispatch, Q068AliveStateNeverChangesAnOpponent) {
  serverSends(wire::msgAliveState, {"9", "0"});
  EXPECT_TRUE(bob().alive);
  bob().alive = false;
  serverSends(wire::msgAliveState, {"9", "1"});
  EXPECT_FALSE(bob().alive);
  serverSends(wire::msgAliveState, {"9", "0"});
  EXPECT_TRUE(world.localPlayer.alive) << "nor the local player in their place";
}

TEST_F(Dispatch, ServerText) {
  serverSends(wire::msgServerText, {"Welcome"});
  EXPECT_EQ(lastLine(), "Welcome");
  EXPECT_EQ(modMain::world.chatLines[0].colour, RGB(255, 255, 0));
}

TEST_F(Dispatch, Particles) {
  serverSends(wire::msgParticleAdd, {"p1", "4", "100", "200", "1", "2"});
  ASSERT_EQ(modMain::world.netParticleCount, 1);
  const clsParticle& particle = modMain::world.netParticles[0];
  EXPECT_EQ(particle.id, "p1");
  EXPECT_EQ(particle.kind, 4);
  EXPECT_EQ(particle.getPosition(), (Vector{100, 200}));
  EXPECT_EQ(particle.velocity, (Vector{1, 2}));
  serverSends(wire::msgParticleMove, {"p1", "700", "800"});
  EXPECT_EQ(particle.getPosition(), (Vector{700, 800}));
  EXPECT_TRUE(particle.spawned);
  serverSends(wire::msgParticleRemove, {"p1"});
  EXPECT_FALSE(particle.spawned);
}

TEST_F(Dispatch, AnUnknownNodeIsTakenForTheFirstOpponent) {
  serverSends(wire::msgPosition, {"99", "21000", "22000"});
  EXPECT_EQ(world.opponents[0].positionQueueCount(), 1);
  serverSends(wire::msgFunds, {"99", "5"});
  EXPECT_EQ(world.opponents[0].funds(), 5);
}

TEST_F(GameTest, WithNoOpponentAnUnknownNodeDoesNothing) {
  login();
  modMain::world.chatLines = {};
  serverSends(wire::msgPosition, {"99", "21000", "22000"});
  serverSends(wire::msgVelocity, {"99", "1", "2"});
  serverSends(wire::msgFunds, {"99", "5"});
  serverSends(wire::msgRespawn, {"99"});
  serverSends(wire::msgAliveState, {"99", "0"});
  serverSends(wire::msgPowerupOn, {"99", "0"});
  serverSends(wire::msgPowerupOff, {"99", "0"});
  serverSends(wire::msgPlayerLeft, {"99"});
  serverSends(wire::msgTailCapture, {"99", "98", "1", "2"});
  EXPECT_EQ(modMain::world.chatLines[0].text, "");
  EXPECT_EQ(world.localPlayer.tailCount(), 0);
  EXPECT_TRUE(world.localPlayer.alive);
  EXPECT_TRUE(modMain::world.killerTails.empty());
}

TEST_F(GameTest, TooFewFieldsMeanNoEffectForAnyMessage) {
  login();
  join(9, 2, "Bob", 20'000, 20'000);
  modMain::world.chatLines = {};
  const std::vector<WireMessage> cut = {{134, {"9", "1"}},
                                        {147, {"9", "1"}},
                                        {138, {"9", "1", "N", "2", "3", "1"}},
                                        {137, {"1", "9", "5"}},
                                        {144, {"9"}},
                                        {141, {"7", "9", "3"}},
                                        {148, {"9"}},
                                        {151, {""}},
                                        {151, {"0"}},
                                        {151, {"0", "2"}},
                                        {156, {"9"}},
                                        {157, {"7"}},
                                        {160, {""}},
                                        {160, {"0"}},
                                        {160, {"0", "2"}},
                                        {161, {"9"}},
                                        {164, {"p", "1", "2", "3", "4"}},
                                        {165, {"p", "1"}}};
  const Vector velocity = world.opponents[0].velocity;
  modMain::openStore();
  for (const WireMessage& message : cut) serverSends(message.id, message.fields);
  EXPECT_EQ(modMain::world.opponentCount, 1);
  EXPECT_EQ(world.localPlayer.serverNode, 7);
  EXPECT_EQ(world.opponents[0].positionQueueCount(), 0);
  EXPECT_EQ(world.opponents[0].velocity, velocity);
  EXPECT_EQ(world.opponents[0].funds(), 10);
  EXPECT_EQ(world.localPlayer.funds(), 10);
  EXPECT_EQ(world.localPlayer.powerups[0].count, 0);
  EXPECT_FALSE(world.opponents[0].powerups[0].active);
  EXPECT_TRUE(modMain::world.killerTails.empty());
  EXPECT_TRUE(world.localPlayer.alive);
  EXPECT_EQ(modMain::world.netParticleCount, 0);
  EXPECT_EQ(modMain::world.chatLines[0].text, "");
  EXPECT_EQ(frmPowerups->lblWinners.Caption.get(), "");
}

TEST_F(GameTest, NamesAreFoundAmongConnectedOpponentsInAnyCase) {
  login();
  EXPECT_EQ(netMan::indexFromName("Bob"), 0);
  join(8, 1, "Cat");
  join(9, 2, "Bob");
  join(10, 3, "BOB");
  EXPECT_EQ(netMan::indexFromName("bOB"), 1);
  EXPECT_EQ(netMan::indexFromName("nobody"), 0);
  world.opponents[1].isConnected = false;
  EXPECT_EQ(netMan::indexFromName("bob"), 2);
}

}  // namespace
}  // namespace kelvora
