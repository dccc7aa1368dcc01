// Names of files and what stands in folders: the vl-filename-, vl-file- and vl-directory- functions.
#include "host/lisp/builtins.h"
#include "host/lisp/file.h"
#include "host/lisp/fileaccess.h"
#include "host/rx/format.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>

namespace host::lisp {

namespace fs = std::filesystem;

namespace {

Value baseName(LispInterpreter&, Arguments arguments) {
    std::wstring_view name = fileNameOf(textOf(arguments[0]));
    name.remove_suffix(extensionOf(name).size());
    return makeText(std::wstring(name));
}

Value extensionName(LispInterpreter&, Arguments arguments) {
    const std::wstring_view extension = extensionOf(textOf(arguments[0]));
    return extension.empty() ? Value() : makeText(std::wstring(extension));
}

Value folderName(LispInterpreter&, Arguments arguments) {
    return makeText(std::wstring(folderOf(textOf(arguments[0]))));
}

// (vl-filename-mktemp [pattern folder extension]): a name that no file has yet; in the folder for temporary
// files when none is given.
Value temporaryName(LispInterpreter&, Arguments arguments) {
    constexpr int most = 0x1000;
    const auto textAt = [&](std::size_t index) {
        return arguments.size() > index && arguments[index] ? textOf(arguments[index]) : std::wstring();
    };
    std::wstring base = textAt(0);
    std::wstring extension = textAt(2);
    std::error_code error;
    fs::path folder = fs::temp_directory_path(error);
    if (const std::wstring_view given = folderOf(base); !given.empty()) {
        folder = toNativePath(given);
    }
    if (const std::wstring given = textAt(1); !given.empty()) {
        folder = toNativePath(given);
    }
    base = fileNameOf(base);
    if (const std::wstring given(extensionOf(base)); !given.empty()) {
        base.resize(base.size() - given.size());
        extension = extension.empty() ? given : extension;
    }
    if (!extension.empty() && extension.front() != L'.') {
        extension.insert(0, L".");
    }
    base = base.empty() ? L"$VL~~" : base;
    for (int number = 1; number < most; ++number) {
        const fs::path file = folder / toNativeName(base + formatted(L"%03x", number) + extension);
        if (!fs::exists(fs::symlink_status(file, error))) {
            return makeText(toWindowsPath(file));
        }
    }
    return {};
}

Value fileSize(LispInterpreter& lisp, Arguments arguments) {
    std::error_code error;
    const std::optional<fs::path> file = visiblePath(lisp, textOf(arguments[0]));
    if (!file || !fs::exists(*file, error)) {
        return {};
    }
    if (fs::is_directory(*file, error)) {
        return 0;
    }
    const auto size = fs::file_size(*file, error);
    return error ? Value() : integerOrReal(static_cast<std::int64_t>(size));
}

Value isFolder(LispInterpreter& lisp, Arguments arguments) {
    std::error_code error;
    const std::optional<fs::path> file = visiblePath(lisp, textOf(arguments[0]));
    return lisp.boolean(file && fs::is_directory(*file, error));
}

// (vl-directory-files [folder pattern what]): what is -1 for folders, 1 for files, 0 for both. Folders begin
// with . and .., as programs expect.
Value folderFiles(LispInterpreter& lisp, Arguments arguments) {
    const std::wstring folder = !arguments.empty() && arguments[0] ? textOf(arguments[0]) : L".";
    const std::wstring pattern = arguments.size() > 1 && arguments[1] ? textOf(arguments[1]) : L"*";
    const std::int32_t what = arguments.size() > 2 && arguments[2] ? integerOf(arguments[2]) : 0;
    const std::optional<fs::path> path = visiblePath(lisp, folder);
    if (!path) {
        return {};
    }
    std::vector<std::wstring> names;
    std::error_code error;
    if (!fs::is_directory(*path, error)) {
        return {};
    }
    for (const wchar_t* own : {L".", L".."}) {
        if (what <= 0 && matchesPattern(own, pattern)) {
            names.emplace_back(own);
        }
    }
    for (fs::directory_iterator at(*path, error), end; !error && at != end; at.increment(error)) {
        std::error_code unreadable;
        const bool isDirectory = at->is_directory(unreadable);
        std::wstring name = fromUtf8(at->path().filename().string());
        if ((what == 0 || (what < 0) == isDirectory) && matchesPattern(name, pattern)) {
            names.push_back(std::move(name));
        }
    }
    std::ranges::sort(names);
    ListBuilder builder;
    for (std::wstring& name : names) {
        builder.add(makeText(std::move(name)));
    }
    return builder.take();
}

// (year month weekday day hour minute second millisecond) of the last change, in local time; Sunday is 0.
Value fileTime(LispInterpreter& lisp, Arguments arguments) {
    std::error_code error;
    const std::optional<fs::path> file = visiblePath(lisp, textOf(arguments[0]));
    const auto written = file ? fs::last_write_time(*file, error) : fs::file_time_type();
    if (!file || error) {
        return {};
    }
    const auto moment = std::chrono::file_clock::to_sys(written);
    const auto seconds = std::chrono::floor<std::chrono::seconds>(moment);
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(moment - seconds);
    const std::time_t time = std::chrono::system_clock::to_time_t(seconds);
    std::tm local{};
    localtime_r(&time, &local);
    return list(local.tm_year + 1900, local.tm_mon + 1, local.tm_wday, local.tm_mday, local.tm_hour,
                local.tm_min, local.tm_sec, static_cast<std::int32_t>(milliseconds.count()));
}

Value deleteFile(LispInterpreter& lisp, Arguments arguments) {
    std::error_code error;
    const std::optional<fs::path> file = changeablePath(lisp, textOf(arguments[0]));
    return lisp.boolean(file && fs::is_regular_file(*file, error) && fs::remove(*file, error));
}

Value renameFile(LispInterpreter& lisp, Arguments arguments) {
    std::error_code error;
    const std::optional<fs::path> from = changeablePath(lisp, textOf(arguments[0]));
    const std::optional<fs::path> to = changeablePath(lisp, textOf(arguments[1]));
    if (!from || !to || !fs::is_regular_file(*from, error) || fs::exists(*to, error)) {
        return {};
    }
    fs::rename(*from, *to, error);
    return lisp.boolean(!error);
}

// (vl-file-copy from to [append]): the number of bytes copied. An existing file is only ever appended to.
Value copyFile(LispInterpreter& lisp, Arguments arguments) {
    std::error_code error;
    const std::optional<fs::path> from = visiblePath(lisp, textOf(arguments[0]));
    const std::optional<fs::path> to = changeablePath(lisp, textOf(arguments[1]));
    const bool append = arguments.size() > 2 && arguments[2];
    if (!from || !to || !fs::is_regular_file(*from, error) || *from == *to ||
        (fs::exists(*to, error) && (!append || !fs::is_regular_file(*to, error)))) {
        return {};
    }
    const auto size = fs::file_size(*from, error);
    if (error) {
        return {};
    }
    std::ifstream source(*from, std::ios::binary);
    std::ofstream target(*to, std::ios::binary | std::ios::app);
    if (size > 0) {
        target << source.rdbuf();
    }
    target.close();
    return source && target ? integerOrReal(static_cast<std::int64_t>(size)) : Value();
}

Value makeFolder(LispInterpreter& lisp, Arguments arguments) {
    std::error_code error;
    const std::optional<fs::path> folder = changeablePath(lisp, textOf(arguments[0]));
    return lisp.boolean(folder && fs::create_directory(*folder, error));
}

constexpr FunctionRow rows[] = {
    {L"VL-FILENAME-BASE", baseName, 1, 1},
    {L"VL-FILENAME-EXTENSION", extensionName, 1, 1},
    {L"VL-FILENAME-DIRECTORY", folderName, 1, 1},
    {L"VL-FILENAME-MKTEMP", temporaryName, 0, 3},
    {L"VL-FILE-SIZE", fileSize, 1, 1},
    {L"VL-FILE-DIRECTORY-P", isFolder, 1, 1},
    {L"VL-FILE-SYSTIME", fileTime, 1, 1},
    {L"VL-FILE-DELETE", deleteFile, 1, 1},
    {L"VL-FILE-RENAME", renameFile, 2, 2},
    {L"VL-FILE-COPY", copyFile, 2, 3},
    {L"VL-DIRECTORY-FILES", folderFiles, 0, 3},
    {L"VL-MKDIR", makeFolder, 1, 1},
};

} // namespace

void addFolderFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
