#include "platform/windowing/shownLabel.h"

#include "raster/surface.h"

namespace kelvora {

bool fitWidth(Label& label) {
  if (!label.design.autoSize) return false;
  FontSpec font = label.design.font;
  font.size = label.FontSize;
  label.Width.adopt(Surface::textWidth(font, label.Caption.get()));
  return true;
}

}  // namespace kelvora
