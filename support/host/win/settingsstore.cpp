// The settings file is text in UTF-8: a head line, [keys], "name"=value lines, and an end line by which a
// file that was cut off is known.
#include "host/win/settingsstore.h"

#include "host/rx/format.h"
#include "host/win/fileio.h"
#include "host/win/types.h"

#include <algorithm>
#include <charconv>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace host {
namespace {

constexpr std::string_view headLine = "; qdvhost settings 1";
constexpr std::string_view endLine = "; end";
constexpr std::uint32_t textType = 1, binaryType = 3, numberType = 4;

std::vector<std::wstring_view> namesOf(std::wstring_view path) {
    std::vector<std::wstring_view> names;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find(L'\\'), path.size());
        if (end > 0)
            names.push_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return names;
}

std::string quotedText(std::wstring_view text) {
    std::string out = "\"";
    for (const char c : toUtf8(text)) {
        if (c == '"' || c == '\\')
            out += {'\\', c};
        else if (c == '\n')
            out += "\\n";
        else if (c == '\r')
            out += "\\r";
        else
            out += c;
    }
    return out += '"';
}

// Takes a quoted text off the line.
std::optional<std::wstring> takeQuoted(std::string_view& line) {
    if (!line.starts_with('"'))
        return {};
    std::string out;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '"') {
            line.remove_prefix(i + 1);
            return fromUtf8(out);
        }
        if (line[i] == '\\' && i + 1 < line.size()) {
            const char c = line[++i];
            out += c == 'n' ? '\n' : c == 'r' ? '\r' : c;
        } else {
            out += line[i];
        }
    }
    return {};
}

// The text of a value that is one whole text with one closing zero and comes back to the same bytes.
std::optional<std::wstring> plainText(const SettingsValue& value) {
    if (value.type != textType || value.bytes.size() < 2)
        return {};
    std::wstring text = fromUtf16Le(value.bytes);
    if (text.back() != 0 || toUtf16Le(text) != value.bytes)
        return {};
    text.pop_back();
    return text.find(L'\0') == std::wstring::npos ? std::optional(text) : std::nullopt;
}

std::uint32_t numberOf(std::string_view bytes) {
    std::uint32_t number = 0;
    for (std::size_t i = 4; i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    return number;
}

std::string bytesOf(std::uint32_t number) {
    std::string bytes;
    for (int i = 0; i < 4; ++i, number >>= 8)
        bytes.push_back(static_cast<char>(number & 0xFF));
    return bytes;
}

std::string valueText(const SettingsValue& value) {
    if (const auto text = plainText(value))
        return quotedText(*text);
    if (value.type == numberType && value.bytes.size() == 4)
        return toUtf8(formatted(L"dword:%08x", numberOf(value.bytes)));
    std::string out = value.type == binaryType ? "hex:" : toUtf8(formatted(L"hex(%x):", value.type));
    for (std::size_t i = 0; i < value.bytes.size(); ++i)
        out += toUtf8(formatted(i == 0 ? L"%02x" : L",%02x", static_cast<unsigned char>(value.bytes[i])));
    return out;
}

template <class Number>
bool takeHex(std::string_view& line, Number& number) {
    const auto end = std::from_chars(line.data(), line.data() + line.size(), number, 16);
    line.remove_prefix(static_cast<std::size_t>(end.ptr - line.data()));
    return end.ec == std::errc();
}

std::optional<SettingsValue> parseValue(std::string_view line) {
    SettingsValue value;
    if (line.starts_with('"')) {
        auto text = takeQuoted(line);
        if (!text || !line.empty())
            return {};
        text->push_back(0);
        return SettingsValue{textType, toUtf16Le(*text)};
    }
    if (line.starts_with("dword:")) {
        line.remove_prefix(6);
        std::uint32_t number = 0;
        if (!takeHex(line, number) || !line.empty())
            return {};
        return SettingsValue{numberType, bytesOf(number)};
    }
    if (!line.starts_with("hex"))
        return {};
    line.remove_prefix(3);
    value.type = binaryType;
    if (line.starts_with('(')) {
        line.remove_prefix(1);
        if (!takeHex(line, value.type) || !line.starts_with(')'))
            return {};
        line.remove_prefix(1);
    }
    if (!line.starts_with(':'))
        return {};
    for (line.remove_prefix(1); !line.empty();) {
        std::uint8_t byte = 0;
        if (!takeHex(line, byte))
            return {};
        value.bytes.push_back(static_cast<char>(byte));
        if (line.starts_with(','))
            line.remove_prefix(1);
        else if (!line.empty())
            return {};
    }
    return value;
}

void writeKey(const SettingsKey& key, const std::wstring& path, std::string& out) {
    if (!path.empty() && (!key.values.empty() || key.keys.empty())) {
        out += "\n[" + toUtf8(path) + "]\n";
        for (const auto& [name, value] : key.values)
            out += (name.empty() ? "@" : quotedText(name)) + "=" + valueText(value) + "\n";
    }
    for (const auto& [name, child] : key.keys)
        writeKey(*child, path.empty() ? name : path + L"\\" + name, out);
}

bool readLine(std::string_view line, SettingsKey& root, SettingsKey*& key) {
    if (line.empty() || line.starts_with(';'))
        return true;
    if (line.starts_with('[') && line.ends_with(']')) {
        key = &root.create(fromUtf8(line.substr(1, line.size() - 2)));
        return true;
    }
    std::optional<std::wstring> name = std::wstring();
    if (line.starts_with('@'))
        line.remove_prefix(1);
    else
        name = takeQuoted(line);
    if (!name || key == nullptr || !line.starts_with('='))
        return false;
    auto value = parseValue(line.substr(1));
    if (!value)
        return false;
    key->values.insert_or_assign(std::move(*name), std::move(*value));
    return true;
}

// Holds the lock that every writing program takes, until it goes.
class StoreLock {
public:
    explicit StoreLock(const std::filesystem::path& file)
        : descriptor_(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        while (descriptor_ >= 0 && flock(descriptor_, LOCK_EX) != 0)
            if (errno != EINTR)
                break; // a file system without locks: go on, the writing stays atomic
    }
    ~StoreLock() {
        if (descriptor_ >= 0)
            close(descriptor_);
    }
    StoreLock(const StoreLock&) = delete;
    StoreLock& operator=(const StoreLock&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }

private:
    int descriptor_;
};

} // namespace

const SettingsKey* SettingsKey::find(std::wstring_view path) const {
    const SettingsKey* key = this;
    for (const std::wstring_view name : namesOf(path)) {
        const auto child = key->keys.find(name);
        if (child == key->keys.end())
            return nullptr;
        key = child->second.get();
    }
    return key;
}

SettingsKey* SettingsKey::find(std::wstring_view path) {
    return const_cast<SettingsKey*>(std::as_const(*this).find(path));
}

SettingsKey& SettingsKey::create(std::wstring_view path) {
    SettingsKey* key = this;
    for (const std::wstring_view name : namesOf(path)) {
        auto child = key->keys.find(name);
        if (child == key->keys.end())
            child = key->keys.emplace(name, std::make_unique<SettingsKey>()).first;
        key = child->second.get();
    }
    return *key;
}

bool SettingsKey::isValidPath(std::wstring_view path) {
    return std::ranges::none_of(path, [](wchar_t c) { return static_cast<std::uint32_t>(c) < 0x20; });
}

bool SettingsKey::remove(std::wstring_view path) {
    const auto names = namesOf(path);
    if (names.empty())
        return false;
    SettingsKey* parent = this;
    for (std::size_t i = 0; i + 1 < names.size() && parent != nullptr; ++i)
        parent = parent->find(names[i]);
    const auto child = parent == nullptr ? decltype(keys)::iterator() : parent->keys.find(names.back());
    if (parent == nullptr || child == parent->keys.end())
        return false;
    parent->keys.erase(child);
    return true;
}

std::string writeSettingsText(const SettingsKey& root) {
    std::string out(headLine);
    out += '\n';
    writeKey(root, L"", out);
    return out.append("\n").append(endLine).append("\n");
}

SettingsText readSettingsText(std::string_view text) {
    SettingsText result{std::make_unique<SettingsKey>(), true};
    SettingsKey* key = nullptr;
    std::string_view last;
    bool first = true;
    result.whole = isValidUtf8(text);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (first && line != headLine)
            result.whole = false;
        first = false;
        result.whole = readLine(line, *result.root, key) && result.whole;
        if (!line.empty())
            last = line;
    }
    result.whole = result.whole && last == endLine;
    return result;
}

SettingsStore::Stamp SettingsStore::stampNow() const {
    struct stat info {};
    if (stat(file().c_str(), &info) != 0)
        return {};
    return {info.st_ino, static_cast<std::uint64_t>(info.st_size), info.st_mtim.tv_sec, info.st_mtim.tv_nsec};
}

// Takes the file as it is now, unless it is the one already loaded.
void SettingsStore::load() {
    const Stamp now = stampNow();
    if (now == loaded_)
        return;
    MappedFile mapped;
    if (now.seconds == -1) {
        root_ = std::make_unique<SettingsKey>();
        whole_ = true;
    } else if (mapped.open(file())) {
        SettingsText text = readSettingsText(mapped.text());
        root_ = std::move(text.root);
        whole_ = text.whole || mapped.text().empty();
    } else {
        readable_ = false;
        return;
    }
    readable_ = true;
    loaded_ = now;
}

// Gives a file that is not wholly ours a second name before it is replaced.
bool SettingsStore::keepDamaged() const {
    for (int number = 1; number < 1000; ++number) {
        const auto kept = folder_ / ("settings.damaged-" + std::to_string(number));
        if (link(file().c_str(), kept.c_str()) == 0)
            return true;
        std::error_code error;
        if (errno != EEXIST)
            return std::filesystem::copy_file(file(), kept, error);
    }
    return false;
}

void SettingsStore::read(const std::function<void(const SettingsKey&)>& look) {
    const std::lock_guard guard(mutex_);
    load();
    look(*root_);
}

int SettingsStore::change(const std::function<bool(SettingsKey&)>& edit) {
    const std::lock_guard guard(mutex_);
    std::error_code error;
    if (std::filesystem::create_directories(folder_, error))
        std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, error);
    const StoreLock lock(folder_ / "settings.lock");
    if (!lock.isOpen())
        return windowsError(errno);
    load();
    if (!readable_)
        return ERROR_ACCESS_DENIED;
    if (!edit(*root_))
        return ERROR_SUCCESS;
    if (!whole_ && !keepDamaged()) {
        loaded_ = {};
        return ERROR_WRITE_FAULT;
    }
    AtomicFile out(file(), AtomicFile::Backup::none);
    out.write(writeSettingsText(*root_));
    if (!out.commit()) {
        loaded_ = {0, 0, -2, 0}; // what is in memory is not what is in the file
        return windowsError(out.systemError());
    }
    whole_ = true;
    loaded_ = stampNow();
    return ERROR_SUCCESS;
}

} // namespace host
