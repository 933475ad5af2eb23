#include "tests/platform/windowModel/walk.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "tests/platform/windowModel/process.h"

namespace kelvora {

Findings walk(const Steps& steps) {
  const Ended ended = runApart(steps);
  Findings outcome;
  outcome.complaint = ended.failure;
  std::istringstream report(ended.report);
  for (std::string line; std::getline(report, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (line.starts_with("seen ")) outcome.seen.insert(line.substr(5));
    if (line.starts_with("wrong ")) outcome.complaint = line.substr(6);
  }
  return outcome;
}

Steps shortest(Steps steps) {
  for (std::size_t piece = steps.size(); piece > 0; piece = piece == 1 ? 0 : (piece + 1) / 2) {
    for (std::size_t at = 0; at < steps.size();) {
      Steps fewer = steps;
      const auto begin = fewer.begin() + static_cast<std::ptrdiff_t>(at);
      fewer.erase(begin, begin + static_cast<std::ptrdiff_t>(std::min(piece, steps.size() - at)));
      if (walk(fewer).complaint.empty()) {
        at += piece;
      } else {
        steps = std::move(fewer);
      }
    }
  }
  return steps;
}

}  // namespace kelvora
