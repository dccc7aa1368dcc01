// Menus from the bytes of resources: items in their order, each followed by those of the menu it opens.
#include "host/mfc/widgets/menumodel.h"
#include "host/mfc/widgets/templatereader.h"

namespace host {
namespace {

constexpr int deepest = 32;
constexpr UINT stateBits = MF_GRAYED | MF_DISABLED | MF_CHECKED | MF_DEFAULT;

std::vector<MenuTemplateItem> takeItems(TemplateReader& reader, bool extended, int depth);

/// Takes one item with those below it; true when it was the last of its menu.
bool takeOldItem(TemplateReader& reader, MenuTemplateItem& item, int depth) {
    const UINT flags = reader.take<std::uint16_t>();
    item.isPopup = (flags & MF_POPUP) != 0;
    item.id = item.isPopup ? 0 : reader.take<std::uint16_t>();
    item.text = reader.takeText();
    item.state = flags & stateBits;
    // A separator is written as an item with nothing in it.
    if ((flags & MF_SEPARATOR) != 0 || (!item.isPopup && item.id == 0 && item.text.empty()))
        item.type = MF_SEPARATOR;
    if (item.isPopup)
        item.items = takeItems(reader, false, depth + 1);
    return (flags & MF_END) != 0;
}

bool takeExtendedItem(TemplateReader& reader, MenuTemplateItem& item, int depth) {
    constexpr UINT popup = 1, last = 0x80;
    reader.align();
    item.type = reader.take<std::uint32_t>() & (MFT_SEPARATOR | MFT_RADIOCHECK);
    item.state = reader.take<std::uint32_t>() & stateBits;
    item.id = reader.take<std::uint32_t>();
    const UINT kind = reader.take<std::uint16_t>();
    item.isPopup = (kind & popup) != 0;
    item.text = reader.takeText();
    if (item.isPopup) {
        reader.align();
        reader.skip(4); // the help's number
        item.items = takeItems(reader, true, depth + 1);
    }
    return (kind & last) != 0;
}

std::vector<MenuTemplateItem> takeItems(TemplateReader& reader, bool extended, int depth) {
    std::vector<MenuTemplateItem> items;
    if (depth > deepest)
        reader.fail();
    for (bool wasLast = false; !wasLast && reader.good();) {
        MenuTemplateItem& item = items.emplace_back();
        wasLast = extended ? takeExtendedItem(reader, item, depth) : takeOldItem(reader, item, depth);
    }
    return items;
}

} // namespace

std::optional<std::vector<MenuTemplateItem>> readMenuTemplate(std::span<const std::byte> bytes) {
    TemplateReader reader(bytes);
    const UINT version = reader.take<std::uint16_t>();
    reader.skip(reader.take<std::uint16_t>()); // to the first item
    if (version > 1)
        reader.fail();
    std::vector<MenuTemplateItem> items = takeItems(reader, version == 1, 0);
    return reader.good() ? std::optional(std::move(items)) : std::nullopt;
}

} // namespace host
