// The tree of keys and values behind the registry, and the one file that holds it.
#pragma once

#include "host/rx/text.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace host {

struct SettingsValue {
    std::uint32_t type = 0;
    std::string bytes; // texts: UTF-16 little-endian with the closing zero

    bool operator==(const SettingsValue&) const = default;
};

// A key: values by name (the unnamed one is ""), sub keys by name; names keep the case they came with.
struct SettingsKey {
    std::map<std::wstring, SettingsValue, NoCaseLess> values;
    std::map<std::wstring, std::unique_ptr<SettingsKey>, NoCaseLess> keys;

    // The key at a path of names between backslashes; empty names are passed over. find gives null if absent.
    SettingsKey* find(std::wstring_view path);
    const SettingsKey* find(std::wstring_view path) const;
    SettingsKey& create(std::wstring_view path);
    static bool isValidPath(std::wstring_view path); // names hold no control characters
    bool remove(std::wstring_view path);             // false when there is no such key
};

std::string writeSettingsText(const SettingsKey& root);

// What could be read of a settings text. whole is false for a text that is not ours or not complete.
struct SettingsText {
    std::unique_ptr<SettingsKey> root;
    bool whole;
};
SettingsText readSettingsText(std::string_view text);

// The file. Every reading looks whether another program has written it; every change is read - change - write
// under a lock file, by a new file that takes the old one's name.
class SettingsStore {
public:
    explicit SettingsStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

    // Calls look with the current tree, under this process's lock.
    void read(const std::function<void(const SettingsKey&)>& look);
    // Calls edit with the current tree; writes when edit says that it changed something. A Windows error
    // code.
    int change(const std::function<bool(SettingsKey&)>& edit);

    const std::filesystem::path& folder() const { return folder_; }

private:
    struct Stamp {
        std::uint64_t inode = 0, size = 0;
        std::int64_t seconds = -1, nanoseconds = 0;
        bool operator==(const Stamp&) const = default;
    };

    std::filesystem::path file() const { return folder_ / "settings"; }
    Stamp stampNow() const;
    void load();
    bool keepDamaged() const;

    std::filesystem::path folder_;
    std::mutex mutex_;
    std::unique_ptr<SettingsKey> root_ = std::make_unique<SettingsKey>();
    Stamp loaded_;
    bool whole_ = true;    // what was read was ours and complete
    bool readable_ = true; // false: a file is there that can not be read, and so must not be replaced
};

} // namespace host
