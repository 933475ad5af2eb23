#include "platform/win32/textLines.h"

#include <algorithm>
#include <cstddef>

#include "platform/win32/painter.h"

namespace kelvora {

namespace {

MeasuredLine measured(HDC dc, std::wstring text) {
  MeasuredLine line{std::move(text), {}, 0};
  std::vector<int> ends(line.text.size());
  SIZE size{};
  if (!ends.empty() && GetTextExtentExPointW(dc, line.text.c_str(), static_cast<int>(ends.size()), 0, nullptr,
                                             ends.data(), &size) != FALSE) {
    line.width = ends.back();
  }
  line.advances = ends;
  for (std::size_t i = 1; i < ends.size(); ++i) line.advances[i] = ends[i] - ends[i - 1];
  return line;
}

MeasuredLine part(const MeasuredLine& whole, std::size_t begin, std::size_t end) {
  const auto from = static_cast<std::ptrdiff_t>(begin);
  const auto to = static_cast<std::ptrdiff_t>(end);
  MeasuredLine line{
      whole.text.substr(begin, end - begin), {whole.advances.begin() + from, whole.advances.begin() + to}, 0};
  for (const int advance : line.advances) line.width += advance;
  return line;
}

void wrap(const MeasuredLine& paragraph, int maxWidth, std::vector<MeasuredLine>& lines) {
  std::size_t begin = 0;
  std::size_t blank = 0;  // the last one in the line; `begin` without any
  int width = 0;
  for (std::size_t i = 0; i < paragraph.text.size(); ++i) {
    if (paragraph.text[i] == L' ') blank = i;
    width += paragraph.advances[i];
    if (width <= maxWidth || blank <= begin || paragraph.text[i] == L' ') continue;
    lines.push_back(part(paragraph, begin, blank));
    begin = blank + 1;
    blank = begin;
    width = part(paragraph, begin, i + 1).width;
  }
  lines.push_back(part(paragraph, begin, paragraph.text.size()));
}

/// Ends a line that is too wide with dots.
MeasuredLine shortened(HDC dc, const MeasuredLine& line, int maxWidth) {
  if (line.width <= maxWidth) return line;
  const MeasuredLine dots = measured(dc, L"...");
  std::size_t end = 0;
  for (int width = dots.width; end < line.text.size() && width + line.advances[end] <= maxWidth; ++end) {
    width += line.advances[end];
  }
  return measured(dc, line.text.substr(0, end) + dots.text);
}

}  // namespace

std::vector<MeasuredLine> textLines(HDC dc, const std::wstring& text, int maxWidth) {
  std::vector<MeasuredLine> lines;
  std::wstring paragraph;
  const auto finish = [&] {
    MeasuredLine line = measured(dc, std::move(paragraph));
    paragraph.clear();
    maxWidth > 0 ? wrap(line, maxWidth, lines) : lines.push_back(std::move(line));
  };
  for (const wchar_t letter : text) {
    constexpr std::size_t tab = 8;
    if (letter == L'\n') {
      finish();
    } else if (letter == L'\t') {
      paragraph.append(tab - paragraph.size() % tab, L' ');
    } else if (letter != L'\r') {
      paragraph += letter;
    }
  }
  finish();
  return lines;
}

int widest(const std::vector<MeasuredLine>& lines) {
  int width = 0;
  for (const MeasuredLine& line : lines) width = std::max(width, line.width);
  return width;
}

void drawText(HDC dc, const RECT& place, const std::wstring& text, HFONT font, Colour colour, UINT flags) {
  const HGDIOBJ before = SelectObject(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, toColorRef(colour));
  const int width = place.right - place.left;
  const std::vector<MeasuredLine> lines = textLines(dc, text, (flags & DT_WORDBREAK) != 0 ? width : 0);
  TEXTMETRICW metrics{};
  GetTextMetricsW(dc, &metrics);
  int top = place.top;
  if ((flags & DT_VCENTER) != 0) {
    top += (place.bottom - place.top - metrics.tmHeight * static_cast<int>(lines.size())) / 2;
  }
  for (const MeasuredLine& whole : lines) {
    const MeasuredLine line = (flags & DT_END_ELLIPSIS) != 0 ? shortened(dc, whole, width) : whole;
    const int room = width - line.width;
    int left = place.left;
    if ((flags & DT_RIGHT) != 0) left += room;
    if ((flags & DT_CENTER) != 0) left += room / 2;
    ExtTextOutW(dc, left, top, (flags & DT_NOCLIP) != 0 ? 0U : ETO_CLIPPED, &place, line.text.c_str(),
                static_cast<UINT>(line.text.size()), line.advances.data());
    top += metrics.tmHeight;
  }
  SelectObject(dc, before);
}

}  // namespace kelvora
