// Any bytes as a DXF file: reading ends in a drawing or in one line. A drawing can be written in every form,
// and what was written reads back as the same drawing.
#include "fuzz/target.h"

#include "host/formats/formats.h"
#include "host/rx/text.h"

#include <memory>
#include <string>

namespace {

void initialize() {
    host::initializeRuntime();
    host::initializeDatabaseClasses();
    host::initializeFormats();
}

/// Reads what was written; a drawing of ours is never refused.
std::unique_ptr<AcDbDatabase> readBack(const std::string& written) {
    auto database = std::make_unique<AcDbDatabase>(false, true);
    const host::ReadResult result = host::readDxfText(*database, written);
    require(result.status == Acad::eOk, host::toUtf8(result.message));
    return database;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool initialized = (initialize(), true);
    (void)initialized;
    AcDbDatabase database(false, true);
    const host::ReadResult result =
        host::readDxfText(database, std::string_view(reinterpret_cast<const char*>(data), size));
    if (result.status != Acad::eOk) {
        require(!result.message.empty(), "no message");
        require(result.message.find(L'\n') == std::wstring::npos, "several lines");
        return 0;
    }
    const std::string once = host::writeDxfText(database);
    require(host::writeDxfText(*readBack(once)) == once, "written again, the file differs");
    // The size chooses one of the other forms, so that each input always does the same.
    constexpr AcDb::AcDbDwgVersion versions[] = {AcDb::kDHL_1015, AcDb::kDHL_1021, AcDb::kDHL_1024};
    host::DxfWriteOptions options;
    options.binary = size % 2 != 0;
    options.version = size % 8 < 2 ? AcDb::kDHL_1032 : versions[size % 3];
    const std::string other = host::writeDxfText(database, options);
    const std::string otherAgain = host::writeDxfText(*readBack(other), options);
    require(!options.binary || options.version != AcDb::kDHL_1032 || otherAgain == other,
            "written again, the binary file differs");
    return 0;
}
