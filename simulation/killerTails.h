#pragma once

#include <cstdint>
#include <string>

namespace kelvora::modMain {

/// The server's report of a loop that closes at the winner's vertex at (x, y), world units. The capture waits for that
/// vertex to end; it lands at once if the client has no such vertex or too many captures wait. A node that belongs to
/// nobody is RuntimeFault if there is no first opponent to take for it.
void addKillerTail(std::int16_t winnerNode, std::int16_t loserNode, float x, float y);
/// The index in `killerTails` of the captures that wait for a vertex of this owner, a playerIndex; -1 if none do.
std::int16_t findKillerTail(std::int16_t owner, const std::string& tailID);
/// Lands the captures that wait for a vertex, if any do.
void checkKillerTail(std::int16_t owner, const std::string& tailID);
/// Lands the captures of one record, then drops all records of its owner. An index without a record does nothing.
void executeKillerTail(std::int16_t index);
/// Drops every record of an owner, a playerIndex.
void removeKillerTails(std::int16_t owner);
/// Carries a capture out: console lines, the loser's death, the winner's score.
void executeCapture(std::int16_t winnerNode, std::int16_t loserNode);
/// Takes vertex `num` out of a player's tail. An index of nobody's is ignored, but for the slot behind the last, which
/// is RuntimeFault.
void killTailOf(std::int16_t ownerIndex, double num);

}  // namespace kelvora::modMain
