#include "host/mfc/widgets/template.h"

#include "host/mfc/modulestate.h"
#include "host/mfc/widgets/templatereader.h"
#include "host/win/resources.h"

#include <array>

namespace host {
namespace {

// Standard classes go by numbers.
std::wstring classNameOf(const TemplateReader::Entry& entry) {
    static constexpr std::array<const wchar_t*, 6> names{L"Button",  L"Edit",      L"Static",
                                                         L"ListBox", L"ScrollBar", L"ComboBox"};
    const UINT index = entry.number - 0x80;
    return entry.text.empty() && index < names.size() ? names[index] : entry.text;
}

TemplateRect takeRect(TemplateReader& reader) {
    TemplateRect rect;
    rect.left = reader.takeShort();
    rect.top = reader.takeShort();
    rect.width = reader.takeShort();
    rect.height = reader.takeShort();
    return rect;
}

TemplateItem takeItem(TemplateReader& reader, bool extended) {
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
    item.rect = takeRect(reader);
    item.id = extended ? reader.take<std::uint32_t>() : reader.take<std::uint16_t>();
    item.className = classNameOf(reader.takeEntry());
    TemplateReader::Entry text = reader.takeEntry();
    item.text = std::move(text.text);
    item.image = text.number;
    reader.skip(reader.take<std::uint16_t>()); // data for the control's making
    return item;
}

} // namespace

std::optional<DialogTemplate> readDialogTemplate(std::span<const std::byte> bytes) {
    TemplateReader reader(bytes);
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
    dialog.rect = takeRect(reader);
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
