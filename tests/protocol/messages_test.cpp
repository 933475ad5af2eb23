#include "protocol/messages.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "protocol/wireFormat.h"

namespace kelvora {
namespace {

TEST(Messages, NoneAppearsTwiceInOneDirection) {
  std::set<std::pair<wire::Direction, int>> seen;
  for (const wire::Message& message : wire::messages) {
    EXPECT_TRUE(seen.insert({message.direction, message.id}).second) << message.name;
  }
}

TEST(Messages, AnIdHasOneNameAndANameOneId) {
  std::map<int, std::string_view> names;
  std::map<std::string_view, int> ids;
  for (const wire::Message& message : wire::messages) {
    EXPECT_EQ(names.insert({message.id, message.name}).first->second, message.name);
    EXPECT_EQ(ids.insert({message.name, message.id}).first->second, message.id);
  }
}

TEST(Messages, IdsAreSingleBytesAboveTheDelimiters) {
  for (const wire::Message& message : wire::messages) {
    EXPECT_GT(message.id, static_cast<unsigned char>(wire::fieldSeparator));
    EXPECT_LT(message.id, 256);
  }
}

TEST(Messages, TheFieldsOfOneMessageHaveDifferentNames) {
  for (const wire::Message& message : wire::messages) {
    std::set<std::string_view> names;
    for (const wire::Field& field : message.fields()) EXPECT_TRUE(names.insert(field.name).second) << message.name;
  }
}

TEST(Messages, OfADirectionAreFound) {
  EXPECT_EQ(wire::fieldsOf(wire::Direction::toServer, wire::msgChat)[0].name, "targetNode");
  EXPECT_EQ(wire::fieldsOf(wire::Direction::toClient, wire::msgChat)[0].name, "node");
  EXPECT_EQ(wire::fieldsOf(wire::Direction::toClient, wire::msgPlayerJoined).size(), 7U);
  EXPECT_TRUE(wire::fieldsOf(wire::Direction::toServer, wire::msgSpawnRequest).empty());
}

}  // namespace
}  // namespace kelvora
