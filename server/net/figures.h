#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "server/arena/arenaOutput.h"
#include "server/http/histogram.h"
#include "server/http/http.h"

namespace kelvora::server {

/// Counts of the server's work since its start. Counting takes a few additions.
struct Figures {
  struct Traffic {
    std::uint64_t count = 0;
    std::uint64_t bytes = 0;

    void add(std::size_t size) {
      ++count;
      bytes += size;
    }
  };

  // Frames of people's connections, by message id.
  std::array<Traffic, 256> received{};
  std::array<Traffic, 256> sent{};
  std::map<unsigned int, Traffic> answers;      ///< HTTP answers and the bytes of their bodies, by status
  std::map<std::string, std::uint64_t> closed;  ///< connections by the reason for their end
  std::array<std::uint64_t, 3> dropped{};       ///< by Drop
  std::uint64_t refusedOfAddress = 0;           ///< connections beyond the limits of one address
  std::uint64_t refusedWhenFull = 0;            ///< connections when nobody could make room
  Histogram ticks;
  Histogram waits;   ///< how late ticks began: what everything that arrives waits for its turn
  Histogram relays;  ///< from reading a position to passing it on to everybody

  /// `text` is a frame's text, without its delimiters. Returns the message's id; 0 if there is none.
  std::size_t addReceived(std::string_view text) {
    const std::size_t id = text.empty() ? 0 : static_cast<unsigned char>(text[0]);
    received[id].add(text.size() + 2);
    return id;
  }
  void addSent(std::string_view frame) { sent[static_cast<unsigned char>(frame[1])].add(frame.size()); }
  void addDrop(Drop what) { ++dropped[static_cast<std::size_t>(what)]; }
};

/// The server's state at the moment.
struct Gauges {
  std::string version;
  std::chrono::nanoseconds uptime{};
  std::size_t players = 0;
  std::size_t bots = 0;
  std::size_t spectators = 0;
  std::size_t bans = 0;
  std::size_t mutes = 0;
  std::size_t connections = 0;
};

/// The page /metrics, in the text format of Prometheus.
HttpAnswer metricsPage(const Figures& figures, const Gauges& gauges);

}  // namespace kelvora::server
