// Push buttons, check boxes, radio buttons and group boxes.
#pragma once

#include "host/mfc/widgets/factory.h"

#include <QAbstractButton>
#include <QGroupBox>

namespace host {

class ButtonWindow : public HWND__ {
public:
    ButtonWindow(QAbstractButton* made, const WindowSpec& spec);

    QAbstractButton& button() const { return static_cast<QAbstractButton&>(*widget); }
    DWORD type() const { return style & BS_TYPEMASK; }
    bool isRadioButton() const { return type() == BS_RADIOBUTTON || type() == BS_AUTORADIOBUTTON; }
    bool isCheckBox() const;
    bool isPush() const { return !isRadioButton() && !isCheckBox(); }
    int check() const;
    void setCheckState(int check);

    LRESULT defaultProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::wstring kind() const override;
    std::wstring text() const override { return fromQt(button().text()); }
    void setText(const std::wstring& text) override { button().setText(toQt(text)); }
    std::wstring scriptCheck(bool on) override;
    std::wstring scriptClick() override;
    std::wstring scriptGet() const override;

protected:
    bool filter(QEvent* event) override;
};

class GroupBoxWindow : public HWND__ {
public:
    explicit GroupBoxWindow(const WindowSpec& spec);
    std::wstring kind() const override { return L"分组框"; }
    std::wstring text() const override;
    void setText(const std::wstring& text) override;
};

} // namespace host
