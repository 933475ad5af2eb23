#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora::wire {

/// Delimiters of the text protocol. Ids are single bytes above them.
inline constexpr char frameStart = static_cast<char>(128);
inline constexpr char frameEnd = static_cast<char>(129);
inline constexpr char fieldSeparator = static_cast<char>(130);

/// Message ids, one byte on the wire. Ids without a name here are used in neither direction.
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

/// One frame: start, id, the fields with separators between them, end. Fields are sent as they are; nothing is escaped.
std::string buildFrame(std::int16_t id, const std::vector<std::string>& fields);

/// The fields of a frame's text after its id, cut at every separator. A text without a separator is one field.
std::vector<std::string_view> splitFields(std::string_view text);

}  // namespace kelvora::wire
