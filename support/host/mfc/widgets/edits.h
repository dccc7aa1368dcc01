// Edits of one line and of several.
#pragma once

#include "host/mfc/widgets/factory.h"

#include <QLineEdit>
#include <QPlainTextEdit>

namespace host {

class EditWindow : public HWND__ {
public:
    EditWindow(QWidget* made, const WindowSpec& spec);

    QLineEdit* line() const { return qobject_cast<QLineEdit*>(widget.data()); }
    QPlainTextEdit* lines() const { return qobject_cast<QPlainTextEdit*>(widget.data()); }
    void setSelection(int start, int end);
    std::pair<int, int> selection() const;
    void replaceSelection(const std::wstring& text);
    void setLimit(int most);
    void setReadOnly(bool readOnly);
    bool isReadOnly() const;

    LRESULT defaultProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::wstring kind() const override { return L"编辑框"; }
    std::wstring text() const override;
    void setText(const std::wstring& text) override;
    std::wstring scriptSet(const std::wstring& value) override;

    bool modified = false;

protected:
    bool filter(QEvent* event) override;

private:
    void changed();
    int limit_ = 0; // 0: none
};

} // namespace host
