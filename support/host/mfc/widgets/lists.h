// List boxes.
#pragma once

#include "host/mfc/widgets/factory.h"

#include <QListWidget>

namespace host {

class ListBoxWindow : public HWND__ {
public:
    ListBoxWindow(QListWidget* made, const WindowSpec& spec);

    QListWidget& list() const { return static_cast<QListWidget&>(*widget); }
    bool isMultiple() const { return (style & (LBS_MULTIPLESEL | LBS_EXTENDEDSEL)) != 0; }
    int add(const std::wstring& text);
    int insert(int index, const std::wstring& text);
    int find(int after, const std::wstring& text, bool whole) const;
    int current() const; // selected, of a list with one; -1: none
    bool select(int index);
    void setSelected(int index, bool selected);
    std::vector<int> selected() const;

    LRESULT defaultProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::wstring kind() const override { return L"列表框"; }
    std::wstring scriptSet(const std::wstring& value) override;
    std::wstring scriptSelect(const std::vector<int>& items) override;
    std::wstring scriptGet() const override;

protected:
    bool filter(QEvent* event) override;

private:
    bool quiet_ = false;
};

} // namespace host
