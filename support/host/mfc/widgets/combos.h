// Combo boxes.
#pragma once

#include "host/mfc/widgets/factory.h"

#include <QComboBox>

namespace host {

class ComboWindow : public HWND__ {
public:
    ComboWindow(QComboBox* made, const WindowSpec& spec);

    QComboBox& combo() const { return static_cast<QComboBox&>(*widget); }
    bool isEditable() const { return combo().isEditable(); }
    int add(const std::wstring& text); // in order when it sorts
    int find(int after, const std::wstring& text, bool whole) const;
    bool isDropped() const;
    void setDroppedWidth(int width);
    bool select(int index); // false, and none selected, when there is no such item

    LRESULT defaultProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::wstring kind() const override { return L"下拉列表"; }
    std::wstring text() const override { return fromQt(combo().currentText()); }
    void setText(const std::wstring& text) override;
    std::wstring scriptSet(const std::wstring& value) override;
    std::wstring scriptSelect(const std::vector<int>& items) override;

protected:
    bool filter(QEvent* event) override;

private:
    void chooseByHand(int index);
    bool quiet_ = false;
};

// Texts in the order in which lists sort them: by the language's rules, capitals alike.
bool sortsBefore(const QString& left, const QString& right);

} // namespace host
