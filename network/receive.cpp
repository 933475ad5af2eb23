#include "network/receive.h"

#include <string>

#include "base/fault.h"
#include "frontend/gameSocket.h"
#include "network/dispatch.h"
#include "network/messageQueue.h"
#include "protocol/wireFormat.h"

namespace kelvora::netMan {

// Quirk Q-062: the queue outlives a connection, so the next server can complete an unfinished entry.
MessageQueue messageQueue;

void readSocket() {
  Winsock& socket = gameSocket();
  std::string data;
  for (std::string portion = socket.GetData(); !portion.empty(); portion = socket.GetData()) data += portion;
  receiveData(data);
}

void receiveData(std::string_view data) {
  // Quirk Q-063: a frame's text counts from the start of this read. If two reads share a frame, the part before the
  // split is lost, and the first byte after it is taken for the id.
  std::size_t textStart = 0;
  for (std::size_t i = 0; i < data.size(); ++i) {
    if (data[i] == wire::frameStart) {
      messageQueue.startEntry();
      textStart = i + 1;
    } else if (data[i] == wire::frameEnd) {
      // Quirk Q-064: a frame's end doesn't clear the collected text, so a second end byte appends the whole frame
      // again.
      messageQueue.append(data.substr(textStart, i + 1 - textStart));
    }
  }
  processMessages();
}

void processMessages() {
  wire::MessageId id{};
  while (const auto taken = messageQueue.takeFirstReady()) {
    MessageFields fields;
    // Quirk Q-065: an empty frame has no id. It reuses the one handled before it in this call, without any fields.
    if (const auto message = wire::splitId(taken->text)) {
      id = message->id;
      fields = MessageFields(message->fields);
    }
    if (const Route* route = findRoute(id)) resumeNext([&] { route->handle(fields); });
    // Quirk Q-066: uses the number from before the handler. If messages were handled meanwhile, under a message box,
    // another entry may have it now and is lost.
    messageQueue.removeMessage(taken->index);
  }
}

}  // namespace kelvora::netMan
