#include "network/send.h"

#include "frontend/gameSocket.h"

namespace kelvora::netMan {

void sendFrame(const std::string& frame) {
  Winsock& socket = gameSocket();
  if (socket.State() == sckConnected) socket.SendData(frame);
}

}  // namespace kelvora::netMan
