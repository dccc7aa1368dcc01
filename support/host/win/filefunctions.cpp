// The Windows file functions over the real file system.
#include "host/win/filefunctions.h"

#include "host/rx/text.h"
#include "host/win/fileio.h"
#include "host/win/paths.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

thread_local DWORD lastError = 0;

std::wstring_view viewOf(LPCWSTR text) {
    return text == nullptr ? std::wstring_view() : text;
}

BOOL failWith(LONG code) {
    SetLastError(static_cast<DWORD>(code));
    return FALSE;
}

BOOL failWithErrno() {
    return failWith(host::windowsError(errno));
}

FILETIME fileTime(const timespec& time) {
    constexpr std::int64_t secondsTo1970 = 11'644'473'600;
    const auto ticks =
        static_cast<std::uint64_t>((time.tv_sec + secondsTo1970) * 10'000'000 + time.tv_nsec / 100);
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

DWORD attributesOf(const struct stat& info, std::string_view name) {
    DWORD attributes = S_ISDIR(info.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : 0;
    if ((info.st_mode & 0222) == 0)
        attributes |= FILE_ATTRIBUTE_READONLY;
    if (name.starts_with('.') && name != "." && name != "..")
        attributes |= FILE_ATTRIBUTE_HIDDEN;
    return attributes == 0 ? FILE_ATTRIBUTE_ARCHIVE : attributes;
}

// Copies a text out as the functions with a size do: the length, or the room needed when it does not fit.
DWORD giveText(const std::wstring& text, DWORD size, LPWSTR to) {
    if (to == nullptr || size <= text.size())
        return static_cast<DWORD>(text.size() + 1);
    std::copy_n(text.c_str(), text.size() + 1, to);
    return static_cast<DWORD>(text.size());
}

struct Search {
    std::vector<WIN32_FIND_DATAW> entries;
    std::size_t next = 0;
};

void addEntry(Search& search, const std::filesystem::path& folder, const std::string& name,
              std::wstring_view pattern) {
    const std::wstring wide = host::toWindowsPath(name);
    struct stat info {};
    if (wide.size() >= MAX_PATH || !host::matchesPattern(wide, pattern))
        return;
    const auto path = folder / name;
    if (stat(path.c_str(), &info) != 0 && lstat(path.c_str(), &info) != 0)
        return;
    WIN32_FIND_DATAW entry{};
    entry.dwFileAttributes = attributesOf(info, name);
    entry.ftCreationTime = fileTime(info.st_ctim);
    entry.ftLastAccessTime = fileTime(info.st_atim);
    entry.ftLastWriteTime = fileTime(info.st_mtim);
    entry.nFileSizeHigh = static_cast<DWORD>(static_cast<std::uint64_t>(info.st_size) >> 32);
    entry.nFileSizeLow = static_cast<DWORD>(info.st_size);
    std::ranges::copy(wide, entry.cFileName);
    search.entries.push_back(entry);
}

} // namespace

DWORD GetLastError() noexcept {
    return lastError;
}
void SetLastError(DWORD code) noexcept {
    lastError = code;
}

namespace host {

LONG windowsError(int systemError) noexcept {
    switch (systemError) {
    case 0:
        return ERROR_SUCCESS;
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
        return ERROR_ACCESS_DENIED;
    case EEXIST:
        return ERROR_FILE_EXISTS;
    case ENOTEMPTY:
        return ERROR_DIR_NOT_EMPTY;
    case EXDEV:
        return ERROR_NOT_SAME_DEVICE;
    case ENOSPC:
    case EDQUOT:
        return ERROR_DISK_FULL;
    case EBUSY:
    case ETXTBSY:
        return ERROR_SHARING_VIOLATION;
    case EINVAL:
        return ERROR_INVALID_PARAMETER;
    case ENAMETOOLONG:
        return ERROR_INVALID_NAME;
    default:
        return ERROR_WRITE_FAULT;
    }
}

} // namespace host

BOOL CopyFileW(LPCWSTR from, LPCWSTR to, BOOL failIfExists) {
    const auto source = host::toNativePath(viewOf(from)), target = host::toNativePath(viewOf(to));
    struct stat old {
    }, there{};
    if (stat(source.c_str(), &old) != 0)
        return failWithErrno();
    if (stat(target.c_str(), &there) == 0) {
        if (failIfExists != 0)
            return failWith(ERROR_FILE_EXISTS);
        if (there.st_dev == old.st_dev && there.st_ino == old.st_ino)
            return failWith(ERROR_SHARING_VIOLATION);
    }
    host::MappedFile in;
    if (!in.open(source))
        return failWith(host::windowsError(in.systemError()));
    host::AtomicFile out(target, host::AtomicFile::Backup::none);
    out.write(in.text());
    if (in.damaged())
        return failWith(ERROR_READ_FAULT);
    if (!out.commit())
        return failWith(host::windowsError(out.systemError()));
    chmod(target.c_str(), old.st_mode & 0777);
    const timespec times[] = {old.st_atim, old.st_mtim};
    utimensat(AT_FDCWD, target.c_str(), times, 0);
    return TRUE;
}

BOOL MoveFileW(LPCWSTR from, LPCWSTR to) {
    return MoveFileExW(from, to, MOVEFILE_COPY_ALLOWED);
}

BOOL MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags) {
    const auto source = host::toNativePath(viewOf(from));
    auto target = host::toNativePath(viewOf(to));
    struct stat old {
    }, there{};
    if (stat(source.c_str(), &old) != 0 && lstat(source.c_str(), &old) != 0)
        return failWithErrno();
    if (lstat(target.c_str(), &there) == 0) {
        const bool same = there.st_dev == old.st_dev && there.st_ino == old.st_ino;
        if (!same && (flags & MOVEFILE_REPLACE_EXISTING) == 0)
            return failWith(ERROR_ALREADY_EXISTS);
        if (!same && S_ISDIR(there.st_mode))
            return failWith(ERROR_ACCESS_DENIED);
        if (same) // only the case of the name changes: take it as given
            target = target.parent_path() / host::toNativeName(host::fileNameOf(viewOf(to)));
    }
    if (rename(source.c_str(), target.c_str()) == 0)
        return TRUE;
    if (errno != EXDEV || (flags & MOVEFILE_COPY_ALLOWED) == 0 || S_ISDIR(old.st_mode))
        return failWithErrno();
    return CopyFileW(from, to, FALSE) != 0 && DeleteFileW(from) != 0 ? TRUE : FALSE;
}

BOOL DeleteFileW(LPCWSTR path) {
    const auto file = host::toNativePath(viewOf(path));
    struct stat info {};
    if (lstat(file.c_str(), &info) != 0)
        return failWithErrno();
    if (S_ISDIR(info.st_mode) || (S_ISREG(info.st_mode) && (info.st_mode & 0222) == 0))
        return failWith(ERROR_ACCESS_DENIED);
    return unlink(file.c_str()) == 0 ? TRUE : failWithErrno();
}

DWORD GetFileAttributesW(LPCWSTR path) {
    const auto file = host::toNativePath(viewOf(path));
    struct stat info {};
    if (stat(file.c_str(), &info) == 0)
        return attributesOf(info, file.filename().string());
    failWithErrno();
    return INVALID_FILE_ATTRIBUTES;
}

BOOL SetFileAttributesW(LPCWSTR path, DWORD attributes) {
    const auto file = host::toNativePath(viewOf(path));
    struct stat info {};
    if (stat(file.c_str(), &info) != 0)
        return failWithErrno();
    const bool readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    const mode_t mode = readOnly ? info.st_mode & ~mode_t{0222} : info.st_mode | 0200;
    return chmod(file.c_str(), mode & 07777) == 0 ? TRUE : failWithErrno();
}

BOOL CreateDirectoryW(LPCWSTR path, SECURITY_ATTRIBUTES*) {
    if (mkdir(host::toNativePath(viewOf(path)).c_str(), 0777) == 0)
        return TRUE;
    return errno == EEXIST   ? failWith(ERROR_ALREADY_EXISTS)
           : errno == ENOENT ? failWith(ERROR_PATH_NOT_FOUND)
                             : failWithErrno();
}

BOOL RemoveDirectoryW(LPCWSTR path) {
    return rmdir(host::toNativePath(viewOf(path)).c_str()) == 0 ? TRUE : failWithErrno();
}

DWORD GetCurrentDirectoryW(DWORD size, LPWSTR path) {
    std::error_code error;
    return giveText(host::toWindowsPath(std::filesystem::current_path(error)), size, path);
}

BOOL SetCurrentDirectoryW(LPCWSTR path) {
    return chdir(host::toNativePath(viewOf(path)).c_str()) == 0 ? TRUE : failWithErrno();
}

DWORD GetTempPathW(DWORD size, LPWSTR path) {
    std::error_code error;
    std::wstring folder = host::toWindowsPath(std::filesystem::temp_directory_path(error));
    if (error)
        folder = L"\\tmp";
    return giveText(folder.ends_with(L'\\') ? folder : folder + L"\\", size, path);
}

DWORD GetFullPathNameW(LPCWSTR path, DWORD size, LPWSTR full, LPWSTR* fileName) {
    std::error_code error;
    const auto absolute =
        std::filesystem::absolute(host::toNativePath(viewOf(path)), error).lexically_normal();
    const DWORD length = giveText(host::toWindowsPath(absolute), size, full);
    if (fileName != nullptr) {
        const bool fits = full != nullptr && length < size;
        *fileName = fits ? full + (length - host::fileNameOf(full).size()) : nullptr;
        if (fits && **fileName == 0)
            *fileName = nullptr;
    }
    return length;
}

BOOL PathFileExistsW(LPCWSTR path) {
    return GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES ? TRUE : FALSE;
}

BOOL PathIsDirectoryW(LPCWSTR path) {
    const DWORD attributes = GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? TRUE
                                                                                                 : FALSE;
}

HANDLE FindFirstFileW(LPCWSTR pattern, WIN32_FIND_DATAW* found) {
    const std::wstring_view text = viewOf(pattern), name = host::fileNameOf(text);
    if (found == nullptr || name.empty()) {
        failWith(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    const std::wstring_view parent = host::folderOf(text);
    const auto folder = parent.empty() ? std::filesystem::path(".") : host::toNativePath(parent);
    auto search = std::make_unique<Search>();
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        failWith(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    for (const char* dots : {".", ".."})
        addEntry(*search, folder, dots, name);
    for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
        addEntry(*search, folder, at->path().filename().string(), name);
    if (search->entries.empty()) {
        failWith(error ? host::windowsError(error.value()) : ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    std::ranges::sort(search->entries, [](const WIN32_FIND_DATAW& left, const WIN32_FIND_DATAW& right) {
        const int order = host::compareNoCase(left.cFileName, right.cFileName);
        return order != 0 ? order < 0
                          : std::wstring_view(left.cFileName) < std::wstring_view(right.cFileName);
    });
    *found = search->entries[search->next++];
    return search.release();
}

BOOL FindNextFileW(HANDLE handle, WIN32_FIND_DATAW* found) {
    auto* const search = static_cast<Search*>(handle);
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE || found == nullptr)
        return failWith(ERROR_INVALID_HANDLE);
    if (search->next == search->entries.size())
        return failWith(ERROR_NO_MORE_FILES);
    *found = search->entries[search->next++];
    return TRUE;
}

BOOL FindClose(HANDLE handle) {
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE)
        return failWith(ERROR_INVALID_HANDLE);
    delete static_cast<Search*>(handle);
    return TRUE;
}
