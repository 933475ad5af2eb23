// Admission of connections.

#include <algorithm>
#include <utility>

#include "server/moderation/network.h"
#include "server/net/gameServer.h"

namespace kelvora::server {

void GameServer::welcome(Socket socket, Role role) {
  error_code error;
  const auto peer = socket.remote_endpoint(error);
  if (error) return;  // already gone; leaving this scope closes the socket
  const auto address = unmapped(peer.address());
  Newcomer newcomer{.socket = std::move(socket),
                    .address = address,
                    .network = networkOf(address),
                    .role = role,
                    .since = Clock::now()};
  // Nobody without a limit waits behind those of the same network who have one.
  const bool mayPass = address == trustedProxy_ || unlimitedFor_.has(address);
  if ((mayPass || !waitingRoom_.has(newcomer.network)) && enter(newcomer)) return;
  if (!waitingRoom_.add(newcomer)) refuse(newcomer.network);
}

bool GameServer::enter(Newcomer& newcomer) {
  Guest guest{.connection = nullptr,
              .address = newcomer.address,
              .network = {},
              .role = rounds_.isReplay() ? Role::spectator : newcomer.role};
  guest.isForwarded = guest.address == trustedProxy_;
  guest.isDirect = !guest.isForwarded;
  if (!guest.isForwarded && !admit(guest, guest.address)) return false;
  if (!makeRoom()) {
    door_.left(guest.network);
    ++figures_.refusedWhenFull;
    log_("refused " + guest.address.to_string() + ": the server is full");
    return true;
  }
  const ClientId client = ++lastClient_;
  Connection::Handlers handlers{
      .onGame = [this](ClientId from) { beginGame(from); },
      .onFrame = [this](ClientId from, std::string_view text) { received(from, text); },
      .onRequest = [this](ClientId from, const HttpRequest& request) { return countedAnswer(from, request); },
      .onClosed = [this](ClientId gone, const std::string& reason) { closed(gone, reason); }};
  if (guest.isForwarded) {
    handlers.onForwarded = [this](ClientId from, const asio::ip::address& address) { forwarded(from, address); };
  }
  guest.connection = std::make_shared<Connection>(std::move(newcomer.socket), client, std::move(handlers));
  guests_.emplace(client, guest);
  guest.connection->start();
  return true;
}

void GameServer::refuse(const std::string& network) {
  ++figures_.refusedOfAddress;
  log_("refused " + network + ": too many connections");
}

bool GameServer::admit(Guest& guest, const asio::ip::address& address, bool isNew) {
  const std::string network = networkOf(address);
  const bool isIn = network == guest.network;
  const bool isLimited = !unlimitedFor_.has(address);
  if (!isIn && !guest.network.empty()) door_.left(std::exchange(guest.network, {}));
  const auto isKept = [&](const auto& entry) {
    return entry.second.network == network && entry.second.connection->isKept();
  };
  const bool isFull = !isIn && isLimited && !door_.hasPlace(network);
  const auto leaver = isFull ? std::ranges::find_if(guests_, isKept) : guests_.end();
  const bool takesOver = isIn || leaver != guests_.end();
  if (!door_.admit(network, now(), {.isNew = isNew, .isLimited = isLimited, .takesOver = takesOver})) return false;
  if (leaver != guests_.end()) {
    leaver->second.network.clear();
    leaver->second.connection->close("made room for a newcomer");
  }
  guest.address = unmapped(address);
  guest.network = network;
  return true;
}

void GameServer::forwarded(ClientId client, const asio::ip::address& address) {
  Guest& guest = guests_.at(client);
  guest.isForwarded = false;
  if (admit(guest, address)) return;
  refuse(networkOf(address));
  guest.connection->close("too many connections");
}

bool GameServer::makeRoom() {
  const auto isOpen = [](const auto& entry) { return !entry.second.connection->isClosed(); };
  if (guests_.size() < maxConnections ||
      static_cast<std::size_t>(std::ranges::count_if(guests_, isOpen)) < maxConnections) {
    return true;
  }
  auto leaver = std::ranges::find_if(
      guests_, [&](const auto& entry) { return isOpen(entry) && entry.second.connection->isHangingUp(); });
  if (leaver == guests_.end()) {
    leaver =
        std::ranges::find_if(guests_, [&](const auto& entry) { return isOpen(entry) && !arena_.isIn(entry.first); });
  }
  if (leaver == guests_.end()) return false;
  leaver->second.connection->close("made room for a newcomer");
  return true;
}

}  // namespace kelvora::server
