#include <algorithm>
#include <string>

#include "platform/win32/formPeer.h"
#include "platform/win32/gdiFonts.h"
#include "platform/win32/nativePeer.h"
#include "platform/win32/wideText.h"
#include "platform/windowing/lineText.h"

namespace kelvora {

namespace {

class TextBoxPeer : public NativePeer {
 public:
  TextBoxPeer(TextBox& box, FormPeer& form)
      : NativePeer(box, form, WC_EDITW, ES_AUTOHSCROLL, box.design.font), box_(box) {
    const int caret = box.SelStart;
    show(box.Text);
    moveCaret(caret);
    box_.SelStart.adopt(caretOf());
  }

  void changed(PropertyId id) override {
    if (id == PropertyId::Text) {
      if (textOf() == box_.Text.get()) return;
      show(box_.Text);
      moveCaret(0);
      box_.SelStart.adopt(0);
    } else if (id == PropertyId::SelStart) {
      moveCaret(box_.SelStart);
    } else {
      NativePeer::changed(id);
    }
  }

  void command(int code) override {
    if (code == EN_CHANGE && !isShowing_) post({InputKind::Edited});
  }

  void take(const Input& input) override {
    if (input.kind == InputKind::Edited) {
      adoptEdit();
    } else {
      // Keys may have moved the caret without an edit.
      box_.SelStart.adopt(caretOf());
      NativePeer::take(input);
    }
  }

  void follow() override {
    NativePeer::follow();
    SendMessageW(window(), EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, 0);
  }

  HBRUSH colours(HDC dc) const override {
    SetTextColor(dc, toColorRef(fore()));
    SetBkColor(dc, toColorRef(back()));
    SetDCBrushColor(dc, toColorRef(back()));
    return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
  }

  void paint(const Painter& painter, const Box& place) override {
    painter.fill(place, back());
    const Looks& looks = form().looks();
    if (box_.design.systemColours) painter.border(place, GetFocus() == window() ? looks.chosen : looks.line);
  }

 protected:
  /// The native edit window is as high as its line of text, and centred in the control, which draws the border.
  Box windowBox(const Box& place) const override {
    constexpr int margin = 3;
    const int height = FontMeasure(gdiFont(box_.design.font, 1)).lineHeight();
    const int above = std::max((place.height - height + 1) / 2, 1);
    return {place.left + margin, place.top + above, place.width - 2 * margin, std::min(height, place.height - 2)};
  }

  bool handle(UINT message, WPARAM first, LPARAM, LRESULT&) override {
    constexpr WPARAM controlBackspace = 0x7F;
    if (message == WM_SETFOCUS || message == WM_KILLFOCUS) repaint();
    const bool isWord = message == WM_CHAR && first == controlBackspace;
    if (isWord) deleteWord();
    return isWord;
  }

 private:
  Colour fore() const { return box_.design.systemColours ? form().looks().text : box_.design.fore; }
  Colour back() const { return box_.design.systemColours ? form().looks().field : box_.design.back; }

  void show(const std::string& text) {
    isShowing_ = true;
    SetWindowTextW(window(), toWide(text).c_str());
    isShowing_ = false;
  }

  std::wstring wideText() const {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window())), L'\0');
    GetWindowTextW(window(), text.data(), static_cast<int>(text.size()) + 1);
    return text;
  }
  static std::string bytesOf(std::wstring_view text) { return fromWide(withJoinedAccents(text)); }
  std::string textOf() const { return bytesOf(wideText()); }

  int caretOf() const {
    DWORD from = 0;
    DWORD to = 0;
    SendMessageW(window(), EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    return static_cast<int>(to);
  }

  void moveCaret(int position) {
    SendMessageW(window(), EM_SETSEL, static_cast<WPARAM>(position), position);
    SendMessageW(window(), EM_SCROLLCARET, 0, 0);
  }

  /// Deletes the selection, or else the word before the caret.
  void deleteWord() {
    DWORD from = 0;
    DWORD to = 0;
    SendMessageW(window(), EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    if (from == to) {
      const std::wstring text = wideText();
      while (from > 0 && text[from - 1] == L' ') --from;
      while (from > 0 && text[from - 1] != L' ') --from;
      SendMessageW(window(), EM_SETSEL, from, static_cast<LPARAM>(to));
    }
    SendMessageW(window(), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(L""));
  }

  void adoptEdit() {
    const std::string text = textOf();
    const std::string clean = cleanLine(text);
    if (clean != text || static_cast<int>(text.size()) != GetWindowTextLengthW(window())) {
      const auto caret = cleanLine(bytesOf(wideText().substr(0, static_cast<std::size_t>(caretOf())))).size();
      show(clean);
      moveCaret(static_cast<int>(caret));
    }
    box_.Text.adopt(clean);
    box_.SelStart.adopt(caretOf());
  }

  TextBox& box_;
  bool isShowing_ = false;
};

}  // namespace

std::unique_ptr<ControlPeer> makePeer(TextBox& box, FormPeer& form) { return std::make_unique<TextBoxPeer>(box, form); }

}  // namespace kelvora
