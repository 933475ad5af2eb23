// Plays for hours without a screen, at full speed: kelvora_long_run [HOURS]. After each hour, in the first
// intermission, it prints the memory of client and arena and the time of a client's pass. A summary from the first hour
// on follows. The exit status is 1 if memory has grown beyond what the rules keep by more than 32 KiB plus 1 KiB for
// each player who joined.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "tools/headless/longPlay.h"

namespace {

/// Of the program's memory, in bytes.
std::int64_t residentBytes() {
  std::ifstream memory("/proc/self/statm");
  std::int64_t pages = 0;
  memory >> pages >> pages;
  return pages * ::sysconf(_SC_PAGESIZE);
}

}  // namespace

int main(int argc, char** argv) {
  using kelvora::LongPlay;
  constexpr double kilobyte = 1024;
  const int hours = argc > 1 ? std::atoi(argv[1]) : 8;
  LongPlay game;
  std::vector<LongPlay::Figures> lines;
  std::printf("hour    heap KiB    kept KiB    rest KiB     RSS KiB   slots  captures  rounds  us a pass\n");
  for (int hour = 1; hour <= hours; ++hour) {
    game.play(hour * 60 * LongPlay::framesPerMinute - game.framesPlayed());
    game.playToCalm();
    const LongPlay::Figures& line = lines.emplace_back(game.figures());
    const auto inKilobytes = [](std::int64_t bytes) { return static_cast<double>(bytes) / kilobyte; };
    std::printf("%4d %11.0f %11.0f %11.0f %11.0f %7zu %9d %7d %10.1f\n", hour, inKilobytes(line.heapBytes),
                inKilobytes(line.keptBytes), inKilobytes(line.heapBytes - line.keptBytes), inKilobytes(residentBytes()),
                line.slots, line.captures, line.rounds, line.clientMicroseconds);
    std::fflush(stdout);
  }
  if (lines.empty()) return 1;
  std::printf("messages to the client, by id:");
  for (const auto& [id, count] : game.received) std::printf(" %d: %d", id, count);
  std::printf("\nfrom the client:");
  for (const auto& [id, count] : game.sent) std::printf(" %d: %d", id, count);
  const LongPlay::Figures &first = lines.front(), &last = lines.back();
  // The tables for a tail's blocks don't shrink, and their size can't be queried.
  const auto bound = static_cast<std::int64_t>(32 * 1024 + 1024 * (last.slots - first.slots));
  const std::int64_t growth = (last.heapBytes - last.keptBytes) - (first.heapBytes - first.keptBytes);
  std::printf("\nmessage boxes: %d\ngrowth since the first hour beside what the rules keep: %.1f KiB\n", game.boxes,
              static_cast<double>(growth) / kilobyte);
  std::printf("a pass of the last hour by one of the first: %.2f\n",
              last.clientMicroseconds / first.clientMicroseconds);
  return growth <= bound ? 0 : 1;
}
