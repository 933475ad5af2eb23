#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <system_error>
#include <thread>
#include <utility>

#include "base/codePage.h"
#include "platform/sockets/networkSignal.h"
#include "platform/sockets/wire.h"

namespace kelvora {

namespace {

/// Watches the sockets, and a counter with which the program signals itself.
struct Watch {
  int poll = epoll_create1(EPOLL_CLOEXEC);
  int counter = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);

  Watch() { add(counter, EPOLLIN | EPOLLET); }
  bool add(int descriptor, std::uint32_t events) const {
    epoll_event event{};
    event.events = events;
    return epoll_ctl(poll, EPOLL_CTL_ADD, descriptor, &event) == 0;
  }
};

const Watch& watch() {
  static const Watch only;
  return only;
}

/// While it exists, the system takes this thread's host names for UTF-8, whatever the user's locale is.
class Utf8Names {
 public:
  Utf8Names() : locale_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
    if (locale_ != nullptr) before_ = uselocale(locale_);
  }
  ~Utf8Names() {
    if (locale_ == nullptr) return;
    uselocale(before_);
    freelocale(locale_);
  }
  Utf8Names(const Utf8Names&) = delete;
  Utf8Names& operator=(const Utf8Names&) = delete;

 private:
  locale_t locale_;
  locale_t before_ = nullptr;
};

void setOption(int socket, int option, int value) { setsockopt(socket, IPPROTO_TCP, option, &value, sizeof value); }

}  // namespace

std::intptr_t networkSignal() { return watch().poll; }

void signalNetwork() { eventfd_write(watch().counter, 1); }

void clearNetworkSignal() {
  std::array<epoll_event, 8> events;
  while (epoll_wait(watch().poll, events.data(), static_cast<int>(events.size()), 0) == std::ssize(events)) {
  }
}

std::vector<HostAddress> findAddresses(const std::string& host, int port, HostKind kind) {
  addrinfo wanted{};
  wanted.ai_family = AF_UNSPEC;
  wanted.ai_socktype = SOCK_STREAM;
  wanted.ai_flags = AI_NUMERICSERV | (kind == HostKind::Numeric ? AI_NUMERICHOST : AI_IDN);
  const Utf8Names names;
  addrinfo* list = nullptr;
  if (getaddrinfo(utf8FromCodePage(host).c_str(), std::to_string(port).c_str(), &wanted, &list) != 0) return {};
  std::vector<HostAddress> found = copyAddresses(list);
  freeaddrinfo(list);
  return found;
}

bool runOnThread(std::function<void()> work) {
  try {
    std::thread(std::move(work)).detach();
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

bool Wire::connect(const HostAddress& address) {
  close();
  const int socket = ::socket(address.family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP);
  if (socket < 0) return false;
  socket_ = socket;
  setOption(socket, TCP_NODELAY, 1);
  // An address that doesn't answer is given up after 31 s instead of two minutes. The next one may be better.
  constexpr int repetitions = 4;
  setOption(socket, TCP_SYNCNT, repetitions);
  const auto* target = reinterpret_cast<const sockaddr*>(address.bytes.data());
  if (::connect(socket, target, static_cast<socklen_t>(address.size)) != 0 && errno != EINPROGRESS) return false;
  return watch().add(socket, EPOLLIN | EPOLLOUT | EPOLLRDHUP | EPOLLET);
}

Wire::Step Wire::connecting() {
  if (isConnected_) return Step::Done;
  const auto socket = static_cast<int>(socket_);
  pollfd state{socket, POLLOUT, 0};
  if (poll(&state, 1, 0) != 1) return Step::NotYet;
  int error = 0;
  socklen_t size = sizeof error;
  if (getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) return Step::Broken;
  isConnected_ = true;
  return Step::Done;
}

Wire::Received Wire::receive(std::span<char> buffer) const {
  const ssize_t count = recv(static_cast<int>(socket_), buffer.data(), buffer.size(), 0);
  if (count > 0) return {Step::Done, static_cast<std::size_t>(count)};
  if (count == 0 || errno == ECONNRESET) return {Step::Closed};
  return {errno == EAGAIN ? Step::NotYet : Step::Broken};
}

std::size_t Wire::send(std::string_view bytes) const {
  const ssize_t count = ::send(static_cast<int>(socket_), bytes.data(), bytes.size(), MSG_NOSIGNAL);
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void Wire::close() {
  if (isOpen()) ::close(static_cast<int>(socket_));
  socket_ = none;
  isConnected_ = false;
}

}  // namespace kelvora
