// The registry functions over the settings store.
#include "host/win/registry.h"

#include "host/rx/text.h"
#include "host/win/settingsstore.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <pwd.h>
#include <unistd.h>
#include <unordered_map>

namespace {

struct OpenKey {
    std::wstring path; // from the root of the store, with the hive's name
    REGSAM access;
};

// What is open in this process. Handles are numbers that are never used twice.
struct OpenKeys {
    std::mutex mutex;
    std::unordered_map<HKEY, OpenKey> keys;
    ULONG_PTR next = 0x100;
};

OpenKeys& openKeys() {
    static OpenKeys keys;
    return keys;
}

struct StoreHolder {
    std::mutex mutex;
    std::shared_ptr<host::SettingsStore> store;
};

StoreHolder& storeHolder() {
    static StoreHolder holder;
    return holder;
}

std::filesystem::path defaultFolder() {
    if (const char* given = std::getenv("XDG_CONFIG_HOME"); given != nullptr && *given == '/')
        return std::filesystem::path(given) / "qdvhost";
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home != '/') {
        const passwd* const user = getpwuid(getuid());
        home = user != nullptr ? user->pw_dir : "/tmp";
    }
    return std::filesystem::path(home) / ".config" / "qdvhost";
}

// Shared, so that a change of folder does not pull the store from under a running call.
std::shared_ptr<host::SettingsStore> store() {
    StoreHolder& holder = storeHolder();
    const std::lock_guard guard(holder.mutex);
    if (holder.store == nullptr)
        holder.store = std::make_shared<host::SettingsStore>(defaultFolder());
    return holder.store;
}

std::optional<OpenKey> lookUp(HKEY key) {
    if (key == HKEY_CURRENT_USER)
        return OpenKey{L"HKEY_CURRENT_USER", KEY_ALL_ACCESS};
    if (key == HKEY_LOCAL_MACHINE)
        return OpenKey{L"HKEY_LOCAL_MACHINE", KEY_ALL_ACCESS};
    if (key == HKEY_CLASSES_ROOT)
        return OpenKey{L"HKEY_CLASSES_ROOT", KEY_ALL_ACCESS};
    OpenKeys& open = openKeys();
    const std::lock_guard guard(open.mutex);
    const auto found = open.keys.find(key);
    return found == open.keys.end() ? std::nullopt : std::optional(found->second);
}

HKEY addOpenKey(std::wstring path, REGSAM access) {
    OpenKeys& open = openKeys();
    const std::lock_guard guard(open.mutex);
    const auto handle = reinterpret_cast<HKEY>(open.next += 4);
    open.keys.emplace(handle, OpenKey{std::move(path), access});
    return handle;
}

std::wstring joined(const std::wstring& path, LPCWSTR subKey) {
    return subKey == nullptr || *subKey == 0 ? path : path + L"\\" + subKey;
}

bool isHive(const std::wstring& path) {
    return path.find(L'\\') == std::wstring::npos;
}

std::wstring nameOf(LPCWSTR name) {
    return name == nullptr ? L"" : name;
}

// Runs the action on the tree and gives its code; with a handle that lacks the access or is none, that code.
template <class Action>
LONG reading(HKEY key, REGSAM access, Action action) {
    const auto open = lookUp(key);
    if (!open)
        return ERROR_INVALID_HANDLE;
    if ((open->access & access) != access)
        return ERROR_ACCESS_DENIED;
    LONG code = ERROR_SUCCESS;
    store()->read([&](const host::SettingsKey& root) {
        const auto* const found = root.find(open->path);
        if (found != nullptr)
            code = action(*found);
        else if (isHive(open->path))
            code = action(host::SettingsKey{});
        else
            code = ERROR_KEY_DELETED;
    });
    return code;
}

// The same for changes; the action sets its argument when it changed something.
template <class Action>
LONG changing(HKEY key, REGSAM access, Action action) {
    const auto open = lookUp(key);
    if (!open)
        return ERROR_INVALID_HANDLE;
    if ((open->access & access) != access)
        return ERROR_ACCESS_DENIED;
    LONG code = ERROR_SUCCESS;
    const LONG written = store()->change([&](host::SettingsKey& root) {
        bool changed = false;
        auto* const found = isHive(open->path) ? &root.create(open->path) : root.find(open->path);
        code = found == nullptr ? ERROR_KEY_DELETED : action(*found, changed);
        return changed;
    });
    return code != ERROR_SUCCESS ? code : written;
}

LONG copyName(const std::wstring& name, LPWSTR out, LPDWORD size) {
    if (out == nullptr || size == nullptr)
        return ERROR_INVALID_PARAMETER;
    if (*size <= name.size())
        return ERROR_MORE_DATA;
    std::copy_n(name.c_str(), name.size() + 1, out);
    *size = static_cast<DWORD>(name.size());
    return ERROR_SUCCESS;
}

LONG copyValue(const host::SettingsValue& value, LPDWORD type, LPBYTE data, LPDWORD size) {
    if (type != nullptr)
        *type = value.type;
    if (size == nullptr)
        return data == nullptr ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
    const DWORD room = *size;
    *size = static_cast<DWORD>(value.bytes.size());
    if (data == nullptr)
        return ERROR_SUCCESS;
    if (room < value.bytes.size())
        return ERROR_MORE_DATA;
    std::memcpy(data, value.bytes.data(), value.bytes.size());
    return ERROR_SUCCESS;
}

std::wstring userPath(std::wstring_view key) {
    return L"HKEY_CURRENT_USER\\" + std::wstring(key);
}

std::optional<host::SettingsValue> readValue(std::wstring_view key, std::wstring_view name) {
    std::optional<host::SettingsValue> value;
    store()->read([&](const host::SettingsKey& root) {
        const auto* const found = root.find(userPath(key));
        if (found == nullptr)
            return;
        if (const auto entry = found->values.find(name); entry != found->values.end())
            value = entry->second;
    });
    return value;
}

bool writeValue(std::wstring_view key, std::wstring_view name, host::SettingsValue value) {
    return host::SettingsKey::isValidPath(key) && store()->change([&](host::SettingsKey& root) {
        auto& values = root.create(userPath(key)).values;
        const auto entry = values.find(name);
        if (entry != values.end() && entry->second == value)
            return false;
        values[std::wstring(name)] = std::move(value);
        return true;
    }) == ERROR_SUCCESS;
}

} // namespace

LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD, REGSAM access, PHKEY result) {
    const auto parent = lookUp(key);
    if (!parent)
        return ERROR_INVALID_HANDLE;
    if (result == nullptr)
        return ERROR_INVALID_PARAMETER;
    const std::wstring path = joined(parent->path, subKey);
    bool there = isHive(path);
    if (!there)
        store()->read([&](const host::SettingsKey& root) { there = root.find(path) != nullptr; });
    if (!there)
        return ERROR_FILE_NOT_FOUND;
    *result = addOpenKey(path, access);
    return ERROR_SUCCESS;
}

LONG RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD, LPWSTR, DWORD, REGSAM access, SECURITY_ATTRIBUTES*,
                     PHKEY result, LPDWORD disposition) {
    const auto parent = lookUp(key);
    if (!parent)
        return ERROR_INVALID_HANDLE;
    if (result == nullptr || !host::SettingsKey::isValidPath(nameOf(subKey)))
        return ERROR_INVALID_PARAMETER;
    const std::wstring path = joined(parent->path, subKey);
    bool created = false;
    bool there = false;
    store()->read([&](const host::SettingsKey& root) { there = root.find(path) != nullptr; });
    if (!there) {
        const LONG code = store()->change([&](host::SettingsKey& root) {
            created = root.find(path) == nullptr;
            root.create(path);
            return created;
        });
        if (code != ERROR_SUCCESS)
            return code;
    }
    if (disposition != nullptr)
        *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    *result = addOpenKey(path, access);
    return ERROR_SUCCESS;
}

LONG RegCloseKey(HKEY key) {
    if (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE || key == HKEY_CLASSES_ROOT)
        return ERROR_SUCCESS;
    OpenKeys& open = openKeys();
    const std::lock_guard guard(open.mutex);
    return open.keys.erase(key) == 1 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    if (data == nullptr && size != 0)
        return ERROR_INVALID_PARAMETER;
    host::SettingsValue value{type, std::string(reinterpret_cast<const char*>(data), size)};
    return changing(key, KEY_SET_VALUE, [&](host::SettingsKey& at, bool& changed) {
        const auto entry = at.values.find(nameOf(name));
        changed = entry == at.values.end() || entry->second != value;
        if (changed)
            at.values[nameOf(name)] = std::move(value);
        return ERROR_SUCCESS;
    });
}

LONG RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD, LPDWORD type, LPBYTE data, LPDWORD size) {
    return reading(key, KEY_QUERY_VALUE, [&](const host::SettingsKey& at) -> LONG {
        const auto entry = at.values.find(nameOf(name));
        return entry == at.values.end() ? ERROR_FILE_NOT_FOUND : copyValue(entry->second, type, data, size);
    });
}

LONG RegDeleteValueW(HKEY key, LPCWSTR name) {
    return changing(key, KEY_SET_VALUE, [&](host::SettingsKey& at, bool& changed) {
        changed = at.values.erase(nameOf(name)) != 0;
        return changed ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    });
}

LONG RegDeleteKeyW(HKEY key, LPCWSTR subKey) {
    return changing(key, 0, [&](host::SettingsKey& at, bool& changed) -> LONG {
        const auto* const found = at.find(nameOf(subKey));
        if (found == nullptr)
            return ERROR_FILE_NOT_FOUND;
        if (!found->keys.empty())
            return ERROR_ACCESS_DENIED;
        changed = at.remove(nameOf(subKey));
        return changed ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
    });
}

LONG RegDeleteTreeW(HKEY key, LPCWSTR subKey) {
    return changing(key, 0, [&](host::SettingsKey& at, bool& changed) -> LONG {
        if (nameOf(subKey).empty()) { // what is below the key, not the key itself
            changed = !at.keys.empty() || !at.values.empty();
            at.keys.clear();
            at.values.clear();
            return ERROR_SUCCESS;
        }
        changed = at.remove(nameOf(subKey));
        return changed ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    });
}

LONG RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD size, LPDWORD, LPWSTR className,
                   LPDWORD classSize, FILETIME* written) {
    return reading(key, KEY_ENUMERATE_SUB_KEYS, [&](const host::SettingsKey& at) -> LONG {
        if (index >= at.keys.size())
            return ERROR_NO_MORE_ITEMS;
        if (className != nullptr && classSize != nullptr && *classSize > 0)
            *className = 0;
        if (classSize != nullptr)
            *classSize = 0;
        if (written != nullptr)
            *written = {};
        return copyName(std::next(at.keys.begin(), index)->first, name, size);
    });
}

LONG RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameSize, LPDWORD, LPDWORD type, LPBYTE data,
                   LPDWORD size) {
    return reading(key, KEY_QUERY_VALUE, [&](const host::SettingsKey& at) -> LONG {
        if (index >= at.values.size())
            return ERROR_NO_MORE_ITEMS;
        const auto entry = std::next(at.values.begin(), index);
        const LONG code = copyName(entry->first, name, nameSize);
        return code != ERROR_SUCCESS ? code : copyValue(entry->second, type, data, size);
    });
}

LONG RegQueryInfoKeyW(HKEY key, LPWSTR className, LPDWORD classSize, LPDWORD, LPDWORD subKeys,
                      LPDWORD longestSubKey, LPDWORD longestClass, LPDWORD values, LPDWORD longestValueName,
                      LPDWORD longestValue, LPDWORD security, FILETIME* written) {
    return reading(key, KEY_QUERY_VALUE, [&](const host::SettingsKey& at) -> LONG {
        const auto give = [](LPDWORD out, std::size_t value) {
            if (out != nullptr)
                *out = static_cast<DWORD>(value);
        };
        std::size_t keyName = 0, valueName = 0, valueSize = 0;
        for (const auto& [name, child] : at.keys)
            keyName = std::max(keyName, name.size());
        for (const auto& [name, value] : at.values) {
            valueName = std::max(valueName, name.size());
            valueSize = std::max(valueSize, value.bytes.size());
        }
        if (className != nullptr && classSize != nullptr && *classSize > 0)
            *className = 0;
        give(classSize, 0);
        give(subKeys, at.keys.size());
        give(longestSubKey, keyName);
        give(longestClass, 0);
        give(values, at.values.size());
        give(longestValueName, valueName);
        give(longestValue, valueSize);
        give(security, 0);
        if (written != nullptr)
            *written = {};
        return ERROR_SUCCESS;
    });
}

LONG RegFlushKey(HKEY key) {
    return lookUp(key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

namespace host {

void setSettingsFolder(const std::filesystem::path& folder) {
    StoreHolder& holder = storeHolder();
    const std::lock_guard guard(holder.mutex);
    std::error_code error;
    holder.store =
        folder.empty() ? nullptr : std::make_shared<SettingsStore>(std::filesystem::absolute(folder, error));
}

std::filesystem::path settingsFolder() {
    return store()->folder();
}

std::optional<std::wstring> readSetting(std::wstring_view key, std::wstring_view name) {
    const auto value = readValue(key, name);
    if (value && value->type == REG_DWORD && value->bytes.size() == 4) {
        std::int32_t number = 0;
        std::memcpy(&number, value->bytes.data(), 4);
        return std::to_wstring(number);
    }
    if (!value || (value->type != REG_SZ && value->type != REG_EXPAND_SZ))
        return {};
    std::wstring text = fromUtf16Le(value->bytes);
    text.resize(std::min(text.find(L'\0'), text.size()));
    return text;
}

std::optional<int> readSettingNumber(std::wstring_view key, std::wstring_view name) {
    const auto text = readSetting(key, name);
    if (!text)
        return {};
    wchar_t* end = nullptr;
    const long long number = std::wcstoll(text->c_str(), &end, 10);
    return end == text->c_str() ? std::nullopt : std::optional(static_cast<int>(number));
}

bool writeSetting(std::wstring_view key, std::wstring_view name, std::wstring_view text) {
    return writeValue(key, name, {REG_SZ, toUtf16Le(std::wstring(text) + L'\0')});
}

bool writeSettingNumber(std::wstring_view key, std::wstring_view name, int number) {
    std::string bytes(4, 0);
    std::memcpy(bytes.data(), &number, 4);
    return writeValue(key, name, {REG_DWORD, std::move(bytes)});
}

bool deleteSetting(std::wstring_view key, std::wstring_view name) {
    return store()->change([&](SettingsKey& root) {
        auto* const found = root.find(userPath(key));
        const auto entry = found == nullptr ? decltype(found->values)::iterator() : found->values.find(name);
        if (found == nullptr || entry == found->values.end())
            return false;
        found->values.erase(entry);
        return true;
    }) == ERROR_SUCCESS;
}

bool deleteSettings(std::wstring_view key) {
    return store()->change([&](SettingsKey& root) { return root.remove(userPath(key)); }) == ERROR_SUCCESS;
}

bool createSettings(std::wstring_view key) {
    return SettingsKey::isValidPath(key) && store()->change([&](SettingsKey& root) {
        const bool absent = root.find(userPath(key)) == nullptr;
        root.create(userPath(key));
        return absent;
    }) == ERROR_SUCCESS;
}

} // namespace host
