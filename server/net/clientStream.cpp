#include "server/net/clientStream.h"

#include <boost/asio/write.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/websocket/stream.hpp>
#include <utility>
#include <variant>

#include "base/rateLimit.h"
#include "server/net/errorText.h"
#include "server/net/pacedSocket.h"

namespace kelvora::server {

namespace beast = boost::beast;

namespace {

constexpr int systemBuffer = 64 << 10;  // bytes

}  // namespace

// How the WebSocket closes the underlying connection.

void beast_close_socket(PacedSocket& socket) { socket.close(); }

template <class Handler>
void async_teardown(beast::role_type /*role*/, PacedSocket& socket, Handler&& handler) {
  socket.endSending();
  asio::post(socket.get_executor(), beast::bind_front_handler(std::forward<Handler>(handler), error_code{}));
}

using WebSocket = beast::websocket::stream<PacedSocket, false>;  // without compression

struct ClientStream::State {
  std::variant<std::monostate, PacedSocket, WebSocket> stream;  // nothing once it is closed
  RateLimit controlFrames{controlFramesPerSecond, controlFrameBurst};
  bool isFlooded = false;

  explicit State(Socket socket) : stream(std::in_place_type<PacedSocket>, std::move(socket)) {}

  PacedSocket& socket() {
    if (auto* plain = std::get_if<PacedSocket>(&stream)) return *plain;
    return std::get<WebSocket>(stream).next_layer();
  }
  WebSocket* webSocket() { return std::get_if<WebSocket>(&stream); }
};

ClientStream::ClientStream(Socket socket) {
  error_code ignored;
  socket.set_option(asio::ip::tcp::no_delay(true), ignored);
  // Limits what the system buffers for a client that doesn't read, or doesn't stop sending.
  socket.set_option(asio::socket_base::send_buffer_size(systemBuffer), ignored);
  socket.set_option(asio::socket_base::receive_buffer_size(systemBuffer), ignored);
  state_ = std::make_shared<State>(std::move(socket));
}

ClientStream::~ClientStream() = default;

Socket::executor_type ClientStream::executor() { return state_->socket().get_executor(); }

bool ClientStream::isWebSocket() const { return state_->webSocket() != nullptr; }

std::string ClientStream::reasonOf(error_code error) const {
  // The flood's end makes other operations fail first.
  if (state_->isFlooded) return "sent too many control frames";
  if (error == asio::error::eof || error == beast::websocket::error::closed) return "closed by the client";
  const bool isBroken = error.category() == error_code(beast::websocket::error::closed).category();
  return isBroken ? "sent invalid data" : errorText(error);
}

void ClientStream::readSome(asio::mutable_buffer buffer, std::shared_ptr<User> user) {
  WebSocket* const webSocket = state_->webSocket();
  if (webSocket == nullptr) {
    return state_->socket().async_read_some(
        buffer, [user = std::move(user)](error_code error, std::size_t size) { user->arrived(error, size); });
  }
  webSocket->async_read_some(buffer, [this, user = std::move(user)](error_code error, std::size_t size) {
    const WebSocket* const open = state_->webSocket();
    const bool isRefused = state_->isFlooded || (open != nullptr && open->got_text());
    if (!error && isRefused) error = beast::websocket::error::bad_opcode;
    user->arrived(error, size);
  });
}

void ClientStream::write(asio::const_buffer buffer, std::shared_ptr<User> user) {
  auto handler = [user = std::move(user)](error_code error, std::size_t) { user->written(error); };
  if (WebSocket* const webSocket = state_->webSocket()) return webSocket->async_write(buffer, std::move(handler));
  asio::async_write(state_->socket(), buffer, std::move(handler));
}

void ClientStream::upgrade(const std::string& request, std::string_view rest, std::shared_ptr<User> user) {
  beast::http::request_parser<beast::http::empty_body> parser;
  error_code error;
  parser.put(asio::buffer(request), error);
  PacedSocket socket = std::move(state_->socket());
  socket.putBack(rest);
  WebSocket& webSocket = state_->stream.emplace<WebSocket>(std::move(socket));
  webSocket.binary(true);
  webSocket.auto_fragment(false);
  webSocket.read_message_max(maxMessage);
  webSocket.set_option(beast::websocket::stream_base::decorator(
      [](beast::websocket::response_type& answer) { answer.set(beast::http::field::server, "kelvora-server"); }));
  webSocket.control_callback([state = state_.get()](beast::websocket::frame_type, beast::string_view) {
    // Under a flood of control frames the current read would never end.
    if (state->controlFrames.allows(steadyNow())) return;
    state->isFlooded = true;
    state->socket().close();
  });
  webSocket.async_accept(parser.get(), [user = std::move(user)](error_code result) { user->upgraded(result); });
}

void ClientStream::endSending(std::shared_ptr<User> user) {
  if (WebSocket* const webSocket = state_->webSocket()) {
    return webSocket->async_close(beast::websocket::close_code::normal,
                                  [user = std::move(user)](error_code) { user->ended(); });
  }
  state_->socket().endSending();
}

void ClientStream::discardUnread() { state_->socket().discardUnread(); }

void ClientStream::close() {
  state_->socket().close();
  if (!isWebSocket()) return;
  // Operations of a WebSocket can wait for each other forever. Destroying the stream cancels them, once the socket's
  // own have completed.
  asio::post(executor(), [state = state_] { state->stream.emplace<std::monostate>(); });
}

}  // namespace kelvora::server
