#include <winsock2.h>
// First.
#include <windows.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "base/codePage.h"
#include "platform/sockets/networkSignal.h"
#include "platform/sockets/wire.h"

namespace kelvora {

namespace {

/// Also starts the system's sockets.
HANDLE createSignal() {
  WSADATA ignored{};
  constexpr WORD version = 0x0202;
  WSAStartup(version, &ignored);
  return CreateEventW(nullptr, FALSE, FALSE, nullptr);
}

HANDLE signalEvent() {
  static const HANDLE event = createSignal();
  return event;
}

/// The system counts bytes in an `int`.
int atMost(std::size_t bytes) {
  return static_cast<int>(std::min<std::size_t>(bytes, std::numeric_limits<int>::max()));
}

std::wstring wideHost(const std::string& host) {
  std::wstring wide;
  for (const char byte : host) wide += static_cast<wchar_t>(toUnicode(static_cast<unsigned char>(byte)));
  return wide;
}

void CALLBACK runParcel(PTP_CALLBACK_INSTANCE, void* parcel) {
  const std::unique_ptr<std::function<void()>> work(static_cast<std::function<void()>*>(parcel));
  (*work)();
}

}  // namespace

std::intptr_t networkSignal() { return reinterpret_cast<std::intptr_t>(signalEvent()); }

void signalNetwork() { SetEvent(signalEvent()); }

void clearNetworkSignal() { ResetEvent(signalEvent()); }

std::vector<HostAddress> findAddresses(const std::string& host, int port, HostKind kind) {
  signalEvent();
  ADDRINFOW wanted{};
  wanted.ai_family = AF_UNSPEC;
  wanted.ai_socktype = SOCK_STREAM;
  wanted.ai_flags = kind == HostKind::Numeric ? AI_NUMERICHOST : 0;
  ADDRINFOW* list = nullptr;
  if (GetAddrInfoW(wideHost(host).c_str(), std::to_wstring(port).c_str(), &wanted, &list) != 0) return {};
  std::vector<HostAddress> found = copyAddresses(list);
  FreeAddrInfoW(list);
  return found;
}

// Debian's std::thread sometimes starts without its function if it is detached at once.
bool runOnThread(std::function<void()> work) {
  auto parcel = std::make_unique<std::function<void()>>(std::move(work));
  if (TrySubmitThreadpoolCallback(runParcel, parcel.get(), nullptr) == FALSE) return false;
  // The callback deletes it.
  static_cast<void>(parcel.release());
  return true;
}

bool Wire::connect(const HostAddress& address) {
  close();
  const SOCKET socket = ::socket(address.family, SOCK_STREAM, IPPROTO_TCP);
  if (socket == INVALID_SOCKET) return false;
  socket_ = static_cast<std::intptr_t>(socket);
  const BOOL isImmediate = TRUE;
  setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&isImmediate), sizeof isImmediate);
  // From here on, the socket doesn't block.
  if (WSAEventSelect(socket, signalEvent(), FD_CONNECT | FD_READ | FD_WRITE | FD_CLOSE) != 0) return false;
  const auto* target = reinterpret_cast<const sockaddr*>(address.bytes.data());
  return ::connect(socket, target, static_cast<int>(address.size)) == 0 || WSAGetLastError() == WSAEWOULDBLOCK;
}

Wire::Step Wire::connecting() {
  WSANETWORKEVENTS events{};
  if (WSAEnumNetworkEvents(static_cast<SOCKET>(socket_), nullptr, &events) != 0) {
    return isConnected_ ? Step::Done : Step::Broken;
  }
  if ((events.lNetworkEvents & FD_CONNECT) != 0) {
    if (events.iErrorCode[FD_CONNECT_BIT] != 0) return Step::Broken;
    isConnected_ = true;
  }
  return isConnected_ ? Step::Done : Step::NotYet;
}

Wire::Received Wire::receive(std::span<char> buffer) const {
  const int count = recv(static_cast<SOCKET>(socket_), buffer.data(), atMost(buffer.size()), 0);
  if (count > 0) return {Step::Done, static_cast<std::size_t>(count)};
  const int error = count == 0 ? WSAECONNRESET : WSAGetLastError();
  if (error == WSAECONNRESET || error == WSAECONNABORTED) return {Step::Closed};
  return {error == WSAEWOULDBLOCK ? Step::NotYet : Step::Broken};
}

std::size_t Wire::send(std::string_view bytes) const {
  const int count = ::send(static_cast<SOCKET>(socket_), bytes.data(), atMost(bytes.size()), 0);
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void Wire::close() {
  if (isOpen()) closesocket(static_cast<SOCKET>(socket_));
  socket_ = none;
  isConnected_ = false;
}

}  // namespace kelvora
