// Printing on the command line and into files.
#include "host/lisp/builtins.h"
#include "host/lisp/file.h"
#include "host/lisp/printer.h"

namespace host::lisp {

FileHandle& fileOf(const Value& value) {
    if (value.kind() != Kind::file) {
        typeError(L"streamp", value);
    }
    FileHandle& file = value.as<FileHandle>();
    if (!file.isOpen()) {
        throw Error(L"文件没有打开: " + file.path());
    }
    return file;
}

namespace {

// To the file given as an argument, else to the command line.
void output(LispInterpreter& lisp, Arguments arguments, std::size_t fileIndex, std::wstring_view text) {
    if (arguments.size() <= fileIndex || arguments[fileIndex].isNil()) {
        lisp.print(text);
        return;
    }
    FileHandle& file = fileOf(arguments[fileIndex]);
    if (!file.write(text)) {
        throw Error(L"文件写入失败: " + file.path());
    }
}

Value printPlain(LispInterpreter& lisp, Arguments arguments) {
    if (arguments.empty()) {
        return lisp.quiet();
    }
    output(lisp, arguments, 1, printed(arguments[0], PrintStyle::plain));
    return arguments[0];
}

Value printReadable(LispInterpreter& lisp, Arguments arguments) {
    if (arguments.empty()) {
        return lisp.quiet();
    }
    output(lisp, arguments, 1, printed(arguments[0]));
    return arguments[0];
}

Value printLine(LispInterpreter& lisp, Arguments arguments) {
    if (arguments.empty()) {
        lisp.print(L"\n");
        return lisp.quiet();
    }
    output(lisp, arguments, 1, L"\n" + printed(arguments[0]) + L" ");
    return arguments[0];
}

Value prompt(LispInterpreter& lisp, Arguments arguments) {
    lisp.print(textOf(arguments[0]));
    return {};
}

Value newLine(LispInterpreter& lisp, Arguments) {
    lisp.print(L"\n");
    return {};
}

Value nothing(LispInterpreter&, Arguments) {
    return {};
}

Value writeLine(LispInterpreter& lisp, Arguments arguments) {
    output(lisp, arguments, 1, textOf(arguments[0]) + L"\n");
    return arguments[0];
}

Value writeCharacter(LispInterpreter& lisp, Arguments arguments) {
    const std::int32_t code = integerOf(arguments[0]);
    if (code <= 0 || code > 0x10FFFF) {
        valueError(L"字符代码", arguments[0]);
    }
    output(lisp, arguments, 1, std::wstring(1, static_cast<wchar_t>(code)));
    return arguments[0];
}

constexpr FunctionRow rows[] = {
    {L"PRINC", printPlain, 0, 2},     {L"PRIN1", printReadable, 0, 2},
    {L"PRINT", printLine, 0, 2},      {L"PROMPT", prompt, 1, 1},
    {L"TERPRI", newLine, 0, 0},       {L"TEXTSCR", nothing, 0, 0},
    {L"GRAPHSCR", nothing, 0, 0},     {L"TEXTPAGE", nothing, 0, 0},
    {L"WRITE-LINE", writeLine, 1, 2}, {L"WRITE-CHAR", writeCharacter, 1, 2},
};

} // namespace

void addOutputFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
