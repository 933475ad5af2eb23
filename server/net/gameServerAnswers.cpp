// The server's answers to HTTP requests.

#include <optional>
#include <utility>
#include <vector>

#include "server/http/homePage.h"
#include "server/http/html.h"
#include "server/moderation/network.h"
#include "server/net/gameServer.h"
#include "server/net/origin.h"

namespace kelvora::server {

namespace {

constexpr std::string_view playPath = "/play";
constexpr std::string_view watchPath = "/watch";  // the page as well, whose WebSocket then goes here
constexpr std::string_view metricsPath = "/metrics";
constexpr std::string_view healthPath = "/healthz";
constexpr std::string_view arenaPath = "/arena";  // the small page, even if there is one to play in

/// The address that the proxy has seen itself. The proxy appends it to what its client claimed.
std::optional<asio::ip::address> forwardedAddress(const HttpRequest& request) {
  std::string text = request.forwardedFor.substr(request.forwardedFor.rfind(',') + 1);
  text.erase(0, text.find_first_not_of(' '));
  error_code error;
  const auto address = asio::ip::make_address(text, error);
  return error ? std::nullopt : std::optional(address);
}

}  // namespace

HttpAnswer GameServer::countedAnswer(ClientId client, const HttpRequest& request) {
  HttpAnswer result = answer(client, request);
  figures_.answers[result.status].add(request.isHead() ? 0 : result.body.size() + result.moreSize);
  return result;
}

HttpAnswer GameServer::answer(ClientId client, const HttpRequest& request) {
  const bool watches = options_.rules.spectators > 0 && request.path() == watchPath;
  const std::string_view path = watches ? (request.isUpgrade ? playPath : "/") : request.path();
  if (path == healthPath) return textAnswer(200, "ok\n");
  Guest& guest = guests_.at(client);
  if (guest.isForwarded) {
    const auto address = forwardedAddress(request);
    if (!address) return textAnswer(400, "The proxy names no client address.\n");
    // The proxy decides when it connects. A request counts as a new connection where a direct client would have to
    // connect.
    const bool isNew = path == playPath || ListPages::has(path);
    if (!admit(guest, *address, isNew)) {
      refuse(networkOf(*address));
      return textAnswer(429, "There are too many connections from your address.\n");
    }
  }
  if (path == playPath) {
    if (!request.isUpgrade) {
      HttpAnswer answer = textAnswer(426, "This is for the game, over WebSocket.\n");
      answer.headers.insert(answer.headers.end(), {"Upgrade: websocket", "Sec-WebSocket-Version: 13"});
      return answer;
    }
    if (isOriginAllowed(request.origin, request.host, options_.allowOrigin)) {
      guest.isForwarded = false;  // from here on the client itself speaks
      guest.isDirect = false;
      if (watches) guest.role = Role::spectator;
      return {.status = 101};
    }
    log_("refused " + guest.address.to_string() + ": a page of another origin");
    return textAnswer(403, "Pages from other sites may not play here.\n");
  }
  if (ListPages::has(path)) {
    const bool isGame = !rounds_.isReplay() && !drainsUntil_;
    list_.setOwnEntry(isGame ? std::optional(hostEntry()) : std::nullopt);
    return list_.answer(
        request,
        {.address = guest.address.to_string(), .network = guest.network, .isTrusted = unlimitedFor_.has(guest.address)},
        now());
  }
  if (request.method != "GET" && !request.isHead()) return methodNotAllowed("GET, HEAD", "Only GET is served here.\n");
  if (path == metricsPath) return metrics(guest, request);
  if (auto file = site_.answer(request, path)) return *std::move(file);
  if (path == "/" || path == arenaPath) return homePage();
  if (path == watchPath) return messagePage(404, "Nobody can watch here", "This arena has no room for spectators.");
  return messagePage(404, "Page not found", "This page does not exist.");
}

HttpAnswer GameServer::metrics(const Guest& guest, const HttpRequest& request) const {
  const bool isLocal = guest.isDirect && !request.isForwarded && guest.address.is_loopback();
  if (!isLocal && !metricsFor_.has(guest.address)) return textAnswer(403, "The figures are not for your address.\n");
  const std::size_t players = people();
  return metricsPage(figures_, {.version = versionText(),
                                .uptime = Clock::now() - start_,
                                .players = players,
                                .bots = arena_.playerCount() - players,
                                .spectators = arena_.spectators().size(),
                                .bans = moderation_.count(PenaltyKind::ban),
                                .mutes = moderation_.count(PenaltyKind::mute),
                                .connections = guests_.size()});
}

std::vector<RecordTable> GameServer::recordTables() const {
  if (!records_.isKept()) return {};
  const auto table = [](const char* title, const std::vector<Deeds>& deeds) {
    RecordTable rows{.title = title, .rows = {}};
    for (const Deeds& player : deeds) {
      rows.rows.push_back({player.name, player.captures, player.wins, player.rounds, player.seconds / 60});
    }
    return rows;
  };
  const auto& [always, lately] = records_.tables();
  return {table("Best players", always), table("Best players of the last 30 days", lately)};
}

HttpAnswer GameServer::homePage() const {
  HomePage page{.notes = options_.notes,
                .address = options_.publicAddress,
                .port = port(),
                .passwordRequired = !options_.password.empty(),
                .hasSite = site_.hasPage(),
                .spectatorPort = spectatorListener_ ? spectatorListener_->port() : std::uint16_t{0},
                .players = {},
                .bots = {},
                .records = recordTables(),
                .maxPlayers = Arena::colourCount};
  for (const PlayerView& player : arena_.players(now())) {
    (isBot(player.client) ? page.bots : page.players).push_back(player.name);
  }
  return homePageAnswer(page);
}

}  // namespace kelvora::server
