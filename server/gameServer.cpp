#include "server/gameServer.h"

#include <random>
#include <sstream>
#include <utility>
#include <vector>

namespace kelvora::server {

namespace {

constexpr auto tickInterval = std::chrono::milliseconds(100);
constexpr Millis goodbyeTime = 2'000;  // for a client to take the last words

asio::ip::tcp::endpoint resolve(asio::io_context& context, const Options& options) {
  asio::ip::tcp::resolver resolver(context);
  return resolver.resolve(options.address, std::to_string(options.port)).begin()->endpoint();
}

}  // namespace

GameServer::GameServer(asio::io_context& context, const Options& options, std::function<void(const std::string&)> log)
    : log_(std::move(log)),
      acceptor_(context, resolve(context, options)),
      timer_(context),
      arena_(*this, versionText(), options.password, std::random_device{}()) {
  acceptMore();
  tickMore();
}

std::string GameServer::endpointText() const {
  std::ostringstream text;
  text << acceptor_.local_endpoint();
  return text.str();
}

void GameServer::stop() {
  stopped_ = true;
  asio::error_code ignored;
  acceptor_.close(ignored);
  timer_.cancel();
  for (const auto& [client, connection] : connections_) connection->close("the server ends");
}

void GameServer::send(ClientId client, const std::string& frame) {
  if (const auto found = connections_.find(client); found != connections_.end()) found->second->send(frame);
}

void GameServer::hangUp(ClientId client) {
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
  if (connections_.size() >= mostConnections) return;  // the socket closes with this scope
  const ClientId client = ++lastClient_;
  const Connection::Handlers handlers{
      .onFrame = [this](ClientId from, std::string_view text) { arena_.received(from, text, now()); },
      .onClosed =
          [this](ClientId gone, const std::string& reason) {
            connections_.erase(gone);
            hungUp_.erase(gone);
            log_("client " + std::to_string(gone) + " closed: " + reason);
            arena_.disconnected(gone);
          }};
  const auto connection = std::make_shared<Connection>(std::move(socket), client, handlers);
  connections_.emplace(client, connection);
  arena_.connected(client, now());
  connection->start();
}

void GameServer::tickMore() {
  timer_.expires_after(tickInterval);
  timer_.async_wait([this](asio::error_code error) {
    if (error || stopped_) return;
    arena_.tick(now());
    for (const auto& [client, since] : hungUp_) {
      if (now() - since >= goodbyeTime) connections_.at(client)->close("hung up on");
    }
    if (!std::exchange(isAccepting_, true)) acceptMore();
    tickMore();
  });
}

Millis GameServer::now() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start_).count();
}

}  // namespace kelvora::server
