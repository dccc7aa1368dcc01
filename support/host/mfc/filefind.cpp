// CFileFind over FindFirstFile, one entry ahead.
#include "host/mfc/filefind.h"

#include "host/rx/text.h"
#include "host/win/paths.h"

#include <filesystem>
#include <string>

BOOL CFileFind::FindFile(LPCTSTR pattern, DWORD) {
    Close();
    const std::wstring wanted = pattern == nullptr ? L"*.*" : pattern;
    std::wstring folder(host::folderOf(wanted));
    if (!host::isAbsoluteWindowsPath(wanted)) {
        std::error_code error;
        folder = host::toWindowsPath(std::filesystem::current_path(error)) + (folder.empty() ? L"" : L"\\") +
                 folder;
    }
    const HANDLE search = FindFirstFileW(wanted.c_str(), &next_);
    if (search == INVALID_HANDLE_VALUE)
        return FALSE;
    root_ = folder.c_str();
    search_ = search;
    return TRUE;
}

BOOL CFileFind::FindNextFile() {
    if (search_ == nullptr)
        return FALSE;
    found_ = next_;
    return FindNextFileW(search_, &next_);
}

void CFileFind::Close() {
    if (search_ != nullptr)
        FindClose(search_);
    search_ = nullptr;
}

CString CFileFind::GetFileTitle() const {
    const std::wstring_view name = found_.cFileName;
    return CString(found_.cFileName, static_cast<int>(name.size() - host::extensionOf(name).size()));
}

CString CFileFind::GetFilePath() const {
    return root_ + (root_.GetLength() > 0 && root_.GetAt(root_.GetLength() - 1) == L'\\' ? L"" : L"\\") +
           found_.cFileName;
}

BOOL CFileFind::IsDots() const {
    const std::wstring_view name = found_.cFileName;
    return IsDirectory() != FALSE && (name == L"." || name == L"..") ? TRUE : FALSE;
}
