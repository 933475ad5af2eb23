#pragma once

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "protocol/messages.h"
#include "server/arena/arenaOutput.h"
#include "tests/support/wireMessage.h"

namespace kelvora::server {

using Fields = std::vector<std::string>;

using Message = WireMessage;

/// Records what each client gets and what is logged.
class Recorder : public ArenaOutput {
 public:
  std::map<ClientId, std::vector<Message>> got;
  std::set<ClientId> hungUp;
  std::vector<std::string> logged;

  void send(ClientId client, const std::string& frame) override { got[client].push_back(messageOf(frame)); }
  void hangUp(ClientId client) override { hungUp.insert(client); }
  void log(const std::string& line) override { logged.push_back(line); }
};

}  // namespace kelvora::server
