#include "app/player/channel.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>

namespace kelvora::player {

Channel::~Channel() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

Channel& Channel::operator=(Channel&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  if (other.descriptor_ >= 0) ::close(std::exchange(other.descriptor_, -1));
  return *this;
}

std::pair<Channel, Channel> Channel::pair() {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw std::system_error(errno, std::generic_category(), "a connection");
  }
  return {Channel(ends[0]), Channel(ends[1])};
}

// A message is its size, with which the descriptor travels, and its text.
bool Channel::send(std::string_view text, const Channel& passed) const {
  std::uint64_t size = text.size();
  iovec part{&size, sizeof size};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
  msghdr head{};
  head.msg_iov = &part;
  head.msg_iovlen = 1;
  if (passed.isOpen()) {
    head.msg_control = control.data();
    head.msg_controllen = control.size();
    cmsghdr* const rights = CMSG_FIRSTHDR(&head);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(rights), &passed.descriptor_, sizeof(int));
  }
  if (::sendmsg(descriptor_, &head, MSG_NOSIGNAL) != static_cast<ssize_t>(sizeof size)) return false;
  while (!text.empty()) {
    const ssize_t sent = ::send(descriptor_, text.data(), text.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

std::optional<Channel::Message> Channel::receive() const {
  Message message;
  std::uint64_t size = 0;
  iovec part{&size, sizeof size};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
  msghdr head{};
  head.msg_iov = &part;
  head.msg_iovlen = 1;
  head.msg_control = control.data();
  head.msg_controllen = control.size();
  ssize_t got = -1;
  do {
    got = ::recvmsg(descriptor_, &head, MSG_WAITALL | MSG_CMSG_CLOEXEC);
  } while (got < 0 && errno == EINTR);
  if (const cmsghdr* rights = CMSG_FIRSTHDR(&head); rights != nullptr && rights->cmsg_type == SCM_RIGHTS) {
    int descriptor = -1;
    std::memcpy(&descriptor, CMSG_DATA(rights), sizeof descriptor);
    message.passed = Channel(descriptor);
  }
  if (got != static_cast<ssize_t>(sizeof size)) return std::nullopt;
  message.text.resize(size);
  for (std::size_t at = 0; at < size;) {
    const ssize_t more = ::recv(descriptor_, message.text.data() + at, size - at, 0);
    if (more < 0 && errno == EINTR) continue;
    if (more <= 0) return std::nullopt;
    at += static_cast<std::size_t>(more);
  }
  return message;
}

bool Channel::waitFor(int milliseconds) const {
  pollfd waiting{descriptor_, POLLIN, 0};
  return ::poll(&waiting, 1, milliseconds) > 0;
}

}  // namespace kelvora::player
