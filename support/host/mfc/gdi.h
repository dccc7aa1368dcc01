// Drawing on windows and bitmaps: device contexts, pens, brushes, fonts, bitmaps. Coordinates are pixels from
// the top left corner of what is drawn on; colours are COLORREF.
#pragma once

#include "host/font/fontenumeration.h"
#include "host/mfc/cstring.h"
#include "host/mfc/geometry.h"
#include "host/mfc/object.h"

#include <memory>

class CWnd;

inline constexpr int PS_SOLID = 0, PS_DASH = 1, PS_DOT = 2, PS_DASHDOT = 3, PS_NULL = 5;
inline constexpr int TRANSPARENT = 1, OPAQUE = 2;
inline constexpr int WHITE_BRUSH = 0, GRAY_BRUSH = 2, BLACK_BRUSH = 4, NULL_BRUSH = 5, HOLLOW_BRUSH = 5,
                     WHITE_PEN = 6, BLACK_PEN = 7, NULL_PEN = 8, DEFAULT_GUI_FONT = 17;
inline constexpr int LOGPIXELSX = 88, LOGPIXELSY = 90, HORZRES = 8, VERTRES = 10, BITSPIXEL = 12;
inline constexpr int FW_NORMAL = 400, FW_BOLD = 700;
inline constexpr DWORD SRCCOPY = 0x00CC0020;
inline constexpr UINT DT_LEFT = 0, DT_CENTER = 1, DT_RIGHT = 2, DT_VCENTER = 4, DT_BOTTOM = 8,
                      DT_WORDBREAK = 0x10, DT_SINGLELINE = 0x20, DT_NOCLIP = 0x100, DT_CALCRECT = 0x400,
                      DT_NOPREFIX = 0x800, DT_END_ELLIPSIS = 0x8000;
inline constexpr UINT DFC_BUTTON = 4, DFCS_BUTTONCHECK = 0, DFCS_BUTTONRADIO = 4, DFCS_BUTTONPUSH = 0x10,
                      DFCS_INACTIVE = 0x100, DFCS_PUSHED = 0x200, DFCS_CHECKED = 0x400;

struct BITMAP {
    LONG bmType, bmWidth, bmHeight, bmWidthBytes;
    WORD bmPlanes, bmBitsPixel;
    LPVOID bmBits;
};

COLORREF GetSysColor(int index);
int GetSystemMetrics(int index);

// Holds a pen, a brush, a font or a bitmap, and deletes it in the end.
class CGdiObject : public CObject {
public:
    CGdiObject() = default;
    ~CGdiObject() override;

    HGDIOBJ m_hObject = nullptr;

    HGDIOBJ GetSafeHandle() const { return m_hObject; }
    BOOL Attach(HGDIOBJ object);
    HGDIOBJ Detach();
    BOOL DeleteObject();
};

class CPen : public CGdiObject {
public:
    CPen() = default;
    CPen(int style, int width, COLORREF color) { CreatePen(style, width, color); }
    BOOL CreatePen(int style, int width, COLORREF color);
};

class CBrush : public CGdiObject {
public:
    CBrush() = default;
    explicit CBrush(COLORREF color) { CreateSolidBrush(color); }
    BOOL CreateSolidBrush(COLORREF color);
    BOOL CreateSysColorBrush(int index) { return CreateSolidBrush(GetSysColor(index)); }
    operator HBRUSH() const { return static_cast<HBRUSH>(m_hObject); }
};

class CFont : public CGdiObject {
public:
    // A negative height is that of the characters, a positive one that of the line; pixels.
    BOOL CreateFontIndirect(const LOGFONT* font);
    BOOL CreateFont(int height, int width, int escapement, int orientation, int weight, BYTE italic,
                    BYTE underline, BYTE strikeOut, BYTE charSet, BYTE outPrecision, BYTE clipPrecision,
                    BYTE quality, BYTE pitchAndFamily, LPCTSTR face);
    // Tenths of a point.
    BOOL CreatePointFont(int size, LPCTSTR face, CDC* context = nullptr);
    int GetLogFont(LOGFONT* font) const;
    operator HFONT() const { return static_cast<HFONT>(m_hObject); }
};

class CBitmap : public CGdiObject {
public:
    BOOL LoadBitmap(UINT id) { return LoadBitmap(MAKEINTRESOURCE(id)); }
    BOOL LoadBitmap(LPCTSTR name);
    BOOL CreateCompatibleBitmap(CDC* context, int width, int height);
    int GetBitmap(BITMAP* bitmap) const;
    operator HBITMAP() const { return static_cast<HBITMAP>(m_hObject); }
};

// What is drawn on: a window while it is painted, or a bitmap.
class CDC : public CObject {
public:
    CDC() = default;
    ~CDC() override;

    HDC m_hDC = nullptr;

    HDC GetSafeHdc() const { return m_hDC; }
    BOOL Attach(HDC context);
    HDC Detach();
    static CDC* FromHandle(HDC context);
    BOOL CreateCompatibleDC(CDC* like);
    BOOL DeleteDC();
    int GetDeviceCaps(int index) const;
    int SaveDC();
    BOOL RestoreDC(int saved); // -1: the last

    // The one before.
    CPen* SelectObject(CPen* pen);
    CBrush* SelectObject(CBrush* brush);
    CFont* SelectObject(CFont* font);
    CBitmap* SelectObject(CBitmap* bitmap);
    CGdiObject* SelectStockObject(int index);
    COLORREF SetTextColor(COLORREF color);
    COLORREF GetTextColor() const;
    COLORREF SetBkColor(COLORREF color);
    COLORREF GetBkColor() const;
    int SetBkMode(int mode);
    CPoint SetViewportOrg(int x, int y);
    int IntersectClipRect(LPCRECT rect);
    BOOL GetTextMetrics(TEXTMETRIC* metrics) const;

    CPoint MoveTo(int x, int y);
    CPoint MoveTo(POINT point) { return MoveTo(point.x, point.y); }
    BOOL LineTo(int x, int y);
    BOOL LineTo(POINT point) { return LineTo(point.x, point.y); }
    BOOL Polyline(const POINT* points, int count);
    BOOL Polygon(const POINT* points, int count);
    BOOL Rectangle(LPCRECT rect);
    BOOL RoundRect(LPCRECT rect, POINT corner);
    BOOL Ellipse(LPCRECT rect);
    COLORREF SetPixel(int x, int y, COLORREF color);
    void FillRect(LPCRECT rect, CBrush* brush);
    void FrameRect(LPCRECT rect, CBrush* brush);
    void FillSolidRect(LPCRECT rect, COLORREF color);
    void Draw3dRect(LPCRECT rect, COLORREF topLeft, COLORREF bottomRight);
    void DrawFocusRect(LPCRECT rect);
    BOOL DrawFrameControl(LPRECT rect, UINT type, UINT state);
    BOOL DrawIcon(POINT at, HICON icon);
    BOOL BitBlt(int x, int y, int width, int height, CDC* source, int sourceX, int sourceY, DWORD operation);
    BOOL StretchBlt(int x, int y, int width, int height, CDC* source, int sourceX, int sourceY,
                    int sourceWidth, int sourceHeight, DWORD operation);

    // The height of the text.
    int DrawText(const CString& text, LPRECT rect, UINT format);
    BOOL TextOut(int x, int y, const CString& text);
    CSize GetTextExtent(const CString& text) const;
};

// The context of a window in its OnPaint.
class CPaintDC : public CDC {
public:
    explicit CPaintDC(CWnd* window);
    ~CPaintDC() override;
};

// For measuring outside of painting; what is drawn is not seen.
class CClientDC : public CDC {
public:
    explicit CClientDC(CWnd* window);
    ~CClientDC() override;
};
