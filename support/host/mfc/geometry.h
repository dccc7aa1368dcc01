// CPoint, CSize and CRect: the plain structures with their operators. Pixels.
#pragma once

#include "host/win/types.h"

#include <algorithm>

class CSize : public SIZE {
public:
    CSize() : SIZE{0, 0} {}
    CSize(int width, int height) : SIZE{width, height} {}
    CSize(const SIZE& size) : SIZE(size) {}

    void SetSize(int width, int height) { *this = CSize(width, height); }
    CSize operator+(SIZE other) const { return {cx + other.cx, cy + other.cy}; }
    CSize operator-(SIZE other) const { return {cx - other.cx, cy - other.cy}; }
    bool operator==(const CSize& other) const { return cx == other.cx && cy == other.cy; }
};

class CPoint : public POINT {
public:
    CPoint() : POINT{0, 0} {}
    CPoint(int left, int top) : POINT{left, top} {}
    CPoint(const POINT& point) : POINT(point) {}
    // As messages carry it.
    explicit CPoint(LPARAM packed)
        : POINT{static_cast<SHORT>(packed & 0xFFFF), static_cast<SHORT>((packed >> 16) & 0xFFFF)} {}

    void SetPoint(int left, int top) { *this = CPoint(left, top); }
    void Offset(int right, int down) { x += right, y += down; }
    CPoint operator+(SIZE size) const { return {x + size.cx, y + size.cy}; }
    CPoint operator-(SIZE size) const { return {x - size.cx, y - size.cy}; }
    CSize operator-(POINT other) const { return {x - other.x, y - other.y}; }
    CPoint& operator+=(SIZE size) { return *this = *this + size; }
    bool operator==(const CPoint& other) const { return x == other.x && y == other.y; }
};

// Right and bottom are not in the rectangle.
class CRect : public RECT {
public:
    CRect() : RECT{0, 0, 0, 0} {}
    CRect(int l, int t, int r, int b) : RECT{l, t, r, b} {}
    CRect(const RECT& rect) : RECT(rect) {}
    CRect(LPCRECT rect) : RECT(*rect) {}
    CRect(POINT point, SIZE size) : RECT{point.x, point.y, point.x + size.cx, point.y + size.cy} {}
    CRect(POINT topLeft, POINT bottomRight) : RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

    operator LPRECT() { return this; }
    operator LPCRECT() const { return this; }
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    CSize Size() const { return {Width(), Height()}; }
    CPoint TopLeft() const { return {left, top}; }
    CPoint BottomRight() const { return {right, bottom}; }
    CPoint CenterPoint() const { return {(left + right) / 2, (top + bottom) / 2}; }
    BOOL IsRectEmpty() const { return Width() <= 0 || Height() <= 0 ? TRUE : FALSE; }
    BOOL IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0 ? TRUE : FALSE; }
    BOOL PtInRect(POINT p) const {
        return p.x >= left && p.x < right && p.y >= top && p.y < bottom ? TRUE : FALSE;
    }
    void SetRect(int l, int t, int r, int b) { *this = CRect(l, t, r, b); }
    void SetRectEmpty() { *this = CRect(); }
    void NormalizeRect() {
        if (left > right)
            std::swap(left, right);
        if (top > bottom)
            std::swap(top, bottom);
    }
    void InflateRect(int x, int y) { left -= x, top -= y, right += x, bottom += y; }
    void InflateRect(int l, int t, int r, int b) { left -= l, top -= t, right += r, bottom += b; }
    void DeflateRect(int x, int y) { InflateRect(-x, -y); }
    void DeflateRect(int l, int t, int r, int b) { InflateRect(-l, -t, -r, -b); }
    void OffsetRect(int x, int y) { left += x, top += y, right += x, bottom += y; }
    void OffsetRect(POINT by) { OffsetRect(by.x, by.y); }
    void MoveToX(int x) { OffsetRect(x - left, 0); }
    void MoveToY(int y) { OffsetRect(0, y - top); }
    void MoveToXY(int x, int y) { OffsetRect(x - left, y - top); }
    // What both share; FALSE and empty when that is nothing.
    BOOL IntersectRect(LPCRECT a, LPCRECT b);
    // The smallest around both; an empty one counts as nothing.
    BOOL UnionRect(LPCRECT a, LPCRECT b);
    bool operator==(const CRect& other) const {
        return left == other.left && top == other.top && right == other.right && bottom == other.bottom;
    }
};

inline BOOL CRect::IntersectRect(LPCRECT a, LPCRECT b) {
    *this = CRect(std::max(a->left, b->left), std::max(a->top, b->top), std::min(a->right, b->right),
                  std::min(a->bottom, b->bottom));
    if (IsRectEmpty())
        SetRectEmpty();
    return IsRectEmpty() ? FALSE : TRUE;
}

inline BOOL CRect::UnionRect(LPCRECT a, LPCRECT b) {
    const CRect first(a), second(b);
    if (first.IsRectEmpty() || second.IsRectEmpty())
        *this = first.IsRectEmpty() ? second : first;
    else
        *this = CRect(std::min(a->left, b->left), std::min(a->top, b->top), std::max(a->right, b->right),
                      std::max(a->bottom, b->bottom));
    return IsRectEmpty() ? FALSE : TRUE;
}
