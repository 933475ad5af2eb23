#include "network/dispatch.h"

#include <type_traits>
#include <utility>

#include "audio/soundMan.h"
#include "base/fault.h"
#include "base/search.h"
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

namespace {

using Fields = const MessageFields&;
using modMain::world;

// Handling a refusal takes two statements. If the first faults, the second still runs.

void loginDenied(Fields f) {
  resumeNext([&] { MsgBox("Login denied: \n" + f.text(0)); });
  disconnectFromServer();
}

void loginAccepted(PlayerColour colour, std::int16_t node, float x, float y) {
  receiveLoginAccepted(colour, node, playerName, x, y);
}

void ping(std::int32_t serverTime) {
  if (world.localPlayer.isConnected) world.localPlayer.receivePing(serverTime);
}

void latencyReport(std::int32_t value) {
  if (world.localPlayer.isConnected) world.localPlayer.receiveLatencyReport(value);
}

void buyAccepted(PowerupSlot item, std::int16_t stock, double funds) {
  world.localPlayer.purchaseAccepted(item, stock, funds);
}

void sellAccepted(PowerupSlot item, std::int16_t stock, double funds) {
  world.localPlayer.sellItemAccepted(item, stock, funds);
}

void spawnDenied() { MsgBox("Respawn request denied from server"); }

void serverText(const std::string& text) { printChat(text, LineType::ServerMessage); }

void storeDenied(Fields f) {
  // Quirk Q-274: a refusal that arrives after the window has closed is lost. A purchase still prints its line in the
  // console.
  if (!frmPowerups.isVisible()) return;
  resumeNext([&] { frmPowerups->lblWinners.Caption = f.text(0); });
  soundMan::playSound(soundMan::Sound::Error);
}

/// A field's value as a handler takes it. A handler may take an enum for a whole number of its width.
template <class Parameter, class Value>
Parameter argument(Value value) {
  if constexpr (std::is_enum_v<Parameter>) {
    static_assert(std::is_same_v<std::underlying_type_t<Parameter>, Value>);
    return Parameter{value};
  } else {
    return value;
  }
}

template <wire::MessageId id, class... Parameters, std::size_t... i>
void call(void (*handler)(Parameters...), Fields f, std::index_sequence<i...>) {
  static constexpr auto fields = wire::fieldsOf(wire::Direction::toClient, id);
  static_assert(sizeof...(i) == fields.size(), "the handler takes another number of fields");
  // Quirk Q-067: all fields are read before the call, so a message with too few fields, or with one number out of
  // range, does nothing.
  handler(argument<std::remove_cvref_t<Parameters>>(f.read<fields[i].type>(i))...);
}

template <class... Parameters>
constexpr std::index_sequence_for<Parameters...> indicesOf(void (*)(Parameters...)) {
  return {};
}

/// Reads the fields with their types in the table of messages and passes them to the handler.
template <wire::MessageId id, auto handler>
constexpr Route route{id, [](Fields f) { call<id>(handler, f, indicesOf(handler)); }};

constexpr Route table[] = {
    route<wire::msgPosition, receivePosition>,
    route<wire::msgVelocity, receiveVelocity>,
    route<wire::msgPlayerJoined, receivePlayerJoined>,
    route<wire::msgLoginAccepted, loginAccepted>,
    {wire::msgLoginDenied, loginDenied},
    route<wire::msgChat, receiveChat>,
    route<wire::msgPing, ping>,
    route<wire::msgLatencyReport, latencyReport>,
    route<wire::msgPlayerLeft, receivePlayerLeft>,
    route<wire::msgTailCapture, modMain::addKillerTail>,
    route<wire::msgFunds, receiveFunds>,
    route<wire::msgRoundOver, receiveRoundOver>,
    {wire::msgBuyDenied, storeDenied},
    route<wire::msgBuyAccepted, buyAccepted>,
    route<wire::msgSpawnDenied, spawnDenied>,
    route<wire::msgRespawn, receiveRespawn>,
    route<wire::msgPowerupOn, receivePowerupOn>,
    route<wire::msgAliveState, receiveAliveState>,
    {wire::msgSellDenied, storeDenied},
    route<wire::msgSellAccepted, sellAccepted>,
    route<wire::msgPowerupOff, receivePowerupOff>,
    route<wire::msgServerText, serverText>,
    route<wire::msgParticleAdd, modMain::receiveParticleNew>,
    route<wire::msgParticleRemove, modMain::receiveParticleRemove>,
    route<wire::msgParticleMove, modMain::receiveParticlePosition>,
};

}  // namespace

std::span<const Route> routes() { return table; }

const Route* findRoute(wire::MessageId id) { return findBy(table, &Route::id, id); }

}  // namespace kelvora::netMan
