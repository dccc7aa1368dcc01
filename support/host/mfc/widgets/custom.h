// Windows whose class paints them.
#pragma once

#include "host/mfc/widgets/dialogwindow.h"

#include <QPainter>

namespace host {

class CustomWindow : public HWND__ {
public:
    CustomWindow(QWidget* made, const WindowSpec& spec);

    void setScroll(int which, const SCROLLINFO& info);
    SCROLLINFO scroll(int which) const;

    LRESULT defaultProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::wstring kind() const override { return L"控件"; }
    std::wstring text() const override;
    void setText(const std::wstring& text) override;
    // Tables take "ROW\tCOLUMN\tVALUE" by WM_COPYDATA with the number 1, and give their cells as text.
    std::wstring scriptCell(int row, int column, const std::wstring& value) override;
    std::wstring scriptGet() const override;

protected:
    bool filter(QEvent* event) override;

private:
    QScrollBar& bar(int which) const;
    std::wstring text_;
    bool quiet_ = false;
};

} // namespace host
