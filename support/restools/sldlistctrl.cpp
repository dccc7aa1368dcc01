// A list of pictures with their labels under them.
#include "restools/sldlistctrl.h"

#include "restools/dpi.h"

#include <algorithm>

namespace {

constexpr COLORREF paper = RGB(255, 255, 255);
constexpr COLORREF selectedBack = RGB(204, 228, 247);
constexpr COLORREF selectedEdge = RGB(0, 104, 190);
constexpr COLORREF plainEdge = RGB(200, 200, 200);

} // namespace

BEGIN_MESSAGE_MAP(CSldListCtrl, CListCtrl)
ON_NOTIFY_REFLECT(NM_CUSTOMDRAW, &CSldListCtrl::OnCustomDraw)
END_MESSAGE_MAP()

CSldListCtrl::CSldListCtrl(int pictureWidth, int pictureHeight, int cellWidth, int cellHeight)
    : mPicture(pictureWidth, pictureHeight), mCell(cellWidth, cellHeight) {}

void CSldListCtrl::PreSubclassWindow() {
    CListCtrl::PreSubclassWindow();
    SetSizes(mPicture.cx, mPicture.cy, mCell.cx, mCell.cy);
}

void CSldListCtrl::SetSizes(int pictureWidth, int pictureHeight, int cellWidth, int cellHeight) {
    mPicture = CSize(pictureWidth, pictureHeight);
    mCell = CSize(cellWidth, cellHeight);
    if (m_hWnd != nullptr) {
        SetIconSpacing(CalculateByDPI(cellWidth), CalculateByDPI(cellHeight));
    }
}

int CSldListCtrl::add(const ACHAR* label, Picture picture) {
    const int index = InsertItem(GetItemCount(), label);
    if (index >= 0) {
        SetItemData(index, mPictures.size());
        mPictures.push_back(std::move(picture));
    }
    return index;
}

int CSldListCtrl::AddFile(const ACHAR* label, const ACHAR* path) {
    return add(label, {path, {}, {}, false});
}

int CSldListCtrl::AddSlide(const ACHAR* label, std::string bytes) {
    return add(label, {{}, std::move(bytes), {}, false});
}

void CSldListCtrl::RemoveAll() {
    DeleteAllItems();
    mPictures.clear();
}

int CSldListCtrl::GetSelectedItem() const {
    return GetSelectedCount() == 1 ? GetNextItem(-1, LVNI_SELECTED) : -1;
}

void CSldListCtrl::SelectItem(int index) {
    SetItemState(-1, 0, LVIS_SELECTED);
    if (index >= 0 && index < GetItemCount()) {
        SetItemState(index, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        EnsureVisible(index, FALSE);
    }
}

const CDrawSld& CSldListCtrl::slideOf(std::size_t index) {
    Picture& picture = mPictures[index];
    if (!picture.isRead) {
        picture.isRead = true;
        if (picture.path.empty()) {
            picture.slide.LoadBytes(picture.bytes);
        } else {
            picture.slide.Load(picture.path.c_str(), mPicture);
        }
    }
    return picture.slide;
}

void CSldListCtrl::draw(CDC& context, const CRect& cell, std::size_t index, bool selected, bool focused) {
    const CSize size(CalculateByDPI(mPicture.cx), CalculateByDPI(mPicture.cy));
    const int room = std::max(0, cell.Width() - static_cast<int>(size.cx));
    CRect frame(CPoint(cell.left + room / 2, cell.top + std::min(4, room / 2)), size);
    if (selected) {
        CRect back = cell;
        back.DeflateRect(1, 1);
        context.FillSolidRect(back, selectedBack);
    }
    const CDrawSld& slide = slideOf(index);
    CRect inside = frame;
    inside.DeflateRect(1, 1);
    slide.Draw(context, inside, paper);
    context.Draw3dRect(frame, selected ? selectedEdge : plainEdge, selected ? selectedEdge : plainEdge);
    context.SetBkMode(TRANSPARENT);
    if (slide.IsEmpty()) {
        context.SetTextColor(GetSysColor(COLOR_GRAYTEXT));
        CRect text = inside;
        text.DeflateRect(6, 6);
        context.DrawText(slide.Fault().IsEmpty() ? CString(L"没有图片") : slide.Fault(), text,
                         DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
    }
    context.SetTextColor(GetSysColor(COLOR_WINDOWTEXT));
    CRect label(cell.left + 3, frame.bottom, cell.right - 3, cell.bottom - 1);
    context.DrawText(GetItemText(static_cast<int>(index), 0), label,
                     DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    if (focused) {
        CRect edge = cell;
        edge.DeflateRect(2, 2);
        context.DrawFocusRect(edge);
    }
}

void CSldListCtrl::OnCustomDraw(NMHDR* header, LRESULT* result) {
    const auto& drawn = *reinterpret_cast<NMLVCUSTOMDRAW*>(header);
    *result = CDRF_DODEFAULT;
    if (drawn.nmcd.dwDrawStage == CDDS_PREPAINT) {
        *result = CDRF_NOTIFYITEMDRAW;
    } else if (drawn.nmcd.dwDrawStage == CDDS_ITEMPREPAINT && drawn.nmcd.dwItemSpec < mPictures.size()) {
        draw(*CDC::FromHandle(drawn.nmcd.hdc), CRect(drawn.nmcd.rc), drawn.nmcd.dwItemSpec,
             (drawn.nmcd.uItemState & CDIS_SELECTED) != 0, (drawn.nmcd.uItemState & CDIS_FOCUS) != 0);
        *result = CDRF_SKIPDEFAULT;
    }
}
