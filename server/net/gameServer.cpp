#include "server/net/gameServer.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <random>
#include <utility>

#include "protocol/rules.h"
#include "server/config/commaList.h"
#include "server/moderation/network.h"
#include "server/system/process.h"

namespace kelvora::server {

namespace {

constexpr int spectatorsOfReplay = 64;
constexpr auto tickInterval = std::chrono::milliseconds(rules::reportInterval);

/// A log for other threads: writes their lines on the context's thread.
std::function<void(const std::string&)> logFromAside(asio::io_context& context,
                                                     const std::function<void(const std::string&)>& log) {
  return [&context, log](const std::string& line) { asio::post(context, [log, line] { log(line); }); };
}

std::vector<std::unique_ptr<Publisher>> startPublishers(asio::io_context& context, const Options& options,
                                                        const std::function<void(const std::string&)>& log) {
  std::vector<std::unique_ptr<Publisher>> publishers;
  for (const std::string& url : commaList(options.publishUrls)) {
    publishers.push_back(
        std::make_unique<Publisher>(url, options.publishKey, versionText(), logFromAside(context, log)));
  }
  return publishers;
}

std::optional<asio::ip::address> proxyAddress(const std::string& text) {
  if (text.empty()) return std::nullopt;
  return unmapped(asio::ip::make_address(text));
}

/// A replay is there to be watched.
Options withSpectators(Options options) {
  if (!options.replayFile.empty() && options.rules.spectators == 0) options.rules.spectators = spectatorsOfReplay;
  return options;
}

}  // namespace

GameServer::GameServer(asio::io_context& context, const Options& options, WriteLine log, WriteLine logAct)
    : options_(withSpectators(options)),
      log_(std::move(log)),
      logAct_(logAct ? std::move(logAct) : log_),
      trustedProxy_(proxyAddress(options.trustedProxy)),
      metricsFor_(AddressList::read(options.metricsFor).value()),
      unlimitedFor_(AddressList::read(options.unlimitedFor).value()),
      site_(pathFromUtf8(options.site.value_or(""))),
      listener_(context, options.address, options.port, listenerHandlers()),
      context_(context),
      timer_(context),
      arena_(*this, versionText(), options.password, std::random_device{}(), options_.rules),
      bots_(arena_, options.bots, options.password, versionText(), std::random_device{}()),
      records_(*this, options.recordsFile),
      moderation_(arena_, bots_, records_, *this, options.moderation),
      rounds_(arena_, *this, options.replays, options.replayFile),
      list_(versionText(), options.listKey, options.address, options.listSize),
      publishers_(startPublishers(context, options, log_)),
      sidecar_(startSidecar()) {
  if (options.webPort) {
    const std::string& address = options.webAddress.empty() ? options.address : options.webAddress;
    webListener_.emplace(context, address, *options.webPort, listenerHandlers());
  }
  if (options.rules.spectators > 0) {  // a replay needs no second port to be watched on
    spectatorListener_.emplace(context, options.address, options.portOfSpectators(), listenerHandlers(Role::spectator));
  }
  warnOfPort(port());
  if (spectatorListener_) warnOfPort(spectatorListener_->port());
  records_.open();
  publish();
  tickMore();
}

void GameServer::warnOfPort(std::uint16_t port) const {
  if (port <= maxListedPort) return;
  log_("port " + std::to_string(port) + " is for browsers only: the game and lists accept ports up to " +
       std::to_string(maxListedPort));
}

Listener::Handlers GameServer::listenerHandlers(Role role) {
  return {.onConnection = [this, role](Socket socket) { welcome(std::move(socket), role); },
          .onFailure = [this](const std::string& reason) { log_("cannot accept connections: " + reason); },
          .onRecovery = [this] { log_("can accept connections again"); }};
}

void GameServer::stop(std::function<void()> whenDone) {
  if (std::exchange(stopped_, true)) return closeAll();
  whenStopped_ = std::move(whenDone);
  listener_.close();
  if (webListener_) webListener_->close();
  if (spectatorListener_) spectatorListener_->close();
  waitingRoom_.close();
  for (const auto& publisher : publishers_) publisher->signOff();
  if (sidecar_) sidecar_->finish();
  rounds_.end(now());
  arena_.tellAll("The server is shutting down.");
  for (const auto& [client, guest] : guests_) guest.connection->hangUp();
  timer_.expires_after(Connection::goodbyeTime);
  timer_.async_wait([this](error_code error) {
    if (!error) closeAll();
  });
  if (guests_.empty()) finishStop();
}

void GameServer::drain(std::chrono::seconds time, std::function<void()> whenDone) {
  if (stopped_) return;
  whenStopped_ = std::move(whenDone);
  drainsUntil_ = Clock::now() + time;
  for (const auto& publisher : publishers_) publisher->signOff();
  arena_.tellAll("The server stops when this round is over.");
}

bool GameServer::isDrained() const {
  return drainsUntil_ && (people() == 0 || !arena_.isRoundRunning() || Clock::now() >= *drainsUntil_);
}

Outcome GameServer::mayEnter(ClientId client) {
  if (drainsUntil_) return Outcome::refused("The server is about to stop. Try another one.");
  return moderation_.mayEnter(network(client));
}

void GameServer::closeAll() {
  for (const auto& [client, guest] : guests_) guest.connection->close("the server is shutting down");
}

void GameServer::finishStop() {
  timer_.cancel();
  if (const auto whenDone = std::exchange(whenStopped_, {})) whenDone();
}

void GameServer::send(ClientId client, const std::string& frame) {
  if (isBot(client)) return bots_.hear(client, frame, now());
  if (client == observerClient) return rounds_.add(frame, now());
  const auto found = guests_.find(client);
  if (found == guests_.end()) return;
  const Guest& guest = found->second;
  figures_.addSent(frame);
  // A spectator gets the frames of a tick together, so that players hardly wait for the sending.
  if (guest.role == Role::spectator) return guest.connection->queue(frame);
  guest.connection->send(frame);
}

void GameServer::hangUp(ClientId client) {
  if (isBot(client)) return bots_.hangUp(client);
  if (const auto found = guests_.find(client); found != guests_.end()) found->second.connection->hangUp();
}

void GameServer::beginGame(ClientId client) {
  Guest& guest = guests_.at(client);
  if (guest.network.empty() && !admit(guest, guest.address)) {
    refuse(networkOf(guest.address));
    return guest.connection->close("too many connections");
  }
  guest.isPlaying = true;
  log_("client " + std::to_string(client) + " connected from " + guest.address.to_string());
  arena_.connected(client, at(guest.connection->opened()), guest.role);  // the time without a first byte counts
}

void GameServer::received(ClientId client, std::string_view text) {
  const auto begin = Clock::now();
  const std::size_t id = figures_.addReceived(text);
  arena_.received(client, text, at(begin));
  for (const auto& [from, line] : std::exchange(commands_, {})) moderation_.run(from, line, at(begin));
  if (id == wire::msgPositionReport && guests_.at(client).role == Role::player)
    figures_.relays.add(Clock::now() - begin);
}

NameVerdict GameServer::nameVerdict(ClientId client, const std::string& name, const std::string& password) {
  // A password costs a hash, and may be guessed.
  const bool isAttempt = records_.isKept() && !password.empty() && !records_.hasAsked(client);
  if (isAttempt && !nameLogins_.allows(network(client), now())) {
    return {.outcome = Outcome::refused("Too many passwords from your network. Try again in a minute.")};
  }
  return records_.verdict(client, name, password);
}

std::string GameServer::network(ClientId client) const {
  const auto found = guests_.find(client);
  return found == guests_.end() ? std::string() : found->second.network;
}

bool GameServer::runAside(std::function<void()> work, std::function<void()> finish) {
  return worker_.post([this, work = std::move(work), finish = std::move(finish)] {
    work();
    asio::post(context_, finish);
  });
}

void GameServer::closed(ClientId client, const std::string& reason) {
  const auto gone = guests_.extract(client);
  const Guest& guest = gone.mapped();
  if (!guest.network.empty()) door_.left(guest.network);
  ++figures_.closed[reason];
  if (guest.isPlaying) {
    log_("client " + std::to_string(client) + " disconnected: " + reason);
    arena_.disconnected(client);
    moderation_.left(client);
    records_.left(client);
    publish();
  }
  if (stopped_ && guests_.empty()) finishStop();
}

void GameServer::tickMore() {
  timer_.expires_after(tickInterval);
  timer_.async_wait([this](error_code error) {
    if (error || stopped_) return;
    const auto time = Clock::now();
    figures_.waits.add(time - timer_.expiry());
    arena_.tick(at(time));
    bots_.tick(at(time));
    moderation_.tick(at(time));
    rounds_.tick(at(time), [this] { return people() > 0; });
    if (isDrained()) return stop(std::move(whenStopped_));
    publish();
    const auto stop = stallWatch_.stoppedFor(time);
    for (const auto& [client, guest] : guests_) {
      guest.connection->extendDeadline(stop);
      guest.connection->closeIfOverdue(time);
      if (guest.role == Role::spectator) guest.connection->flush();
    }
    waitingRoom_.letIn(
        time, [this](Newcomer& newcomer) { return enter(newcomer); },
        [this](const std::string& network) { refuse(network); });
    listener_.resume();
    if (webListener_) webListener_->resume();
    if (spectatorListener_) spectatorListener_->resume();
    figures_.ticks.add(Clock::now() - time);
    tickMore();
  });
}

std::size_t GameServer::people() const {
  const auto players = arena_.players(now());
  return static_cast<std::size_t>(
      std::ranges::count_if(players, [](const PlayerView& player) { return !isBot(player.client); }));
}

std::unique_ptr<Sidecar> GameServer::startSidecar() {
  if (!options_.agonesPort) return nullptr;
  const auto onPlace = [this](const Place& place) {
    asio::post(context_, [this, place] {
      place_ = place;
      log_("players reach this server at " + place.address + ", port " + std::to_string(place.port));
    });
  };
  return std::make_unique<Sidecar>(*options_.agonesPort, versionText(),
                                   Sidecar::Handlers{.log = logFromAside(context_, log_), .onPlace = onPlace});
}

void GameServer::watches(ClientId client) {
  rounds_.show([this, client](const std::string& frame) { send(client, frame); });
}

HostEntry GameServer::hostEntry() const {
  const Place place = place_.value_or(Place{"", port()});
  return {.address = options_.publicAddress.empty() ? place.address : options_.publicAddress,
          .port = place.port,
          .passwordRequired = !options_.password.empty(),
          .notes = options_.notes,
          .players = people(),
          .maxPlayers = Arena::colourCount,
          .mayWatch = options_.rules.spectators > 0};
}

void GameServer::publish() {
  if (stopped_) return;
  if (sidecar_) sidecar_->update(people());
  if (drainsUntil_ || (sidecar_ && !place_)) return;
  // Without an address, the list uses the one from which the announcement comes.
  for (const auto& publisher : publishers_) publisher->publish(hostEntry());
}

Millis GameServer::at(Clock::time_point time) const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time - start_).count();
}

}  // namespace kelvora::server
