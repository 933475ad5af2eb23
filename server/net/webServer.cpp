#include "server/net/webServer.h"

#include <microhttpd.h>
#include <sys/socket.h>

#include <asio/ip/tcp.hpp>
#include <cstring>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "server/lists/announcement.h"
#include "server/lists/hostRegistry.h"
#include "server/net/door.h"
#include "server/net/listen.h"

namespace kelvora::server {

namespace {

struct Answer {
  unsigned int status = MHD_HTTP_OK;
  std::string body;
  const char* methods = "GET, HEAD";  ///< that are allowed, if this one was not
};

constexpr std::string_view bearer = "Bearer ";

/// A value of the query; empty if it is not there.
std::string argument(MHD_Connection* connection, std::string_view name) {
  const char* value = nullptr;
  std::size_t size = 0;
  MHD_lookup_connection_value_n(connection, MHD_GET_ARGUMENT_KIND, name.data(), name.size(), &value, &size);
  return value == nullptr ? std::string() : std::string(value, size);
}

HostQuery hostQuery(MHD_Connection* connection) {
  return {.version = argument(connection, "version"),
          .withPassword = argument(connection, "password") != "0",
          .withFull = argument(connection, "full") != "0",
          .withEmpty = argument(connection, "empty") != "0"};
}

std::string authorization(MHD_Connection* connection) {
  const char* value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_AUTHORIZATION);
  return value == nullptr ? std::string() : std::string(value);
}

/// In a time that does not tell where they differ.
bool isSame(std::string_view one, std::string_view other) {
  if (one.size() != other.size()) return false;
  int difference = 0;
  for (std::size_t i = 0; i < one.size(); ++i) difference |= one[i] ^ other[i];
  return difference == 0;
}

asio::ip::address peerOf(MHD_Connection* connection) {
  const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
  if (info == nullptr || info->client_addr == nullptr) return {};
  asio::ip::tcp::endpoint peer;
  const bool isV6 = info->client_addr->sa_family == AF_INET6;
  std::memcpy(peer.data(), info->client_addr, isV6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in));
  return peer.address();
}

/// An IPv4 address in IPv6 clothes as the IPv4 address, and no interface behind the address.
std::string addressText(const asio::ip::address& address) {
  if (address.is_v4()) return address.to_string();
  const asio::ip::address_v6 bare(address.to_v6().to_bytes());
  return bare.is_v4_mapped() ? asio::ip::make_address_v4(asio::ip::v4_mapped, bare).to_string() : bare.to_string();
}

Answer answerOf(HostRegistry::Answer answer) {
  switch (answer) {
    case HostRegistry::Answer::anothers:
      return {MHD_HTTP_CONFLICT, "That address and port have been published by another host.\n"};
    case HostRegistry::Answer::tooManyOfNetwork:
      return {MHD_HTTP_TOO_MANY_REQUESTS, "Too many servers have been published from your address.\n"};
    case HostRegistry::Answer::full:
      return {MHD_HTTP_SERVICE_UNAVAILABLE, "The list is full.\n"};
    default:
      return {MHD_HTTP_OK, "Done.\n"};
  }
}

Millis millis(WebServer::Clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

MHD_Result queue(MHD_Connection* connection, const Answer& answer) {
  MHD_Response* response = MHD_create_response_from_buffer(answer.body.size(), const_cast<char*>(answer.body.data()),
                                                           MHD_RESPMEM_MUST_COPY);  // copied, so not written to
  if (response == nullptr) return MHD_NO;
  MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, "text/plain");
  MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
  // A client that asked to keep the connection sends nothing more on it; the update check waits for its end.
  MHD_add_response_header(response, MHD_HTTP_HEADER_CONNECTION, "close");
  if (answer.status == MHD_HTTP_METHOD_NOT_ALLOWED)
    MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, answer.methods);
  const MHD_Result result = MHD_queue_response(connection, answer.status, response);
  MHD_destroy_response(response);
  return result;
}

}  // namespace

struct WebServer::State {
  const std::string version;
  const std::string key;
  std::string endpoint;
  MHD_Daemon* daemon = nullptr;

  std::mutex mutex;  // of what follows
  HostEntry host;
  HostRegistry registry;
  std::map<MHD_socket, Clock::time_point> connections;  // by their sockets, since when

  State(std::string itsVersion, std::string itsKey) : version(std::move(itsVersion)), key(std::move(itsKey)) {}

  Answer announce(MHD_Connection* connection, bool isGoodbye) {
    if (!key.empty() && !isSame(authorization(connection), std::string(bearer) + key)) {
      return {MHD_HTTP_FORBIDDEN, "This list asks for its key.\n"};
    }
    Announcement announcement;
    const Outcome outcome =
        readAnnouncement([connection](std::string_view name) { return argument(connection, name); }, announcement);
    if (outcome.isRefused()) {
      return {MHD_HTTP_BAD_REQUEST, "This is not fit for the list: " + outcome.reason() + "\n"};
    }
    const asio::ip::address peer = peerOf(connection);
    if (announcement.host.address.empty()) announcement.host.address = addressText(peer);
    const Millis now = millis(Clock::now());
    const std::lock_guard lock(mutex);
    return answerOf(isGoodbye ? registry.withdraw(networkOf(peer), announcement.host, now)
                              : registry.announce(networkOf(peer), announcement, now, !key.empty()));
  }

  Answer answer(MHD_Connection* connection, std::string_view method, std::string_view target) {
    if (pathOf(target) == publishPath) {
      if (method == MHD_HTTP_METHOD_POST) return announce(connection, false);
      if (method == MHD_HTTP_METHOD_DELETE) return announce(connection, true);
      return {MHD_HTTP_METHOD_NOT_ALLOWED, "Servers publish themselves here.\n", "POST, DELETE"};
    }
    if (method != MHD_HTTP_METHOD_GET && method != MHD_HTTP_METHOD_HEAD) {
      return {MHD_HTTP_METHOD_NOT_ALLOWED, "Only GET is served here.\n"};
    }
    const std::string_view path = pathOf(target);
    if (path == "/games/kelvora/ver.txt") return {MHD_HTTP_OK, updateFile(version)};
    if (path != "/games/kelvora/gethosts.php") return {MHD_HTTP_NOT_FOUND, "There is nothing here.\n"};
    const HostQuery query = hostQuery(connection);
    const std::lock_guard lock(mutex);
    return {MHD_HTTP_OK, hostList(host, version, query, registry.records(query, millis(Clock::now())))};
  }

  // The two calls from the daemon's thread.

  static MHD_Result onRequest(void* state, MHD_Connection* connection, const char* target, const char* method,
                              const char* /*httpVersion*/, const char* /*upload*/, std::size_t* /*uploadSize*/,
                              void** /*request*/) {
    return queue(connection, static_cast<State*>(state)->answer(connection, method, target));
  }

  static void onConnection(void* state, MHD_Connection* connection, void** /*socket*/,
                           MHD_ConnectionNotificationCode what) {
    const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
    if (info == nullptr) return;
    auto& self = *static_cast<State*>(state);
    const std::lock_guard lock(self.mutex);
    if (what == MHD_CONNECTION_NOTIFY_STARTED) {
      self.connections[info->connect_fd] = Clock::now();
    } else {
      self.connections.erase(info->connect_fd);
    }
  }
};

WebServer::WebServer(const std::string& address, std::uint16_t port, std::string version, std::string key)
    : state_(std::make_unique<State>(std::move(version), std::move(key))) {
  asio::io_context context;
  asio::ip::tcp::acceptor acceptor = listenOn(context, address, port);
  acceptor.native_non_blocking(true);
  state_->endpoint = kelvora::server::endpointText(acceptor);
  // Polled, and with a signal to end: with epoll, the library's own choice, clients that hang up within a request hold
  // their places for good, and once all places are taken the daemon does not end either.
  constexpr unsigned int flags = MHD_USE_POLL_INTERNAL_THREAD | MHD_USE_ITC;
  state_->daemon = MHD_start_daemon(flags, 0, nullptr, nullptr, &State::onRequest, state_.get(),
                                    MHD_OPTION_LISTEN_SOCKET, acceptor.release(),                      //
                                    MHD_OPTION_CONNECTION_LIMIT, mostConnections,                      //
                                    MHD_OPTION_CONNECTION_MEMORY_LIMIT, longestRequest,                //
                                    MHD_OPTION_NOTIFY_CONNECTION, &State::onConnection, state_.get(),  //
                                    MHD_OPTION_END);
  if (state_->daemon == nullptr) throw std::runtime_error("the web server does not start");
}

WebServer::~WebServer() { MHD_stop_daemon(state_->daemon); }

const std::string& WebServer::endpointText() const { return state_->endpoint; }

void WebServer::publish(HostEntry host) {
  const std::lock_guard lock(state_->mutex);
  state_->host = std::move(host);
}

void WebServer::dropOverdue(Clock::time_point now) {
  // The daemon tells of a connection's end before it closes the socket, so that these sockets are all still its.
  const std::lock_guard lock(state_->mutex);
  for (const auto& [socket, since] : state_->connections) {
    if (now - since >= timeLimit) ::shutdown(socket, SHUT_RDWR);
  }
}

}  // namespace kelvora::server
