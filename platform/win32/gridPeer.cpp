#include <algorithm>
#include <cmath>
#include <string>

#include "platform/grid.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/gdiFonts.h"
#include "platform/win32/nativePeer.h"
#include "platform/win32/textLines.h"
#include "platform/win32/wideText.h"
#include "platform/windowing/gridCells.h"
#include "raster/twips.h"
// Needs <windows.h>.
#include <uxtheme.h>

namespace kelvora {

namespace {

UINT flagsOf(int alignment) {
  constexpr UINT across[] = {DT_LEFT, DT_CENTER, DT_RIGHT};
  return alignment == Grid::automaticAlignment ? DT_LEFT : across[alignment / 3];
}

/// A list view, whose headings are the grid's fixed row.
class GridPeer : public NativePeer {
  static constexpr int rowHeight = 18;  // pixels, of the headings, too
  static constexpr int margin = 3;      // device pixels beside a cell's text
  static constexpr UINT cellFlags = DT_VCENTER | DT_END_ELLIPSIS;

 public:
  GridPeer(Grid& grid, FormPeer& form)
      : NativePeer(grid, form, WC_LISTVIEWW, LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER,
                   FontSpec{}),
        grid_(grid) {
    const Looks& looks = form.looks();
    constexpr DWORD extras = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER;
    ListView_SetExtendedListViewStyle(window(), extras);
    ListView_SetBkColor(window(), toColorRef(looks.field));
    ListView_SetTextBkColor(window(), toColorRef(looks.field));
    ListView_SetTextColor(window(), toColorRef(looks.text));
    SetWindowTheme(window(), L"DarkMode_Explorer", nullptr);
    SetWindowSubclass(ListView_GetHeader(window()), &GridPeer::headings, 0, reinterpret_cast<DWORD_PTR>(this));
    reload();
  }
  ~GridPeer() override { RemoveWindowSubclass(ListView_GetHeader(window()), &GridPeer::headings, 0); }

  void changed(PropertyId id) override {
    if (id == PropertyId::Cells) {
      // Once for all changes until the next turn of the event loop.
      if (!isReloadQueued_) post({InputKind::Changed});
      isReloadQueued_ = true;
    } else if (id == PropertyId::CurrentCell) {
      if (!isReloadQueued_) choose(grid_.Row);
    } else {
      NativePeer::changed(id);
    }
  }

  void follow() override {
    // The system's rows are a pixel higher than their pictures. The list view destroys the last of these.
    const HIMAGELIST strut = ImageList_Create(1, deviceHeight() - 1, ILC_COLOR, 0, 0);
    if (const HIMAGELIST before = ListView_SetImageList(window(), strut, LVSIL_SMALL)) ImageList_Destroy(before);
    NativePeer::follow();
    for (int column = 0; column < columns_; ++column) ListView_SetColumnWidth(window(), column, widthOf(column));
  }

  LRESULT notify(const NMHDR& header) override {
    switch (header.code) {
      case static_cast<UINT>(LVN_ITEMCHANGED): {
        const auto& item = reinterpret_cast<const NMLISTVIEW&>(header);
        const bool isChosen = (item.uNewState & LVIS_SELECTED) != 0 && (item.uOldState & LVIS_SELECTED) == 0;
        if (isChosen && !isShowing_) post({InputKind::Edited, item.iItem + fixedRows_});
        return 0;
      }
      case static_cast<UINT>(NM_CUSTOMDRAW):
        return drawRow(reinterpret_cast<const NMLVCUSTOMDRAW&>(header));
      case static_cast<UINT>(NM_DBLCLK):
        post({InputKind::DoubleClick, 1});
        return 0;
      default:
        return 0;
    }
  }

  void take(const Input& input) override {
    switch (input.kind) {
      case InputKind::Changed:
        return reload();
      case InputKind::Edited:
        if (!isReloadQueued_) grid_.adoptCell(input.first, grid_.Col);
        return;
      default:
        return NativePeer::take(input);
    }
  }

 protected:
  /// The headings report to the list view.
  bool handle(UINT message, WPARAM, LPARAM second, LRESULT& result) override {
    if (message != WM_NOTIFY) return false;
    const auto& header = *reinterpret_cast<const NMHDR*>(second);
    if (header.code != static_cast<UINT>(NM_CUSTOMDRAW)) return false;
    result = drawHeading(reinterpret_cast<const NMCUSTOMDRAW&>(header));
    return true;
  }

 private:
  int deviceHeight() const { return static_cast<int>(std::lround(rowHeight * form().scale())); }

  /// Makes the headings as high as the rows, and posts their double-clicks, of which the list view hears only some.
  static LRESULT CALLBACK headings(HWND window, UINT message, WPARAM first, LPARAM second, UINT_PTR, DWORD_PTR self) {
    const auto& peer = *reinterpret_cast<const GridPeer*>(self);
    if (message == WM_LBUTTONDBLCLK) peer.post({InputKind::DoubleClick, leftButton});
    const LRESULT result = DefSubclassProc(window, message, first, second);
    if (message != HDM_LAYOUT) return result;
    const auto& layout = *reinterpret_cast<const HDLAYOUT*>(second);
    const int height = peer.deviceHeight();
    layout.prc->top += height - layout.pwpos->cy;
    layout.pwpos->cy = height;
    return result;
  }

  LRESULT drawHeading(const NMCUSTOMDRAW& drawing) const {
    const Looks& looks = form().looks();
    const Painter painter(drawing.hdc, 1);
    RECT place = drawing.rc;
    if (drawing.dwDrawStage == CDDS_PREPAINT) GetClientRect(drawing.hdr.hwndFrom, &place);
    const Box box{static_cast<int>(place.left), static_cast<int>(place.top), static_cast<int>(place.right - place.left),
                  static_cast<int>(place.bottom - place.top)};
    painter.fill(box, looks.raised);
    if (drawing.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    const int column = static_cast<int>(drawing.dwItemSpec);
    if (column >= columns_ || column >= grid_.Cols || grid_.Rows == 0) return CDRF_SKIPDEFAULT;
    painter.fill({box.left + box.width - 1, box.top, 1, box.height}, looks.line);
    // In device pixels, and so at the form's scale.
    InflateRect(&place, -margin, 0);
    drawText(drawing.hdc, place, toWide(cellLine(grid_, 0, column)), font(), looks.text, cellFlags);
    return CDRF_SKIPDEFAULT;
  }

  /// Draws whole rows, because the system's chosen row is light, and lighter still without the keyboard.
  LRESULT drawRow(const NMLVCUSTOMDRAW& drawing) const {
    const HDC dc = drawing.nmcd.hdc;
    if (drawing.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (drawing.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    const Looks& looks = form().looks();
    const Painter painter(dc, 1);
    const int item = static_cast<int>(drawing.nmcd.dwItemSpec);
    const int row = item + fixedRows_;
    RECT place{};
    if (row >= grid_.Rows || ListView_GetItemRect(window(), item, &place, LVIR_BOUNDS) == FALSE)
      return CDRF_SKIPDEFAULT;
    const bool isChosen = ListView_GetItemState(window(), item, LVIS_SELECTED) != 0;
    const int height = static_cast<int>(place.bottom - place.top);
    const int top = static_cast<int>(place.top);
    int left = static_cast<int>(place.left);
    for (int column = 0; column < columns_ && column < grid_.Cols; ++column) {
      const int width = ListView_GetColumnWidth(window(), column);
      painter.fill({left, top, width, height}, isChosen ? looks.chosen : looks.field);
      const RECT cell{left + margin, top, left + width - margin, top + height};
      drawText(dc, cell, toWide(cellLine(grid_, row, column)), font(), looks.text,
               flagsOf(grid_.ColAlignment(column)) | cellFlags);
      left += width;
      painter.fill({left - 1, top, 1, height}, looks.ground);
    }
    painter.fill({static_cast<int>(place.left), top + height - 1, left - static_cast<int>(place.left), 1},
                 looks.ground);
    return CDRF_SKIPDEFAULT;
  }

  HFONT font() const { return gdiFont(FontSpec{}, form().scale()); }

  /// Cuts the last column at the edge if its texts still fit, so that no scroll bar is needed.
  int widthOf(int column) const {
    const int width = deviceWidth(column);
    if (column + 1 < columns_) return width;
    const RECT place = deviceRect(box(), form().scale());
    const bool scrolls = grid_.Rows * deviceHeight() > place.bottom - place.top;
    int room = static_cast<int>(place.right - place.left) - (scrolls ? GetSystemMetrics(SM_CXVSCROLL) : 0);
    for (int other = 0; other < column; ++other) room -= deviceWidth(other);
    const FontMeasure measure(font());
    int needed = 0;
    for (int row = 0; row < grid_.Rows; ++row) {
      const std::wstring text = toWide(cellLine(grid_, row, column));
      needed = std::max(needed, measure.width(text.data(), text.size()) + 2 * margin);
    }
    return width > room && needed <= room ? room : width;
  }

  int deviceWidth(int column) const { return static_cast<int>(toPixels(grid_.ColWidth(column)) * form().scale()); }

  void reload() {
    isReloadQueued_ = false;
    isShowing_ = true;
    const bool blank = isBlank(grid_);
    SendMessageW(window(), WM_SETREDRAW, FALSE, 0);
    ListView_DeleteAllItems(window());
    while (ListView_DeleteColumn(window(), 0) != FALSE) {
    }
    columns_ = blank ? 0 : grid_.Cols;
    fixedRows_ = blank ? 0 : grid_.FixedRows;
    showHeadings(fixedRows_ > 0);
    for (int column = 0; column < columns_; ++column) addColumn(column);
    for (int row = fixedRows_; !blank && row < grid_.Rows; ++row) addRow(row);
    SendMessageW(window(), WM_SETREDRAW, TRUE, 0);
    InvalidateRect(window(), nullptr, TRUE);
    isShowing_ = false;
  }

  void showHeadings(bool areShown) const {
    const LONG_PTR style = GetWindowLongPtrW(window(), GWL_STYLE);
    constexpr LONG_PTR hidden = LVS_NOCOLUMNHEADER;
    SetWindowLongPtrW(window(), GWL_STYLE, areShown ? style & ~hidden : style | hidden);
  }

  void addColumn(int column) {
    std::wstring title = fixedRows_ > 0 ? toWide(cellLine(grid_, 0, column)) : std::wstring();
    LVCOLUMNW entry{};
    entry.mask = LVCF_WIDTH | LVCF_TEXT;
    entry.cx = widthOf(column);
    entry.pszText = title.data();
    SendMessageW(window(), LVM_INSERTCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&entry));
  }

  void addRow(int row) {
    for (int column = 0; column < columns_; ++column) {
      std::wstring text = toWide(cellLine(grid_, row, column));
      LVITEMW cell{};
      cell.mask = LVIF_TEXT;
      cell.iItem = row - fixedRows_;
      cell.iSubItem = column;
      cell.pszText = text.data();
      const UINT message = column == 0 ? LVM_INSERTITEMW : LVM_SETITEMW;
      SendMessageW(window(), message, 0, reinterpret_cast<LPARAM>(&cell));
    }
  }

  void choose(int row) {
    isShowing_ = true;
    const int item = row - fixedRows_;
    if (item >= 0) {
      ListView_SetItemState(window(), item, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
      ListView_EnsureVisible(window(), item, FALSE);
    }
    isShowing_ = false;
  }

  Grid& grid_;
  int columns_ = 0;
  int fixedRows_ = 0;
  bool isReloadQueued_ = false;
  bool isShowing_ = false;
};

}  // namespace

std::unique_ptr<ControlPeer> makePeer(Grid& grid, FormPeer& form) { return std::make_unique<GridPeer>(grid, form); }

}  // namespace kelvora
