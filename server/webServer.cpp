#include "server/webServer.h"

#include <microhttpd.h>
#include <sys/socket.h>

#include <map>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "server/listen.h"

namespace kelvora::server {

namespace {

struct Answer {
  unsigned int status = MHD_HTTP_OK;
  std::string body;
};

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

MHD_Result queue(MHD_Connection* connection, const Answer& answer) {
  MHD_Response* response = MHD_create_response_from_buffer(answer.body.size(), const_cast<char*>(answer.body.data()),
                                                           MHD_RESPMEM_MUST_COPY);  // copied, so not written to
  if (response == nullptr) return MHD_NO;
  MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, "text/plain");
  MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
  // A client that asked to keep the connection sends nothing more on it; the update check waits for its end.
  MHD_add_response_header(response, MHD_HTTP_HEADER_CONNECTION, "close");
  if (answer.status == MHD_HTTP_METHOD_NOT_ALLOWED)
    MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, "GET, HEAD");
  const MHD_Result result = MHD_queue_response(connection, answer.status, response);
  MHD_destroy_response(response);
  return result;
}

}  // namespace

struct WebServer::State {
  const std::string version;
  std::string endpoint;
  MHD_Daemon* daemon = nullptr;

  std::mutex mutex;  // of what follows
  HostEntry host;
  std::map<MHD_socket, Clock::time_point> connections;  // by their sockets, since when

  explicit State(std::string itsVersion) : version(std::move(itsVersion)) {}

  Answer answer(MHD_Connection* connection, std::string_view method, std::string_view target) {
    if (method != MHD_HTTP_METHOD_GET && method != MHD_HTTP_METHOD_HEAD) {
      return {MHD_HTTP_METHOD_NOT_ALLOWED, "Only GET is served here.\n"};
    }
    const std::string_view path = pathOf(target);
    if (path == "/games/kelvora/ver.txt") return {MHD_HTTP_OK, updateFile(version)};
    if (path != "/games/kelvora/gethosts.php") return {MHD_HTTP_NOT_FOUND, "There is nothing here.\n"};
    const HostQuery query = hostQuery(connection);
    const std::lock_guard lock(mutex);
    return {MHD_HTTP_OK, hostList(host, version, query)};
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

WebServer::WebServer(const std::string& address, std::uint16_t port, std::string version)
    : state_(std::make_unique<State>(std::move(version))) {
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
