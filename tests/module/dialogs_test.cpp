// The module's dialogs as they are compiled: whole, without overlaps, every control within reach; and the
// numbers that the code uses for controls are those of controls.
#include "resources/resource.h"
#include "tests/module/sessionfixture.h"

#include "host/mfc/widgets/template.h"

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>

namespace {

const host::TemplateItem* overlapping(const host::DialogTemplate& dialog, std::size_t index) {
    const auto rectOf = [](const host::TemplateItem& item) {
        constexpr int closedCombo = 12; // the template's height is that of the open list
        const host::TemplateRect& r = item.rect;
        const int height = item.className == L"ComboBox" ? closedCombo : r.height;
        return CRect(r.left, r.top, r.left + r.width, r.top + height);
    };
    const auto isFrame = [](const host::TemplateItem& item) {
        return item.className == L"Button" && (item.style & BS_TYPEMASK) == BS_GROUPBOX;
    };
    const host::TemplateItem& item = dialog.items[index];
    const bool shown = (item.style & WS_VISIBLE) != 0;
    for (std::size_t other = 0; other < index && shown && !isFrame(item); ++other) {
        const host::TemplateItem& before = dialog.items[other];
        const bool hidden = (before.style & WS_VISIBLE) == 0;
        CRect common;
        if (!hidden && !isFrame(before) && common.IntersectRect(rectOf(item), rectOf(before))) {
            return &before;
        }
    }
    return nullptr;
}

void checkDialog(UINT id) {
    SCOPED_TRACE(id);
    const auto dialog = host::findDialogTemplate(MAKEINTRESOURCE(id));
    ASSERT_TRUE(dialog);
    EXPECT_FALSE(dialog->caption.empty());
    std::set<UINT> ids;
    std::set<wchar_t> letters;
    for (std::size_t i = 0; i < dialog->items.size(); ++i) {
        const host::TemplateItem& item = dialog->items[i];
        const std::string name = std::to_string(item.id) + " " + host::toUtf8(item.text);
        EXPECT_TRUE((item.id & 0xFFFF) == IDC_STATIC || ids.insert(item.id).second) << name;
        EXPECT_LE(item.rect.left + item.rect.width, dialog->rect.width) << name;
        EXPECT_TRUE(item.className == L"ComboBox" || item.rect.top + item.rect.height <= dialog->rect.height)
            << name;
        EXPECT_EQ(overlapping(*dialog, i), nullptr) << name;
        const std::size_t mark = item.text.find(L'&');
        if (mark != item.text.npos && mark + 1 < item.text.size()) {
            EXPECT_TRUE(letters.insert(item.text[mark + 1]).second) << name;
        }
    }
}

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::set<std::string> controlNamesIn(const std::string& text) {
    static const std::regex name("\\bIDC_[A-Z0-9_]+\\b");
    return {std::sregex_token_iterator(text.begin(), text.end(), name), {}};
}

class DialogsTest : public SessionTest {};

} // namespace

TEST_F(DialogsTest, TemplatesAreWhole) {
    for (const UINT id : {IDD_LINE_PARA, IDD_DRAW_RIVER, IDD_STANDARD_DRAWING, IDD_IMAGE_COMMAND,
                          IDD_TEXT_TOOL, IDD_DELTA_MARK, IDD_TEXT_EDIT}) {
        checkDialog(id);
    }
}

TEST_F(DialogsTest, NumbersInTheCodeAreThoseOfControls) {
    namespace fs = std::filesystem;
    const fs::path root = QDV_SOURCE_DIR;
    std::string scripts;
    for (const fs::directory_entry& entry : fs::directory_iterator(root / "resources")) {
        scripts += entry.path().extension() == ".rc" ? contentOf(entry.path()) : "";
    }
    const std::set<std::string> inScripts = controlNamesIn(scripts);
    EXPECT_GT(inScripts.size(), 20u);
    for (const char* folder : {"drawing", "text", "titleblock", "services", "frame"}) {
        std::error_code none;
        for (const fs::directory_entry& entry : fs::directory_iterator(root / folder, none)) {
            for (const std::string& name : controlNamesIn(contentOf(entry.path()))) {
                EXPECT_TRUE(inScripts.contains(name) || name == "IDC_UPARROW" || name == "IDC_ARROW")
                    << name << " in " << entry.path();
            }
        }
    }
}
