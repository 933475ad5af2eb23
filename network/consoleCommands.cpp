#include <vector>

#include "audio/frmMusic.h"
#include "audio/soundMan.h"
#include "base/fault.h"
#include "base/numbers.h"
#include "base/text.h"
#include "core/modMain.h"
#include "network/chat.h"
#include "particles/clsParticle.h"
#include "platform/backend.h"
#include "store/store.h"

namespace kelvora::netMan {

namespace {

/// A command's parts between colons: the verb, then the argument.
using Pieces = std::vector<std::string>;

const std::string& argument(const Pieces& pieces) {
  // Quirk Q-082: nothing handles the fault of a missing argument, so it ends the client.
  if (pieces.size() < 2) raiseSubscriptOutOfRange();
  return pieces[1];
}

void listVerbs(const Pieces&) {
  MsgBox("?,playsound,reloadsounds,showmusic,hidemusic,unloadmusic,loadmusic,playmusic,quarktype,showstore");
}

std::int16_t numberArgument(const Pieces& pieces) { return toInt16(readNumber(argument(pieces))); }

void quarkType(const Pieces& pieces) {
  const ParticleType type{toByte(readNumber(argument(pieces)))};
  for (double i = 0; i < modMain::world.particleCount; ++i) {
    clsParticle& particle = modMain::world.particles[static_cast<std::size_t>(i)];
    const Vector point = particle.getPosition();
    particle.init(i, type, point.x, point.y);
  }
}

void showStore(const Pieces&) { modMain::openStore(); }

struct Verb {
  std::string_view name;
  void (*run)(const Pieces& pieces);
};

constexpr Verb verbs[] = {
    {"?", listVerbs},
    {"playsound", [](const Pieces& pieces) { soundMan::playSound(soundMan::Sound{numberArgument(pieces)}); }},
    {"reloadsounds", [](const Pieces&) { soundMan::reloadSounds(); }},
    {"showmusic", [](const Pieces&) { frmMusic->Show(); }},
    {"hidemusic", [](const Pieces&) { frmMusic->Hide(); }},
    {"unloadmusic", [](const Pieces&) { frmMusic.unload(); }},
    {"loadmusic", [](const Pieces&) { soundMan::startMusic(); }},
    {"playmusic", [](const Pieces& pieces) { soundMan::playMusic(numberArgument(pieces)); }},
    {"quarktype", quarkType},
    {"showstore", showStore},
};

Pieces split(const std::string& command) {
  Pieces pieces(1);
  for (const char c : command) {
    if (c == ':') {
      pieces.emplace_back();
    } else {
      pieces.back() += c;
    }
  }
  return pieces;
}

}  // namespace

void runConsoleCommand(const std::string& command) {
  const Pieces pieces = split(command);
  const std::string name = lowerCase(trimBlanks(pieces.front()));
  for (const Verb& verb : verbs) {
    if (verb.name == name) return verb.run(pieces);
  }
}

}  // namespace kelvora::netMan
