// docs/lisp.md and the tables of functions say the same.
#include "lispsession.h"

#include <fstream>
#include <set>

namespace host {
namespace {

std::string documentedPart() {
    std::stringstream content;
    content << std::ifstream(QDV_SOURCE_DIR "/docs/lisp.md").rdbuf();
    const std::string text = content.str();
    const std::size_t begin = text.find("\n## Functions");
    return begin == std::string::npos ? "" : text.substr(begin, text.find("\n## ", begin + 1) - begin);
}

class LispDocumentation : public LispSession {};

TEST_F(LispDocumentation, ListsEveryFunctionOnce) {
    const std::string text = documentedPart();
    std::set<std::string> documented;
    for (std::size_t open = text.find('`'); open != std::string::npos;) {
        const std::size_t close = text.find('`', open + 1);
        ASSERT_NE(close, std::string::npos);
        std::istringstream names(text.substr(open + 1, close - open - 1));
        for (std::string name; names >> name;) {
            EXPECT_TRUE(documented.insert(name).second) << name << " is listed twice";
        }
        open = text.find('`', close + 1);
    }
    std::set<std::string> present;
    lispOf(*curDoc()).forEachSymbol([&](lisp::Symbol& symbol) {
        if (symbol.value.kind() == lisp::Kind::subr) {
            present.insert(toUtf8(toLower(std::wstring_view(symbol.name))));
        }
    });
    for (const std::string& name : present) {
        EXPECT_TRUE(documented.contains(name)) << name << " is missing in docs/lisp.md";
    }
    for (const std::string& name : documented) {
        EXPECT_TRUE(present.contains(name)) << name << " is documented and does not exist";
    }
}

} // namespace
} // namespace host
