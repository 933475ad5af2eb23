// A settings file with any contents: start-up, and the dialogs that read it.

#include <array>
#include <utility>

#include "frontend/console.h"
#include "frontend/fontMan.h"
#include "frontend/frmConnect.h"
#include "frontend/frmFonts.h"
#include "frontend/frmMain.h"
#include "tests/fuzz/fuzzClient.h"

namespace kelvora {
namespace {

using fuzz::FuzzClient;
using fuzz::Input;

/// Every section and key that the program reads. The last five are the five fonts.
std::pair<std::string, std::string> settingOf(int number) {
  static const std::array<std::pair<const char*, const char*>, 10> plain = {{{"audio", "music"},
                                                                             {"audio", "sfx"},
                                                                             {"misc", "directionalLine"},
                                                                             {"misc", "quarks"},
                                                                             {"misc", "updates"},
                                                                             {"last login", "player name"},
                                                                             {"last login", "server address"},
                                                                             {"last login", "server port"},
                                                                             {"last login", "server password"},
                                                                             {"last login", "player color"}}};
  static const std::array<const char*, 5> ofFonts = {"size", "colorR", "colorG", "colorB", "family"};
  constexpr int fonts = 5;
  const int count = static_cast<int>(plain.size() + ofFonts.size()) * fonts;
  const auto index = static_cast<std::size_t>(number % count);
  if (index < plain.size()) return plain[index];
  const std::size_t font = (index - plain.size()) / ofFonts.size() % fonts;
  return {"fonts", std::to_string(font) + ofFonts[index % ofFonts.size()]};
}

void use(FuzzClient& client) {
  for (std::int16_t type = -1; type <= 5; ++type) printChat("a line", LineType{type});
  frmFonts->Show();
  for (Slider& slider : frmFonts->sldSize) slider.Change();
  frmConnect->cmdConnect.Click();
  client.server().acceptConnection();
  client.passEvents();
  client.server().deliver(
      "\x80\x89"
      "0\x82"
      "7\x82"
      "50000\x82"
      "50000\x81");
  client.passEvents();
  modMain::runFrame();
}

void run(Input input) {
  FuzzClient client;
  while (!input.isEmpty()) {
    const std::uint8_t number = input.byte();
    client.machine.settings[settingOf(number)] = std::string(input.upTo('\n'));
  }
  bool hasStarted = false;
  client.machine.onDoEvents = [&] {
    if (std::exchange(hasStarted, true)) return;
    throw ProcessEnded{};  // leaves the endless loop
  };
  client.survives(modMain::startGame);
  if (hasStarted) client.survives([&] { use(client); });
}

}  // namespace
}  // namespace kelvora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kelvora::run({data, size});
  return 0;
}
