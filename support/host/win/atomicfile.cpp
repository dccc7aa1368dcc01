// AtomicFile: temporary beside the target, every write checked, flushed to disk, then renamed over the
// target.
#include "host/rx/format.h"
#include "host/rx/text.h"
#include "host/win/fileio.h"
#include "host/win/paths.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace host {
namespace {

constexpr std::size_t bufferSize = 256 * 1024;

// Where the name leads, through links, even when nothing is there yet. Empty for a circle of links.
std::filesystem::path followLinks(std::filesystem::path path) {
    for (int count = 0; count < 40; ++count) {
        std::error_code error;
        const auto link = std::filesystem::read_symlink(path, error);
        if (error)
            return path;
        path = link.is_absolute() ? link : path.parent_path() / link;
    }
    return {};
}

std::filesystem::path folderOf(const std::filesystem::path& file) {
    return file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
}

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            if (count == 0)
                errno = EIO;
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

// How names beside the file begin; a long file name is shortened at a character's border, so that they still
// fit.
std::string besidePrefix(const std::filesystem::path& file) {
    std::string name = file.filename().string();
    std::size_t keep = std::min<std::size_t>(name.size(), 200);
    while (keep > 0 && keep < name.size() && (static_cast<unsigned char>(name[keep]) & 0xC0) == 0x80)
        --keep;
    name.resize(keep);
    return "." + name + ".";
}

// A name beside the file for something of this process.
std::filesystem::path besideName(const std::filesystem::path& file, const std::string& ending) {
    return folderOf(file) / (besidePrefix(file) + std::to_string(getpid()) + ending);
}

// Whether the rest of a name is the number of a process and what it ends its temporaries with.
bool isTemporaryEnding(std::string_view rest) {
    const std::size_t digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
    return digits > 0 && rest.substr(digits).starts_with('-') && rest.ends_with(".tmp");
}

// Takes away a temporary that nobody writes any more: writers hold a lock, and are given some seconds to take
// it.
void removeIfLeftBehind(const std::filesystem::path& file) {
    constexpr time_t secondsToLock = 10;
    struct stat status {};
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0)
        return;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
        status.st_mtime + secondsToLock < time(nullptr) && flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        unlink(file.c_str());
    ::close(descriptor);
}

// What programs that were killed while they wrote the file have left beside it.
void removeLeftBehind(const std::filesystem::path& target) {
    const std::string prefix = besidePrefix(target);
    std::error_code error;
    for (std::filesystem::directory_iterator at(folderOf(target), error), end; !error && at != end;
         at.increment(error)) {
        const std::string name = at->path().filename().string();
        if (name.starts_with(prefix) && isTemporaryEnding(std::string_view(name).substr(prefix.size())))
            removeIfLeftBehind(at->path());
    }
}

} // namespace

std::wstring systemErrorText(int systemError) {
    switch (systemError) {
    case ENOENT:
        return L"文件或文件夹不存在";
    case ENOTDIR:
        return L"路径中有一部分不是文件夹";
    case EACCES:
    case EPERM:
        return L"没有访问权限";
    case EROFS:
        return L"磁盘是只读的";
    case ENOSPC:
        return L"磁盘空间不足";
    case EDQUOT:
        return L"超出磁盘配额";
    case EFBIG:
        return L"文件过大";
    case EISDIR:
        return L"这是一个文件夹";
    case EEXIST:
        return L"文件已存在";
    case EIO:
        return L"磁盘读写错误";
    case EMFILE:
    case ENFILE:
        return L"打开的文件过多";
    case ENOMEM:
        return L"内存不足";
    case ENAMETOOLONG:
        return L"文件名过长";
    case ELOOP:
        return L"符号链接循环";
    case EBUSY:
    case ETXTBSY:
        return L"文件正被使用";
    case EXDEV:
        return L"不在同一磁盘上";
    case ENOTEMPTY:
        return L"文件夹不是空的";
    case EPIPE:
        return L"接收程序已关闭";
    default:
        return formatted(L"系统错误 %d", systemError);
    }
}

AtomicFile::AtomicFile(std::filesystem::path target, Backup backup)
    : target_(std::move(target)), backup_(backup) {
    buffer_.reserve(bufferSize);
    openTarget();
}

AtomicFile::~AtomicFile() {
    if (descriptor_ >= 0)
        ::close(descriptor_);
    if (!temporary_.empty())
        unlink(temporary_.c_str());
}

bool AtomicFile::fail(int systemError, std::wstring_view action) {
    if (systemError_ == 0) {
        systemError_ = systemError == 0 ? EIO : systemError;
        action_ = action;
    }
    return false;
}

void AtomicFile::openTarget() {
    constexpr std::wstring_view action = L"无法写入文件";
    const std::filesystem::path followed = followLinks(target_);
    if (followed.empty()) {
        fail(ELOOP, action);
        return;
    }
    target_ = followed;
    struct stat old {};
    replaces_ = stat(target_.c_str(), &old) == 0;
    if (!replaces_ && errno != ENOENT) {
        fail(errno, action);
    } else if (replaces_ && S_ISDIR(old.st_mode)) {
        fail(EISDIR, action);
    } else if (replaces_ && access(target_.c_str(), W_OK) != 0) {
        fail(errno, action);
    } else if (replaces_ && !S_ISREG(old.st_mode)) {
        descriptor_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor_ < 0)
            fail(errno, action);
    } else {
        openTemporary(replaces_ ? &old : nullptr);
    }
}

void AtomicFile::openTemporary(const struct ::stat* old) {
    constexpr int newFile = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC;
    removeLeftBehind(target_);
    for (int number = 0; descriptor_ < 0; ++number) {
        temporary_ = besideName(target_, "-" + std::to_string(number) + ".tmp");
        descriptor_ = open(temporary_.c_str(), newFile, 0666);
        if (descriptor_ < 0 && (errno != EEXIST || number == 1000)) {
            temporary_.clear();
            fail(errno, L"无法写入文件");
            return;
        }
    }
    flock(descriptor_, LOCK_EX | LOCK_NB); // tells other programs that it is being written
    if (old == nullptr)
        return;
    mode_t mode = old->st_mode & 07777;
    // Not ours to give away: then at least nobody gains rights who had none.
    if ((old->st_uid != geteuid() || old->st_gid != getegid()) &&
        fchown(descriptor_, old->st_uid, old->st_gid) != 0 &&
        fchown(descriptor_, static_cast<uid_t>(-1), old->st_gid) != 0)
        mode &= ~static_cast<mode_t>(06070);
    if (fchmod(descriptor_, mode) != 0 && errno != EPERM && errno != ENOTSUP)
        fail(errno, L"无法写入文件");
}

bool AtomicFile::write(std::string_view bytes) {
    if (failed() || descriptor_ < 0)
        return fail(EBADF, L"无法写入文件");
    if (buffer_.size() + bytes.size() <= bufferSize) {
        buffer_.append(bytes);
        return true;
    }
    if (!flush())
        return false;
    if (bytes.size() < bufferSize) {
        buffer_.append(bytes);
        return true;
    }
    if (!writeAll(descriptor_, bytes))
        return fail(errno, L"无法写入文件");
    written_ += bytes.size();
    return true;
}

bool AtomicFile::write(std::span<const std::byte> bytes) {
    return write(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

bool AtomicFile::flush() {
    if (!writeAll(descriptor_, buffer_))
        return fail(errno, L"无法写入文件");
    written_ += buffer_.size();
    buffer_.clear();
    return true;
}

bool AtomicFile::patch(std::uint64_t at, std::string_view bytes) {
    if (failed() || descriptor_ < 0 || at > position() || bytes.size() > position() - at)
        return fail(EINVAL, L"无法写入文件");
    if (at >= written_) {
        bytes.copy(buffer_.data() + (at - written_), bytes.size());
        return true;
    }
    if (!flush())
        return false;
    while (!bytes.empty()) {
        const ssize_t count = pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(at));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return fail(count == 0 ? EIO : errno, L"无法写入文件");
        at += static_cast<std::uint64_t>(count);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool AtomicFile::closeDescriptor() {
    // The descriptor is gone whatever close says; what was promised by fsync stays true.
    const int closed = ::close(std::exchange(descriptor_, -1));
    return closed == 0 || errno == EINTR || fail(errno, L"无法写入文件");
}

// The old file gets a second name, under which it stays when the new one takes the first. Where there are no
// second names, it is copied.
bool AtomicFile::keepBackup() {
    std::filesystem::path backup = target_;
    backup.replace_extension(".bak");
    if (backup == target_)
        return true;
    const auto second = besideName(target_, ".bak");
    unlink(second.c_str());
    if (link(target_.c_str(), second.c_str()) != 0) {
        std::error_code error;
        std::filesystem::copy_file(target_, second, std::filesystem::copy_options::overwrite_existing, error);
        if (error) {
            unlink(second.c_str());
            return fail(error.value(), L"无法保留备份文件");
        }
    }
    const bool renamed = rename(second.c_str(), backup.c_str()) == 0;
    const int error = errno;
    unlink(second.c_str()); // also when both names already were one file, which rename leaves alone
    return renamed || fail(error, L"无法保留备份文件");
}

void AtomicFile::syncFolder() const {
    const int folder = open(folderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        fsync(folder); // not every file system can; the rename itself is done
        ::close(folder);
    }
}

bool AtomicFile::commit() {
    if (failed() || descriptor_ < 0)
        return fail(EBADF, L"无法写入文件");
    if (!flush())
        return false;
    if (temporary_.empty())
        return closeDescriptor();
    if (fsync(descriptor_) != 0 && errno != EINVAL && errno != EROFS)
        return fail(errno, L"无法写入文件");
    if (!closeDescriptor())
        return false;
    if (replaces_ && backup_ == Backup::keep && !keepBackup())
        return false;
    if (rename(temporary_.c_str(), target_.c_str()) != 0)
        return fail(errno, L"无法替换文件");
    temporary_.clear();
    syncFolder();
    return true;
}

std::wstring AtomicFile::errorText() const {
    if (!failed())
        return {};
    return action_ + L"“" + displayPath(target_) + L"”: " + systemErrorText(systemError_);
}

} // namespace host
