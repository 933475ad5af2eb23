#include "platform/widgets.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/nativePeer.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

class SliderPeer : public NativePeer {
 public:
  SliderPeer(Slider& slider, FormPeer& form)
      : NativePeer(slider, form, TRACKBAR_CLASSW, TBS_HORZ | TBS_AUTOTICKS | TBS_FIXEDLENGTH | TBS_DOWNISLEFT,
                   FontSpec{}),
        slider_(slider) {
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

  void follow() override {
    NativePeer::follow();
    SendMessageW(window(), TBM_SETTHUMBLENGTH, static_cast<WPARAM>(scaled(thumbLength, form().scale())), 0);
  }

  LRESULT notify(const NMHDR& header) override {
    if (header.code != static_cast<UINT>(NM_CUSTOMDRAW)) return CDRF_DODEFAULT;
    const auto& drawing = reinterpret_cast<const NMCUSTOMDRAW&>(header);
    if (drawing.dwDrawStage == CDDS_PREPAINT) paintAll(drawing.hdc);
    return CDRF_SKIPDEFAULT;
  }

  void take(const Input& input) override {
    if (input.kind != InputKind::Scrolled && input.kind != InputKind::Changed) return NativePeer::take(input);
    slider_.Value.adopt(input.first);
    raiseEvent(slider_, input.kind == InputKind::Scrolled ? slider_.Scroll : slider_.Change);
  }

 private:
  static constexpr int thumbLength = 15;  // pixels

  /// Draws all of it, because the system's slider is light, and in Wine the ticks are below its edge.
  void paintAll(HDC dc) const {
    const Looks& looks = form().looks();
    const Painter painter(dc, 1);  // in device pixels
    RECT whole{};
    RECT channel{};
    RECT thumb{};
    GetClientRect(window(), &whole);
    SendMessageW(window(), TBM_GETCHANNELRECT, 0, reinterpret_cast<LPARAM>(&channel));
    SendMessageW(window(), TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    const auto paint = [&](const RECT& place, Colour fill, Colour line) {
      const Box box{static_cast<int>(place.left), static_cast<int>(place.top),
                    static_cast<int>(place.right - place.left), static_cast<int>(place.bottom - place.top)};
      painter.fill(box, fill);
      painter.border(box, line);
    };
    paint(whole, looks.ground, looks.ground);
    paint(channel, looks.field, looks.line);
    const int half = static_cast<int>(thumb.right - thumb.left) / 2;
    const int left = static_cast<int>(channel.left) + half;
    const int steps = slider_.Max - slider_.Min;
    const int across = static_cast<int>(channel.right) - half - 1 - left;
    const int top = static_cast<int>(thumb.bottom) + 2;
    for (int step = 0; step <= steps; ++step) {
      painter.fill({left + across * step / steps, top, 1, scaled(3, form().scale())}, looks.text);
    }
    paint(thumb, GetFocus() == window() ? looks.chosen : looks.raised, looks.text);
  }

  Slider& slider_;
};

}  // namespace

std::unique_ptr<ControlPeer> makePeer(Slider& slider, FormPeer& form) {
  return std::make_unique<SliderPeer>(slider, form);
}

}  // namespace kelvora
