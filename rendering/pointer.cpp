#include "rendering/pointer.h"

#include <cmath>

#include "core/input.h"
#include "core/view.h"
#include "frontend/frmMain.h"
#include "rendering/frmGfx.h"
#include "rendering/sprites.h"

namespace kelvora::modMain {

int pointerFrame(const Bearing& bearing) {
  static constexpr int frames[4][4] = {{0, 1, 2, 3}, {0, 11, 10, 9}, {6, 7, 8, 9}, {6, 5, 4, 3}};
  // Quirk Q-128: the bands are 15, 25, 20 and 27.5 wide.
  int band = 3;
  if (bearing.angle < 60) band = 2;
  if (bearing.angle < 40) band = 1;
  if (bearing.angle < 15) band = 0;
  return frames[bearing.quadrant - 1][band];
}

void paintPointer() {
  FrmMain& form = *frmMain;
  const Bearing bearing = steerToMouse();
  const Vector mouse = getMousePos();
  if (form.mnuDirLineAlways.Checked || (form.mnuDirLineClick.Checked && form.isLockMouse())) {
    form.canvas.ForeColor = RGB(255, 255, 255);
    const Vector centre = getCanvasCentre();
    form.canvas.Line(centre.x, centre.y, mouse.x, mouse.y);
  }

  const SheetImage& sheet = frmGfx->imgArrows;
  const float width = std::floor(sheet.Width / 12);
  const float height = std::floor(sheet.Height / 2);
  const float left = static_cast<float>(pointerFrame(bearing)) * width;
  paintSprite(form.canvas, {sheet, left, height}, {sheet, left, 0},
              {mouse.x - std::floor(width / 2), mouse.y - std::floor(height / 2), width, height});
}

}  // namespace kelvora::modMain
