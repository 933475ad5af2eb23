#pragma once

#include <memory>
#include <string>

#include "app/player/pack.h"
#include "platform/control.h"

namespace kelvora::player {

/// Packs what a control is: its kind and its design, which never change.
void packKind(Pack& pack, const Control& control);
/// Creates such a control.
std::unique_ptr<Control> makeControl(Unpack& unpack, Control* container);

/// Packs what a control shows.
std::string packProperties(Control& control);
/// Assigns it to a control of the same kind.
void assignProperties(Control& control, const std::string& packed);

}  // namespace kelvora::player
