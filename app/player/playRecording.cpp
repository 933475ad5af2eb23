#include "app/player/playRecording.h"

#include <array>
#include <filesystem>
#include <utility>

#include "app/gameState.h"
#include "app/player/engine.h"
#include "app/player/frmPlayer.h"
#include "app/player/playback.h"
#include "platform/desktop/dataFolder.h"
#include "platform/desktop/runDesktop.h"
#include "platform/recording/file.h"
#include "platform/recording/replay.h"

namespace kelvora::player {

namespace {

std::string fileName;
Channel scout;

/// Puts the player's window to the right of the game's.
void place(const Form& game, Form& player) {
  player.Left = game.Left.get() + game.Width.get();
  player.Top = game.Top.get();
}

void show() {
  Playback playback(std::move(scout));
  // The first window to be shown is the main one, and the others stay in front of it.
  playback.goToFirstWindow();
  FrmPlayer player(playback, fileName);
  const std::vector<Form*> forms = playback.mirror().forms();
  if (!forms.empty()) place(*forms.front(), player);
  player.Show(Form::Modality::Modal);
}

/// Throws Damaged if the recording has no head.
void requireHead(const std::string& file) {
  const recording::Replay replay(recording::openRecording(file), dataFolder(), gameState);
}

}  // namespace

void playRecording(const std::string& file, char* program) {
  fileName = std::filesystem::path(file).filename().string();
  requireHead(file);
  // The other processes are copies of this one, which has no threads or windows yet.
  scout = startScout(recording::openRecording(file), dataFolder());
  std::array<char*, 2> arguments{program, nullptr};
  runDesktop(1, arguments.data(), show);
}

}  // namespace kelvora::player
