#pragma once

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "protocol/wireFormat.h"
#include "server/arena/arenaOutput.h"

namespace kelvora::server {

using Fields = std::vector<std::string>;

struct Message {
  int id = 0;
  Fields fields;

  friend bool operator==(const Message&, const Message&) = default;
};

inline void PrintTo(const Message& message, std::ostream* out) {
  *out << message.id << " (";
  for (const std::string& field : message.fields) *out << '"' << field << "\" ";
  *out << ")";
}

/// Records what each client gets and what is logged.
class Recorder : public ArenaOutput {
 public:
  std::map<ClientId, std::vector<Message>> got;
  std::set<ClientId> hungUp;
  std::vector<std::string> logged;

  void send(ClientId client, const std::string& frame) override {
    ASSERT_EQ(frame.front(), wire::frameStart);
    ASSERT_EQ(frame.back(), wire::frameEnd);
    Message message{static_cast<unsigned char>(frame[1]), {}};
    for (const std::string_view field : wire::splitFields(std::string_view(frame).substr(2, frame.size() - 3))) {
      message.fields.emplace_back(field);
    }
    got[client].push_back(std::move(message));
  }
  void hangUp(ClientId client) override { hungUp.insert(client); }
  void log(const std::string& line) override { logged.push_back(line); }
};

}  // namespace kelvora::server
