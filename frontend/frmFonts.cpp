#include "frontend/frmFonts.h"

#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "frontend/fontMan.h"

namespace kelvora {

FormSlot<FrmFonts> frmFonts;

FrmFonts::FrmFonts()
    : Form("Configure Fonts", {.clientWidth = 6765, .clientHeight = 5715, .border = Border::Fixed, .back = black}) {
  int tabIndex = 0;
  for (Slider& slider : sldSize) slider.TabIndex = tabIndex++;
  cmdClose.TabIndex = tabIndex;

  ControlArray<Label, 5>* const bars[] = {&lblColorRed, &lblColorGreen, &lblColorBlue};
  for (int purpose = 0; purpose < fontMan::purposeCount; ++purpose) {
    for (std::uint8_t channel = 0; channel < 3; ++channel) {
      Label& bar = (*bars[channel])[purpose];
      bar.MouseMove = [&bar, purpose, channel](int Button, int, float X, float) {
        barMouseMove(bar, purpose, channel, Button, X);
      };
    }
    sldSize[purpose].Change = sldSize[purpose].Scroll = [this, purpose] { sizeChanged(purpose); };
  }
  cmdClose.Click = [] { frmFonts.unload(); };
}

void FrmFonts::load() { fontMan::showFontsToForm(); }

// Quirk Q-142: only a drag sets the channel. A press on a bar does nothing.
void FrmFonts::barMouseMove(const Label& bar, int purpose, std::uint8_t channel, int Button, float X) {
  if (Button != leftButton) return;
  // Quirk Q-140: the factor is 100 although a channel goes up to 255. The bar ends at 100, and brighter colours need a
  // drag beyond it.
  const double value = std::floor(static_cast<double>(X) * 100 / bar.Width);
  fontMan::setFontColour(static_cast<std::int16_t>(purpose), channel, toByte(std::clamp(value, 0.0, 255.0)));
}

void FrmFonts::sizeChanged(int purpose) {
  fontMan::setFontSize(static_cast<std::int16_t>(purpose), toInt16(sldSize[purpose].Value));
}

}  // namespace kelvora
