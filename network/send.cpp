#include "network/send.h"

#include "frontend/gameSocket.h"
#include "protocol/wireFormat.h"

namespace kelvora::netMan {

void sendMessage(std::int16_t id, const std::vector<std::string>& fields) {
  Winsock& socket = gameSocket();
  if (socket.State() == sckConnected) socket.SendData(wire::buildFrame(id, fields));
}

}  // namespace kelvora::netMan
