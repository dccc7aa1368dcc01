// A drawing as text, for comparing two of them line by line.
#include "host/db/entities/subentities.h"
#include "host/formats/formats.h"
#include "host/formats/headervalues.h"
#include "host/formats/ownerchain.h"
#include "host/rx/text.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace host {
namespace {

/// Header variables that differ between two savings of one drawing.
constexpr std::array<std::string_view, 9> volatileVariables = {"TDCREATE",  "TDUCREATE",   "TDUPDATE",
                                                               "TDUUPDATE", "TDINDWG",     "TDUSRTIMER",
                                                               "HANDSEED",  "VERSIONGUID", "FINGERPRINTGUID"};

bool isVolatile(std::string_view name) {
    return std::find(volatileVariables.begin(), volatileVariables.end(), name) != volatileVariables.end();
}

/// Writes every group as a line "code value".
class DumpFiler final : public AcDbDxfFiler {
public:
    DumpFiler(AcDbDatabase& database, const DumpOptions& options) : mDatabase(database), mOptions(options) {}

    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
    AcDbDatabase* database() const override { return &mDatabase; }

    Acad::ErrorStatus writeReal(short code, double value) override {
        char digits[40];
        if (mOptions.digitsRounded) {
            const int size = std::snprintf(digits, sizeof digits, "%.9g", value + 0.0);
            return line(code, std::string_view(digits, static_cast<std::size_t>(size)));
        }
        return line(code, formatReal(value, digits));
    }
    Acad::ErrorStatus writeInteger(short code, Adesk::Int64 value) override {
        return line(code, std::to_string(value));
    }
    Acad::ErrorStatus writeText(short code, std::string_view value) override {
        return line(code, encodeDxfText(value));
    }
    Acad::ErrorStatus writePoint(short code, double x, double y, double z, int dimensions) override {
        writeReal(code, x);
        writeReal(static_cast<short>(code + 10), y);
        return dimensions == 3 ? writeReal(static_cast<short>(code + 20), z) : Acad::eOk;
    }
    Acad::ErrorStatus writeReference(short code, AcDbStub* id) override {
        return line(code, toUtf8(AcDbObjectId(id).handle().toString()));
    }
    Acad::ErrorStatus writeBinary(short code, const void* bytes, std::size_t count) override {
        return line(code, hexFromBytes(bytes, count));
    }
    using AcDbDxfFiler::writeKept;
    Acad::ErrorStatus writeKept(short code, std::string_view text) override { return line(code, text); }

    void heading(const std::string& text) { mText += text + "\n"; }
    std::string take() { return std::move(mText); }

private:
    Acad::ErrorStatus line(short code, std::string_view text) {
        mText += "  " + std::to_string(code) + " ";
        mText += text;
        mText += '\n';
        return Acad::eOk;
    }

    AcDbDatabase& mDatabase;
    DumpOptions mOptions;
    std::string mText;
};

void dumpHeader(const AcDbDatabase& database, const DumpOptions& options, DumpFiler& filer) {
    const std::span<const HeaderVariable> variables = headerVariables();
    for (HeaderIndex index = 0; index < variables.size(); ++index) {
        const HeaderVariable& variable = variables[index];
        if (isVolatile(variable.name) && !options.volatileToo) {
            continue;
        }
        filer.heading("$" + std::string(variable.name));
        struct Visitor {
            DumpFiler& filer;
            short code;
            void operator()(Adesk::Int16 value) const { filer.writeInteger(code, value); }
            void operator()(Adesk::Int32 value) const { filer.writeInteger(code, value); }
            void operator()(double value) const { filer.writeReal(code, value); }
            void operator()(const AcString& value) const { filer.writeString(code, value); }
            void operator()(const AcGePoint2d& value) const { filer.writePoint2d(code, value); }
            void operator()(const AcGePoint3d& value) const { filer.writePoint3d(code, value); }
            void operator()(const AcDbObjectId& value) const { filer.writeReference(code, value.stub()); }
        };
        std::visit(Visitor{filer, variable.code}, effectiveHeaderValue(database, index));
    }
    bool shown = true;
    for (const GroupList::Group group : database.impl().unknownHeader) {
        if (group.code == 9) {
            shown = options.volatileToo ||
                    !isVolatile(group.text.substr(std::min<std::size_t>(1, group.text.size())));
        }
        if (shown && group.code == 9) {
            filer.heading(std::string(group.text));
        } else if (shown) {
            filer.writeKept(group.code, group.text);
        }
    }
}

void dumpOrder(const std::vector<AcDbStub*>& stubs, std::string_view what, DumpFiler& filer) {
    std::string order(what);
    for (const AcDbStub* stub : stubs) {
        if (stub->object != nullptr && !stub->erased) {
            order += " " + toUtf8(AcDbHandle(stub->handle).toString());
        }
    }
    filer.heading(order);
}

void dumpObject(AcDbStub& stub, DumpFiler& filer) {
    const AcDbObject& object = *stub.object;
    const ReadAccess access(object);
    filer.heading(object.dxfRecordName() + " " + toUtf8(AcDbHandle(stub.handle).toString()));
    object.dxfOut(&filer);
    if (object.isA()->isCustom()) {
        ProxyDataFiler data(stub.database);
        object.dwgOutFields(&data);
        filer.writeBinary(310, data.bytes().data(), data.bytes().size());
        for (const ProxyDataFiler::Reference& reference : data.references()) {
            filer.writeReference(330, reference.id.stub());
        }
    }
    if (const auto* block = AcDbBlockTableRecord::cast(&object)) {
        filer.writePoint3d(10, block->origin());
        dumpOrder(block->entities(), "  entities", filer);
    } else if (const auto* entity = AcDbEntity::cast(&object)) {
        if (const SubentityList* parts = entity->subentities()) {
            dumpOrder(parts->ids(), "  parts", filer);
        }
    }
}

} // namespace

std::string dumpDrawing(AcDbDatabase& database, const DumpOptions& options) {
    DumpFiler filer(database, options);
    dumpHeader(database, options, filer);
    OwnerChain owners = erasedOwners();
    database.impl().forEachStub([&](AcDbStub& stub) {
        if (stub.object != nullptr && !owners.reachesMarked(stub)) {
            dumpObject(stub, filer);
        }
    });
    for (const GroupList& section : database.impl().unknownSections) {
        filer.heading("SECTION");
        filer.writeKept(section);
    }
    return filer.take();
}

} // namespace host
