// The file dialog: the desktop's own when it is worked by hand; where a script works it, a box for the names.
#include "host/ed/input.h"
#include "host/mfc/dialog.h"
#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/dialogwindow.h"
#include "host/rx/text.h"
#include "host/win/paths.h"

#include <QFileDialog>
#include <filesystem>

namespace host {
namespace {

constexpr UINT nameId = 1148; // as the other platform's file dialogs have it

// "文本文件 (*.TXT)|*.TXT|...||" as the toolkit writes it: "文本文件 (*.TXT);;..."
QStringList filtersOf(const std::wstring& filter) {
    QStringList filters;
    const QStringList parts = toQt(filter).split('|', Qt::SkipEmptyParts);
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
        filters << parts[i].section('(', 0, 0).trimmed() + " (" +
                       QString(parts[i + 1]).replace(';', ' ').replace("*.*", "*") + ")";
    return filters;
}

// Names in quotes are several, as the box shows them.
std::vector<std::wstring> namesIn(const std::wstring& text) {
    std::vector<std::wstring> names;
    if (text.find(L'"') == text.npos) {
        names.emplace_back(trim(text));
        return names;
    }
    for (std::size_t at = text.find(L'"'); at != text.npos;) {
        const std::size_t end = text.find(L'"', at + 1);
        if (end == text.npos)
            break;
        names.push_back(text.substr(at + 1, end - at - 1));
        at = text.find(L'"', end + 1);
    }
    return names;
}

class NameDialog : public CDialog {
public:
    NameDialog(bool open, bool several, DWORD flags) : open_(open), several_(several), flags_(flags) {}

    std::vector<std::wstring> paths; // Windows paths
    CString extension, folder;

    INT_PTR run(const std::wstring& title, const std::wstring& name, CWnd* owner) {
        DialogTemplate box;
        box.style = WS_POPUP | WS_CAPTION | WS_SYSMENU;
        box.caption = title;
        box.rect = {0, 0, 240, 52};
        const DWORD shown = WS_CHILD | WS_VISIBLE;
        box.items = {{L"Static", L"文件名(&N):", 0, shown | SS_CENTERIMAGE, 0, {8, 8, 44, 12}, 0xFFFF},
                     {L"Edit", name, 0, shown | WS_TABSTOP | WS_BORDER, 0, {52, 8, 180, 12}, nameId},
                     {L"Button",
                      open_ ? L"打开(&O)" : L"保存(&S)",
                      0,
                      shown | WS_TABSTOP | BS_DEFPUSHBUTTON,
                      0,
                      {126, 30, 50, 14},
                      IDOK},
                     {L"Button", L"取消", 0, shown | WS_TABSTOP, 0, {182, 30, 50, 14}, IDCANCEL}};
        buildFrom(box, owner, true);
        const int result = runModal(*dialogOf(m_hWnd));
        DestroyWindow();
        processEvents();
        throwKept();
        return result;
    }

protected:
    void OnOK() override {
        CString text;
        GetDlgItemText(nameId, text);
        std::vector<std::wstring> chosen;
        for (const std::wstring& name : namesIn(text.GetString())) {
            if (name.empty())
                return;
            chosen.push_back(fullPath(name));
            std::error_code error;
            const bool exists = std::filesystem::exists(toNativePath(chosen.back()), error);
            if (open_ && (flags_ & OFN_FILEMUSTEXIST) != 0 && !exists) {
                MessageBox((L"找不到文件: " + chosen.back()).c_str(), L"打开", MB_ICONWARNING);
                return;
            }
            if (!open_ && (flags_ & OFN_OVERWRITEPROMPT) != 0 && exists &&
                MessageBox((chosen.back() + L" 已存在。\n要替换它吗？").c_str(), L"另存为",
                           MB_YESNO | MB_ICONWARNING) != IDYES)
                return;
        }
        if (chosen.empty() || (chosen.size() > 1 && !several_))
            return;
        paths = std::move(chosen);
        EndDialog(IDOK);
    }

private:
    std::wstring fullPath(const std::wstring& name) const {
        std::wstring path = name;
        if (!extension.IsEmpty() && extensionOf(path).empty())
            path += std::wstring(L".") + extension.GetString();
        const std::filesystem::path base =
            folder.IsEmpty() ? std::filesystem::current_path() : toNativePath(folder.GetString());
        return isAbsoluteWindowsPath(path) || path.front() == L'/' ? toWindowsPath(toNativePath(path))
                                                                   : toWindowsPath(toNativePath(path, base));
    }

    bool open_, several_;
    DWORD flags_;
};

} // namespace
} // namespace host

CFileDialog::CFileDialog(BOOL open, LPCTSTR extension, LPCTSTR fileName, DWORD flags, LPCTSTR filter,
                         CWnd* parent)
    : CDialog(0u, parent), open_(open), extension_(extension), fileName_(fileName), filter_(filter) {
    m_ofn.Flags = flags;
}

INT_PTR CFileDialog::DoModal() {
    const std::wstring title = m_ofn.lpstrTitle != nullptr ? m_ofn.lpstrTitle
                               : open_ != FALSE            ? L"打开"
                                                           : L"另存为";
    const bool several = (m_ofn.Flags & OFN_ALLOWMULTISELECT) != 0;
    const host::UserInput* user = host::inputStream().user();
    paths_.clear();
    if (user == nullptr || !user->worksDialogs()) {
        host::NameDialog box(open_ != FALSE, several, m_ofn.Flags);
        box.extension = extension_;
        box.folder = m_ofn.lpstrInitialDir;
        const INT_PTR result = box.run(title, fileName_.GetString(), m_pParentWnd);
        for (const std::wstring& path : box.paths)
            paths_.emplace_back(path.c_str());
        return result;
    }
    host::application();
    QWidget* over = m_pParentWnd != nullptr && m_pParentWnd->m_hWnd != nullptr
                        ? m_pParentWnd->m_hWnd->widget->window()
                        : nullptr;
    QFileDialog dialog(over, host::toQt(title));
    dialog.setAcceptMode(open_ != FALSE ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    dialog.setFileMode(open_ == FALSE ? QFileDialog::AnyFile
                       : several      ? QFileDialog::ExistingFiles
                                      : QFileDialog::ExistingFile);
    dialog.setNameFilters(host::filtersOf(filter_.GetString()));
    dialog.setDefaultSuffix(host::toQt(extension_.GetString()));
    if (m_ofn.lpstrInitialDir != nullptr)
        dialog.setDirectory(QString::fromStdString(host::toNativePath(m_ofn.lpstrInitialDir).string()));
    if (!fileName_.IsEmpty())
        dialog.selectFile(host::toQt(fileName_.GetString()));
    if (dialog.exec() != QDialog::Accepted)
        return IDCANCEL;
    for (const QString& file : dialog.selectedFiles())
        paths_.emplace_back(host::toWindowsPath(file.toStdString()).c_str());
    return IDOK;
}

CString CFileDialog::GetPathName() const {
    return paths_.empty() ? CString() : paths_.front();
}
CString CFileDialog::GetFileName() const {
    const CString path = GetPathName();
    return path.Mid(path.ReverseFind(L'\\') + 1);
}
CString CFileDialog::GetFileTitle() const {
    const CString name = GetFileName();
    const int dot = name.ReverseFind(L'.');
    return dot >= 0 ? name.Left(dot) : name;
}
CString CFileDialog::GetFileExt() const {
    const CString name = GetFileName();
    const int dot = name.ReverseFind(L'.');
    return dot >= 0 ? name.Mid(dot + 1) : CString();
}
CString CFileDialog::GetFolderPath() const {
    const CString path = GetPathName();
    return path.Left(std::max(0, path.ReverseFind(L'\\')));
}

// A position is the index of the next path, from 1.
POSITION CFileDialog::GetStartPosition() const {
    return reinterpret_cast<POSITION>(static_cast<UINT_PTR>(paths_.empty() ? 0 : 1));
}
CString CFileDialog::GetNextPathName(POSITION& position) const {
    const auto index = reinterpret_cast<UINT_PTR>(position);
    position = reinterpret_cast<POSITION>(index < paths_.size() ? index + 1 : 0);
    return index >= 1 && index <= paths_.size() ? paths_[index - 1] : CString();
}
