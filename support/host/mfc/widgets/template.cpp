#include "host/mfc/widgets/template.h"

#include "host/mfc/modulestate.h"
#include "host/win/resources.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace host {
namespace {

// A text or a number in its place.
struct Entry {
    UINT number = 0;
    std::wstring text;
};

class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    bool good() const { return good_; }
    void align() { at_ = (at_ + 3) & ~std::size_t{3}; }
    void skip(std::size_t size) { at_ += size; }
    template <class Number>
    Number take() {
        Number value{};
        good_ = good_ && at_ <= bytes_.size() && sizeof value <= bytes_.size() - at_;
        if (good_)
            std::memcpy(&value, bytes_.data() + at_, sizeof value);
        at_ += sizeof value;
        return value;
    }
    int takeShort() { return take<std::int16_t>(); }
    TemplateRect takeRect() {
        TemplateRect rect;
        rect.left = takeShort();
        rect.top = takeShort();
        rect.width = takeShort();
        rect.height = takeShort();
        return rect;
    }
    Entry takeEntry() {
        Entry entry;
        const auto first = take<std::uint16_t>();
        if (first == 0xFFFF) {
            entry.number = take<std::uint16_t>();
            return entry;
        }
        for (std::uint16_t unit = first; unit != 0 && good_; unit = take<std::uint16_t>())
            entry.text += static_cast<wchar_t>(unit);
        return entry;
    }

private:
    std::span<const std::byte> bytes_;
    std::size_t at_ = 0;
    bool good_ = true;
};

// Standard classes go by numbers.
std::wstring classNameOf(const Entry& entry) {
    static constexpr std::array<const wchar_t*, 6> names{L"Button",  L"Edit",      L"Static",
                                                         L"ListBox", L"ScrollBar", L"ComboBox"};
    const UINT index = entry.number - 0x80;
    return entry.text.empty() && index < names.size() ? names[index] : entry.text;
}

TemplateItem takeItem(Reader& reader, bool extended) {
    TemplateItem item;
    reader.align();
    if (extended) {
        reader.skip(4); // the help's number
        item.exStyle = reader.take<std::uint32_t>();
        item.style = reader.take<std::uint32_t>();
    } else {
        item.style = reader.take<std::uint32_t>();
        item.exStyle = reader.take<std::uint32_t>();
    }
    item.rect = reader.takeRect();
    item.id = extended ? reader.take<std::uint32_t>() : reader.take<std::uint16_t>();
    item.className = classNameOf(reader.takeEntry());
    Entry text = reader.takeEntry();
    item.text = std::move(text.text);
    item.image = text.number;
    reader.skip(reader.take<std::uint16_t>()); // data for the control's making
    return item;
}

} // namespace

std::optional<DialogTemplate> readDialogTemplate(std::span<const std::byte> bytes) {
    Reader reader(bytes);
    DialogTemplate dialog;
    const auto first = reader.take<std::uint32_t>();
    const bool extended = first == 0xFFFF0001;
    if (extended) {
        reader.skip(4);
        dialog.exStyle = reader.take<std::uint32_t>();
        dialog.style = reader.take<std::uint32_t>();
    } else {
        dialog.style = first;
        dialog.exStyle = reader.take<std::uint32_t>();
    }
    const auto count = reader.take<std::uint16_t>();
    dialog.rect = reader.takeRect();
    reader.takeEntry(); // the menu
    reader.takeEntry(); // the window class
    dialog.caption = reader.takeEntry().text;
    if ((dialog.style & DS_SETFONT) != 0) {
        dialog.points = reader.take<std::uint16_t>();
        if (extended) {
            dialog.weight = reader.take<std::uint16_t>();
            dialog.italic = reader.take<std::uint8_t>() != 0;
            reader.skip(1); // the character set
        }
        dialog.face = reader.takeEntry().text;
    }
    for (int i = 0; i < count && reader.good(); ++i)
        dialog.items.push_back(takeItem(reader, extended));
    return reader.good() ? std::optional(std::move(dialog)) : std::nullopt;
}

std::optional<DialogTemplate> findDialogTemplate(LPCWSTR name) {
    for (const HINSTANCE module : resourceModules()) {
        if (const auto bytes = resource(module, RT_DIALOG, name); !bytes.empty())
            return readDialogTemplate(bytes);
    }
    return std::nullopt;
}

} // namespace host
