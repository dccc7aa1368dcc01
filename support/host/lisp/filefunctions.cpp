// Files and the loading of programs. Programs load from the code folders only; other files are read and
// written in the data folders only.
#include "host/lisp/builtins.h"
#include "host/lisp/file.h"
#include "host/lisp/printer.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <algorithm>
#include <cstdlib>

namespace host::lisp {

namespace fs = std::filesystem;

namespace {

bool isInside(const fs::path& file, const fs::path& folder) {
    std::error_code error;
    const fs::path root = fs::weakly_canonical(folder, error);
    if (error || root.empty() || root == root.root_path()) {
        return false;
    }
    const auto [end, rest] = std::mismatch(root.begin(), root.end(), file.begin(), file.end());
    return end == root.end() || (end->empty() && std::next(end) == root.end());
}

// The absolute path with links resolved, so that neither .. nor a link leads out of a folder.
fs::path resolvedPath(const std::wstring& name, const std::vector<fs::path>& bases) {
    std::error_code error;
    fs::path file = toNativePath(name);
    if (file.is_relative()) {
        for (const fs::path& base : bases) {
            const fs::path candidate = toNativePath(name, base);
            if (fs::exists(candidate, error)) {
                file = candidate;
                break;
            }
        }
    }
    return fs::weakly_canonical(fs::absolute(file, error), error);
}

std::vector<fs::path> foldersFrom(const std::function<std::vector<fs::path>()>& source) {
    return source ? source() : std::vector<fs::path>();
}

bool isInsideAny(const fs::path& file, const std::vector<fs::path>& folders) {
    return std::ranges::any_of(folders, [&](const fs::path& folder) { return isInside(file, folder); });
}

Value openFile(LispInterpreter& lisp, Arguments arguments) {
    const std::wstring& name = textOf(arguments[0]);
    const std::wstring modeName = toLower(std::wstring_view(textOf(arguments[1])));
    if (arguments.size() > 2) {
        textOf(arguments[2]); // the encoding: files are written as UTF-8, read as they are
    }
    const auto mode = modeName.starts_with(L"r")   ? FileHandle::Mode::read
                      : modeName.starts_with(L"w") ? FileHandle::Mode::write
                                                   : FileHandle::Mode::append;
    if (mode == FileHandle::Mode::append && !modeName.starts_with(L"a")) {
        valueError(L"文件打开方式", arguments[1]);
    }
    const std::vector<fs::path> data = foldersFrom(lisp.surroundings().dataFolders);
    const std::vector<fs::path> code = foldersFrom(lisp.surroundings().codeFolders);
    const fs::path file = resolvedPath(name, data);
    const bool reading = mode == FileHandle::Mode::read;
    // What is loaded as code can't be changed by code.
    if (!(reading ? isInsideAny(file, data) || isInsideAny(file, code)
                  : isInsideAny(file, data) && !isInsideAny(file, code))) {
        lisp.print(L"\n不允许访问文件 " + displayPath(file));
        return {};
    }
    Value handle = make<FileHandle>(file, mode);
    return handle.as<FileHandle>().isOpen() ? handle : Value();
}

Value closeFile(LispInterpreter&, Arguments arguments) {
    FileHandle& file = fileOf(arguments[0]);
    if (!file.close()) {
        throw Error(L"文件写入失败: " + file.path());
    }
    return {};
}

FileHandle& readable(Arguments arguments) {
    if (arguments.empty() || arguments[0].isNil()) {
        throw Error(L"不能从命令行读取字符");
    }
    return fileOf(arguments[0]);
}

Value readLine(LispInterpreter&, Arguments arguments) {
    std::optional<std::wstring> line = readable(arguments).readLine();
    return line ? makeText(std::move(*line)) : Value();
}

Value readCharacter(LispInterpreter&, Arguments arguments) {
    const std::optional<wchar_t> character = readable(arguments).readCharacter();
    return character ? Value(static_cast<std::int32_t>(*character)) : Value();
}

// The file of a program: in a code folder, with .lsp when no extension is given.
std::optional<fs::path> programFile(LispInterpreter& lisp, const std::wstring& name) {
    const std::vector<fs::path> folders = foldersFrom(lisp.surroundings().codeFolders);
    for (const std::wstring& candidate : {name, name + L".lsp"}) {
        const fs::path file = resolvedPath(candidate, folders);
        std::error_code error;
        if (isInsideAny(file, folders) && fs::is_regular_file(file, error)) {
            return file;
        }
    }
    return std::nullopt;
}

Value load(LispInterpreter& lisp, Arguments arguments) {
    const std::wstring& name = textOf(arguments[0]);
    const std::optional<fs::path> file = programFile(lisp, name);
    const std::optional<std::wstring> source = file ? readTextFile(*file) : std::nullopt;
    if (!source) {
        if (arguments.size() > 1) {
            return arguments[1].isSymbol() && lisp.isFunction(arguments[1].symbol()->name)
                       ? lisp.apply(arguments[1], {})
                       : arguments[1];
        }
        throw Error(L"LOAD 失败: \"" + escaped(name) + L"\"");
    }
    return lisp.runProgram(*source);
}

Value environment(LispInterpreter&, Arguments arguments) {
    const char* const value = std::getenv(toUtf8(textOf(arguments[0])).c_str());
    return value == nullptr ? Value() : makeText(fromUtf8(value));
}

// File names, without touching files.

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

// A path that programs may look at; nothing for one outside.
std::optional<fs::path> visiblePath(LispInterpreter& lisp, const std::wstring& name) {
    const std::vector<fs::path> data = foldersFrom(lisp.surroundings().dataFolders);
    const std::vector<fs::path> code = foldersFrom(lisp.surroundings().codeFolders);
    fs::path file = resolvedPath(name, data);
    return isInsideAny(file, data) || isInsideAny(file, code) ? std::optional(std::move(file)) : std::nullopt;
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

// (vl-directory-files [folder pattern what]): what is -1 for folders, 1 for files, 0 for both.
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

// A data file that a program may change; nothing for others.
std::optional<fs::path> changeablePath(LispInterpreter& lisp, const std::wstring& name) {
    const std::vector<fs::path> data = foldersFrom(lisp.surroundings().dataFolders);
    const std::vector<fs::path> code = foldersFrom(lisp.surroundings().codeFolders);
    fs::path file = resolvedPath(name, data);
    return isInsideAny(file, data) && !isInsideAny(file, code) ? std::optional(std::move(file))
                                                               : std::nullopt;
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

Value makeFolder(LispInterpreter& lisp, Arguments arguments) {
    std::error_code error;
    const std::optional<fs::path> folder = changeablePath(lisp, textOf(arguments[0]));
    return lisp.boolean(folder && fs::create_directory(*folder, error));
}

constexpr FunctionRow rows[] = {
    {L"OPEN", openFile, 2, 3},
    {L"CLOSE", closeFile, 1, 1},
    {L"READ-LINE", readLine, 0, 1},
    {L"READ-CHAR", readCharacter, 0, 1},
    {L"LOAD", load, 1, 2},
    {L"GETENV", environment, 1, 1},
    {L"VL-FILENAME-BASE", baseName, 1, 1},
    {L"VL-FILENAME-EXTENSION", extensionName, 1, 1},
    {L"VL-FILENAME-DIRECTORY", folderName, 1, 1},
    {L"VL-FILE-SIZE", fileSize, 1, 1},
    {L"VL-FILE-DIRECTORY-P", isFolder, 1, 1},
    {L"VL-FILE-DELETE", deleteFile, 1, 1},
    {L"VL-FILE-RENAME", renameFile, 2, 2},
    {L"VL-DIRECTORY-FILES", folderFiles, 0, 3},
    {L"VL-MKDIR", makeFolder, 1, 1},
};

} // namespace

void addFileFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
