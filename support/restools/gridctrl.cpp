// The table: cells, drawing, scrolling.
#include "restools/gridctrl.h"

#include "restools/dpi.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr int standardHeight = 22, standardWidth = 80; // pixels at 96 dots an inch
constexpr int inset = 5;                               // of a text in its cell
constexpr COLORREF lineColor = RGB(212, 212, 212);
constexpr COLORREF focusColor = RGB(204, 228, 247);

} // namespace

BEGIN_MESSAGE_MAP(CGridCtrl, CWnd)
ON_WM_PAINT()
ON_WM_ERASEBKGND()
ON_WM_SIZE()
ON_WM_VSCROLL()
ON_WM_HSCROLL()
ON_WM_MOUSEWHEEL()
ON_WM_LBUTTONDOWN()
ON_WM_LBUTTONDBLCLK()
ON_WM_KEYDOWN()
ON_WM_CHAR()
ON_WM_SETFOCUS()
ON_WM_KILLFOCUS()
ON_WM_GETDLGCODE()
ON_WM_COPYDATA()
ON_MESSAGE(WM_GETTEXT, &CGridCtrl::OnGetText)
ON_MESSAGE(WM_GETTEXTLENGTH, &CGridCtrl::OnGetTextLength)
END_MESSAGE_MAP()

CGridCtrl::CGridCtrl() : mEdit(*this) {
    WNDCLASS window{};
    window.style = CS_DBLCLKS;
    window.hCursor = LoadCursor(nullptr, IDC_ARROW);
    window.lpszClassName = className;
    AfxRegisterClass(&window);
}

CGridCtrl::Cell* CGridCtrl::cell(int row, int column) {
    return const_cast<Cell*>(std::as_const(*this).cell(row, column));
}

const CGridCtrl::Cell* CGridCtrl::cell(int row, int column) const {
    if (row < 0 || row >= GetRowCount() || column < 0 || column >= GetColumnCount()) {
        return nullptr;
    }
    return &mCells[static_cast<std::size_t>(row) * mColumnWidths.size() + static_cast<std::size_t>(column)];
}

void CGridCtrl::resizeCells(int rows, int columns) {
    EndEdit(false);
    const auto across = static_cast<std::size_t>(std::max(0, columns));
    const auto down = static_cast<std::size_t>(std::max(0, rows));
    std::vector<Cell> cells(across * down);
    for (std::size_t row = 0; row < std::min(down, mRowHeights.size()); ++row) {
        for (std::size_t column = 0; column < std::min(across, mColumnWidths.size()); ++column) {
            cells[row * across + column] = std::move(mCells[row * mColumnWidths.size() + column]);
        }
    }
    mCells = std::move(cells);
    mRowHeights.resize(down, CalculateByDPI(standardHeight));
    mColumnWidths.resize(across, CalculateByDPI(standardWidth));
    if (cell(mFocus.row, mFocus.col) == nullptr) {
        mFocus = {};
    }
    updateScroll();
}

void CGridCtrl::SetRowCount(int rows) {
    resizeCells(rows, GetColumnCount());
}
void CGridCtrl::SetColumnCount(int columns) {
    resizeCells(GetRowCount(), columns);
}
void CGridCtrl::SetFixedRowCount(int rows) {
    mFixedRows = std::clamp(rows, 0, GetRowCount());
    updateScroll();
}
void CGridCtrl::SetFixedColumnCount(int columns) {
    mFixedColumns = std::clamp(columns, 0, GetColumnCount());
    updateScroll();
}
void CGridCtrl::DeleteAllItems() {
    mFixedRows = mFixedColumns = 0;
    resizeCells(0, 0);
}

bool CGridCtrl::SetItemText(int row, int column, const ACHAR* text) {
    Cell* set = cell(row, column);
    if (set != nullptr) {
        set->text = text;
        RedrawCell(row, column);
    }
    return set != nullptr;
}
CString CGridCtrl::GetItemText(int row, int column) const {
    const Cell* asked = cell(row, column);
    return asked != nullptr ? asked->text : CString();
}
bool CGridCtrl::SetItemData(int row, int column, LPARAM data) {
    Cell* set = cell(row, column);
    if (set != nullptr) {
        set->data = data;
    }
    return set != nullptr;
}
LPARAM CGridCtrl::GetItemData(int row, int column) const {
    const Cell* asked = cell(row, column);
    return asked != nullptr ? asked->data : 0;
}
bool CGridCtrl::SetItemFormat(int row, int column, UINT format) {
    Cell* set = cell(row, column);
    if (set != nullptr) {
        set->format = format | DT_NOPREFIX;
        RedrawCell(row, column);
    }
    return set != nullptr;
}
bool CGridCtrl::SetItemReadOnly(int row, int column, bool readOnly) {
    Cell* set = cell(row, column);
    if (set != nullptr) {
        set->readOnly = readOnly;
    }
    return set != nullptr;
}
bool CGridCtrl::IsItemReadOnly(int row, int column) const {
    const Cell* asked = cell(row, column);
    return asked == nullptr || asked->readOnly;
}
bool CGridCtrl::SetItemBkColour(int row, int column, COLORREF color) {
    Cell* set = cell(row, column);
    if (set != nullptr) {
        set->hasColor = true;
        set->color = color;
        RedrawCell(row, column);
    }
    return set != nullptr;
}

void CGridCtrl::SetRowHeight(int row, int height) {
    if (row >= 0 && row < GetRowCount()) {
        mRowHeights[static_cast<std::size_t>(row)] = std::max(0, height);
        updateScroll();
    }
}
int CGridCtrl::GetRowHeight(int row) const {
    return row >= 0 && row < GetRowCount() ? mRowHeights[static_cast<std::size_t>(row)] : 0;
}
void CGridCtrl::SetColumnWidth(int column, int width) {
    if (column >= 0 && column < GetColumnCount()) {
        mColumnWidths[static_cast<std::size_t>(column)] = std::max(0, width);
        updateScroll();
    }
}
int CGridCtrl::GetColumnWidth(int column) const {
    return column >= 0 && column < GetColumnCount() ? mColumnWidths[static_cast<std::size_t>(column)] : 0;
}

void CGridCtrl::AutoSizeColumns() {
    CClientDC context(this);
    for (int column = 0; column < GetColumnCount(); ++column) {
        int widest = 0;
        for (int row = 0; row < GetRowCount(); ++row) {
            widest = std::max<int>(widest, context.GetTextExtent(GetItemText(row, column)).cx);
        }
        mColumnWidths[static_cast<std::size_t>(column)] = widest + 2 * inset + 4;
    }
    updateScroll();
}

void CGridCtrl::ExpandLastColumn() {
    CRect client;
    GetClientRect(client);
    const int last = GetColumnCount() - 1;
    if (last >= 0) {
        const int before = std::accumulate(mColumnWidths.begin(), mColumnWidths.end() - 1, 0);
        SetColumnWidth(last, std::max(GetColumnWidth(last), client.Width() - before));
    }
}

int CGridCtrl::leftOf(int column) const {
    const int left = std::accumulate(mColumnWidths.begin(), mColumnWidths.begin() + column, 0);
    return column < mFixedColumns ? left : left - mScrolled;
}

int CGridCtrl::topOf(int row) const {
    const auto begin = mRowHeights.begin();
    const int fixed = std::accumulate(begin, begin + std::min(row, mFixedRows), 0);
    if (row < mFixedRows) {
        return fixed;
    }
    const int first = mFixedRows + mTopRow;
    return row >= first ? fixed + std::accumulate(begin + first, begin + row, 0)
                        : fixed - std::accumulate(begin + row, begin + first, 0);
}

bool CGridCtrl::GetCellRect(int row, int column, LPRECT rect) const {
    *rect = {};
    if (cell(row, column) == nullptr) {
        return false;
    }
    const CRect place(CPoint(leftOf(column), topOf(row)), CSize(GetColumnWidth(column), GetRowHeight(row)));
    *rect = place;
    const bool hiddenAbove = row >= mFixedRows && row < mFixedRows + mTopRow;
    const bool hiddenLeft = column >= mFixedColumns && mFixedColumns < GetColumnCount() &&
                            place.right <= leftOf(mFixedColumns) + mScrolled;
    CRect client;
    GetClientRect(client);
    return !hiddenAbove && !hiddenLeft && place.left < client.right && place.top < client.bottom;
}

CCellID CGridCtrl::GetCellFromPt(CPoint point) const {
    CCellID found;
    for (int row = 0; row < GetRowCount() && found.row < 0; ++row) {
        const bool hidden = row >= mFixedRows && row < mFixedRows + mTopRow;
        if (!hidden && point.y >= topOf(row) && point.y < topOf(row) + GetRowHeight(row)) {
            found.row = row;
        }
    }
    for (int column = 0; column < GetColumnCount() && found.col < 0; ++column) {
        if (point.x >= leftOf(column) && point.x < leftOf(column) + GetColumnWidth(column)) {
            found.col = column;
        }
    }
    return found.IsValid() ? found : CCellID();
}

void CGridCtrl::RedrawCell(int row, int column) {
    CRect rect;
    if (m_hWnd != nullptr && GetCellRect(row, column, rect)) {
        InvalidateRect(rect);
    }
}

COLORREF CGridCtrl::backgroundOf(int row, int column) const {
    const Cell* drawn = cell(row, column);
    if (mFocus == CCellID{row, column}) {
        return focusColor;
    }
    if (drawn != nullptr && drawn->hasColor) {
        return drawn->color;
    }
    return isFixed(row, column) ? GetSysColor(COLOR_BTNFACE) : GetSysColor(COLOR_WINDOW);
}

bool CGridCtrl::DrawCell(CDC& context, int row, int column, const CRect& rect) {
    const Cell* drawn = cell(row, column);
    if (drawn == nullptr) {
        return false;
    }
    context.FillSolidRect(rect, backgroundOf(row, column));
    context.SetBkMode(TRANSPARENT);
    context.SetTextColor(IsWindowEnabled() ? GetSysColor(COLOR_WINDOWTEXT) : GetSysColor(COLOR_GRAYTEXT));
    CRect inside = rect;
    inside.DeflateRect(inset, 0);
    CRect needed = inside;
    const bool wraps = (drawn->format & DT_WORDBREAK) != 0 && (drawn->format & DT_SINGLELINE) == 0;
    if (wraps && (drawn->format & DT_VCENTER) != 0) { // text of several lines is centred here
        const int height = context.DrawText(drawn->text, needed, drawn->format | DT_CALCRECT);
        inside.top += std::max(0, (inside.Height() - height) / 2);
    }
    context.DrawText(drawn->text, inside, drawn->format);
    return true;
}

void CGridCtrl::drawRow(CDC& context, int row, const CRect& client) {
    // The fixed cells come last, over those that are scrolled below them.
    const auto draw = [&](int column) {
        const CRect rect(CPoint(leftOf(column), topOf(row)),
                         CSize(GetColumnWidth(column), GetRowHeight(row)));
        if (rect.left >= client.right || rect.right <= 0 || rect.IsRectEmpty()) {
            return;
        }
        const int saved = context.SaveDC();
        context.IntersectClipRect(rect);
        CRect inside = rect;
        inside.DeflateRect(0, 0, 1, 1);
        DrawCell(context, row, column, inside);
        context.FillSolidRect(CRect(rect.right - 1, rect.top, rect.right, rect.bottom), lineColor);
        context.FillSolidRect(CRect(rect.left, rect.bottom - 1, rect.right, rect.bottom), lineColor);
        context.RestoreDC(saved);
    };
    for (int column = mFixedColumns; column < GetColumnCount(); ++column) {
        draw(column);
    }
    for (int column = 0; column < mFixedColumns; ++column) {
        draw(column);
    }
}

void CGridCtrl::OnPaint() {
    CPaintDC context(this);
    CRect client;
    GetClientRect(client);
    context.FillSolidRect(client, GetSysColor(COLOR_WINDOW));
    for (int row = mFixedRows + mTopRow; row < GetRowCount() && topOf(row) < client.bottom; ++row) {
        drawRow(context, row, client);
    }
    for (int row = 0; row < mFixedRows; ++row) {
        drawRow(context, row, client);
    }
}

void CGridCtrl::updateScroll() {
    if (m_hWnd == nullptr) {
        return;
    }
    CRect client;
    GetClientRect(client);
    const int rows = GetRowCount() - mFixedRows;
    int room = client.Height() - std::accumulate(mRowHeights.begin(), mRowHeights.begin() + mFixedRows, 0);
    int shown = 0; // rows that fit at the end
    for (int row = GetRowCount() - 1; row >= mFixedRows && room >= GetRowHeight(row); --row, ++shown) {
        room -= GetRowHeight(row);
    }
    mTopRow = std::clamp(mTopRow, 0, std::max(0, rows - std::max(1, shown)));
    SCROLLINFO down{sizeof down, SIF_ALL, 0, std::max(0, rows - 1), static_cast<UINT>(std::max(1, shown)),
                    mTopRow,     0};
    SetScrollInfo(SB_VERT, &down);
    const int width = std::accumulate(mColumnWidths.begin(), mColumnWidths.end(), 0);
    mScrolled = std::clamp(mScrolled, 0, std::max(0, width - client.Width()));
    SCROLLINFO across{
        sizeof across, SIF_ALL, 0, std::max(0, width - 1), static_cast<UINT>(std::max(1, client.Width())),
        mScrolled,     0};
    SetScrollInfo(SB_HORZ, &across);
    Invalidate();
}

void CGridCtrl::OnSize(UINT kind, int width, int height) {
    CWnd::OnSize(kind, width, height);
    updateScroll();
}

void CGridCtrl::OnVScroll(UINT, UINT position, CScrollBar*) {
    EndEdit(true);
    mTopRow = static_cast<int>(position);
    Invalidate();
}

void CGridCtrl::OnHScroll(UINT, UINT position, CScrollBar*) {
    EndEdit(true);
    mScrolled = static_cast<int>(position);
    Invalidate();
}

BOOL CGridCtrl::OnMouseWheel(UINT, short turn, CPoint) {
    constexpr int rowsPerNotch = 3;
    EndEdit(true);
    mTopRow += turn < 0 ? rowsPerNotch : -rowsPerNotch;
    updateScroll();
    return TRUE;
}

void CGridCtrl::scrollTo(int row, int column) {
    if (row >= mFixedRows && row < mFixedRows + mTopRow) {
        mTopRow = row - mFixedRows;
    }
    CRect client;
    GetClientRect(client);
    while (row >= mFixedRows && mTopRow < row - mFixedRows &&
           topOf(row) + GetRowHeight(row) > client.bottom) {
        ++mTopRow;
    }
    if (column >= mFixedColumns) {
        mScrolled += std::max(0, leftOf(column) + GetColumnWidth(column) - static_cast<int>(client.right));
        const int begin = std::accumulate(mColumnWidths.begin(), mColumnWidths.begin() + mFixedColumns, 0);
        mScrolled -= std::max(0, begin - leftOf(column));
    }
    updateScroll();
}
