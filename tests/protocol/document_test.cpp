// docs/protocol.md must agree with the program's tables, and its examples with their explanations.

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "base/numberFromText.h"
#include "protocol/messages.h"
#include "protocol/powerupTable.h"
#include "protocol/rules.h"
#include "protocol/wireFormat.h"
#include "tests/project/tree.h"

namespace kelvora {
namespace {

const std::string& document() {
  static const std::string text = tree::text("docs/protocol.md");
  return text;
}

/// The text below a heading, up to the next one.
std::string section(const std::string& heading) {
  const std::size_t begin = document().find("\n## " + heading + "\n");
  if (begin == std::string::npos) return {};
  return document().substr(begin, document().find("\n## ", begin + 1) - begin);
}

/// The cells of a section's table without its first two rows.
std::vector<std::vector<std::string>> table(const std::string& heading) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream lines(section(heading));
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("| ")) continue;
    std::vector<std::string>& cells = rows.emplace_back();
    for (std::size_t at = 2, end; (end = line.find(" |", at)) != std::string::npos; at = end + 3) {
      cells.push_back(line.substr(at, end - at));
    }
  }
  if (rows.size() < 2) return {};
  rows.erase(rows.begin(), rows.begin() + 2);
  return rows;
}

std::string typeName(wire::FieldType type) {
  constexpr const char* names[] = {"int16", "int32", "single", "real", "text"};
  return names[static_cast<int>(type)];
}

/// A message as "137 `msgX`: `a` int16, `b` text", like the first three cells of the document's rows.
std::string described(const std::string& id, const std::string& name, const std::string& fields) {
  return id + " " + name + ": " + fields;
}

std::string described(const wire::Message& message) {
  std::string fields;
  for (const wire::Field& field : message.fields()) {
    fields += (fields.empty() ? "`" : ", `") + std::string(field.name) + "` " + typeName(field.type);
  }
  return described(std::to_string(message.id), "`" + std::string(message.name) + "`", fields.empty() ? "none" : fields);
}

using Descriptions = std::multiset<std::string>;

Descriptions inDocument(const std::string& heading) {
  Descriptions found;
  for (const auto& row : table(heading)) {
    EXPECT_EQ(row.size(), 4U) << row.front();
    if (row.size() == 4) found.insert(described(row[0], row[1], row[2]));
  }
  return found;
}

Descriptions inProgram(wire::Direction direction) {
  Descriptions found;
  for (const wire::Message& message : wire::messages) {
    if (message.direction == direction) found.insert(described(message));
  }
  return found;
}

TEST(ProtocolDocument, ListsTheMessagesToTheServer) {
  EXPECT_EQ(inDocument("Client to server"), inProgram(wire::Direction::toServer));
}

TEST(ProtocolDocument, ListsTheMessagesToTheClient) {
  EXPECT_EQ(inDocument("Server to client"), inProgram(wire::Direction::toClient));
}

TEST(ProtocolDocument, ListsThePowerups) {
  std::vector<std::vector<std::string>> expected;
  for (const Powerup& powerup : powerupTable) {
    expected.push_back({std::to_string(expected.size()), powerup.name, std::to_string(powerup.price),
                        std::to_string(powerup.seconds)});
  }
  EXPECT_EQ(table("Numbers of the game"), expected);
}

TEST(ProtocolDocument, ListsTheColours) {
  std::string colours;
  for (const char* name : rules::colourNames) {
    const std::string number = std::to_string(std::ranges::count(colours, ','));
    colours += number + " " + name + ", ";
  }
  colours.resize(colours.size() - 2);
  EXPECT_NE(document().find(colours + "."), std::string::npos) << colours;
}

bool isOfType(std::string_view text, wire::FieldType type) {
  switch (type) {
    case wire::FieldType::int16:
      return numberFromText<std::int16_t>(text).has_value();
    case wire::FieldType::int32:
      return numberFromText<std::int32_t>(text).has_value();
    case wire::FieldType::single:
    case wire::FieldType::real:
      return numberFromText<double>(text).has_value();
    case wire::FieldType::text:
      return true;
  }
  return false;
}

std::string bytesOf(const std::string& hex) {
  std::string bytes;
  std::istringstream words(hex);
  for (std::string word; words >> word;) bytes += static_cast<char>(std::stoi(word, nullptr, 16));
  return bytes;
}

std::vector<std::string> quoted(const std::string& text) {
  static const std::regex expression("\"([^\"]*)\"");
  std::vector<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
    found.push_back((*match)[1]);
  }
  return found;
}

TEST(ProtocolDocument, HasCorrectExamples) {
  const auto rows = table("Examples");
  EXPECT_GT(rows.size(), 8U);
  for (const auto& row : rows) {
    ASSERT_EQ(row.size(), 4U);
    const std::string bytes = bytesOf(row[3]);
    ASSERT_GE(bytes.size(), 3U) << row[1];
    EXPECT_EQ(bytes.front(), wire::frameStart) << row[1];
    EXPECT_EQ(bytes.back(), wire::frameEnd) << row[1];
    const auto incoming = wire::splitId(wire::textOf(bytes));
    ASSERT_TRUE(incoming) << row[1];
    const auto direction = row[0] == "to server" ? wire::Direction::toServer : wire::Direction::toClient;
    const auto message = std::ranges::find_if(
        wire::messages, [&](const auto& one) { return one.id == incoming->id && one.direction == direction; });
    ASSERT_NE(message, wire::messages.end()) << row[1];
    EXPECT_EQ(row[1], "`" + std::string(message->name) + "`");
    const auto fields =
        message->fields().empty() ? std::vector<std::string_view>() : wire::splitFields(incoming->fields);
    const auto texts = quoted(row[2]);
    ASSERT_EQ(fields.size(), message->fields().size()) << row[1];
    ASSERT_EQ(std::vector<std::string>(fields.begin(), fields.end()), texts) << row[1];
    for (std::size_t i = 0; i < fields.size(); ++i) {
      EXPECT_TRUE(isOfType(fields[i], message->fields()[i].type)) << row[1] << " " << fields[i];
    }
  }
}

}  // namespace
}  // namespace kelvora
