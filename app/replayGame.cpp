#include "app/replayGame.h"

#include <exception>

#include "app/gameState.h"
#include "core/startUp.h"

namespace kelvora {

using recording::Damaged;
using recording::Reader;
using recording::Replay;
using recording::ReplayEnd;

bool ReplayReport::isExact() const {
  const bool isSameEnd = reason == ReplayEnd::Reason::Ended ||
                         (reason == ReplayEnd::Reason::Fault && !text.empty() && text == recordedFault);
  return isSameEnd && differences.empty();
}

ReplayReport replayGame(Reader::Source source, const std::string& dataFolder,
                        const std::function<void(Replay&)>& prepare) {
  ReplayReport report;
  const auto endBy = [&report](ReplayEnd::Reason reason, const std::string& text) {
    report.reason = reason;
    report.text = text;
  };
  try {
    Replay replay(std::move(source), dataFolder, gameState);
    if (prepare) prepare(replay);
    installBackend(&replay);
    try {
      modMain::startGame();
    } catch (const ReplayEnd& end) {
      endBy(end.reason, end.text);
    } catch (const Reader::Truncated&) {  // a killed game has left half a record
      endBy(ReplayEnd::Reason::Ended, {});
    } catch (const Damaged& damage) {
      endBy(ReplayEnd::Reason::Damaged, damage.what());
    } catch (const std::exception& fault) {
      replay.readFault();
      endBy(ReplayEnd::Reason::Fault, fault.what());
    }
    installBackend(nullptr);
    report.version = replay.version();
    report.frames = replay.frames();
    report.checks = replay.checks();
    report.duration = replay.elapsed();
    report.differences = replay.differences();
    report.recordedFault = replay.recordedFault();
  } catch (const Damaged& damage) {
    endBy(ReplayEnd::Reason::Damaged, damage.what());
  }
  return report;
}

}  // namespace kelvora
