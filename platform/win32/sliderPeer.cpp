#include "platform/desktop/handlerCall.h"
#include "platform/widgets.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/nativePeer.h"

namespace kelvora {

namespace {

class SliderPeer : public NativePeer {
 public:
  SliderPeer(Slider& slider, FormPeer& form)
      : NativePeer(slider, form, TRACKBAR_CLASSW, TBS_HORZ | TBS_AUTOTICKS, FontSpec{}), slider_(slider) {
    SendMessageW(window(), TBM_SETRANGE, TRUE, MAKELPARAM(slider.Min, slider.Max));
    SendMessageW(window(), TBM_SETPAGESIZE, 0, 1);
    SendMessageW(window(), TBM_SETTICFREQ, 1, 0);
    changed(PropertyId::Value);
  }

  void changed(PropertyId id) override {
    if (id == PropertyId::Value) {
      SendMessageW(window(), TBM_SETPOS, TRUE, slider_.Value.get());
    } else {
      NativePeer::changed(id);
    }
  }

  void scrolled(int code) override {
    if (code == TB_ENDTRACK) return;
    const auto value = static_cast<int>(SendMessageW(window(), TBM_GETPOS, 0, 0));
    post({code == TB_THUMBTRACK ? InputKind::Scrolled : InputKind::Changed, value});
  }

  LRESULT notify(const NMHDR& header) override {
    if (header.code != static_cast<UINT>(NM_CUSTOMDRAW)) return CDRF_DODEFAULT;
    const auto& drawing = reinterpret_cast<const NMCUSTOMDRAW&>(header);
    if (drawing.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (drawing.dwItemSpec != TBCD_TICS) return CDRF_DODEFAULT;
    drawTicks(drawing.hdc);
    return CDRF_SKIPDEFAULT;
  }

  void take(const Input& input) override {
    if (input.kind != InputKind::Scrolled && input.kind != InputKind::Changed) return NativePeer::take(input);
    slider_.Value.adopt(input.first);
    raiseEvent(slider_, input.kind == InputKind::Scrolled ? slider_.Scroll : slider_.Change);
  }

 private:
  /// Draws the ticks, because the system's are dark and hard to see on a dark form.
  void drawTicks(HDC dc) const {
    constexpr int length = 4;
    RECT channel{};
    RECT handle{};
    SendMessageW(window(), TBM_GETCHANNELRECT, 0, reinterpret_cast<LPARAM>(&channel));
    SendMessageW(window(), TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&handle));
    const LONG half = (handle.right - handle.left) / 2;
    const LONG left = channel.left + half;
    const LONG steps = slider_.Max - slider_.Min;
    const LONG across = channel.right - half - 1 - left;
    SetDCBrushColor(dc, toColorRef(form().looks().text));
    for (LONG step = 0; step <= steps; ++step) {
      const LONG x = left + across * step / steps;
      const RECT tick{x, handle.bottom + 1, x + 1, handle.bottom + 1 + length};
      FillRect(dc, &tick, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    }
  }

  Slider& slider_;
};

}  // namespace

std::unique_ptr<ControlPeer> makePeer(Slider& slider, FormPeer& form) {
  return std::make_unique<SliderPeer>(slider, form);
}

}  // namespace kelvora
