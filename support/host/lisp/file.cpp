#include "host/lisp/file.h"

#include "host/rx/codepage.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <fstream>
#include <iterator>

namespace host::lisp {

std::optional<std::wstring> readTextFile(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        return std::nullopt;
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return std::nullopt;
    }
    const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    std::string_view content = bytes;
    std::wstring text;
    if (content.starts_with("\xFF\xFE")) {
        text = fromUtf16Le(content.substr(2));
    } else {
        if (content.starts_with("\xEF\xBB\xBF")) {
            content.remove_prefix(3);
        }
        text = isValidUtf8(content) ? fromUtf8(content) : decode(content, CodePage::ansi936);
    }
    std::wstring lines;
    lines.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != L'\r') {
            lines += text[at];
        } else if (at + 1 >= text.size() || text[at + 1] != L'\n') {
            lines += L'\n';
        }
    }
    return lines;
}

FileHandle::FileHandle(std::filesystem::path file, Mode mode)
    : Object(Kind::file), mPath(displayPath(file)), mMode(mode) {
    if (mode == Mode::read) {
        if (std::optional<std::wstring> text = readTextFile(file)) {
            mText = std::move(*text);
            mOpen = true;
        }
    } else {
        mFile.reset(std::fopen(file.c_str(), mode == Mode::write ? "wb" : "ab"));
        mOpen = mFile != nullptr;
    }
}

FileHandle::~FileHandle() = default;

std::optional<std::wstring> FileHandle::readLine() {
    if (mAt >= mText.size()) {
        return std::nullopt;
    }
    const std::size_t end = std::min(mText.find(L'\n', mAt), mText.size());
    std::wstring line = mText.substr(mAt, end - mAt);
    mAt = end + 1;
    return line;
}

std::optional<wchar_t> FileHandle::readCharacter() {
    if (mAt >= mText.size()) {
        return std::nullopt;
    }
    return mText[mAt++];
}

bool FileHandle::write(std::wstring_view text) {
    const std::string bytes = toUtf8(text);
    return mFile != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), mFile.get()) == bytes.size();
}

bool FileHandle::close() {
    bool good = true;
    if (mFile != nullptr) {
        good = std::fflush(mFile.get()) == 0;
        mFile.reset();
    }
    mText.clear();
    mOpen = false;
    return good;
}

} // namespace host::lisp
