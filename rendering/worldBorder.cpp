#include "core/modMain.h"
#include "core/view.h"
#include "frontend/frmMain.h"
#include "protocol/rules.h"
#include "rendering/layers.h"

namespace kelvora::modMain {

// Quirk Q-125: the pulse counts frames without the time scale, so it is faster on a faster machine. Turning takes an
// extra step, so the widest and the narrowest line last twice as long as the others.
void paintWorldBorder() {
  world.borderCounter = static_cast<std::int16_t>(world.borderCounter + 1);
  if (world.borderCounter == 5) {
    world.borderCounter = 0;
    world.borderWidth =
        static_cast<std::uint8_t>(world.borderShrinking ? world.borderWidth - 1 : world.borderWidth + 1);
  }
  if (world.borderWidth == 0) {
    world.borderShrinking = false;
    world.borderWidth = 1;
  }
  if (world.borderWidth >= 5) {
    world.borderShrinking = true;
    world.borderWidth = 4;
  }
  PictureBox& canvas = frmMain->canvas;
  canvas.DrawWidth = world.borderWidth * 2;
  const Vector c0 = worldToScreen({0, 0});
  const Vector c1 = worldToScreen({rules::worldSize, 0});
  const Vector c2 = worldToScreen({0, rules::worldSize});
  const Vector c3 = worldToScreen({rules::worldSize, rules::worldSize});
  const int paleness = (world.borderWidth - 1) * 50;
  canvas.ForeColor = RGB(255, paleness, paleness);
  canvas.Line(c0.x, c0.y, c1.x, c1.y);
  canvas.Line(c0.x, c0.y, c2.x, c2.y);
  canvas.Line(c2.x, c2.y, c3.x, c3.y);
  canvas.Line(c1.x, c1.y, c3.x, c3.y);
  canvas.DrawWidth = 1;
}

}  // namespace kelvora::modMain
