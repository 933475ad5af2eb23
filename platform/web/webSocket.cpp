#include "platform/web/webSocket.h"

#include <string>
#include <utility>

#include "platform/web/page.h"
#include "platform/windowing/faultReport.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

void runEvent(const std::function<void()>& event) {
  if (event) runHandler([handler = event] { handler(); });
}

}  // namespace

WebSocketPeer::~WebSocketPeer() { page_closeSocket(id()); }

void WebSocketPeer::connect(const std::string& host, int port) {
  constexpr int maxPort = 65535;
  if (port < 1 || port > maxPort) {
    state_ = sckError;
    return;
  }
  state_ = sckConnecting;
  page_openSocket(id(), host.data(), host.size(), port);
}

void WebSocketPeer::close() {
  page_closeSocket(id());
  arrived_.clear();
  state_ = sckClosed;
}

void WebSocketPeer::send(std::string_view data) { page_send(id(), data.data(), data.size()); }

std::string WebSocketPeer::take() { return std::exchange(arrived_, {}); }

void WebSocketPeer::take(const PageEvent& event) {
  switch (event.kind) {
    case PageEventKind::SocketOpened:
      state_ = sckConnected;
      return runEvent(owner_.onConnect);
    case PageEventKind::SocketData:
      arrived_ += event.bytes;
      noteForReport("bytes that came from " + owner_.RemoteHost + ":" + std::to_string(owner_.RemotePort));
      return runEvent(owner_.onDataArrival);
    case PageEventKind::SocketClosed:
      state_ = sckClosing;
      return runEvent(owner_.onClose);
    case PageEventKind::SocketFailed:
      arrived_.clear();
      state_ = sckError;
      return;
    default:
      return;
  }
}

}  // namespace kelvora
