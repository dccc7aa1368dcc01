// Small drawings for the tests of the formats: DXF text from groups, and databases read from it.
#pragma once

#include "tests/temporaryfolder.h"

#include "host/formats/formats.h"
#include "host/rx/text.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

namespace formats_test {

inline void initialize() {
    static const bool done = [] {
        host::initializeRuntime();
        host::initializeDatabaseClasses();
        host::initializeFormats();
        return true;
    }();
    (void)done;
}

using Group = std::pair<int, std::string>;

/// Text of groups, a code and a value a line.
inline std::string groups(std::initializer_list<Group> list) {
    std::string text;
    for (const auto& [code, value] : list) {
        text += std::to_string(code) + "\n" + value + "\n";
    }
    return text;
}

inline std::string section(const std::string& name, const std::string& content) {
    return groups({{0, "SECTION"}, {2, name}}) + content + groups({{0, "ENDSEC"}});
}

inline std::string header(const std::string& version, const std::string& more = {}) {
    return section("HEADER", groups({{9, "$ACADVER"}, {1, version}}) + more);
}

inline std::string entities(const std::string& content) {
    return section("ENTITIES", content);
}

inline const std::string eof = "0\nEOF\n";

/// A drawing read from text; reading is expected to succeed.
struct Drawing {
    explicit Drawing(const std::string& text) : database(make()) {
        result = host::readDxfText(*database, text);
        EXPECT_EQ(result.status, Acad::eOk) << host::toUtf8(result.message);
    }
    static std::unique_ptr<AcDbDatabase> make() {
        initialize();
        return std::make_unique<AcDbDatabase>(false, true);
    }

    std::string written() const { return host::writeDxfText(*database); }
    std::string report() const { return host::toUtf8(result.report.text()); }
    /// The objects of the space in order.
    std::vector<AcDbObject*> space(AcDbObjectId id) const {
        std::vector<AcDbObject*> all;
        for (AcDbStub* stub : host::peek<AcDbBlockTableRecord>(id)->entities()) {
            all.push_back(stub->object);
        }
        return all;
    }
    std::vector<AcDbObject*> model() const { return space(database->modelSpaceId()); }
    std::vector<AcDbObject*> paper() const { return space(database->paperSpaceId()); }
    AcDbObject* at(Adesk::UInt64 handle) const {
        AcDbStub* stub = database->impl().findStub(handle);
        return stub != nullptr ? stub->object : nullptr;
    }

    std::unique_ptr<AcDbDatabase> database;
    host::ReadResult result;
};

/// The line a text cannot be read with.
inline std::string failure(const std::string& text) {
    const auto database = Drawing::make();
    const host::ReadResult result = host::readDxfText(*database, text);
    EXPECT_NE(result.status, Acad::eOk);
    return host::toUtf8(result.message);
}

/// The first line in which two texts differ, with both forms; empty when they are equal.
inline std::string difference(const std::string& left, const std::string& right) {
    std::size_t start = 0;
    for (std::size_t at = 0; at < left.size() && at < right.size() && left[at] == right[at]; ++at) {
        start = left[at] == '\n' ? at + 1 : start;
    }
    const auto lines = [start](const std::string& text) {
        return text.substr(std::min(start, text.size()), 120);
    };
    return left == right ? std::string() : "<" + lines(left) + ">\n<" + lines(right) + ">";
}

} // namespace formats_test
