// The registry for programs: the vl-registry- functions. A key begins with the name of its hive. The keys of
// this program itself can be read only, since they say which folders code is loaded from.
#include "host/ed/ed.h"
#include "host/lisp/drawingbuiltins.h"
#include "host/rx/text.h"
#include "host/win/win.h"

namespace host::lisp {

namespace {

/// An open key; null when it isn't there.
class RegistryKey {
public:
    RegistryKey(const std::wstring& path, REGSAM access, bool create) {
        const std::size_t slash = std::min(path.find(L'\\'), path.size());
        const std::wstring hiveName = path.substr(0, slash);
        const HKEY hive = equalNoCase(hiveName, L"HKEY_CURRENT_USER")    ? HKEY_CURRENT_USER
                          : equalNoCase(hiveName, L"HKEY_LOCAL_MACHINE") ? HKEY_LOCAL_MACHINE
                          : equalNoCase(hiveName, L"HKEY_CLASSES_ROOT")  ? HKEY_CLASSES_ROOT
                                                                         : nullptr;
        const std::wstring below = slash < path.size() ? path.substr(slash + 1) : std::wstring();
        if (hive == nullptr || (create && below.empty())) {
            return;
        }
        const LONG result =
            create ? RegCreateKeyExW(hive, below.c_str(), 0, nullptr, 0, access, nullptr, &mKey, nullptr)
                   : RegOpenKeyExW(hive, below.c_str(), 0, access, &mKey);
        mKey = result == ERROR_SUCCESS ? mKey : nullptr;
    }
    ~RegistryKey() {
        if (mKey != nullptr) {
            RegCloseKey(mKey);
        }
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;
    explicit operator bool() const { return mKey != nullptr; }
    HKEY get() const { return mKey; }

private:
    HKEY mKey = nullptr;
};

bool isOwnKey(const std::wstring& path) {
    const std::wstring own = L"HKEY_CURRENT_USER\\" + std::wstring(acrxProductKey());
    return path.size() >= own.size() && equalNoCase(std::wstring_view(path).substr(0, own.size()), own);
}

std::wstring nameAt(Arguments arguments, std::size_t index) {
    return arguments.size() > index && arguments[index] ? textOf(arguments[index]) : std::wstring();
}

std::wstring textFromUtf16(const std::vector<BYTE>& bytes) {
    std::wstring text =
        fromUtf16Le(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size() / 2 * 2));
    return text.substr(0, text.find(L'\0'));
}

// (vl-registry-read key [name]): a text or an integer.
Value read(LispInterpreter&, Arguments arguments) {
    const RegistryKey key(textOf(arguments[0]), KEY_READ, false);
    const std::wstring name = nameAt(arguments, 1);
    DWORD type = REG_NONE;
    DWORD size = 0;
    if (!key || RegQueryValueExW(key.get(), name.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
        return {};
    }
    std::vector<BYTE> bytes(size);
    if (RegQueryValueExW(key.get(), name.c_str(), nullptr, &type, bytes.data(), &size) != ERROR_SUCCESS) {
        return {};
    }
    if (type == REG_DWORD && bytes.size() == sizeof(std::int32_t)) {
        std::int32_t number = 0;
        std::copy(bytes.begin(), bytes.end(), reinterpret_cast<BYTE*>(&number));
        return number;
    }
    return type == REG_SZ || type == REG_EXPAND_SZ ? makeText(textFromUtf16(bytes)) : Value();
}

// (vl-registry-write key [name value]): the value written, a text or an integer.
Value write(LispInterpreter&, Arguments arguments) {
    const std::wstring& path = textOf(arguments[0]);
    const RegistryKey key(isOwnKey(path) ? std::wstring() : path, KEY_READ | KEY_WRITE, true);
    if (!key) {
        return {};
    }
    const std::wstring name = nameAt(arguments, 1);
    const Value value = arguments.size() > 2 ? arguments[2] : makeText(L"");
    LONG result = ERROR_SUCCESS;
    if (value.isInteger()) {
        const std::int32_t number = value.integer();
        result = RegSetValueExW(key.get(), name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                                sizeof number);
    } else {
        const std::string bytes = toUtf16Le(textOf(value)) + std::string(2, '\0');
        result =
            RegSetValueExW(key.get(), name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(bytes.data()),
                           static_cast<DWORD>(bytes.size()));
    }
    return result == ERROR_SUCCESS ? value : Value();
}

// (vl-registry-delete key [name]): without a name the key itself, which must have no keys below it.
Value remove(LispInterpreter& lisp, Arguments arguments) {
    std::wstring path = textOf(arguments[0]);
    if (isOwnKey(path)) {
        return {};
    }
    if (arguments.size() > 1 && arguments[1]) {
        const RegistryKey key(path, KEY_READ | KEY_WRITE, false);
        return lisp.boolean(key && RegDeleteValueW(key.get(), textOf(arguments[1]).c_str()) == ERROR_SUCCESS);
    }
    const std::size_t last = path.find_last_of(L'\\');
    if (last == std::wstring::npos) {
        return {};
    }
    const RegistryKey parent(path.substr(0, last), KEY_READ | KEY_WRITE, false);
    return lisp.boolean(parent &&
                        RegDeleteKeyW(parent.get(), path.substr(last + 1).c_str()) == ERROR_SUCCESS);
}

// (vl-registry-descendents key [values]): names of the keys below, or with "" as the second argument of the
// values.
Value descendents(LispInterpreter&, Arguments arguments) {
    constexpr DWORD longest = 1024;
    const RegistryKey key(textOf(arguments[0]), KEY_READ, false);
    if (!key) {
        return {};
    }
    const bool values = arguments.size() > 1 && arguments[1];
    ListBuilder builder;
    for (DWORD index = 0;; ++index) {
        WCHAR name[longest];
        DWORD size = longest;
        const LONG result =
            values ? RegEnumValueW(key.get(), index, name, &size, nullptr, nullptr, nullptr, nullptr)
                   : RegEnumKeyExW(key.get(), index, name, &size, nullptr, nullptr, nullptr, nullptr);
        if (result != ERROR_SUCCESS) {
            return builder.take();
        }
        builder.add(makeText(std::wstring(name, size)));
    }
}

constexpr FunctionRow rows[] = {
    {L"VL-REGISTRY-READ", read, 1, 2},
    {L"VL-REGISTRY-WRITE", write, 1, 3},
    {L"VL-REGISTRY-DELETE", remove, 1, 2},
    {L"VL-REGISTRY-DESCENDENTS", descendents, 1, 2},
};

} // namespace

void addRegistryFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
