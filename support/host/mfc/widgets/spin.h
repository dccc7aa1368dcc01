// Spin buttons: two arrows that step the number in an edit.
#pragma once

#include "host/mfc/widgets/factory.h"

#include <QAbstractButton>

namespace host {

class SpinWindow : public HWND__ {
public:
    SpinWindow(QWidget* made, const WindowSpec& spec);

    std::wstring kind() const override { return L"微调按钮"; }
    std::wstring scriptSet(const std::wstring& value) override;
    std::wstring scriptGet() const override { return std::to_wstring(position()); }
    int position() const; // of the buddy's number
    void setPosition(int position);
    void step(int by);

    int least = 0, most = 100;
    HWND buddy = nullptr;

private:
    int position_ = 0;
};

} // namespace host
