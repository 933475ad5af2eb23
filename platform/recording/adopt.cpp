#include <cmath>

#include "platform/form.h"
#include "platform/grid.h"
#include "platform/recording/replay.h"
#include "platform/widgets.h"
#include "raster/twips.h"

namespace kelvora::recording {

namespace {

float readLength(Reader& reader, float maximum) {
  const float twips = reader.real();
  if (twips < 0 || twips > maximum) throw Damaged("a length is out of range");
  return twips;
}

/// A window's length. All pixels together are bounded, too.
void adoptLength(Form& form, Extent& length, float value) {
  constexpr double maxPixels = 36'000'000;
  length.adopt(value);
  const double pixels =
      static_cast<double>(form.Width) * static_cast<double>(form.Height) / (twipsPerPixel * twipsPerPixel);
  if (pixels > maxPixels) throw Damaged("a window is too large");
}

}  // namespace

void Replay::adopt() {
  Control& control = readControl();
  auto* const form = dynamic_cast<Form*>(&control);
  auto* const textBox = dynamic_cast<TextBox*>(&control);
  const auto id = static_cast<PropertyId>(reader_.byte());
  if (form && (id == PropertyId::Left || id == PropertyId::Top)) {
    const float twips = reader_.real();
    if (std::fabs(twips) > maxTwips) throw Damaged("a position is out of range");
    (id == PropertyId::Left ? form->Left : form->Top).adopt(twips);
  } else if (form && id == PropertyId::Width) {
    adoptLength(*form, form->Width, readLength(reader_, maxSide));
  } else if (form && id == PropertyId::Height) {
    adoptLength(*form, form->Height, readLength(reader_, maxSide));
  } else if (id == PropertyId::Width && dynamic_cast<Label*>(&control)) {
    control.Width.adopt(readLength(reader_, maxTwips));
  } else if (textBox && id == PropertyId::Text) {
    textBox->Text.adopt(reader_.text(maxText));
  } else if (textBox && id == PropertyId::SelStart) {
    textBox->SelStart.adopt(reader_.within(0, static_cast<int>(maxText)));
  } else if (auto* box = dynamic_cast<CheckBox*>(&control); box && id == PropertyId::Value) {
    box->Value.adopt(reader_.within(0, 1));
  } else if (auto* slider = dynamic_cast<Slider*>(&control); slider && id == PropertyId::Value) {
    slider->Value.adopt(reader_.within(slider->Min, slider->Max));
  } else if (auto* grid = dynamic_cast<Grid*>(&control); grid && id == PropertyId::CurrentCell) {
    constexpr int maximum = 1'000'000;
    const int row = reader_.within(-1, maximum);
    grid->adoptCell(row, reader_.within(-1, maximum));
  } else {
    throw Damaged("a control has no such property");
  }
}

}  // namespace kelvora::recording
