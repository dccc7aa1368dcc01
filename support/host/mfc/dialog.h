// Dialogs: built from a template of the resources, modal or beside the drawing; and the file dialog.
#pragma once

#include "host/mfc/ddx.h"
#include "host/mfc/wnd.h"

namespace host {
struct DialogTemplate;
}

class CDialog : public CWnd {
public:
    CDialog() = default;
    explicit CDialog(LPCTSTR name, CWnd* parent = nullptr);
    explicit CDialog(UINT id, CWnd* parent = nullptr);
    ~CDialog() override;

    // Shows the dialog and gives what EndDialog was told; -1 when there is no such template.
    virtual INT_PTR DoModal();
    virtual BOOL Create(LPCTSTR name, CWnd* parent = nullptr);
    virtual BOOL Create(UINT id, CWnd* parent = nullptr);
    void EndDialog(int result);
    void NextDlgCtrl() const;
    void PrevDlgCtrl() const;
    void GotoDlgCtrl(CWnd* control);
    void SetDefID(UINT id);
    DWORD GetDefID() const;
    void MapDialogRect(LPRECT rect) const; // from dialog units to pixels
    BOOL PreTranslateMessage(MSG* message) override;

protected:
    DECLARE_MESSAGE_MAP()
    // FALSE: the focus was set.
    virtual BOOL OnInitDialog();
    virtual void OnOK();
    virtual void OnCancel();
    BOOL CreateIndirect(LPCTSTR name, CWnd* parent);
    bool buildFrom(const host::DialogTemplate& from, CWnd* parent, bool modal);
    LRESULT initialize(WPARAM first, LPARAM);

    UINT m_nIDHelp = 0;
    LPCTSTR m_lpszTemplateName = nullptr;
    CWnd* m_pParentWnd = nullptr;

private:
    bool build(LPCTSTR name, CWnd* parent, bool modal);

    bool modal_ = false;
};
using CDialogEx = CDialog;

// What CFileDialog was told and answers.
struct OPENFILENAME {
    LPCTSTR lpstrTitle = nullptr;
    LPCTSTR lpstrInitialDir = nullptr;
    LPTSTR lpstrFile = nullptr; // takes the names of several files; not needed here
    DWORD nMaxFile = 0;
    DWORD Flags = 0;
};
inline constexpr DWORD OFN_OVERWRITEPROMPT = 2, OFN_HIDEREADONLY = 4, OFN_ALLOWMULTISELECT = 0x200,
                       OFN_PATHMUSTEXIST = 0x800, OFN_FILEMUSTEXIST = 0x1000, OFN_EXPLORER = 0x80000;

// Paths are Windows paths. A filter is "文本文件 (*.TXT)|*.TXT|...||".
class CFileDialog : public CDialog {
public:
    explicit CFileDialog(BOOL open, LPCTSTR extension = nullptr, LPCTSTR fileName = nullptr,
                         DWORD flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT, LPCTSTR filter = nullptr,
                         CWnd* parent = nullptr);

    OPENFILENAME m_ofn;

    INT_PTR DoModal() override;
    CString GetPathName() const;
    CString GetFileName() const;
    CString GetFileTitle() const;
    CString GetFileExt() const;
    CString GetFolderPath() const;
    POSITION GetStartPosition() const;
    CString GetNextPathName(POSITION& position) const;

private:
    BOOL open_;
    CString extension_, fileName_, filter_;
    std::vector<CString> paths_;
};
