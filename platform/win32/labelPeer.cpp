#include <vector>

#include "platform/win32/controlPeer.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/gdiFonts.h"
#include "platform/win32/textLines.h"
#include "platform/win32/wideText.h"
#include "platform/windowing/shownLabel.h"

namespace kelvora {

namespace {

class LabelPeer : public ControlPeer {
 public:
  LabelPeer(Label& label, FormPeer& form) : ControlPeer(label, form), label_(label) { fitWidth(label_); }

  void changed(PropertyId id) override {
    if (!shown_.isNew(id)) return;
    if (id == PropertyId::Caption || id == PropertyId::FontSize) fitWidth(label_);
    ControlPeer::changed(id);
  }

  void paint(const Painter& painter, const Box& place) override {
    const LabelDesign& design = label_.design;
    const Looks& looks = form().looks();
    if (!design.transparent) painter.fill(place, design.systemColours ? looks.ground : label_.BackColor.get());
    Box inside = place;
    if (label_.BorderStyle != 0) {
      painter.border(place, design.systemColours ? looks.line : lineGrey);
      inside = {place.left + 1, place.top + 1, place.width - 2, place.height - 2};
    }
    const std::wstring text = toWide(label_.Caption.get());
    if (text.empty()) return;
    FontSpec font = design.font;
    font.size = label_.FontSize;
    const Layout layout = fit(font, text, inside, painter.scale());
    // Centres a single line, with any odd pixel above it. Headings and paragraphs start at the top.
    const bool isSingle = inside.height < 2 * layout.lineHeight;
    if (isSingle) inside.top += (inside.height - layout.lineHeight + 1) / 2;
    painter.text(inside, text, font, design.systemColours ? looks.text : label_.ForeColor.get(),
                 alignment() | (layout.wraps ? DT_WORDBREAK : 0U));
  }

 private:
  struct Layout {
    int lineHeight;
    bool wraps;
  };

  /// Makes the font smaller, to three quarters at most, until the text fits. Wraps it where there is room for two
  /// lines.
  static Layout fit(FontSpec& font, const std::wstring& text, const Box& room, double scale) {
    constexpr float pixelInPoints = 0.75F;
    const float smallest = font.size * 0.75F;
    const FontSpec designed = font;
    for (;;) {
      const FontMeasure measure(gdiFont(font, scale));
      const int lineHeight = static_cast<int>(measure.lineHeight() / scale);
      const bool severalLines = room.height >= 2 * lineHeight;
      const RECT place = deviceRect({0, 0, room.width, room.height}, scale);
      const std::vector<MeasuredLine> lines = textLines(measure.dc(), text, severalLines ? place.right : 0);
      const int height = measure.lineHeight() * static_cast<int>(lines.size());
      const bool fits = widest(lines) <= place.right && (height <= place.bottom || !severalLines);
      const bool wraps = severalLines && lines.size() > 1;
      if (fits) return {lineHeight, wraps};
      if (font.size - pixelInPoints < smallest) {
        font = designed;
        return {lineHeight, severalLines};
      }
      font.size -= pixelInPoints;
    }
  }

  UINT alignment() const {
    switch (label_.design.alignment) {
      case Alignment::Right:
        return DT_RIGHT;
      case Alignment::Centre:
        return DT_CENTER;
      default:
        return DT_LEFT;
    }
  }

  Label& label_;
  ShownLabel shown_{label_};
};

}  // namespace

std::unique_ptr<ControlPeer> makePeer(Label& label, FormPeer& form) { return std::make_unique<LabelPeer>(label, form); }

}  // namespace kelvora
