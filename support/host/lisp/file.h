// Text files of the language: opened whole and small, read line by line, written as UTF-8.
#pragma once

#include "host/lisp/value.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>

namespace host::lisp {

/// An open file. Read: the whole text is taken at once, UTF-8 or, where it is none, the Chinese code page.
/// Write and append: buffered by the C library, written out on close or with the last reference.
struct FileHandle : Object {
    enum class Mode { read, write, append };
    FileHandle(std::filesystem::path file, Mode mode);
    ~FileHandle();
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    /// False when it could not be opened, or is closed.
    bool isOpen() const { return mOpen; }
    Mode mode() const { return mMode; }
    /// Path as the user wrote it is lost; this one is absolute, with slashes.
    const std::wstring& path() const { return mPath; }
    std::optional<std::wstring> readLine();
    std::optional<wchar_t> readCharacter();
    bool write(std::wstring_view text);
    /// False when something could not be written.
    bool close();

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::wstring mPath;
    Mode mMode;
    bool mOpen = false;
    std::wstring mText; ///< read: the whole text with \n line ends
    std::size_t mAt = 0;
    std::unique_ptr<std::FILE, Close> mFile; ///< write, append
};

/// The open file of a value; raises an error for anything else and when it is closed.
FileHandle& fileOf(const Value& value);

/// The text of a file in UTF-8 (a byte order mark is dropped), UTF-16 with a mark, or the Chinese code page;
/// line ends become \n. Nothing when it can't be read.
std::optional<std::wstring> readTextFile(const std::filesystem::path& file);

} // namespace host::lisp
