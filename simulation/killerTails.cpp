#include "simulation/killerTails.h"

#include <algorithm>
#include <cstddef>

#include "base/text.h"
#include "core/bounds.h"
#include "core/centreMessage.h"
#include "core/modMain.h"
#include "core/players.h"
#include "frontend/console.h"
#include "simulation/clsPlayer.h"

namespace kelvora::modMain {

// Only the server finds loops. It names the winner, the loser and the vertex that closes the loop. The capture waits
// here until that vertex expires, so that players see the loop fade first.
void addKillerTail(std::int16_t winnerNode, std::int16_t loserNode, float x, float y) {
  const std::int16_t winner = getPlayerIndex(winnerNode);
  const std::int16_t loser = getPlayerIndex(loserNode);
  const clsPlayer& player = playerAt(winner);
  const double num = player.getTailNumByPos({x, y});
  if (num == -1) {  // expired, or never laid on this client
    executeCapture(winnerNode, loserNode);
    return;
  }
  const std::string location = "(" + numberText(x) + "," + numberText(y) + ")";
  // Quirk Q-106: only the position is compared, so a second capture at the same coordinates counts for the first one's
  // winner.
  const auto known = std::find_if(world.killerTails.begin(), world.killerTails.end(),
                                  [&](const KillerTail& record) { return record.location == location; });
  const bool isFull = known == world.killerTails.end() ? world.killerTails.size() >= maxKillerTails
                                                       : known->victims.size() >= maxVictims;
  if (isFull) {
    executeCapture(winnerNode, loserNode);
    return;
  }
  if (known != world.killerTails.end()) {
    known->victims.push_back(loser);
    return;
  }
  // Quirk Q-304: an unknown loser is slot 0, whether or not it exists when the capture is carried out.
  world.killerTails.push_back({winner, player.getTailID(num), {loser}, location});
}

std::int16_t findKillerTail(std::int16_t owner, const std::string& tailID) {
  for (std::size_t i = 0; i < world.killerTails.size(); ++i) {
    if (world.killerTails[i].owner == owner && world.killerTails[i].tailID == tailID)
      return static_cast<std::int16_t>(i);
  }
  return -1;
}

void checkKillerTail(std::int16_t owner, const std::string& tailID) {
  const std::int16_t index = findKillerTail(owner, tailID);
  if (index > -1) executeKillerTail(index);
}

void executeKillerTail(std::int16_t index) {
  if (index < 0 || static_cast<std::size_t>(index) >= world.killerTails.size()) return;
  const KillerTail& record = world.killerTails[static_cast<std::size_t>(index)];
  const std::int16_t owner = record.owner;
  for (const std::int16_t victim : record.victims) executeCapture(getServerNode(owner), getServerNode(victim));
  removeKillerTails(owner);
}

void removeKillerTails(std::int16_t owner) {
  // Quirk Q-104: all records of this owner are deleted, so one capture drops the winner's other pending ones, and their
  // victims live on.
  std::erase_if(world.killerTails, [owner](const KillerTail& record) { return record.owner == owner; });
}

void executeCapture(std::int16_t winnerNode, std::int16_t loserNode) {
  const std::int16_t winner = getPlayerIndex(winnerNode);
  const std::int16_t loser = getPlayerIndex(loserNode);
  printChat(getPlayerName(winner) + " has captured " + getPlayerName(loser), LineType::ServerMessage);
  // Quirk Q-108: nothing checks that the loser is alive. A ghost can be captured again, and the winner scores.
  clsPlayer& victim = playerAt(loser);
  victim.die();
  if (loser == localIndex) showCentreMessage("You have been captured!");
  playerAt(winner).receiveCapture(victim.colour);
  if (winner == localIndex) showCentreMessage("You have captured " + getPlayerName(loser));
}

void killTailOf(std::int16_t ownerIndex, double num) {
  // Quirk Q-103: the upper bound is inclusive, unlike everywhere else. The slot after the last one is a fault.
  if (ownerIndex == localIndex || (ownerIndex >= 0 && ownerIndex <= world.opponentCount))
    playerAt(ownerIndex).killTail(num);
}

}  // namespace kelvora::modMain
