#include "server/net/figures.h"

#include "protocol/messages.h"
#include "server/http/metricsText.h"

namespace kelvora::server {

namespace {

using ByMessage = std::array<Figures::Traffic, 256>;

struct Stream {
  const ByMessage& traffic;
  wire::Direction direction;
  const char* name;
};

const char* nameOf(Drop what) {
  switch (what) {
    case Drop::position:
      return "position";
    case Drop::request:
      return "request";
    case Drop::lateLogin:
      break;
  }
  return "late login";
}

/// One sample for each message of both directions.
void addMessages(MetricsText& text, const Figures& figures, std::uint64_t Figures::Traffic::*value) {
  for (const auto& [traffic, direction, name] : {Stream{figures.received, wire::Direction::toServer, "in"},
                                                 Stream{figures.sent, wire::Direction::toClient, "out"}}) {
    const std::string way = MetricsText::label("direction", name) + ",";
    ByMessage others = traffic;
    for (const wire::Message& message : wire::messages) {
      if (message.direction != direction) continue;
      Figures::Traffic& own = others[static_cast<std::size_t>(message.id)];
      text.add(own.*value, way + MetricsText::label("message", message.name));
      own = {};
    }
    std::uint64_t rest = 0;
    for (const Figures::Traffic& other : others) rest += other.*value;
    text.add(rest, way + MetricsText::label("message", "unknown"));
  }
}

}  // namespace

HttpAnswer metricsPage(const Figures& figures, const Gauges& gauges) {
  MetricsText text;
  text.begin("kelvora_build_info", "gauge", "The server's version.");
  text.add(1, MetricsText::label("version", gauges.version));
  text.addGauge("kelvora_uptime_seconds", "Time since the start.",
                std::chrono::duration<double>(gauges.uptime).count());
  text.addGauge("kelvora_players", "People in the arena.", gauges.players);
  text.addGauge("kelvora_bots", "Bots in the arena.", gauges.bots);
  text.addGauge("kelvora_spectators", "People who watch.", gauges.spectators);
  text.addGauge("kelvora_bans", "Networks that are banned.", gauges.bans);
  text.addGauge("kelvora_mutes", "Networks whose lines reach nobody.", gauges.mutes);
  text.addGauge("kelvora_connections", "Open connections of all kinds.", gauges.connections);
  text.addHistogram("kelvora_tick_seconds", "Duration of a tick of the rules and bots.", figures.ticks);
  text.addHistogram("kelvora_wait_seconds", "Delay of a tick, which is what arriving messages wait for their turn.",
                    figures.waits);
  text.addHistogram("kelvora_relay_seconds", "Time from reading a position to passing it on to all players.",
                    figures.relays);
  text.begin("kelvora_messages_total", "counter", "Messages of people's games.");
  addMessages(text, figures, &Figures::Traffic::count);
  text.begin("kelvora_message_bytes_total", "counter", "Bytes of these messages.");
  addMessages(text, figures, &Figures::Traffic::bytes);
  text.begin("kelvora_http_answers_total", "counter", "Answers to HTTP requests.");
  for (const auto& [status, traffic] : figures.answers) {
    text.add(traffic.count, MetricsText::label("status", std::to_string(status)));
  }
  text.begin("kelvora_http_answer_bytes_total", "counter", "Bytes of these answers, without their headers.");
  for (const auto& [status, traffic] : figures.answers) {
    text.add(traffic.bytes, MetricsText::label("status", std::to_string(status)));
  }
  text.begin("kelvora_dropped_total", "counter", "Input and connections dropped or refused by limits.");
  const auto addDropped = [&text](const char* what, std::uint64_t count) {
    text.add(count, MetricsText::label("what", what));
  };
  for (const Drop what : {Drop::position, Drop::request, Drop::lateLogin}) {
    addDropped(nameOf(what), figures.dropped[static_cast<std::size_t>(what)]);
  }
  addDropped("connection of a busy address", figures.refusedOfAddress);
  addDropped("connection to a full server", figures.refusedWhenFull);
  text.begin("kelvora_closed_connections_total", "counter", "Connections by the reason for their end.");
  for (const auto& [reason, count] : figures.closed) text.add(count, MetricsText::label("reason", reason));
  return text.answer();
}

}  // namespace kelvora::server
