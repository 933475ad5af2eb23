#include "app/recordGame.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>

#include "app/gameState.h"
#include "core/startUp.h"
#include "platform/desktop/handlerCall.h"
#include "platform/recording/file.h"
#include "platform/recording/recorder.h"

namespace kelvora {

void startGameRecorded() {
  const char* const file = std::getenv("KELVORA_RECORD");
  if (file == nullptr || *file == '\0') return modMain::startGame();
  // Outlives the game, whose objects live until the process ends.
  static const auto recorder =
      std::make_unique<recording::Recorder>(backend(), std::make_unique<recording::RecordingFile>(file), gameState);
  if (!recorder->isRecording()) {
    std::fprintf(stderr, "kelvora: the recording %s can't be written, so this game isn't recorded\n", file);
    return modMain::startGame();
  }
  installBackend(recorder.get());
  nameRecording(file);
  try {
    modMain::startGame();
  } catch (const std::exception& fault) {
    recorder->fault(fault.what());
    throw;
  }
}

}  // namespace kelvora
