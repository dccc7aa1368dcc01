// Opening, reading and closing of files, and the loading of programs.
#include "host/lisp/builtins.h"
#include "host/lisp/file.h"
#include "host/lisp/fileaccess.h"
#include "host/lisp/printer.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <cstdlib>

namespace host::lisp {

namespace fs = std::filesystem;

namespace {

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
    const std::optional<fs::path> file =
        mode == FileHandle::Mode::read ? visiblePath(lisp, name) : changeablePath(lisp, name);
    if (!file) {
        lisp.print(L"\n不允许访问文件 " + displayPath(toNativePath(name)));
        return {};
    }
    Value handle = make<FileHandle>(*file, mode);
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

/// What takes the place of a file that can't be loaded: a function is called, another value is the result.
Value insteadOfLoading(LispInterpreter& lisp, const Value& onFailure) {
    const bool isLambda =
        onFailure.isCons() && onFailure.head().isSymbol() && onFailure.head().symbol()->name == L"LAMBDA";
    const bool isFunction = isLambda || onFailure.kind() == Kind::userFunction ||
                            onFailure.kind() == Kind::subr ||
                            (onFailure.isSymbol() && lisp.isFunction(onFailure.symbol()->name));
    return isFunction ? lisp.apply(onFailure, {}) : onFailure;
}

Value load(LispInterpreter& lisp, Arguments arguments) {
    const std::wstring& name = textOf(arguments[0]);
    const std::optional<fs::path> file = programFile(lisp, name);
    const std::optional<std::wstring> source = file ? readTextFile(*file) : std::nullopt;
    if (source) {
        return lisp.runProgram(*source, displayPath(file->filename()));
    }
    if (arguments.size() > 1) {
        return insteadOfLoading(lisp, arguments[1]);
    }
    const bool outside = visiblePath(lisp, name) || visiblePath(lisp, name + L".lsp");
    throw Error(L"LOAD 失败: \"" + escaped(name) + L"\"" +
                (outside ? L"，程序只从支持文件夹和变量 TRUSTEDPATHS 所列的文件夹加载" : L""));
}

// (autoload file (command ...)): the first call of a command loads the file and calls what it has defined.
Value autoload(LispInterpreter& lisp, Arguments arguments) {
    textOf(arguments[0]);
    for (const Value& name : Elements(listOf(arguments[1]))) {
        Symbol* const command = lisp.intern(L"C:" + textOf(name));
        if (!command->value) {
            const Value body = list(list(lisp.intern(L"LOAD"), arguments[0]), list(command));
            command->value = lisp.makeFunction(command->name, nil, body);
        }
    }
    return {};
}

Value environment(LispInterpreter&, Arguments arguments) {
    const char* const value = std::getenv(toUtf8(textOf(arguments[0])).c_str());
    return value == nullptr ? Value() : makeText(fromUtf8(value));
}

constexpr FunctionRow rows[] = {
    {L"OPEN", openFile, 2, 3},           {L"CLOSE", closeFile, 1, 1}, {L"READ-LINE", readLine, 0, 1},
    {L"READ-CHAR", readCharacter, 0, 1}, {L"LOAD", load, 1, 2},       {L"AUTOLOAD", autoload, 2, 2},
    {L"GETENV", environment, 1, 1},
};

} // namespace

void addFileFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
    addFolderFunctions(lisp);
}

} // namespace host::lisp
