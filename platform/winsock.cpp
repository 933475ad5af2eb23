#include "platform/winsock.h"

#include "base/fault.h"
#include "platform/backend.h"

namespace kelvora {

Winsock::Winsock() : peer_(backend().createSocket(*this)) {}

void Winsock::Connect() {
  if (State() != sckClosed) throw RuntimeFault("Wrong protocol or connection state for the requested transaction");
  if (onCommand) onCommand();
  peer_->connect(RemoteHost, RemotePort);
}

void Winsock::Close() {
  if (onCommand) onCommand();
  peer_->close();
}

void Winsock::SendData(std::string_view data) {
  if (State() != sckConnected) throw RuntimeFault("Wrong protocol or connection state for the requested transaction");
  peer_->send(data);
}

}  // namespace kelvora
