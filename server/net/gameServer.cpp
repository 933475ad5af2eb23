#include "server/net/gameServer.h"

#include <algorithm>
#include <asio/post.hpp>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "network/wire/wireFormat.h"
#include "server/net/listen.h"

namespace kelvora::server {

namespace {

constexpr auto tickInterval = std::chrono::milliseconds(40);
constexpr Millis goodbyeTime = 2'000;  // for a client to take the last words

std::unique_ptr<WebServer> startWeb(const Options& options) {
  if (!options.webPort) return nullptr;
  const std::string& address = options.webAddress.empty() ? options.address : options.webAddress;
  return std::make_unique<WebServer>(address, *options.webPort, versionText(), options.listKey);
}

/// Its words go to the log on the context's thread.
std::unique_ptr<Publisher> startPublisher(asio::io_context& context, const Options& options,
                                          const std::function<void(const std::string&)>& log) {
  if (options.publishUrl.empty()) return nullptr;
  return std::make_unique<Publisher>(
      options.publishUrl, options.publishKey, versionText(),
      [&context, log](const std::string& line) { asio::post(context, [log, line] { log(line); }); });
}

}  // namespace

GameServer::GameServer(asio::io_context& context, const Options& options, std::function<void(const std::string&)> log)
    : options_(options),
      log_(std::move(log)),
      acceptor_(listenOn(context, options.address, options.port)),
      timer_(context),
      arena_(*this, versionText(), options.password, std::random_device{}(), options.rules),
      bots_(arena_, options.bots, options.password, versionText(), std::random_device{}()),
      web_(startWeb(options)),
      publisher_(startPublisher(context, options, log_)) {
  publish();
  acceptMore();
  tickMore();
}

std::string GameServer::endpointText() const { return kelvora::server::endpointText(acceptor_); }

void GameServer::stop(std::function<void()> whenDone) {
  if (std::exchange(stopped_, true)) return closeAll();
  whenStopped_ = std::move(whenDone);
  asio::error_code ignored;
  acceptor_.close(ignored);
  web_.reset();
  if (publisher_) publisher_->signOff();
  const std::string goodbye = wire::buildFrame(wire::msgServerText, {"The server is shutting down."});
  for (const PlayerView& player : arena_.players(now())) send(player.client, goodbye);
  for (const auto& [client, connection] : connections_) connection->hangUp();
  timer_.expires_after(std::chrono::milliseconds(goodbyeTime));
  timer_.async_wait([this](asio::error_code error) {
    if (!error) closeAll();
  });
  if (connections_.empty()) finishStop();
}

void GameServer::closeAll() {
  for (const auto& [client, connection] : connections_) connection->close("the server ends");
}

void GameServer::finishStop() {
  timer_.cancel();
  if (const auto whenDone = std::exchange(whenStopped_, {})) whenDone();
}

void GameServer::send(ClientId client, const std::string& frame) {
  if (isBot(client)) return bots_.hear(client, frame, now());
  if (const auto found = connections_.find(client); found != connections_.end()) found->second->send(frame);
}

void GameServer::hangUp(ClientId client) {
  if (isBot(client)) return bots_.hangUp(client);
  const auto found = connections_.find(client);
  if (found == connections_.end()) return;
  found->second->hangUp();
  hungUp_.emplace(client, now());
}

void GameServer::acceptMore() {
  acceptor_.async_accept([this](asio::error_code error, asio::ip::tcp::socket socket) {
    if (stopped_) return;
    if (!error) welcome(std::move(socket));
    if (!error || error == asio::error::connection_aborted) return acceptMore();
    // Out of descriptors, most likely: with every try at once the loop would do nothing else. The next tick tries
    // again.
    log_("cannot accept: " + error.message());
    isAccepting_ = false;
  });
}

void GameServer::welcome(asio::ip::tcp::socket socket) {
  asio::error_code error;
  const auto peer = socket.remote_endpoint(error);
  if (error) return;  // gone already; the socket closes with this scope
  const std::string network = networkOf(peer.address());
  if (!door_.admits(network, now())) return log_("turned away " + network + ": too many connections");
  if (connections_.size() >= mostConnections && !makeRoom()) {
    door_.left(network);
    return log_("turned away " + network + ": no room");
  }
  const ClientId client = ++lastClient_;
  const Connection::Handlers handlers{
      .onFrame =
          [this](ClientId from, std::string_view text) {
            arena_.received(from, text, now());
            publish();
          },
      .onClosed = [this, network](ClientId gone, const std::string& reason) { closed(gone, network, reason); }};
  const auto connection = std::make_shared<Connection>(std::move(socket), client, handlers);
  connections_.emplace(client, connection);
  log_("client " + std::to_string(client) + " comes from " + peer.address().to_string());
  arena_.connected(client, now());
  connection->start();
}

void GameServer::closed(ClientId client, const std::string& network, const std::string& reason) {
  connections_.erase(client);
  hungUp_.erase(client);
  door_.left(network);
  log_("client " + std::to_string(client) + " closed: " + reason);
  arena_.disconnected(client);
  publish();
  if (stopped_ && connections_.empty()) finishStop();
}

bool GameServer::makeRoom() {
  std::set<ClientId> players;
  for (const PlayerView& player : arena_.players(now())) players.insert(player.client);
  const auto oldest =
      std::ranges::find_if(connections_, [&](const auto& entry) { return !players.contains(entry.first); });
  if (oldest == connections_.end()) return false;
  oldest->second->close("makes room");
  return true;
}

void GameServer::tickMore() {
  timer_.expires_after(tickInterval);
  timer_.async_wait([this](asio::error_code error) {
    if (error || stopped_) return;
    arena_.tick(now());
    bots_.tick(now());
    publish();  // a login may have waited for a bot to go
    if (web_) web_->dropOverdue(WebServer::Clock::now());
    const auto quietSince = Connection::Clock::now() - longestSilence;
    const auto stop = stallWatch_.stop(Connection::Clock::now());
    for (const auto& [client, connection] : connections_) {
      connection->excuse(stop);
      if (connection->lastHeard() < quietSince) connection->close("silent for too long");
    }
    for (const auto& [client, since] : hungUp_) {
      if (now() - since >= goodbyeTime) connections_.at(client)->close("hung up on");
    }
    if (!std::exchange(isAccepting_, true)) acceptMore();
    tickMore();
  });
}

void GameServer::publish() {
  if ((!web_ && !publisher_) || stopped_) return;
  const auto players = arena_.players(now());
  const auto isPerson = [](const PlayerView& player) { return !isBot(player.client); };
  const auto people = static_cast<std::size_t>(std::ranges::count_if(players, isPerson));
  if (publishedPlayers_ == people) return;
  publishedPlayers_ = people;
  HostEntry host{.address = options_.publicAddress,
                 .port = port(),
                 .passwordRequired = !options_.password.empty(),
                 .notes = options_.notes,
                 .players = *publishedPlayers_,
                 .maxPlayers = Arena::colourCount};
  if (publisher_) publisher_->publish(host);  // without an address it is the one that the list sees it come from
  if (host.address.empty()) host.address = options_.address;
  if (web_) web_->publish(std::move(host));
}

Millis GameServer::now() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start_).count();
}

}  // namespace kelvora::server
