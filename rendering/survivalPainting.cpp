#include <algorithm>

#include "base/text.h"
#include "core/modMain.h"
#include "core/view.h"
#include "frontend/frmMain.h"
#include "rendering/layers.h"

namespace kelvora::modMain {

// Quirk Q-153: painting takes the record, so a run that ends before its first frame is painted has covered no distance.
void paintSurvival() {
  const Vector place = world.localPlayer.position;
  world.survivalMaxDistance = std::max(world.survivalMaxDistance, getDistance(world.survivalOrigin, place));
  addDebugText("Survival Max Distance: " + numberText(world.survivalMaxDistance));

  const Vector start = worldToScreen(world.survivalOrigin);
  const Vector end = worldToScreen(place);
  PictureBox& canvas = frmMain->canvas;
  canvas.ForeColor = RGB(0, 0, 255);
  canvas.DrawWidth = 1;
  canvas.Line(start.x, start.y, end.x, end.y);
}

}  // namespace kelvora::modMain
