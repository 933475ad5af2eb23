#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

/// The game's protocol. See docs/protocol.md.
namespace kelvora::wire {

/// Message ids, one byte on the wire. 128 to 130 are the delimiters; 139, 143, 163, 166 and 167 are unused.
enum MessageId : std::int16_t {
  msgPositionReport = 131,
  msgPing = 132,
  msgPingReply = 133,
  msgPosition = 134,
  msgLogin = 135,
  msgLoginDenied = 136,
  msgLoginAccepted = 137,
  msgPlayerJoined = 138,
  msgPlayerLeft = 140,
  msgTailCapture = 141,
  msgRoundOver = 142,
  msgChat = 144,
  msgLatencyReport = 145,
  msgVelocityReport = 146,
  msgVelocity = 147,
  msgFunds = 148,
  msgBuyRequest = 149,
  msgBuyDenied = 150,
  msgBuyAccepted = 151,
  msgSpawnRequest = 152,
  msgSpawnDenied = 153,
  msgRespawn = 154,
  msgActivateRequest = 155,
  msgPowerupOn = 156,
  msgAliveState = 157,
  msgSellRequest = 158,
  msgSellDenied = 159,
  msgSellAccepted = 160,
  msgPowerupOff = 161,
  msgServerText = 162,
  msgParticleAdd = 164,
  msgParticleMove = 165,
  msgParticleRemove = 168,
};

enum class Direction : std::uint8_t { toServer, toClient };

/// Signed whole numbers of 16 and 32 bits, floating-point numbers of 32 and 64 bits, and text. All travel as text.
enum class FieldType : std::uint8_t { int16, int32, single, real, text };

/// A field of a message.
struct Field {
  std::string_view name;
  FieldType type{};
};

/// A message in one direction, with its layout on the wire.
struct Message {
  MessageId id;
  Direction direction;
  std::string_view name;
  Field layout[7]{};  ///< the fields in their order on the wire; unused ones have no name

  constexpr std::span<const Field> fields() const {
    return {std::begin(layout),
            std::find_if(std::begin(layout), std::end(layout), [](const Field& field) { return field.name.empty(); })};
  }
};

/// Every message. msgChat goes both ways and has a row for each.
inline constexpr auto messages = [] {
  using enum Direction;
  using enum FieldType;
  // clang-format off
  return std::to_array<Message>({
      {msgLogin, toServer, "msgLogin", {{"name", text}, {"password", text}, {"colour", int16}, {"version", text}}},
      {msgPositionReport, toServer, "msgPositionReport", {{"x", single}, {"y", single}}},
      {msgVelocityReport, toServer, "msgVelocityReport", {{"vx", single}, {"vy", single}}},
      {msgPingReply, toServer, "msgPingReply", {{"timer", single}}},
      {msgChat, toServer, "msgChat", {{"targetNode", int16}, {"text", text}}},
      {msgSpawnRequest, toServer, "msgSpawnRequest"},
      {msgActivateRequest, toServer, "msgActivateRequest", {{"item", int16}}},
      {msgBuyRequest, toServer, "msgBuyRequest", {{"item", int16}}},
      {msgSellRequest, toServer, "msgSellRequest", {{"item", int16}}},

      {msgLoginAccepted, toClient, "msgLoginAccepted",
       {{"colour", int16}, {"node", int16}, {"x", single}, {"y", single}}},
      {msgLoginDenied, toClient, "msgLoginDenied", {{"reason", text}}},
      {msgPlayerJoined, toClient, "msgPlayerJoined",
       {{"node", int16}, {"colour", int16}, {"name", text}, {"x", single}, {"y", single}, {"alive", int16},
        {"kills", int16}}},
      {msgPlayerLeft, toClient, "msgPlayerLeft", {{"node", int16}}},
      {msgPosition, toClient, "msgPosition", {{"node", int16}, {"x", single}, {"y", single}}},
      {msgVelocity, toClient, "msgVelocity", {{"node", int16}, {"vx", single}, {"vy", single}}},
      {msgTailCapture, toClient, "msgTailCapture",
       {{"winnerNode", int16}, {"loserNode", int16}, {"x", single}, {"y", single}}},
      {msgAliveState, toClient, "msgAliveState", {{"node", int16}, {"alive", int16}}},
      {msgRespawn, toClient, "msgRespawn", {{"node", int16}}},
      {msgSpawnDenied, toClient, "msgSpawnDenied"},
      {msgRoundOver, toClient, "msgRoundOver", {{"text", text}}},
      {msgFunds, toClient, "msgFunds", {{"node", int16}, {"funds", real}}},
      {msgBuyAccepted, toClient, "msgBuyAccepted", {{"item", int16}, {"stock", int16}, {"funds", real}}},
      {msgBuyDenied, toClient, "msgBuyDenied", {{"text", text}}},
      {msgSellAccepted, toClient, "msgSellAccepted", {{"item", int16}, {"stock", int16}, {"funds", real}}},
      {msgSellDenied, toClient, "msgSellDenied", {{"text", text}}},
      {msgPowerupOn, toClient, "msgPowerupOn", {{"node", int16}, {"item", int16}}},
      {msgPowerupOff, toClient, "msgPowerupOff", {{"node", int16}, {"item", int16}}},
      {msgChat, toClient, "msgChat", {{"node", int16}, {"text", text}}},
      {msgServerText, toClient, "msgServerText", {{"text", text}}},
      {msgPing, toClient, "msgPing", {{"serverTime", int32}}},
      {msgLatencyReport, toClient, "msgLatencyReport", {{"value", int32}}},
      {msgParticleAdd, toClient, "msgParticleAdd",
       {{"id", text}, {"kind", int16}, {"x", single}, {"y", single}, {"vx", single}, {"vy", single}}},
      {msgParticleMove, toClient, "msgParticleMove", {{"id", text}, {"x", single}, {"y", single}}},
      {msgParticleRemove, toClient, "msgParticleRemove", {{"id", text}}},
  });
  // clang-format on
}();

/// The fields of a message. For constant expressions, where an unknown message doesn't compile.
constexpr std::span<const Field> fieldsOf(Direction direction, MessageId id) {
  const auto isWanted = [=](const Message& message) { return message.direction == direction && message.id == id; };
  return std::find_if(messages.begin(), messages.end(), isWanted)->fields();
}

}  // namespace kelvora::wire
