#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/millis.h"

namespace kelvora::server {

/// A message to all players, and when it was sent.
struct Moment {
  Millis at = 0;           ///< since the round's beginning
  std::string_view frame;  ///< a whole one
};

/// The messages of a round in their order, as numbers and frames one behind the other.
class Moments {
 public:
  static constexpr std::size_t maxSize = std::size_t{16} << 20;  ///< bytes
  static constexpr Millis maxLength = Millis{2 * 24 * 3600} * 1'000;

  Moments() = default;
  explicit Moments(std::string bytes) : bytes_(std::move(bytes)) {}

  /// `at` never decreases. Drops what doesn't fit any more.
  void add(Millis at, std::string_view frame);
  const std::string& bytes() const { return bytes_; }
  Millis length() const { return length_; }  ///< the last one's time, of those that were added

  /// Reads them one by one.
  class Reader {
   public:
    explicit Reader(std::string_view bytes) : rest_(bytes) {}
    /// The next one, which points into the bytes. Nothing at the end, or if the rest makes no sense.
    std::optional<Moment> next();
    bool isAtEnd() const { return rest_.empty(); }

   private:
    std::optional<std::size_t> number();

    std::string_view rest_;
    Millis at_ = 0;
  };

 private:
  std::string bytes_;
  Millis length_ = 0;
};

/// A file with a round, compressed.
std::string roundFile(const Moments& round);

/// The round in a file's contents. Throws std::runtime_error with the reason if they are damaged, too large, of a newer
/// format, or hold anything that no round has.
Moments readRound(std::string_view file);

}  // namespace kelvora::server
