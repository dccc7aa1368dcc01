// A small window with a text that follows the cursor.
#pragma once

#include "host/arx.h"

class QDV_EXPORT CTipWnd : public CWnd {
public:
    /// Made when it is first shown; owned by the window given, the host's frame when none is.
    explicit CTipWnd(CWnd* owner = nullptr) : mOwner(owner) {}

    void SetColor(COLORREF background) { mBackground = background; }
    void SetTextHeight(int pixels) { mTextHeight = pixels; }

    /// Right below the cursor; on the cursor's other side where the screen ends. Does not take the focus.
    void Show(const CString& text);
    void Hide();
    const CString& Text() const { return mText; }
    /// The window's place on the screen for its text.
    CRect Place(CPoint cursor, CSize screen);

protected:
    DECLARE_MESSAGE_MAP()
    void OnPaint();

private:
    bool make();
    CSize measure();

    CWnd* mOwner;
    CString mText;
    COLORREF mBackground = 0xDCFFFF; ///< pale yellow
    int mTextHeight = 14;            ///< pixels at 96 dots an inch
    CFont mFont;
};
