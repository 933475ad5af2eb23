#include "tests/support/gameTest.h"

#include <ostream>

#include "audio/frmMusic.h"
#include "audio/frmSound.h"
#include "audio/soundMan.h"
#include "frontend/fontMan.h"
#include "frontend/frmConnect.h"
#include "frontend/frmFonts.h"
#include "frontend/frmGameFind.h"
#include "frontend/updateCheck.h"
#include "generated/sourceFolder.h"
#include "rendering/frmGfx.h"
#include "store/frmPowerups.h"

namespace kelvora {

void PrintTo(const WireMessage& message, std::ostream* out) {
  *out << "message " << message.id << " (";
  for (const std::string& field : message.fields) *out << '"' << field << "\" ";
  *out << ")";
}

std::vector<WireMessage> parseFrames(std::string_view bytes) {
  std::vector<WireMessage> messages;
  while (!bytes.empty()) {
    const std::size_t end = bytes.find(wire::frameEnd);
    if (bytes.front() != wire::frameStart || end == std::string_view::npos || end < 2) {
      ADD_FAILURE() << "not a frame: " << bytes;
      break;
    }
    WireMessage message{static_cast<unsigned char>(bytes[1]), {}};
    std::string_view text = bytes.substr(2, end - 2);
    for (std::size_t at = text.find(wire::fieldSeparator); at != std::string_view::npos;
         at = text.find(wire::fieldSeparator)) {
      message.fields.emplace_back(text.substr(0, at));
      text.remove_prefix(at + 1);
    }
    message.fields.emplace_back(text);
    messages.push_back(std::move(message));
    bytes.remove_prefix(end + 1);
  }
  return messages;
}

namespace {

void unloadForms() {
  frmMusic.unload();
  frmSound.unload();
  frmGameFind.unload();
  frmConnect.unload();
  frmFonts.unload();
  frmPowerups.unload();
  frmMain.unload();
  frmGfx.unload();
  releaseUnloadedForms();
}

// Builds the frame independently, to detect errors in the client's own builder.
std::string frameOf(std::int16_t id, const std::vector<std::string>& fields) {
  std::string frame{wire::frameStart, static_cast<char>(id)};
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) frame += wire::fieldSeparator;
    frame += fields[i];
  }
  return frame + wire::frameEnd;
}

}  // namespace

GameTest::GameTest() {
  machine.pictureSource = testPicture;
  machine.path = KELVORA_SOURCE_DIR;
  installBackend(&machine);
  modMain::world = {};
  netMan::clear();
  updateCheck::clear();
  soundMan::clear();
  modMain::fillColourNames();
  modMain::fillTips();
  fontMan::initFonts();
  machine.journal.clear();
}

GameTest::~GameTest() {
  unloadForms();
  installBackend(nullptr);
}

void GameTest::connect(const std::string& name, std::int16_t colour) {
  netMan::connectToServer(name, "127.0.0.1", 2010, "", colour);
  server().acceptConnection();
  passEvents();
}

void GameTest::login(std::int16_t colour, std::int16_t node, float x, float y, const std::string& name) {
  connect(name, colour);
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
