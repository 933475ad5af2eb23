#include "server/replays/roundRecorder.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

#include "server/system/files.h"
#include "server/system/process.h"

namespace kelvora::server {

namespace fs = std::filesystem;

namespace {

constexpr const char* ending = ".round";
constexpr int maxNamesakes = 100;  // rounds that began in the same second

struct StoredRound {
  fs::path path;
  std::uintmax_t size;
};

/// From the oldest to the newest.
std::vector<StoredRound> roundsIn(const fs::path& folder) {
  std::vector<StoredRound> rounds;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code gone;
    if (entry->path().extension() != ending || !entry->is_regular_file(gone)) continue;
    const std::uintmax_t size = entry->file_size(gone);
    if (!gone) rounds.push_back({entry->path(), size});
  }
  std::sort(rounds.begin(), rounds.end(), [](const auto& a, const auto& b) { return a.path < b.path; });
  return rounds;
}

void removeOldest(const ReplaySettings& settings, const fs::path& folder) {
  const auto rounds = roundsIn(folder);
  std::size_t count = rounds.size();
  std::uintmax_t bytes = 0;
  for (const StoredRound& round : rounds) bytes += round.size;
  for (const StoredRound& round : rounds) {
    if (count <= static_cast<std::size_t>(settings.maxCount) &&
        bytes <= static_cast<std::uintmax_t>(settings.maxMebibytes) << 20) {
      return;
    }
    std::error_code ignored;
    fs::remove(round.path, ignored);
    --count;
    bytes -= round.size;
  }
}

}  // namespace

RoundRecorder::RoundRecorder(ServerHost& host, ReplaySettings settings) : host_(host), settings_(std::move(settings)) {
  std::error_code error;
  const fs::path folder = pathFromUtf8(settings_.folder);
  fs::create_directories(folder, error);
  if (error || !fs::is_directory(folder, error)) {
    throw std::runtime_error("the folder " + settings_.folder + " for recordings can't be made");
  }
  errno = 0;
  // A full disk may have room later.
  if (!std::ofstream(folder / ("probe" + std::string(ending) + ".new")) && errno != ENOSPC) {
    throw std::runtime_error("the folder " + settings_.folder + " for recordings can't be written");
  }
  // Left by a killed server, or the probe.
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const fs::path& path = entry->path();
    std::error_code ignored;
    if (path.extension() == ".new" && path.stem().extension() == ending) fs::remove(path, ignored);
  }
}

void RoundRecorder::begin(Millis now) {
  round_.emplace();
  begun_ = now;
  begunAt_ = host_.wallClock();
}

void RoundRecorder::add(std::string_view frame, Millis now) {
  if (round_) round_->add(now - begun_, frame);
}

void RoundRecorder::end(Millis now) {
  auto round = std::exchange(round_, std::nullopt);
  if (!round || now - begun_ < minLength) return;
  const auto error = std::make_shared<std::string>();
  const bool isUnderWay = host_.runAside([settings = settings_, round = std::move(*round), name = nameOfRound(begunAt_),
                                          error] { *error = storeRound(settings, round, name); },
                                         [this, error] {
                                           if (!error->empty()) host_.log("the round is not recorded: " + *error);
                                         });
  if (!isUnderWay) host_.log("the round is not recorded: the server is busy");
}

// Colons don't belong in names of files on Windows.
std::string nameOfRound(std::int64_t begunAt) {
  const auto time = static_cast<std::time_t>(begunAt);
  char text[32] = "";
  if (const std::tm* parts = std::gmtime(&time)) std::strftime(text, sizeof text, "%Y-%m-%dT%H.%M.%SZ", parts);
  return text;
}

std::string storeRound(const ReplaySettings& settings, const Moments& round, const std::string& name) {
  const fs::path folder = pathFromUtf8(settings.folder);
  std::error_code ignored;
  fs::path path = folder / (name + ending);
  for (int i = 2; i <= maxNamesakes && fs::exists(path, ignored); ++i) {
    path = folder / (name + "_" + std::to_string(i) + ending);
  }
  std::string error = replaceFile(utf8FromPath(path), roundFile(round));
  removeOldest(settings, folder);
  return error;
}

}  // namespace kelvora::server
