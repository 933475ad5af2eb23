#include "app/recordGame.h"

#include <cstdio>
#include <exception>
#include <utility>

#include "app/gameState.h"
#include "core/startUp.h"
#include "platform/recording/recorder.h"
#include "platform/windowing/faultReport.h"

namespace kelvora {

void recordGame(std::unique_ptr<recording::Sink> sink, const std::string& name) {
  if (!sink->isGood()) return modMain::startGame();
  // Outlives the game, whose objects live until the process ends.
  static std::unique_ptr<recording::Recorder> recorder;
  recorder = std::make_unique<recording::Recorder>(backend(), std::move(sink), gameState);
  installBackend(recorder.get());
  nameRecording(name);
  recorder->onLoss = [name] {
    nameRecording({});
    std::fprintf(stderr, "kelvora: the recording %s can't be written any more and ends here\n", name.c_str());
  };
  try {
    modMain::startGame();
  } catch (const std::exception& fault) {
    recorder->fault(fault.what());
    throw;
  }
}

}  // namespace kelvora
