#include "app/recordToFile.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "app/recordGame.h"
#include "core/startUp.h"
#include "platform/recording/file.h"

namespace kelvora {

void startGameRecorded() {
  const char* const file = std::getenv("KELVORA_RECORD");
  if (file == nullptr || *file == '\0') return modMain::startGame();
  auto recording = std::make_unique<recording::RecordingFile>(file);
  if (!recording->isGood()) {
    std::fprintf(stderr, "kelvora: the recording %s can't be written, so this game isn't recorded\n", file);
  }
  recordGame(std::move(recording), file);
}

}  // namespace kelvora
