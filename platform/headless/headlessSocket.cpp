#include "platform/headless/headlessSocket.h"

#include "platform/headless/headlessScreen.h"

namespace kelvora {

HeadlessSocket::HeadlessSocket(std::shared_ptr<HeadlessScreen> screen, Winsock& socket)
    : screen_(std::move(screen)), socket_(socket), connection_(std::make_shared<int>()) {
  screen_->sockets.push_back({&socket_, this});
}

HeadlessSocket::~HeadlessSocket() {
  std::erase_if(screen_->sockets, [this](const auto& plug) { return plug.peer == this; });
}

void HeadlessSocket::connect(const std::string& host, int port) {
  connects.emplace_back(host, port);
  screen_->machine->journal.push_back("connect " + host + ":" + std::to_string(port));
  state_ = sckConnecting;
}

void HeadlessSocket::close() {
  if (state_ != sckClosed) ++closes;
  state_ = sckClosed;
  arrived_.clear();
  connection_ = std::make_shared<int>();
}

void HeadlessSocket::send(std::string_view data) {
  sent.append(data);
  sends.emplace_back(data);
}

std::string HeadlessSocket::take() {
  if (arrived_.empty()) return {};
  std::string portion = std::move(arrived_.front());
  arrived_.pop_front();
  return portion;
}

void HeadlessSocket::post(std::function<void()> action) {
  screen_->machine->post([action = std::move(action), connection = std::weak_ptr<int>(connection_)] {
    if (!connection.expired()) action();
  });
}

void HeadlessSocket::acceptConnection() {
  post([this] {
    state_ = sckConnected;
    if (socket_.onConnect) socket_.onConnect();
  });
}

void HeadlessSocket::refuse() {
  post([this] { state_ = sckError; });
}

void HeadlessSocket::deliver(std::string bytes, std::size_t portion) {
  post([this, bytes = std::move(bytes), portion] {
    if (state_ != sckConnected || bytes.empty()) return;
    const std::size_t step = portion == 0 ? bytes.size() : portion;
    for (std::size_t at = 0; at < bytes.size(); at += step) arrived_.push_back(bytes.substr(at, step));
    if (socket_.onDataArrival) socket_.onDataArrival();
  });
}

void HeadlessSocket::deliverInReads(const std::vector<std::string>& pieces) {
  for (const std::string& piece : pieces) deliver(piece);
}

void HeadlessSocket::closeByServer() {
  post([this] {
    state_ = sckClosing;
    if (socket_.onClose) socket_.onClose();
  });
}

}  // namespace kelvora
