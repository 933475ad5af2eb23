#pragma once

namespace kelvora::modMain {

/// Lights the two big buttons beside the canvas or greys them. They take clicks either way.
void setButtonsState(bool enabled);

}  // namespace kelvora::modMain
