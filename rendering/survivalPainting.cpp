#include <algorithm>

#include "base/text.h"
#include "core/modMain.h"
#include "frontend/frmMain.h"

namespace kelvora::modMain {

// Quirk Q-153: the record is taken by the painting, not by the move, so a run that ends before its first picture has
// covered no distance.
void paintSurvival() {
  const Vector place = localPlayer.position;
  survivalMaxDistance = std::max(survivalMaxDistance, getDistance(survivalOrigin, place));
  addDebugText("Survival Max Distance: " + numberText(survivalMaxDistance));

  const Vector start = worldToScreen(survivalOrigin);
  const Vector end = worldToScreen(place);
  PictureBox& canvas = frmMain->canvas;
  canvas.ForeColor = RGB(0, 0, 255);
  canvas.DrawWidth = 1;
  canvas.Line(start.x, start.y, end.x, end.y);
}

}  // namespace kelvora::modMain
