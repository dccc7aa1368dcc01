// Joins the groups of a drawing dump into one line an object.
#include "drawinglines.h"

#include "transcript.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace {

constexpr int ownHandle = 5;
constexpr int dimensionStyleHandle = 105;
constexpr int ownerHandle = 330;
constexpr int binaryData = 310;

struct Group {
    int code;
    std::string value;
};

struct Record {
    std::string type; // "LINE" or "$LTSCALE"
    std::string handle;
    std::vector<Group> groups;
};

bool isReal(int code) {
    return (code >= 10 && code <= 59) || (code >= 110 && code <= 149) || (code >= 210 && code <= 239) ||
           (code >= 460 && code <= 469) || (code >= 1010 && code <= 1059);
}

bool isHandle(int code) {
    return (code >= 320 && code <= 369) || (code >= 390 && code <= 399) || code == 480 || code == 481 ||
           code == ownHandle || code == dimensionStyleHandle || code == 1005;
}

std::string rounded(const std::string& value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.4f", std::strtod(value.c_str(), nullptr));
    std::string result = text;
    result.erase(result.find_last_not_of('0') + 1);
    if (result.back() == '.') {
        result.pop_back();
    }
    return result == "-0" ? "0" : result;
}

/// Headings stand at the line's begin, groups are indented; the lists of what a block or entity holds follow
/// from the owners and are passed over.
/// So are the objects that follow another one, as these tell of it.
std::vector<Record> recordsOf(std::string_view dump) {
    std::vector<Record> records;
    bool inReactors = false;
    for (const std::string& line : linesOf(dump)) {
        if (!line.starts_with("  ")) {
            const std::size_t blank = line.find(' ');
            records.push_back(
                {line.substr(0, blank), blank == std::string::npos ? "" : line.substr(blank + 1), {}});
            continue;
        }
        char* end = nullptr;
        const int code = static_cast<int>(std::strtol(line.c_str(), &end, 10));
        if (end != line.c_str() && !records.empty()) {
            const std::string value = *end == ' ' ? end + 1 : end;
            inReactors = code == 102 ? value == "{ACAD_REACTORS" : inReactors;
            if (!inReactors) {
                records.back().groups.push_back({code, value});
            }
        }
    }
    return records;
}

const std::string* valueOf(const Record& record, int code) {
    for (const Group& group : record.groups) {
        if (group.code == code) {
            return &group.value;
        }
    }
    return nullptr;
}

bool startsPoint(const std::vector<Group>& groups, std::size_t index) {
    const int code = groups[index].code;
    const bool pointCode = (code >= 10 && code <= 18) || (code >= 110 && code <= 112) || code == 210 ||
                           (code >= 1010 && code <= 1013);
    return pointCode && index + 1 < groups.size() && groups[index + 1].code == code + 10;
}

std::string lineOf(const Record& record, const std::map<std::string, std::string>& names) {
    std::string line = record.type;
    if (const std::string* owner = valueOf(record, ownerHandle)) {
        if (const auto named = names.find(*owner); named != names.end()) {
            line += " " + named->second;
        }
    }
    for (std::size_t i = 0; i < record.groups.size(); ++i) {
        const auto& [code, value] = record.groups[i];
        if (code == ownHandle || code == dimensionStyleHandle || code == ownerHandle || code == 100 ||
            code == 102) {
            continue;
        }
        if (isHandle(code)) {
            if (const auto named = names.find(value); named != names.end()) {
                line += " " + std::to_string(code) + "=" + named->second;
            }
        } else if (code == binaryData) {
            line += " 310=[" + std::to_string(value.size() / 2) + " bytes]";
        } else if (startsPoint(record.groups, i)) {
            const bool spatial = i + 2 < record.groups.size() && record.groups[i + 2].code == code + 20;
            line += " " + std::to_string(code) + "=(" + rounded(value) + " " +
                    rounded(record.groups[i + 1].value);
            line += spatial ? " " + rounded(record.groups[i + 2].value) + ")" : ")";
            i += spatial ? 2 : 1;
        } else {
            line += " " + std::to_string(code) + "=" + (isReal(code) ? rounded(value) : value);
        }
    }
    return line;
}

} // namespace

std::vector<std::string> drawingLines(std::string_view dump) {
    const std::vector<Record> records = recordsOf(dump);
    // Records of symbol tables have names; entities that own others are told by their type.
    std::map<std::string, std::string> names;
    for (const Record& record : records) {
        const std::string* name = valueOf(record, 2);
        const bool named = name && record.type != "INSERT" && record.type != "HATCH" &&
                           record.type != "ATTRIB" && record.type != "ATTDEF";
        if (named) {
            names.emplace(record.handle, *name);
        } else if (record.type == "INSERT" || record.type == "POLYLINE") {
            names.emplace(record.handle, record.type);
        }
    }
    std::vector<std::string> lines;
    for (const Record& record : records) {
        if (!record.type.empty()) { // the tables themselves, which only count
            lines.push_back(lineOf(record, names));
        }
    }
    return lines;
}
