// Path conversion, with a small cache of folder contents for names that are given in another case.
#include "host/win/paths.h"

#include "host/rx/text.h"

#include <algorithm>
#include <ctime>
#include <mutex>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unordered_map>
#include <vector>

namespace host {
namespace {

// A backslash inside a Linux name, and bytes that are no UTF-8, travel as characters that no name has.
constexpr wchar_t innerBackslash = L'\xF05C';
constexpr wchar_t innerByte = L'\xDC00'; // plus the byte, 80 to FF

std::string nativeName(std::wstring_view name) {
    std::string out;
    std::wstring run;
    const auto flush = [&] {
        out += toUtf8(run);
        run.clear();
    };
    for (const wchar_t c : name) {
        if (c == innerBackslash) {
            run.push_back(L'\\');
        } else if (c >= innerByte + 0x80 && c <= innerByte + 0xFF) {
            flush();
            out.push_back(static_cast<char>(c - innerByte));
        } else if (c != 0) {
            run.push_back(c);
        }
    }
    flush();
    return out;
}

std::wstring wideName(std::string_view name) {
    std::wstring out;
    if (isValidUtf8(name)) {
        out = fromUtf8(name);
    } else {
        for (std::size_t i = 0; i < name.size();) {
            std::size_t length = std::min<std::size_t>(4, name.size() - i);
            while (length > 1 && !isValidUtf8(name.substr(i, length)))
                --length;
            const std::string_view piece = name.substr(i, length);
            if (isValidUtf8(piece))
                out += fromUtf8(piece);
            else
                out.push_back(static_cast<wchar_t>(innerByte + static_cast<unsigned char>(piece[0])));
            i += length;
        }
    }
    std::ranges::replace(out, L'\\', innerBackslash);
    return out;
}

constexpr bool isSeparator(wchar_t c) {
    return c == L'\\' || c == L'/';
}

bool hasDrive(std::wstring_view path) {
    const wchar_t letter = path.size() >= 2 ? toLower(path[0]) : L'\0';
    return letter >= L'a' && letter <= L'z' && path[1] == L':';
}

struct SplitPath {
    bool absolute = false;
    std::vector<std::string> names; // without . and .., except .. at the beginning of a relative path
};

SplitPath split(std::wstring_view path) {
    for (const std::wstring_view prefix : {L"\\\\?\\UNC", L"\\\\?\\", L"\\\\.\\"})
        if (startsWithNoCase(path, prefix)) {
            path.remove_prefix(prefix.size());
            break;
        }
    if (hasDrive(path))
        path.remove_prefix(2);
    SplitPath result;
    result.absolute = !path.empty() && isSeparator(path.front());
    while (!path.empty()) {
        const auto end = static_cast<std::size_t>(std::ranges::find_if(path, isSeparator) - path.begin());
        const std::wstring_view name = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (name.empty() || name == L".")
            continue;
        if (name != L"..")
            result.names.push_back(nativeName(name));
        else if (!result.names.empty() && result.names.back() != "..")
            result.names.pop_back();
        else if (!result.absolute)
            result.names.emplace_back("..");
    }
    return result;
}

std::optional<struct stat> statOf(const std::filesystem::path& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? std::optional(info) : std::nullopt;
}

bool isThere(const std::filesystem::path& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

// The names of a folder by their folded form; of several that differ only in case the first in order counts.
class FolderCache {
public:
    std::optional<std::string> find(const std::filesystem::path& folder, const std::string& name) {
        const auto info = statOf(folder);
        if (!info)
            return {};
        const std::lock_guard guard(mutex_);
        Folder& cached = folders_[folder.native()];
        if (!cached.settled || cached.changed.tv_sec != info->st_mtim.tv_sec ||
            cached.changed.tv_nsec != info->st_mtim.tv_nsec || cached.inode != info->st_ino)
            fill(cached, folder, *info);
        const auto found = cached.names.find(fold(fromUtf8(name)));
        auto result = found == cached.names.end() ? std::nullopt : std::optional(found->second);
        if (folders_.size() > mostFolders)
            folders_.clear();
        return result;
    }

private:
    static constexpr std::size_t mostFolders = 64;

    struct Folder {
        timespec changed{};
        ino_t inode = 0;
        bool settled = false; // the folder's time stamp would tell any later change
        std::unordered_map<std::wstring, std::string> names;
    };

    static void fill(Folder& cached, const std::filesystem::path& folder, const struct stat& info) {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        cached.changed = info.st_mtim;
        cached.inode = info.st_ino;
        // Time stamps move in steps: a change in the same step as the last one would go unseen.
        cached.settled = now.tv_sec - info.st_mtim.tv_sec >= 2;
        cached.names.clear();
        std::error_code error;
        for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end;
             at.increment(error)) {
            std::string name = at->path().filename().string();
            auto [entry, added] = cached.names.try_emplace(fold(fromUtf8(name)), name);
            if (!added && name < entry->second)
                entry->second = std::move(name);
        }
    }

    std::mutex mutex_;
    std::unordered_map<std::string, Folder> folders_;
};

FolderCache& folderCache() {
    static FolderCache cache;
    return cache;
}

std::filesystem::path resolve(const SplitPath& wanted, const std::filesystem::path& base) {
    std::filesystem::path whole = wanted.absolute ? std::filesystem::path("/") : base;
    for (const std::string& name : wanted.names)
        whole /= name;
    if (isThere(whole))
        return whole;
    std::filesystem::path at = wanted.absolute ? std::filesystem::path("/") : base;
    bool there = true;
    for (const std::string& name : wanted.names) {
        if (there && name != ".." && !isThere(at / name)) {
            const auto found = folderCache().find(at.empty() ? std::filesystem::path(".") : at, name);
            there = found.has_value();
            at /= found.value_or(name);
        } else {
            at /= name;
        }
    }
    return at;
}

} // namespace

std::filesystem::path toNativePath(std::wstring_view windowsPath) {
    return toNativePath(windowsPath, {});
}

std::filesystem::path toNativePath(std::wstring_view windowsPath, const std::filesystem::path& folder) {
    // A Linux path that is there is taken as it stands: links and .. mean what they mean on Linux.
    if (!windowsPath.empty() && windowsPath.find(L'\\') == windowsPath.npos)
        if (std::filesystem::path plain = folder / nativeName(windowsPath); isThere(plain))
            return plain;
    const SplitPath wanted = split(windowsPath);
    if (!wanted.absolute && wanted.names.empty())
        return windowsPath.empty() ? std::filesystem::path()
               : folder.empty()    ? std::filesystem::path(".")
                                   : folder;
    return resolve(wanted, folder);
}

std::filesystem::path toNativeName(std::wstring_view name) {
    return nativeName(name);
}

std::wstring toWindowsPath(const std::filesystem::path& path) {
    std::wstring out = wideName(path.native());
    std::ranges::replace(out, L'/', L'\\');
    return out;
}

std::wstring displayPath(const std::filesystem::path& path) {
    return fromUtf8(path.native());
}

bool isAbsoluteWindowsPath(std::wstring_view path) noexcept {
    if (hasDrive(path))
        path.remove_prefix(2);
    return !path.empty() && isSeparator(path.front());
}

std::wstring_view fileNameOf(std::wstring_view path) noexcept {
    const std::size_t end = path.find_last_of(L"\\/");
    path.remove_prefix(end == path.npos ? 0 : end + 1);
    return hasDrive(path) ? path.substr(2) : path;
}

std::wstring_view extensionOf(std::wstring_view path) noexcept {
    const std::wstring_view name = fileNameOf(path);
    const std::size_t dot = name.rfind(L'.');
    return dot == name.npos ? std::wstring_view() : name.substr(dot);
}

std::wstring_view folderOf(std::wstring_view path) noexcept {
    const std::size_t end = path.find_last_of(L"\\/");
    if (end == path.npos)
        return path.substr(0, hasDrive(path) ? 2 : 0);
    const bool root = end == 0 || (end == 2 && hasDrive(path));
    return path.substr(0, root ? end + 1 : end);
}

bool matchesPattern(std::wstring_view name, std::wstring_view pattern) noexcept {
    if (pattern == L"*.*" || pattern == L"*")
        return true;
    std::size_t n = 0, p = 0, star = pattern.npos, resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            star = p++;
            resume = n;
        } else if (p < pattern.size() && (pattern[p] == L'?' || fold(pattern[p]) == fold(name[n]))) {
            ++p;
            ++n;
        } else if (star != pattern.npos) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == L'*')
        ++p;
    return p == pattern.size();
}

} // namespace host
