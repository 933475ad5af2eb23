#pragma once

#include <string>
#include <vector>

#include "platform/win32/win32.h"
#include "raster/colour.h"

namespace kelvora {

/// A line of text with the advance of each character, in device pixels. Text is drawn with the measured advances,
/// because Wine would set letters closer than it measures them.
struct MeasuredLine {
  std::wstring text;
  std::vector<int> advances;
  int width = 0;
};

/// Breaks text at line feeds, and at blanks where a line would be wider than `maxWidth` device pixels in the context's
/// font. A longer word stays whole. With a `maxWidth` of 0, breaks at line feeds only. Returns at least one line.
std::vector<MeasuredLine> textLines(HDC dc, const std::wstring& text, int maxWidth);

int widest(const std::vector<MeasuredLine>& lines);

/// Draws text in a rectangle of device pixels. `flags` are DT_CENTER, DT_RIGHT, DT_VCENTER, DT_WORDBREAK, DT_NOCLIP and
/// DT_END_ELLIPSIS.
void drawText(HDC dc, const RECT& place, const std::wstring& text, HFONT font, Colour colour, UINT flags);

}  // namespace kelvora
