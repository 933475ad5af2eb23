#include "rendering/starsMode.h"

#include "frontend/frmMain.h"

namespace kelvora {

bool modMain::isStarsMode() { return frmMain->mnuQuarkStars.Checked; }

}  // namespace kelvora
