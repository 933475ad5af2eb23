#pragma once

namespace kelvora {

/// Powerup slots, numbered as on the wire.
enum PowerupSlot : int { shieldSlot, turboSlot, chargedTailSlot, extendedTailSlot, laserSlot, pulseSlot };
inline constexpr int powerupSlotCount = 6;

}  // namespace kelvora
