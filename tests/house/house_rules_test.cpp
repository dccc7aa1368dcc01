// The rules of the house that a machine can check: which way includes point, what the module may know of its
// surroundings, how a file opens, and words that have no place in the sources.
#include "source_tree.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <gtest/gtest.h>
#include <optional>
#include <regex>

namespace {

// Bottom to top; an area may use itself and what stands before it.
constexpr std::array<std::string_view, 12> hostAreas{"ge",      "rx", "win",      "font", "gi",   "db",
                                                     "formats", "ed", "commands", "lisp", "plot", "mfc"};
constexpr std::array<std::string_view, 2> areasWithQt{"plot", "mfc"};

struct ModuleFolder {
    std::string_view name;
    int level; // a folder uses its own level and those below
};
constexpr std::array<ModuleFolder, 6> moduleFolders{
    {{"entities", 0}, {"services", 1}, {"drawing", 2}, {"text", 2}, {"titleblock", 2}, {"frame", 3}}};

std::string list(const std::vector<std::string>& faults) {
    std::string text;
    for (const std::string& fault : faults) {
        text += "\n  " + fault;
    }
    return text;
}

std::optional<std::size_t> areaRank(std::string_view area) {
    const auto found = std::ranges::find(hostAreas, area);
    if (found == hostAreas.end()) {
        return std::nullopt;
    }
    return found - hostAreas.begin();
}

const ModuleFolder* moduleFolder(std::string_view name) {
    const auto found = std::ranges::find(moduleFolders, name, &ModuleFolder::name);
    return found == moduleFolders.end() ? nullptr : &*found;
}

bool isQt(const Include& include) {
    return !include.quoted && include.name.size() > 1 && include.name[0] == 'Q' &&
           std::isupper(static_cast<unsigned char>(include.name[1]));
}

/// Standard headers have neither a folder nor an ending; the C headers of the platform have one or both.
bool isStandard(const Include& include) {
    return !include.quoted && include.name.find_first_of("/.") == std::string::npos && !isQt(include);
}

template <typename Visit>
void forEachInclude(std::string_view folder, Visit visit) {
    for (const SourceFile& file : sourceTree()) {
        if (file.isCpp() && file.under(folder)) {
            for (const Include& include : includesOf(file)) {
                visit(file, include);
            }
        }
    }
}

/// A file says at its top what it is for; a .cpp file may leave that to the header of its name.
bool opensWithPurpose(const SourceFile& file) {
    if (file.lines.empty()) {
        return false;
    }
    if (file.lines[0].starts_with("// ")) {
        return true;
    }
    const std::string name = parts(file.path).back();
    const std::string header = name.substr(0, name.rfind('.')) + ".h\"";
    return name.ends_with(".cpp") && file.lines[0].starts_with("#include \"") &&
           file.lines[0].ends_with(header);
}

/// What an include of a module folder or of the layer below it points to, judged by the level of the
/// includer; the layer below the module has level -1.
bool moduleMayInclude(const Include& include, int level) {
    if (!include.quoted) {
        return isStandard(include);
    }
    const std::vector<std::string> path = parts(include.name);
    if (path.size() == 1 || include.name == "host/arx.h" || path[0] == "restools") {
        return true;
    }
    const ModuleFolder* target = moduleFolder(path[0]);
    return (target && target->level <= level) || (level >= 0 && path[0] == "resources");
}

} // namespace

TEST(HouseRules, TreeIsFound) {
    EXPECT_GT(sourceTree().size(), 50u) << "sources are looked for in " << QDV_SOURCE_DIR;
}

TEST(HouseRules, HostAreasUseOnlyWhatStandsBelow) {
    std::vector<std::string> faults;
    forEachInclude("support/host", [&](const SourceFile& file, const Include& include) {
        const std::vector<std::string> own = parts(file.path);
        const std::vector<std::string> used = parts(include.name);
        if (!include.quoted || used.size() < 2) {
            return;
        }
        const std::optional<std::size_t> ownRank = own.size() > 3 ? areaRank(own[2]) : hostAreas.size();
        const std::optional<std::size_t> usedRank = used[0] == "host" ? areaRank(used[1]) : std::nullopt;
        if (!ownRank) {
            faults.push_back(file.path + " stands in a folder that has no place in the order");
        } else if (!usedRank || *usedRank > *ownRank) {
            faults.push_back(include.place + " includes " + include.name);
        }
    });
    EXPECT_TRUE(faults.empty()) << list(faults);
}

TEST(HouseRules, QtStaysInItsPlaces) {
    std::vector<std::string> faults;
    forEachInclude("support", [&](const SourceFile& file, const Include& include) {
        const std::vector<std::string> own = parts(file.path);
        const bool allowed = own.size() > 3 && std::ranges::find(areasWithQt, own[2]) != areasWithQt.end();
        if (isQt(include) && !allowed) {
            faults.push_back(include.place + " includes " + include.name);
        }
    });
    EXPECT_TRUE(faults.empty()) << list(faults);
}

TEST(HouseRules, ModuleKnowsOnlyTheHostInterface) {
    std::vector<std::string> faults;
    const auto judge = [&](std::string_view folder, int level) {
        forEachInclude(folder, [&](const SourceFile&, const Include& include) {
            if (!moduleMayInclude(include, level)) {
                faults.push_back(include.place + " includes " + include.name);
            }
        });
    };
    judge("support/restools", -1);
    for (const ModuleFolder& folder : moduleFolders) {
        judge(folder.name, folder.level);
    }
    EXPECT_TRUE(faults.empty()) << list(faults);
}

TEST(HouseRules, ModuleHasNoConditionalCompilation) {
    std::vector<std::string> faults;
    for (const SourceFile& file : sourceTree()) {
        if (!file.isCpp() || !moduleFolder(parts(file.path)[0])) {
            continue;
        }
        for (std::size_t number = 0; number < file.lines.size(); ++number) {
            if (file.lines[number].starts_with("#if")) {
                faults.push_back(file.path + ":" + std::to_string(number + 1));
            }
        }
    }
    EXPECT_TRUE(faults.empty()) << list(faults);
}

TEST(HouseRules, FilesOpenWithTheirPurposeAndHeadersGuardThemselves) {
    std::vector<std::string> faults;
    for (const SourceFile& file : sourceTree()) {
        if (!file.isCpp()) {
            continue;
        }
        if (!opensWithPurpose(file)) {
            faults.push_back(file.path + " does not open with a comment");
        }
        if (file.path.ends_with(".h") && std::ranges::find(file.lines, "#pragma once") == file.lines.end()) {
            faults.push_back(file.path + " lacks #pragma once");
        }
    }
    EXPECT_TRUE(faults.empty()) << list(faults);
}

// The sources speak of the system alone: not of documents and trackers outside the tree, nor of the machine
// it was written on; and nothing is left open in them. The words are put together here so as not to find
// themselves.
TEST(HouseRules, NoForeignWords) {
    const std::regex words("spec"
                           R"(\.md)"
                           "|[Tt]he speci"
                           "fication|\\bPa"
                           R"(rt [0-9]\.[0-9])"
                           "|\\bissu"
                           R"(e #?[0-9])"
                           "|/wor"
                           "k/|\\.\\./shar"
                           "ed|desig"
                           R"(n\.md)"
                           "|/roo"
                           "t/|\\bTO"
                           "DO\\b|\\bFIX"
                           "ME\\b|\\bX"
                           "XX\\b|\\bHA"
                           "CK\\b");
    // The rare beginnings of the words above; lines without any of them need no regular expression.
    constexpr std::array<std::string_view, 12> hints{".md",  "speci", "Part ", "issu", "/wor", "../",
                                                     "/roo", "TO",    "FIX",   "XX",   "HA",   "desig"};
    std::vector<std::string> faults;
    for (const SourceFile& file : sourceTree()) {
        for (std::size_t number = 0; number < file.lines.size(); ++number) {
            const std::string& line = file.lines[number];
            const auto occurs = [&](std::string_view hint) { return line.find(hint) != std::string::npos; };
            if (std::ranges::any_of(hints, occurs) && std::regex_search(line, words)) {
                faults.push_back(file.path + ":" + std::to_string(number + 1) + ": " + line);
            }
        }
    }
    EXPECT_TRUE(faults.empty()) << list(faults);
}
