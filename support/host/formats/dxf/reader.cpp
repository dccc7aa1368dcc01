// Sections of a DXF file in any order, header variables, classes and the objects section.
#include "host/formats/dxf/reader.h"

#include "host/formats/dxf/versions.h"
#include "host/formats/readprogress.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>
#include <cmath>

namespace host::dxf {
namespace {

/// A new value of the kind the old one has, from the first group of a variable.
HeaderValue headerValue(const HeaderValue& old, const DxfGroup& group) {
    struct Visitor {
        const DxfGroup& group;
        bool isNumber = group.kind == ResbufKind::real || group.kind == ResbufKind::point;

        HeaderValue operator()(Adesk::Int16) const {
            return static_cast<Adesk::Int16>(isNumber ? std::clamp(group.real, -32768.0, 32767.0)
                                                      : static_cast<double>(group.int16()));
        }
        HeaderValue operator()(Adesk::Int32) const {
            return static_cast<Adesk::Int32>(isNumber ? std::clamp(group.real, -2e9, 2e9)
                                                      : static_cast<double>(group.int32()));
        }
        HeaderValue operator()(double) const {
            return isNumber ? group.real : static_cast<double>(group.integer);
        }
        HeaderValue operator()(const AcString&) const { return group.string(); }
        HeaderValue operator()(const AcGePoint2d&) const { return group.point2d(); }
        HeaderValue operator()(const AcGePoint3d&) const {
            return AcGePoint3d(group.real, group.y, group.dimensions == 3 ? group.z : 0.0);
        }
        HeaderValue operator()(const AcDbObjectId&) const { return AcDbObjectId(group.id); }
    };
    return std::visit(Visitor{group}, old);
}

bool namesRecord(HeaderKind kind) {
    return kind == HeaderKind::layer || kind == HeaderKind::linetype || kind == HeaderKind::textStyle ||
           kind == HeaderKind::dimStyle;
}

} // namespace

Reader::Reader(AcDbDatabase& database, GroupScanner& scanner, ReadReport& report)
    : mDatabase(database), mImpl(database.impl()), mScanner(scanner), mFiler(database, scanner),
      mReport(report), mClasses(database) {}

void Reader::report(std::wstring what, Done done) {
    report(std::move(what), done, mFiler.recordLine(), mFiler.handle());
}

void Reader::report(std::wstring what, Done done, std::size_t line, Adesk::UInt64 handle) {
    mReport.add({line, handle, std::move(what), done, mScanner.isBinary()});
}

void Reader::read() {
    // A file that does not say its units has none.
    if (const std::optional<HeaderIndex> units = findHeaderVariable("INSUNITS")) {
        mImpl.header[*units] = Adesk::Int16{0};
    }
    while (!mEnded && mFiler.nextRecord()) {
        const std::string& name = mFiler.recordName();
        if (name == "EOF") {
            mEnded = true;
        } else if (name == "SECTION") {
            readSection();
        } else {
            throw FormatError(mScanner.place(mScanner.valueLine(mFiler.recordLine())) +
                              L": 应为 SECTION 或 EOF, 而是 \"" + fromUtf8(name.substr(0, 40)) + L"\"");
        }
    }
    if (!mEnded) {
        if (mScanner.position().group == 0) {
            throw FormatError(L"文件是空的, 不是 DXF 文件");
        }
        report(L"文件末尾没有 EOF", Done::repaired, mScanner.line(), 0);
    }
    finish();
}

void Reader::tellProgress() {
    constexpr std::size_t seldom = 1024; // records
    const std::size_t size = std::max<std::size_t>(mScanner.size(), 1);
    if (++mRecordCount % seldom == 0 &&
        !ReadProgress::tell(static_cast<double>(mScanner.position().offset) / static_cast<double>(size))) {
        throw ReadingStopped();
    }
}

bool Reader::nextInSection() {
    tellProgress();
    if (!mFiler.nextRecord()) {
        throw FormatError(mScanner.place() + L": 文件在段的中间结束, 没有 ENDSEC");
    }
    if (mFiler.recordName() == "EOF" || mFiler.recordName() == "SECTION") {
        report(L"段没有以 ENDSEC 结束", Done::repaired);
        mFiler.repeatRecord();
        return false;
    }
    return mFiler.recordName() != "ENDSEC";
}

void Reader::readSection() {
    const DxfGroup* group = mFiler.nextGroup();
    if (group == nullptr || group->code != 2) {
        throw FormatError(mScanner.place() + L": SECTION 之后没有段名");
    }
    const std::string name(trimmed(group->text));
    if (name == "HEADER") {
        readHeader();
    } else if (name == "CLASSES") {
        readClasses();
    } else if (name == "TABLES") {
        readTables();
    } else if (name == "BLOCKS") {
        findTablesAhead();
        readBlocks();
    } else if (name == "ENTITIES") {
        findTablesAhead();
        readEntities();
    } else if (name == "OBJECTS") {
        findTablesAhead();
        readObjects();
    } else {
        readUnknownSection(name);
    }
}

void Reader::findTablesAhead() {
    if (mHasTables) {
        return;
    }
    mHasTables = true;
    const FileFiler::Place here = mFiler.place();
    while (mFiler.nextRecord() && mFiler.recordName() != "EOF") {
        if (mFiler.recordName() != "SECTION") {
            continue;
        }
        const FileFiler::Place section = mFiler.place();
        const DxfGroup* group = mFiler.nextGroup();
        if (group != nullptr && group->code == 2 && trimmed(group->text) == "TABLES") {
            readTables();
            mTablesRead = section;
            break;
        }
    }
    if (!mTablesRead.has_value()) {
        completeTables();
    }
    mFiler.seek(here);
    mFiler.nextRecord();
    mFiler.nextGroup();
}

void Reader::takeVersion(std::string_view text) {
    text = trimmed(text);
    AcDb::AcDbDwgVersion version = AcDb::kDHL_1009;
    if (const std::optional<AcDb::AcDbDwgVersion> known = versionByName(text)) {
        version = *known;
    } else if (text > std::string_view("AC1032") && text.size() == 6 && text.starts_with("AC")) {
        version = AcDb::kDHL_CURRENT;
        report(L"图形版本 " + fromUtf8(text) + L" 比本程序新", Done::kept, mFiler.line(), 0);
    }
    mFiler.setVersion(version);
    mImpl.originalVersion = version;
    if (version >= AcDb::kDHL_1021) {
        mFiler.decoder().setUtf8();
    }
}

void Reader::readHeader() {
    mHasHeader = true;
    // Variables follow the section's name without a record of their own.
    while (const DxfGroup* group = mFiler.nextGroup()) {
        if (group->code != 9) {
            report(formatted(L"HEADER 段中变量名之前的组 %d", group->code), Done::leftOut, mFiler.line(), 0);
            continue;
        }
        std::string name(trimmed(group->text));
        if (name.starts_with('$')) {
            name.erase(0, 1);
        }
        readHeaderVariable(name);
    }
    if (!mFiler.fault().what.empty()) {
        report(mFiler.fault().what, Done::leftOut, mFiler.fault().line, 0);
    }
    while (nextInSection()) {
        report(L"HEADER 段中的记录 " + fromUtf8(mFiler.recordName()), Done::leftOut);
    }
}

void Reader::readHeaderVariable(const std::string& name) {
    const DxfGroup* group = mFiler.nextGroup();
    if (group == nullptr || group->code == 9) {
        if (group != nullptr) {
            mFiler.pushBackItem();
        }
        return;
    }
    const auto skipRest = [&] {
        while (const DxfGroup* more = mFiler.nextGroup()) {
            if (more->code == 9) {
                mFiler.pushBackItem();
                return;
            }
        }
    };
    if (name == "ACADVER") {
        takeVersion(group->text);
    } else if (name == "DWGCODEPAGE") {
        const std::string_view page = trimmed(group->text);
        if (std::all_of(page.begin(), page.end(), [](char c) { return c > ' ' && c != '^' && c < 0x7F; })) {
            mImpl.codePage = page;
        }
        if (const std::optional<CodePage> known = codePageByName(page);
            known.has_value() && mFiler.version() < AcDb::kDHL_1021) {
            mFiler.decoder().setCodePage(*known);
        }
    } else if (name == "HANDSEED") {
        std::uint64_t seed = 0;
        if (parseHandle(group->text, seed) && seed > 1 && seed <= greatestHandle + 1) {
            mImpl.raiseNextHandle(seed);
        }
    } else if (name == "ACADMAINTVER" || name == "HANDLING") {
        // Written new with every file.
    } else if (const std::optional<HeaderIndex> index = findHeaderVariable(name)) {
        const HeaderVariable& variable = headerVariables()[*index];
        if (namesRecord(variable.kind)) {
            mHeaderNames.emplace_back(*index, group->string());
        } else {
            mImpl.header[*index] = headerValue(mImpl.header[*index], *group);
        }
    } else {
        mImpl.unknownHeader.add(9, "$" + name);
        mImpl.unknownHeader.add(*group);
        while (const DxfGroup* more = mFiler.nextGroup()) {
            if (more->code == 9) {
                mFiler.pushBackItem();
                return;
            }
            mImpl.unknownHeader.add(*more);
        }
        return;
    }
    skipRest();
}

void Reader::readClasses() {
    while (nextInSection()) {
        if (mFiler.recordName() == "CLASS") {
            readClass();
        } else {
            report(L"CLASSES 段中的记录 " + fromUtf8(mFiler.recordName()), Done::leftOut);
        }
    }
    mClasses.addCustomClasses();
}

void Reader::readClass() {
    DatabaseImpl::FileClass listed;
    // Before release 14 a class has its name as group 0's value and other codes; such files have none.
    while (const DxfGroup* group = mFiler.nextGroup()) {
        switch (group->code) {
        case 1:
            listed.dxfName = group->string();
            break;
        case 2:
            listed.className = group->string();
            break;
        case 3:
            listed.appName = group->string();
            break;
        case 90:
            listed.proxyFlags = group->int32();
            break;
        case 91:
            listed.instances = group->int32();
            break;
        case 280:
            listed.wasProxy = group->boolean();
            break;
        case 281:
            listed.isEntity = group->boolean();
            break;
        default:
            break;
        }
    }
    reportFault(Done::leftOut);
    mImpl.classes.push_back(std::move(listed));
}

void Reader::readObjects() {
    while (nextInSection()) {
        std::unique_ptr<AcDbObject> object = readObject(mClasses.classOf(mFiler), false);
        if (object == nullptr) {
            continue;
        }
        const bool isDictionary = object->isKindOf(AcDbDictionary::desc());
        AcDbStub* owner = mFiler.owner();
        AcDbStub* stub = adopt(std::move(object), owner);
        mObjects.push_back(stub);
        // The first dictionary is the root; it alone has no owner.
        if (mImpl.containers.namedObjects.isNull() && isDictionary && owner == nullptr) {
            mImpl.containers.namedObjects = AcDbObjectId(stub);
            if (!stub->object->ownerId().isNull()) { // a second owner behind the null one
                setOwner(*stub, nullptr);
                report(L"DICTIONARY 是根字典, 不能有所有者", Done::repaired, 0, stub->handle);
            }
        }
    }
}

void Reader::readUnknownSection(std::string_view name) {
    GroupList groups;
    groups.add(2, name);
    while (const DxfGroup* group = mFiler.nextGroup()) {
        groups.add(*group);
    }
    while (nextInSection()) {
        groups.add(0, mFiler.recordName());
        while (const DxfGroup* group = mFiler.nextGroup()) {
            groups.add(*group);
        }
        reportFault(Done::leftOut);
    }
    groups.shrink();
    mImpl.unknownSections.push_back(std::move(groups));
}

} // namespace host::dxf
