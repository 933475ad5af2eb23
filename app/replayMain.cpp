#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "app/film.h"
#include "app/player/playRecording.h"
#include "app/replayGame.h"
#include "platform/desktop/dataFolder.h"
#include "platform/recording/file.h"

namespace {

using namespace kelvora;

constexpr const char* helpText =
    "Usage: kelvora-replay FILE\n"
    "       kelvora-replay --verify FILE\n"
    "       kelvora-replay --frames FOLDER FILE\n"
    "       kelvora-replay --video VIDEO FILE\n"
    "Plays a recorded game again. KELVORA_RECORD=FILE records one.\n"
    "\n"
    "  FILE              show it in windows; press ? there for the keys\n"
    "  --verify          compare every picture and state that the recording sums up\n"
    "  --frames FOLDER   write the canvas as PNG files, 25 for each second\n"
    "  --video VIDEO     make a film of them, with sound; needs ffmpeg\n"
    "  --version         print the version\n"
    "  --help            print this help\n"
    "\n"
    "Exit status: 2 if the recording can't be read. With --verify, --frames or --video, 1 if the replay is not\n"
    "exact or the recorded game failed. 0 otherwise.\n";

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
  std::printf("all %llu comparisons are equal\n", static_cast<unsigned long long>(report.checks));
  return 0;
}

int run(const std::string& file, Film* film) {
  const auto begin = std::chrono::steady_clock::now();
  ReplayReport report;
  try {
    report = replayGame(recording::openRecording(file), dataFolder(), [film](recording::Replay& replay) {
      if (!film) return;
      replay.onFrame = [film, &replay] { return film->add(replay.elapsed()); };
      replay.onSound = [film, &replay](const recording::Sounding& sounding) { film->hear(sounding, replay.elapsed()); };
    });
  } catch (const recording::Damaged& damage) {
    report.reason = recording::ReplayEnd::Reason::Damaged;
    report.text = damage.what();
  }
  if (film && !film->finish()) {
    std::fprintf(stderr, "kelvora-replay: %s\n", film->error().c_str());
    return 2;
  }
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
  return tell(file, report, passed.count());
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
  const std::string_view option = arguments.empty() ? "" : std::string_view(arguments[0]);
  if (option == "--help" || option == "--version") {
    if (option == "--help") {
      std::fputs(helpText, stdout);
    } else {
      std::printf("kelvora-replay %s\n", appVersionText().c_str());
    }
    return 0;
  }
  if (option == "--verify" && arguments.size() == 2) return run(arguments[1], nullptr);
  if (option == "--frames" && arguments.size() == 3) {
    FrameFolder film(arguments[1]);
    return run(arguments[2], &film);
  }
  if (option == "--video" && arguments.size() == 3) {
    Video film(arguments[1]);
    return run(arguments[2], &film);
  }
  if (arguments.size() == 1 && !option.starts_with("-")) return show(arguments[0], argv[0]);
  std::fputs(helpText, stderr);
  return 2;
}
