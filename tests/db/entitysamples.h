// Entities of every kind for tests that hold for all of them, and ways to compare what entities hold.
#pragma once

#include "host/db/db.h"

#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <string>

namespace testing_entities {

/// A drawing with what the samples refer to.
struct Drawing {
    Drawing();
    AcDbObjectId append(AcDbEntity* entity);
    AcDbDatabase database;
    AcDbObjectId layer;
    AcDbObjectId style;
    AcDbObjectId mlineStyle;
    AcDbObjectId imageDefinition;
    AcDbObjectId block; ///< a line, a circle, a nested reference
};

/// One kind of entity: a plain instance and one in which every field differs from its default.
struct Sample {
    const char* name;
    const wchar_t* className;
    const char* dxfName;
    std::function<AcDbEntity*(Drawing&)> plain;
    std::function<AcDbEntity*(Drawing&)> rich;
};
inline void PrintTo(const Sample& sample, std::ostream* out) {
    *out << sample.name;
}

const std::vector<Sample>& samples();
std::string sampleName(const testing::TestParamInfo<Sample>& info);

/// Everything an object files, parts included.
std::string bytesOf(const AcDbObject& object);
/// Groups as lines "code=value", numbers rounded to nine digits; references and handles left out.
std::vector<std::string> groupsOf(const AcDbObject& object, bool withDefaults = false);
host::ResbufList resbufOf(const AcDbObject& object);

void initialize();

} // namespace testing_entities
