#include "platform/win32/gdiFonts.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "platform/win32/wideText.h"

namespace kelvora {

namespace {

bool isInstalled(const std::wstring& family) {
  LOGFONTW wanted{};
  wanted.lfCharSet = DEFAULT_CHARSET;
  family.copy(wanted.lfFaceName, LF_FACESIZE - 1);
  bool found = false;
  const HDC screen = GetDC(nullptr);
  const auto note = [](const LOGFONTW*, const TEXTMETRICW*, DWORD type, LPARAM result) -> int {
    // Bitmap fonts have few sizes and no grey levels.
    const bool isOutline = type != RASTER_FONTTYPE;
    if (isOutline) *reinterpret_cast<bool*>(result) = true;
    return isOutline ? 0 : 1;
  };
  EnumFontFamiliesExW(screen, &wanted, note, reinterpret_cast<LPARAM>(&found), 0);
  ReleaseDC(nullptr, screen);
  return found;
}

/// The family, or the first installed substitute of a similar style.
std::wstring familyFor(const std::string& family) {
  std::wstring wanted = toWide(family).substr(0, LF_FACESIZE - 1);
  if (isInstalled(wanted)) return wanted;
  const bool isPlain = family == "MS Sans Serif";
  const std::vector<std::wstring> others =
      isPlain ? std::vector<std::wstring>{L"Microsoft Sans Serif", L"Liberation Sans", L"Arial"}
              : std::vector<std::wstring>{L"Comic Sans MS", L"Comic Neue"};
  for (const std::wstring& other : others) {
    if (isInstalled(other)) return other;
  }
  return wanted;
}

}  // namespace

HFONT gdiFont(const FontSpec& font, double scale) {
  static std::map<std::string, std::wstring> families;
  static std::map<std::tuple<std::string, int, bool>, HFONT> fonts;
  // Rounded down, so that texts fit where they do at scale 1.
  const int height = std::max(static_cast<int>(fontPixels(font.size) * scale), 1);
  HFONT& found = fonts[{font.family, height, font.bold}];
  if (found != nullptr) return found;
  auto family = families.find(font.family);
  if (family == families.end()) family = families.emplace(font.family, familyFor(font.family)).first;
  found = CreateFontW(-height, 0, 0, 0, font.bold ? FW_BOLD : FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                      OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, DEFAULT_PITCH | FF_DONTCARE,
                      family->second.c_str());
  return found;
}

FontMeasure::FontMeasure(HFONT font) : dc_(CreateCompatibleDC(nullptr)), before_(SelectObject(dc_, font)) {
  GetTextMetricsW(dc_, &metrics_);
}

FontMeasure::~FontMeasure() {
  SelectObject(dc_, before_);
  DeleteDC(dc_);
}

int FontMeasure::width(const wchar_t* text, std::size_t length) const {
  SIZE size{};
  GetTextExtentPoint32W(dc_, text, static_cast<int>(length), &size);
  return size.cx;
}

}  // namespace kelvora
