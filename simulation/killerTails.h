#pragma once

#include <cstdint>
#include <string>

namespace kelvora::modMain {

/// Records the server's report of a loop that closes at the winner's vertex at (x, y), in world units. The capture is
/// pending until that vertex expires. It is carried out at once if the client has no such vertex or too many captures
/// are pending. RuntimeFault for an unknown node if there are no opponents.
void addKillerTail(std::int16_t winnerNode, std::int16_t loserNode, float x, float y);
/// The index in `killerTails` of the captures pending on a vertex of this owner (a playerIndex), or -1.
std::int16_t findKillerTail(std::int16_t owner, const std::string& tailID);
/// Carries out the captures pending on a vertex, if any.
void checkKillerTail(std::int16_t owner, const std::string& tailID);
/// Carries out the captures of one record, then drops all records of its owner. Does nothing if there is no such
/// record.
void executeKillerTail(std::int16_t index);
/// Drops all records of an owner (a playerIndex).
void removeKillerTails(std::int16_t owner);
/// Carries out one capture: console lines, the loser's death, the winner's score.
void executeCapture(std::int16_t winnerNode, std::int16_t loserNode);
/// Removes vertex `num` from a player's tail. Ignores an index out of range, but the slot after the last one raises
/// RuntimeFault.
void killTailOf(std::int16_t ownerIndex, double num);

}  // namespace kelvora::modMain
