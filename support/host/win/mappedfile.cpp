// MappedFile, and the signal handler that turns reading past the end of a shrunken file into zeros.
#include "host/win/fileio.h"
#include "host/win/paths.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <mutex>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host {
namespace {

constexpr std::size_t mapFrom = std::size_t{4}
                                << 20; // smaller files are read: as fast, and nothing can change

// What has no size of its own may never end (a device): more than this is no drawing.
constexpr std::size_t mostStreamed = std::size_t{1} << 30;

// The mappings there are now, readable from the signal handler. A slot is free while its size is 0.
struct Mapping {
    std::atomic<bool> taken{false};
    std::atomic<std::uintptr_t> begin{0};
    std::atomic<std::size_t> size{0};
    std::atomic<bool> damaged{false};
};
constexpr std::size_t mostMappings = 64;
std::array<Mapping, mostMappings> mappings;
std::uintptr_t pageSize = 0;
struct sigaction previousAction;

extern "C" void onBusError(int signal, siginfo_t* info, void* context) {
    const auto address = reinterpret_cast<std::uintptr_t>(info->si_addr);
    for (Mapping& mapping : mappings) {
        const std::size_t size = mapping.size.load(std::memory_order_acquire);
        const std::uintptr_t begin = mapping.begin.load(std::memory_order_relaxed);
        if (size == 0 || address < begin || address - begin >= size)
            continue;
        const std::uintptr_t page = address & ~(pageSize - 1);
        const std::size_t rest = ((begin + size - page) + pageSize - 1) & ~(pageSize - 1);
        mapping.damaged.store(true, std::memory_order_relaxed);
        if (mmap(reinterpret_cast<void*>(page), rest, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1,
                 0) != MAP_FAILED)
            return;
    }
    // Not ours: what was there before decides; by default the program ends at the same instruction.
    if ((previousAction.sa_flags & SA_SIGINFO) != 0 && previousAction.sa_sigaction != nullptr)
        previousAction.sa_sigaction(signal, info, context);
    else if (previousAction.sa_handler != SIG_DFL && previousAction.sa_handler != SIG_IGN)
        previousAction.sa_handler(signal);
    else
        std::signal(signal, SIG_DFL);
}

void installHandler() {
    static std::once_flag installed;
    std::call_once(installed, [] {
        pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
        struct sigaction action {};
        action.sa_sigaction = onBusError;
        action.sa_flags = SA_SIGINFO | SA_NODEFER;
        sigemptyset(&action.sa_mask);
        sigaction(SIGBUS, &action, &previousAction);
    });
}

} // namespace

bool MappedFile::fail(int systemError) {
    systemError_ = systemError == 0 ? EIO : systemError;
    return false;
}

bool MappedFile::open(const std::filesystem::path& file) {
    close();
    path_ = file;
    systemError_ = 0;
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return fail(errno);
    struct stat info {};
    bool opened = false;
    if (fstat(descriptor, &info) != 0)
        fail(errno);
    else if (S_ISDIR(info.st_mode))
        fail(EISDIR);
    else if (const auto size = static_cast<std::size_t>(info.st_size);
             S_ISREG(info.st_mode) && size >= mapFrom)
        opened = map(descriptor, size) || readAll(descriptor, size);
    else
        opened = readAll(descriptor, size);
    ::close(descriptor);
    return opened;
}

bool MappedFile::map(int descriptor, std::size_t size) {
    installHandler();
    for (std::size_t slot = 0; slot < mostMappings; ++slot) {
        Mapping& mapping = mappings[slot];
        if (mapping.taken.exchange(true))
            continue;
        void* const at = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
        if (at == MAP_FAILED) {
            mapping.taken = false;
            return false;
        }
        madvise(at, size, MADV_SEQUENTIAL);
        mapping.damaged = false;
        mapping.begin = reinterpret_cast<std::uintptr_t>(at);
        mapping.size.store(size, std::memory_order_release);
        data_ = static_cast<const char*>(at);
        size_ = size;
        slot_ = static_cast<int>(slot);
        return true;
    }
    return false;
}

bool MappedFile::readAll(int descriptor, std::size_t expected) {
    memory_.resize(expected + 1); // one more, so that the end is met without growing
    std::size_t length = 0;
    for (;;) {
        if (length == memory_.size()) {
            if (length > std::max(expected + 1, mostStreamed)) {
                memory_ = {};
                return fail(EFBIG);
            }
            memory_.resize(memory_.size() * 2);
        }
        const ssize_t count = ::read(descriptor, memory_.data() + length, memory_.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            const int error = errno;
            memory_.clear();
            return fail(error);
        }
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    memory_.resize(length);
    data_ = memory_.data();
    size_ = length;
    return true;
}

void MappedFile::close() noexcept {
    if (slot_ >= 0) {
        Mapping& mapping = mappings[static_cast<std::size_t>(slot_)];
        mapping.size.store(0, std::memory_order_release);
        munmap(const_cast<char*>(data_), size_);
        mapping.taken = false;
    }
    slot_ = -1;
    std::string().swap(memory_);
    data_ = "";
    size_ = 0;
}

bool MappedFile::damaged() const noexcept {
    return slot_ >= 0 && mappings[static_cast<std::size_t>(slot_)].damaged;
}

std::wstring MappedFile::errorText() const {
    return systemError_ == 0 ? std::wstring()
                             : L"无法读取文件“" + displayPath(path_) + L"”: " + systemErrorText(systemError_);
}

} // namespace host
