#include "network/dispatch.h"

#include <algorithm>
#include <iterator>

#include "audio/soundMan.h"
#include "base/fault.h"
#include "base/numbers.h"
#include "base/text.h"
#include "core/modMain.h"
#include "frontend/console.h"
#include "network/handlers.h"
#include "network/session.h"
#include "particles/pools.h"
#include "platform/backend.h"
#include "protocol/wireFormat.h"
#include "simulation/killerTails.h"
#include "store/frmPowerups.h"

namespace kelvora::netMan {

MessageFields::MessageFields(std::string_view text) : fields_(wire::splitFields(text)) {}

std::string_view MessageFields::at(std::size_t field) const {
  if (field >= fields_.size()) raiseSubscriptOutOfRange();
  return fields_[field];
}

std::string MessageFields::text(std::size_t field) const { return std::string(at(field)); }
std::int16_t MessageFields::int16(std::size_t field) const { return toInt16(readNumber(at(field))); }
std::int32_t MessageFields::int32(std::size_t field) const { return toInt32(readNumber(at(field))); }
float MessageFields::single(std::size_t field) const { return toSingle(readNumber(at(field))); }
double MessageFields::real(std::size_t field) const { return readNumber(at(field)); }

namespace {

using Fields = const MessageFields&;
using modMain::world;

void loginDenied(Fields f) {
  resumeNext([&] { MsgBox("Login denied: \n" + f.text(0)); });
  disconnectFromServer();
}

void ping(Fields f) {
  if (world.localPlayer.isConnected) world.localPlayer.receivePing(f.int32(0));
}

void latencyReport(Fields f) {
  if (world.localPlayer.isConnected) world.localPlayer.receiveLatencyReport(f.int32(0));
}

void storeDenied(Fields f) {
  // Quirk Q-274: a refusal that arrives after the window has closed is lost. A purchase still prints its line in the
  // console.
  if (!frmPowerups.isVisible()) return;
  resumeNext([&] { frmPowerups->lblWinners.Caption = f.text(0); });
  constexpr std::int16_t errorSound = 2;
  soundMan::playSound(errorSound);
}

// Quirk Q-067: a row reads all its fields before it acts, so that a message with too few of them, or with one number
// too large, does nothing at all.
constexpr Route table[] = {
    {wire::msgPosition, [](Fields f) { receivePosition(f.int16(0), f.single(1), f.single(2)); }},
    {wire::msgVelocity, [](Fields f) { receiveVelocity(f.int16(0), f.single(1), f.single(2)); }},
    {wire::msgPlayerJoined,
     [](Fields f) {
       receivePlayerJoined(f.int16(0), f.int16(1), f.text(2), f.single(3), f.single(4), f.int16(5), f.int16(6));
     }},
    {wire::msgLoginAccepted,
     [](Fields f) { receiveLoginAccepted(f.int16(0), f.int16(1), playerName, f.single(2), f.single(3)); }},
    {wire::msgLoginDenied, loginDenied},
    {wire::msgChat, [](Fields f) { receiveChat(f.int16(0), f.text(1)); }},
    {wire::msgPing, ping},
    {wire::msgLatencyReport, latencyReport},
    {wire::msgPlayerLeft, [](Fields f) { receivePlayerLeft(f.int16(0)); }},
    {wire::msgTailCapture, [](Fields f) { modMain::addKillerTail(f.int16(0), f.int16(1), f.single(2), f.single(3)); }},
    {wire::msgFunds, [](Fields f) { receiveFunds(f.int16(0), f.real(1)); }},
    {wire::msgRoundOver, [](Fields f) { receiveRoundOver(f.text(0)); }},
    {wire::msgBuyDenied, storeDenied},
    {wire::msgBuyAccepted, [](Fields f) { world.localPlayer.purchaseAccepted(f.int16(0), f.int16(1), f.real(2)); }},
    {wire::msgSpawnDenied, [](Fields) { MsgBox("Respawn request denied from server"); }},
    {wire::msgRespawn, [](Fields f) { receiveRespawn(f.int16(0)); }},
    {wire::msgPowerupOn, [](Fields f) { receivePowerupOn(f.int16(0), f.int16(1)); }},
    {wire::msgAliveState, [](Fields f) { receiveAliveState(f.int16(0), f.int16(1)); }},
    {wire::msgSellDenied, storeDenied},
    {wire::msgSellAccepted, [](Fields f) { world.localPlayer.sellItemAccepted(f.int16(0), f.int16(1), f.real(2)); }},
    {wire::msgPowerupOff, [](Fields f) { receivePowerupOff(f.int16(0), f.int16(1)); }},
    {wire::msgServerText, [](Fields f) { printChat(f.text(0), 3); }},
    {wire::msgParticleAdd,
     [](Fields f) {
       modMain::receiveParticleNew(f.text(0), f.int16(1), f.single(2), f.single(3), f.single(4), f.single(5));
     }},
    {wire::msgParticleRemove, [](Fields f) { modMain::receiveParticleRemove(f.text(0)); }},
    {wire::msgParticleMove, [](Fields f) { modMain::receiveParticlePosition(f.text(0), f.single(1), f.single(2)); }},
};

}  // namespace

std::span<const Route> routes() { return table; }

const Route* findRoute(std::int16_t id) {
  const auto* found =
      std::find_if(std::begin(table), std::end(table), [id](const Route& route) { return route.id == id; });
  return found == std::end(table) ? nullptr : found;
}

}  // namespace kelvora::netMan
