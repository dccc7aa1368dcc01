// Reading and writing of whole files for all formats: AtomicFile replaces a file only when everything is
// safely on disk; MappedFile gives a file's bytes; and the clear words for what went wrong.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

struct stat;

namespace host {

// What a system error means, in a few words for the user ("磁盘空间不足").
std::wstring systemErrorText(int systemError);

// Writes a new file beside the target and, at commit, gives it the target's name, so that under that name
// there is at every moment either the old or the new file, whole. Symbolic links are followed, permissions
// are kept. What is no regular file (a pipe, a device) is written directly. Errors stick: after the first,
// writing does nothing and commit fails. Not for use from several threads.
class AtomicFile {
public:
    enum class Backup {
        none,
        keep, // the old file stays as NAME.bak, in the place of the target's extension
    };

    explicit AtomicFile(std::filesystem::path target, Backup backup = Backup::keep);
    ~AtomicFile(); // without commit: the target is as it was
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    bool write(std::string_view bytes);
    bool write(std::span<const std::byte> bytes);
    // Bytes written so far.
    std::uint64_t position() const noexcept { return written_ + buffer_.size(); }
    // Writes over bytes already written; the range must lie before position(). Not possible on a pipe.
    bool patch(std::uint64_t at, std::string_view bytes);

    // Flushes, closes and renames. Once; false also when anything before failed.
    bool commit();

    bool failed() const noexcept { return systemError_ != 0; }
    int systemError() const noexcept { return systemError_; }
    // One line that names the file and the cause; empty without an error.
    std::wstring errorText() const;

private:
    bool fail(int systemError, std::wstring_view action);
    void openTarget();
    void openTemporary(const struct ::stat* old);
    bool flush();
    bool keepBackup();
    bool closeDescriptor();
    void syncFolder() const;

    std::filesystem::path target_;    // with links followed
    std::filesystem::path temporary_; // empty: the target is written directly
    Backup backup_;
    bool replaces_ = false;
    int descriptor_ = -1;
    std::string buffer_;
    std::uint64_t written_ = 0;
    int systemError_ = 0;
    std::wstring action_;
};

// The bytes of a file for reading: large regular files are mapped, others read into memory. A file that
// another program cuts off while it is mapped reads as zeros from there on, and damaged() tells.
class MappedFile {
public:
    MappedFile() = default;
    ~MappedFile() { close(); }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    bool open(const std::filesystem::path& file);
    void close() noexcept;

    std::string_view text() const noexcept { return {data_, size_}; }
    std::span<const std::byte> bytes() const noexcept {
        return {reinterpret_cast<const std::byte*>(data_), size_};
    }
    std::size_t size() const noexcept { return size_; }
    bool damaged() const noexcept;
    int systemError() const noexcept { return systemError_; }
    std::wstring errorText() const;

private:
    bool fail(int systemError);
    bool map(int descriptor, std::size_t size);
    bool readAll(int descriptor, std::size_t expected);

    std::filesystem::path path_;
    const char* data_ = "";
    std::size_t size_ = 0;
    std::string memory_;
    int slot_ = -1; // of the mapping; -1: in memory
    int systemError_ = 0;
};

} // namespace host
