// CFileFind: a walk through the files of a folder that fit a pattern.
#pragma once

#include "host/mfc/cstring.h"
#include "host/mfc/object.h"
#include "host/win/filefunctions.h"

// FindFile begins; each FindNextFile moves to the next entry and says whether there is another after it.
class CFileFind : public CObject {
public:
    CFileFind() = default;
    ~CFileFind() override { Close(); }

    // A pattern in the last name ("dir\*.dwg"); null means every file of the current folder.
    virtual BOOL FindFile(LPCTSTR pattern = nullptr, DWORD unused = 0);
    virtual BOOL FindNextFile();
    void Close();

    // Of the current entry: name, name without extension, folder and name, folder.
    virtual CString GetFileName() const { return found_.cFileName; }
    virtual CString GetFileTitle() const;
    virtual CString GetFilePath() const;
    virtual CString GetRoot() const { return root_; }
    ULONGLONG GetLength() const { return ULONGLONG{found_.nFileSizeHigh} << 32 | found_.nFileSizeLow; }
    BOOL GetLastWriteTime(FILETIME* time) const { return *time = found_.ftLastWriteTime, TRUE; }
    BOOL GetCreationTime(FILETIME* time) const { return *time = found_.ftCreationTime, TRUE; }
    virtual BOOL IsDots() const;
    BOOL MatchesMask(DWORD mask) const { return (found_.dwFileAttributes & mask) != 0 ? TRUE : FALSE; }
    BOOL IsDirectory() const { return MatchesMask(FILE_ATTRIBUTE_DIRECTORY); }
    BOOL IsReadOnly() const { return MatchesMask(FILE_ATTRIBUTE_READONLY); }
    BOOL IsHidden() const { return MatchesMask(FILE_ATTRIBUTE_HIDDEN); }
    BOOL IsNormal() const { return MatchesMask(FILE_ATTRIBUTE_NORMAL); }
    BOOL IsArchived() const { return MatchesMask(FILE_ATTRIBUTE_ARCHIVE); }

private:
    HANDLE search_ = nullptr;
    WIN32_FIND_DATAW found_{}, next_{};
    CString root_;
};
