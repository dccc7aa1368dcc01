// Compiled resources: found by name and type, texts, dialog templates in both forms, damage.
#include "dialogsession.h"

#include "host/mfc/widgets/template.h"
#include "host/rx/text.h"

#include <vector>

namespace {

class Resources : public DialogSession {
protected:
    static std::string bytesOf(LPCWSTR name, LPCWSTR type) {
        const HRSRC found = FindResource(nullptr, name, type);
        const auto* data = static_cast<const char*>(LockResource(LoadResource(nullptr, found)));
        return data == nullptr ? std::string() : std::string(data, SizeofResource(nullptr, found));
    }
};

TEST_F(Resources, AreFoundByNameAndNumber) {
    EXPECT_EQ(bytesOf(L"stream", RT_RCDATA), std::string("abc\0", 4));
    EXPECT_EQ(bytesOf(L"Stream", L"#10"), std::string("abc\0", 4));
    EXPECT_EQ(bytesOf(MAKEINTRESOURCE(8), L"RESOURCE_FILE").size(), 6u);
    EXPECT_EQ(bytesOf(L"#8", L"resource_file").size(), 6u);
    EXPECT_EQ(FindResource(nullptr, L"none", RT_RCDATA), nullptr);
    EXPECT_EQ(FindResource(nullptr, L"stream", RT_DIALOG), nullptr);
    EXPECT_EQ(SizeofResource(nullptr, nullptr), 0u);
}

TEST_F(Resources, Texts) {
    wchar_t text[8];
    EXPECT_EQ(LoadString(nullptr, 17, text, 8), 2);
    EXPECT_STREQ(text, L"河流");
    EXPECT_EQ(LoadString(nullptr, 31, text, 3), 2);
    EXPECT_STREQ(text, L"第二");
    for (const UINT id : {0u, 16u, 18u, 32u, 40000u})
        EXPECT_EQ(LoadString(nullptr, id, text, 8), 0) << id;
}

TEST_F(Resources, DialogTemplates) {
    const auto dialog = host::findDialogTemplate(MAKEINTRESOURCE(100));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->caption, L"试验");
    EXPECT_EQ(dialog->points, 9);
    EXPECT_EQ(dialog->face, L"Microsoft YaHei UI");
    EXPECT_EQ(dialog->rect.width, 200);
    ASSERT_EQ(dialog->items.size(), 17u);
    EXPECT_EQ(dialog->items[1].className, L"Edit");
    EXPECT_EQ(dialog->items[1].id, 1001u);
    EXPECT_EQ(dialog->items[1].rect.left, 50);
    EXPECT_TRUE(host::equalNoCase(dialog->items[12].className, L"msctls_updown32"));
    EXPECT_EQ(dialog->items[14].text, L"询问(&Q)");
    EXPECT_NE(dialog->items[14].style & WS_DISABLED, 0u);
    const auto old = host::findDialogTemplate(MAKEINTRESOURCE(101));
    ASSERT_TRUE(old);
    EXPECT_EQ(old->caption, L"旧");
    ASSERT_EQ(old->items.size(), 1u);
    EXPECT_EQ(old->items[0].className, L"Static");
    EXPECT_EQ(old->items[0].id, 5u);
    EXPECT_EQ(old->items[0].rect.height, 4);
    EXPECT_FALSE(host::findDialogTemplate(MAKEINTRESOURCE(102)));
}

// Cut off anywhere, a template is none, and a file of resources gives those before the damage.
TEST_F(Resources, DamageIsNoCrash) {
    const std::string whole = bytesOf(MAKEINTRESOURCE(101), RT_DIALOG);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::vector<std::byte> cut(reinterpret_cast<const std::byte*>(whole.data()),
                                         reinterpret_cast<const std::byte*>(whole.data()) + size);
        EXPECT_FALSE(host::readDialogTemplate(cut) && size + 4 < whole.size()) << size;
    }
    const std::span<const std::byte> file(qdvResourcesBegin, qdvResourcesEnd);
    for (std::size_t size = 0; size < file.size(); size += 7) {
        const std::vector<std::byte> cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
        host::setProgramResources(cut);
        host::resource(nullptr, RT_RCDATA, L"stream");
        host::resourceString(nullptr, 17);
        host::findDialogTemplate(MAKEINTRESOURCE(100));
    }
    host::setProgramResources({});
    EXPECT_EQ(FindResource(nullptr, L"stream", RT_RCDATA), nullptr);
}

} // namespace
