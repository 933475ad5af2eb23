#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "app/film.h"
#include "app/player/playRecording.h"
#include "app/replayGame.h"
#include "app/replayOptions.h"
#include "platform/desktop/dataFolder.h"
#include "platform/recording/file.h"

namespace {

using namespace kelvora;

std::string clock(Millis milliseconds) {
  const long long seconds = milliseconds / 1000;
  char text[64];
  std::snprintf(text, sizeof text, "%lld:%02lld:%02lld.%03lld", seconds / 3600, seconds / 60 % 60, seconds % 60,
                static_cast<long long>(milliseconds % 1000));
  return text;
}

std::string joined(const std::vector<std::string>& parts) {
  std::string all;
  for (const std::string& part : parts) all += (all.empty() ? "" : ", ") + part;
  return all;
}

int tell(const std::string& file, const ReplayReport& report, double seconds) {
  using Reason = recording::ReplayEnd::Reason;
  if (report.reason == Reason::Damaged && report.version.empty()) {
    std::fprintf(stderr, "kelvora-replay: %s: %s\n", file.c_str(), report.text.c_str());
    return 2;
  }
  std::printf("%s: recorded by version %s, %llu frames in %s, replayed in %.1f s, %.0f times as fast\n", file.c_str(),
              report.version.c_str(), static_cast<unsigned long long>(report.frames), clock(report.duration).c_str(),
              seconds, static_cast<double>(report.duration) / 1000 / seconds);
  for (const recording::Difference& difference : report.differences) {
    std::printf("frame %llu at %s differs in %s\n", static_cast<unsigned long long>(difference.frame),
                clock(difference.time).c_str(), joined(difference.parts).c_str());
  }
  const std::string where = "after frame " + std::to_string(report.frames) + " at " + clock(report.duration) + ": ";
  if (report.reason == Reason::Fault) {
    std::printf("%sfault: %s%s\n", where.c_str(), report.text.c_str(),
                report.text == report.recordedFault ? ", as recorded" : ", which is not in the recording");
    return 1;
  }
  if (report.reason == Reason::Diverged || report.reason == Reason::Damaged) {
    std::printf("%s%s\n", where.c_str(), report.text.c_str());
    return report.reason == Reason::Damaged ? 2 : 1;
  }
  if (!report.differences.empty()) return 1;
  if (report.reason == Reason::Stopped) return 0;  // at the end of the film's range
  std::printf("all %llu comparisons are equal\n", static_cast<unsigned long long>(report.checks));
  return 0;
}

volatile std::sig_atomic_t wasInterrupted = 0;

/// Shows on a terminal how much of a film is done.
class ProgressLine {
 public:
  ~ProgressLine() { clear(); }
  void show(double share) {
    const int percent = std::clamp(static_cast<int>(100 * share), 0, 100);
    if (!isShown_ || percent == std::exchange(percent_, percent)) return;
    std::fprintf(stderr, "\r%3d %%", percent);
  }
  void clear() {
    if (isShown_ && std::exchange(percent_, -1) >= 0) std::fputs("\r     \r", stderr);
  }

 private:
  const bool isShown_ = ::isatty(STDERR_FILENO) != 0;
  int percent_ = -1;
};

/// Ends a film in order when it is interrupted, so that no part of it is left.
void catchInterruption() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    std::signal(signal, [](int) { wasInterrupted = 1; });
  }
}

int run(const ReplayOptions& options, Film* film) {
  const auto begin = std::chrono::steady_clock::now();
  const std::string& file = options.file;
  const bool hasEnd = options.range.to != FilmRange{}.to;
  ReplayReport report;
  ProgressLine progress;
  double read = 0;
  try {
    const auto source = recording::openRecording(file, [&read](double share) { read = share; });
    report = replayGame(source, dataFolder(), [&](recording::Replay& replay) {
      if (!film) return;
      replay.onFrame = [&, film] {
        const auto length = static_cast<double>(options.range.to);
        progress.show(hasEnd ? static_cast<double>(replay.elapsed()) / length : read);
        return wasInterrupted == 0 && film->add(replay.elapsed());
      };
      replay.onSound = [&, film](const recording::Sounding& sounding) { film->hear(sounding, replay.elapsed()); };
    });
  } catch (const recording::Damaged& damage) {
    report.reason = recording::ReplayEnd::Reason::Damaged;
    report.text = damage.what();
  }
  const bool isReadable = !report.version.empty();
  if (film && isReadable) {
    if (wasInterrupted != 0) {
      progress.clear();
      std::fputs("kelvora-replay: interrupted\n", stderr);
      return 130;
    }
    const bool isDone = film->finish();
    progress.clear();
    if (!isDone) {
      std::fprintf(stderr, "kelvora-replay: %s\n", film->error().c_str());
      return 2;
    }
  }
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
  const int status = tell(file, report, passed.count());
  if (film && isReadable) std::puts(film->result().c_str());
  return status;
}

int show(const std::string& file, char* program) {
  try {
    player::playRecording(file, program);
    return 0;
  } catch (const recording::Damaged& damage) {
    std::fprintf(stderr, "kelvora-replay: %s: %s\n", file.c_str(), damage.what());
    return 2;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  ReplayOptions options;
  if (const Outcome outcome = parseReplayOptions(arguments, options); outcome.isRefused()) {
    std::fprintf(stderr, "kelvora-replay: %s\nkelvora-replay --help lists the options.\n", outcome.reason().c_str());
    return 2;
  }
  switch (options.action) {
    case ReplayOptions::Action::Help:
      std::fputs(replayHelp().c_str(), stdout);
      return 0;
    case ReplayOptions::Action::Version:
      std::printf("kelvora-replay %s\n", appVersionText().c_str());
      return 0;
    case ReplayOptions::Action::Verify:
      return run(options, nullptr);
    case ReplayOptions::Action::Frames: {
      catchInterruption();
      FrameFolder film(options.target, options.range);
      return run(options, &film);
    }
    case ReplayOptions::Action::Video: {
      catchInterruption();
      Video film(options.target, options.range);
      return run(options, &film);
    }
    case ReplayOptions::Action::Show:
      break;
  }
  return show(options.file, argv[0]);
}
