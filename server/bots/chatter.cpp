#include "server/bots/chatter.h"

#include <array>
#include <span>
#include <utility>

namespace kelvora::server {

namespace {

constexpr std::array arrivals = {"hello", "hi all", "good luck, everybody", "hey"};
constexpr std::array captures = {"got you", "that was close", "nice try, though", "round and round", "sorry"};
constexpr std::array losses = {"well done", "nice loop", "I did not see that coming", "good one", "oh no"};
constexpr std::array ends = {"good round", "well played", "another one?", "that was fun"};

struct Habit {
  std::span<const char* const> lines;
  double chance;
};

Habit habit(Occasion occasion) {
  switch (occasion) {
    case Occasion::arrival:
      return {arrivals, 0.5};
    case Occasion::capture:
      return {captures, 0.12};
    case Occasion::captured:
      return {losses, 0.2};
    default:
      return {ends, 0.3};
  }
}

}  // namespace

void Chatter::notice(Occasion occasion, Millis now) {
  const auto [lines, chance] = habit(occasion);
  const bool speaks = std::uniform_real_distribution(0.0, 1.0)(random_) < chance;
  if (!speaks || !next_.empty() || (last_ && now - *last_ < silence)) return;
  next_ = lines[std::uniform_int_distribution(std::size_t{0}, lines.size() - 1)(random_)];
  due_ = now + std::uniform_int_distribution(1'200, 3'500)(random_);  // the time that typing takes
}

std::optional<std::string> Chatter::line(Millis now) {
  if (next_.empty() || now < due_) return std::nullopt;
  last_ = now;
  return std::exchange(next_, {});
}

}  // namespace kelvora::server
