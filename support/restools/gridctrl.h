// A table of texts with fixed headings, whose cells are edited in place.
#pragma once

#include "host/arx.h"

#include <vector>

struct CCellID {
    int row = -1;
    int col = -1;

    bool IsValid() const { return row >= 0 && col >= 0; }
    bool operator==(const CCellID&) const = default;
};

/// In the notifications of a grid.
struct NM_GRIDVIEW {
    NMHDR hdr;
    int iRow, iColumn;
};
inline constexpr UINT GVN_SELCHANGED = static_cast<UINT>(-1910);
inline constexpr UINT GVN_ENDLABELEDIT = static_cast<UINT>(-1911); ///< a text was entered

/// The edit that stands over the cell being edited.
class CGridEdit : public CEdit {
public:
    explicit CGridEdit(class CGridCtrl& grid) : mGrid(grid) {}

protected:
    DECLARE_MESSAGE_MAP()
    void OnKeyDown(UINT key, UINT repeat, UINT flags);
    void OnKillFocus(CWnd* next);
    UINT OnGetDlgCode() { return DLGC_WANTALLKEYS; }

private:
    CGridCtrl& mGrid;
};

/// Rows and columns are counted from 0, the fixed ones with them. Connected to a control of the class
/// "QDVGridCtrl" in a dialog.
class QDV_EXPORT CGridCtrl : public CWnd {
public:
    static constexpr const ACHAR* className = L"QDVGridCtrl";

    CGridCtrl();

    void SetRowCount(int rows);
    void SetColumnCount(int columns);
    int GetRowCount() const { return static_cast<int>(mRowHeights.size()); }
    int GetColumnCount() const { return static_cast<int>(mColumnWidths.size()); }
    void SetFixedRowCount(int rows);
    void SetFixedColumnCount(int columns);
    int GetFixedRowCount() const { return mFixedRows; }
    int GetFixedColumnCount() const { return mFixedColumns; }
    void DeleteAllItems();

    // False for a cell that is not there.
    bool SetItemText(int row, int column, const ACHAR* text);
    CString GetItemText(int row, int column) const;
    bool SetItemData(int row, int column, LPARAM data);
    LPARAM GetItemData(int row, int column) const;
    bool SetItemFormat(int row, int column, UINT format); ///< DT_ flags
    bool SetItemReadOnly(int row, int column, bool readOnly = true);
    bool IsItemReadOnly(int row, int column) const;
    bool SetItemBkColour(int row, int column, COLORREF color);

    void SetRowHeight(int row, int height);
    int GetRowHeight(int row) const;
    void SetColumnWidth(int column, int width);
    int GetColumnWidth(int column) const;
    void AutoSizeColumns();  ///< as wide as their widest text
    void ExpandLastColumn(); ///< to the window's right side
    void SetEditable(bool editable = true) { mEditable = editable; }

    CCellID GetFocusCell() const { return mFocus; }
    void SetFocusCell(int row, int column);
    /// False when it is scrolled out of sight.
    bool GetCellRect(int row, int column, LPRECT rect) const;
    CCellID GetCellFromPt(CPoint point) const;
    void RedrawCell(int row, int column);

    bool BeginEdit();
    /// Takes over what was typed, or not, and gives the keyboard back to the grid.
    void EndEdit(bool keep);
    void MoveFocus(int rows, int columns);

protected:
    DECLARE_MESSAGE_MAP()
    /// Draws one cell within the rectangle.
    virtual bool DrawCell(CDC& context, int row, int column, const CRect& rect);
    /// A cell filled by its text, as a script does it. False when it can't be.
    virtual bool FillCell(int row, int column, const CString& text);
    COLORREF backgroundOf(int row, int column) const;

    afx_msg void OnPaint();
    afx_msg BOOL OnEraseBkgnd(CDC*) { return TRUE; }
    afx_msg void OnSize(UINT kind, int width, int height);
    afx_msg void OnVScroll(UINT code, UINT position, CScrollBar* bar);
    afx_msg void OnHScroll(UINT code, UINT position, CScrollBar* bar);
    afx_msg BOOL OnMouseWheel(UINT flags, short turn, CPoint point);
    afx_msg void OnLButtonDown(UINT flags, CPoint point);
    afx_msg void OnLButtonDblClk(UINT flags, CPoint point);
    afx_msg void OnKeyDown(UINT key, UINT repeat, UINT flags);
    afx_msg void OnChar(UINT character, UINT repeat, UINT flags);
    afx_msg void OnSetFocus(CWnd* before);
    afx_msg void OnKillFocus(CWnd* next);
    afx_msg UINT OnGetDlgCode() { return DLGC_WANTARROWS | DLGC_WANTCHARS; }
    afx_msg BOOL OnCopyData(CWnd* from, COPYDATASTRUCT* data);
    afx_msg LRESULT OnGetText(WPARAM size, LPARAM text);
    afx_msg LRESULT OnGetTextLength(WPARAM, LPARAM);

private:
    struct Cell {
        CString text;
        LPARAM data = 0;
        UINT format = DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS;
        bool readOnly = false;
        bool hasColor = false;
        COLORREF color = 0;
    };
    Cell* cell(int row, int column);
    const Cell* cell(int row, int column) const;
    bool isFixed(int row, int column) const { return row < mFixedRows || column < mFixedColumns; }
    bool canEdit(int row, int column) const;
    void resizeCells(int rows, int columns);
    void updateScroll();
    void scrollTo(int row, int column);
    int leftOf(int column) const;
    int topOf(int row) const;
    void tell(UINT code, CCellID at);
    void drawRow(CDC& context, int row, const CRect& client);
    CString wholeText() const;

    std::vector<Cell> mCells; ///< row by row
    std::vector<int> mRowHeights;
    std::vector<int> mColumnWidths;
    int mFixedRows = 0;
    int mFixedColumns = 0;
    int mTopRow = 0;   ///< the first one below the fixed ones
    int mScrolled = 0; ///< pixels to the right
    bool mEditable = true;
    CCellID mFocus;
    CCellID mEdited;
    CGridEdit mEdit;
};
