#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kelvora {

/// A powerup, numbered as on the wire. A number from the wire may be outside the enum: see isSlot.
enum PowerupSlot : std::int16_t { shieldSlot, turboSlot, chargedTailSlot, extendedTailSlot, laserSlot, pulseSlot };
inline constexpr int powerupSlotCount = 6;
inline constexpr std::array<PowerupSlot, powerupSlotCount> powerupSlots = {shieldSlot,       turboSlot, chargedTailSlot,
                                                                           extendedTailSlot, laserSlot, pulseSlot};
constexpr bool isSlot(PowerupSlot slot) { return 0 <= slot && slot < powerupSlotCount; }
/// The index of a valid slot in a table of powerups.
constexpr std::size_t indexOf(PowerupSlot slot) { return static_cast<std::size_t>(slot); }

inline constexpr std::int16_t startCapacity = 10;  ///< maximum number of powerups of all kinds that a player can hold
inline constexpr double startFunds = 10;           ///< credits

/// One kind of powerup: its rules and the store's texts. Client and server share these rows.
struct Powerup {
  const char* name;    ///< in the store
  std::int16_t price;  ///< credits
  const char* description;
  std::int16_t seconds;      ///< duration of one activation; 0 for the pulse
  bool runs;                 ///< sets `active`; the pulse is over at once
  const char* announcement;  ///< centre message
  const char* collapse;      ///< console text after the player's name at an early end; null for none
};

// Quirk Q-315: apostrophes are misplaced.
inline constexpr std::array<Powerup, powerupSlotCount> powerupTable{{
    {"Shield", 20,
     "Protects you from charged tails, lasers, and EMP's for 15 seconds.  Warning: EMP's will disable the shield.", 15,
     true, "Shields up", "'s shield has collapsed!!"},
    {"Turbo Boost", 10, "Vastly increases your speed.  Lasts for 5 seconds.", 5, true, "Turbo Boost",
     "'s turbo has shorted out!!"},
    {"Charged Tail", 30,
     "Your tail will be electrically charged.  Any opponents who come in contact with it will perish.  Lasts for 5 "
     "seconds.",
     5, true, "Charged Tail", "'s charged tails ended abruptly!!"},
    {"Extra Long Tail", 20,
     "Your tail will extend far longer than normal.  This will make it easier to entrap your opponents.  Lasts for 5 "
     "seconds.",
     5, true, "Extended Tail", "'s long tails ended abruptly!!"},
    {"Laser Beam", 20, "A one second beam that will attack anything in it's path.", 1, true, "Laser Blast",
     "'s laser has shorted out!!"},
    {"EMP", 70,
     "An electromagnetic pulse that will attack all near you.  Warning: You will be affected as well, you must be "
     "shielded when you use this!",
     0, false, "Electro-Magnetic Pulse", nullptr},
}};

}  // namespace kelvora
