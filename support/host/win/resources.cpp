// Reading of compiled resources: one walk over the file when a module is first asked.
#include "host/win/resources.h"

#include "host/rx/text.h"
#include "host/win/moduleinstance.h"

#include <cstring>
#include <cwchar>
#include <dlfcn.h>
#include <map>
#include <memory>

struct HRSRC__ {
    std::span<const std::byte> data;
};

namespace {

using Bytes = std::span<const std::byte>;

// A type or a name: a number, or a text in capitals.
struct Name {
    unsigned number = 0;
    std::wstring text;

    auto operator<=>(const Name&) const = default;
};

Name nameOf(LPCWSTR name) {
    if (IS_INTRESOURCE(name))
        return {static_cast<unsigned>(reinterpret_cast<ULONG_PTR>(name)), {}};
    if (*name == L'#')
        return {static_cast<unsigned>(std::wcstoul(name + 1, nullptr, 10)), {}};
    return {0, host::toUpper(name)};
}

class Reader {
public:
    explicit Reader(Bytes bytes) : bytes_(bytes) {}

    bool atEnd() const { return at_ >= bytes_.size(); }
    bool good() const { return good_; }
    std::size_t position() const { return at_; }
    void moveTo(std::size_t position) { at_ = position; }
    void align() { at_ = (at_ + 3) & ~std::size_t{3}; }
    template <class Number>
    Number take() {
        Number value{};
        const Bytes bytes = take(sizeof value);
        if (good_)
            std::memcpy(&value, bytes.data(), sizeof value);
        return value;
    }
    Bytes take(std::size_t size) {
        good_ = good_ && at_ <= bytes_.size() && size <= bytes_.size() - at_;
        if (!good_)
            return {};
        at_ += size;
        return bytes_.subspan(at_ - size, size);
    }
    // 0xFFFF and a number, or characters up to a zero.
    Name takeName() {
        Name name;
        const auto first = take<std::uint16_t>();
        if (first == 0xFFFF) {
            name.number = take<std::uint16_t>();
            return name;
        }
        for (std::uint16_t unit = first; unit != 0 && good_; unit = take<std::uint16_t>())
            name.text += static_cast<wchar_t>(unit);
        name.text = host::toUpper(name.text);
        return name;
    }

private:
    Bytes bytes_;
    std::size_t at_ = 0;
    bool good_ = true;
};

using Table = std::map<std::pair<Name, Name>, HRSRC__>;

// What can be read before damage is kept.
Table readTable(Bytes file) {
    Table table;
    Reader reader(file);
    while (!reader.atEnd() && reader.good()) {
        const std::size_t begin = reader.position();
        const auto dataSize = reader.take<std::uint32_t>();
        const auto headerSize = reader.take<std::uint32_t>();
        Name type = reader.takeName();
        Name name = reader.takeName();
        if (!reader.good() || headerSize < 8)
            break;
        reader.moveTo(begin + headerSize);
        const Bytes data = reader.take(dataSize);
        if (reader.good() && (type != Name{} || name != Name{}))
            table.try_emplace({std::move(type), std::move(name)}, HRSRC__{data});
        reader.align();
    }
    return table;
}

Bytes& programResources() {
    static Bytes bytes;
    return bytes;
}

Bytes resourceFile(HINSTANCE module) {
    if (module == nullptr)
        return programResources();
    const void* begin = dlsym(module, "qdvResourcesBegin");
    const void* end = dlsym(module, "qdvResourcesEnd");
    // Libraries that the module is linked to are searched too; their resources are their own.
    if (begin == nullptr || end == nullptr || host::moduleOfAddress(begin) != module)
        return {};
    return {static_cast<const std::byte*>(begin), static_cast<const std::byte*>(end)};
}

// Read anew when a library was loaded in the place of another.
const Table& tableOf(HINSTANCE module) {
    struct Known {
        Bytes file;
        Table table;
    };
    static std::map<HINSTANCE, Known> known;
    const Bytes file = resourceFile(module);
    Known& entry = known[module];
    if (entry.file.data() != file.data() || entry.file.size() != file.size())
        entry = {file, readTable(file)};
    return entry.table;
}

} // namespace

HRSRC FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type) {
    const Table& table = tableOf(module);
    const auto found = table.find({nameOf(type), nameOf(name)});
    return found == table.end() ? nullptr : const_cast<HRSRC>(&found->second);
}

HGLOBAL LoadResource(HMODULE, HRSRC resource) {
    return resource == nullptr ? nullptr : const_cast<std::byte*>(resource->data.data());
}

LPVOID LockResource(HGLOBAL data) {
    return data;
}

DWORD SizeofResource(HMODULE, HRSRC resource) {
    return resource == nullptr ? 0 : static_cast<DWORD>(resource->data.size());
}

int LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int size) {
    if (text == nullptr || size <= 0)
        return 0;
    const std::wstring found = host::resourceString(module, id).substr(0, static_cast<std::size_t>(size) - 1);
    std::wmemcpy(text, found.c_str(), found.size() + 1);
    return static_cast<int>(found.size());
}

namespace host {

void setProgramResources(std::span<const std::byte> file) {
    programResources() = file;
}

std::span<const std::byte> resource(HINSTANCE module, LPCWSTR type, LPCWSTR name) {
    const HRSRC found = FindResourceW(module, name, type);
    return found != nullptr ? found->data : std::span<const std::byte>();
}

// String tables come in blocks of sixteen texts, each with its length before it.
std::wstring resourceString(HINSTANCE module, UINT id) {
    Reader reader(resource(module, RT_STRING, MAKEINTRESOURCEW(id / 16 + 1)));
    for (UINT skip = id % 16; skip > 0 && reader.good(); --skip)
        reader.take(std::size_t{2} * reader.take<std::uint16_t>());
    const Bytes text = reader.take(std::size_t{2} * reader.take<std::uint16_t>());
    return fromUtf16Le({reinterpret_cast<const char*>(text.data()), text.size()});
}

} // namespace host
