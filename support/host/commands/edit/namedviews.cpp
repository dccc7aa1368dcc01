#include "host/commands/edit/namedviews.h"

#include "host/rx/text.h"

#include <cmath>
#include <map>

namespace host {
namespace {

constexpr const char* subclass = "AcDbViewTableRecord";

// Group codes of the record. The centre lies in display coordinates, whose origin is the target.
constexpr short heightCode = 40, widthCode = 41, centreCode = 10, directionCode = 11, targetCode = 12,
                lensCode = 42, frontClip = 43, backClip = 44, twistCode = 50, modeCode = 71, renderCode = 281,
                hasUcsCode = 72;
constexpr int paperFlag = 1;
constexpr double usualLens = 50.0; // millimetres

} // namespace

std::optional<NamedView> namedView(AcDbObjectId id) {
    constexpr double farthest = 1e15;
    const auto* record = peek<AcDbViewTableRecord>(id);
    const GroupList* groups = record != nullptr ? record->keptGroups(subclass) : nullptr;
    if (groups == nullptr) {
        return std::nullopt;
    }
    std::map<short, double> numbers{{directionCode + 20, 1.0}};
    for (const GroupList::Group group : *groups) {
        if (group.code >= 10 && group.code < 60) {
            numbers[group.code] = std::strtod(std::string(group.text).c_str(), nullptr);
        }
    }
    const auto point = [&](short code) {
        return AcGePoint3d(numbers[code], numbers[static_cast<short>(code + 10)],
                           numbers[static_cast<short>(code + 20)]);
    };
    const AcGePoint3d direction = point(directionCode);
    const AcGePoint3d target = point(targetCode);
    const NamedView view{{numbers[centreCode] + target.x, numbers[centreCode + 10] + target.y, 0.0},
                         numbers[heightCode],
                         numbers[widthCode],
                         (record->standardFlags() & paperFlag) != 0};
    const bool isFromAbove =
        direction.x == 0.0 && direction.y == 0.0 && direction.z > 0.0 && numbers[twistCode] == 0.0;
    const bool isSane = view.height > 0.0 && view.height < farthest && view.width >= 0.0 &&
                        view.width < farthest && std::fabs(view.centre.x) < farthest &&
                        std::fabs(view.centre.y) < farthest;
    return isFromAbove && isSane ? std::optional(view) : std::nullopt;
}

Acad::ErrorStatus saveNamedView(AcDbDatabase& database, const ACHAR* name, const NamedView& view) {
    GroupList groups;
    const auto addPoint = [&](short code, double x, double y) {
        groups.addReal(code, x);
        groups.addReal(static_cast<short>(code + 10), y);
    };
    groups.addReal(heightCode, view.height);
    addPoint(centreCode, view.centre.x, view.centre.y);
    groups.addReal(widthCode, view.width);
    addPoint(directionCode, 0.0, 0.0);
    groups.addReal(directionCode + 20, 1.0);
    addPoint(targetCode, 0.0, 0.0);
    groups.addReal(targetCode + 20, 0.0);
    groups.addReal(lensCode, usualLens);
    for (const short code : {frontClip, backClip, twistCode}) {
        groups.addReal(code, 0.0);
    }
    for (const short code : {modeCode, renderCode, hasUcsCode}) {
        groups.addInteger(code, 0);
    }
    auto record = std::make_unique<AcDbViewTableRecord>();
    ResbufBuilder flags;
    flags.integer(70, view.isPaper ? paperFlag : 0);
    const ResbufList list = flags.release();
    ResbufDxfReader reader(&database, list.get());
    record->dxfInFields(&reader);
    record->replaceKeptGroups(subclass, std::move(groups));
    if (const Acad::ErrorStatus status = record->setName(name); status != Acad::eOk) {
        return status;
    }
    const Opened<AcDbViewTable> table(database.viewTableId(), AcDb::kForWrite);
    if (!table) {
        return table.status();
    }
    AcDbObjectId id;
    if (table->getAt(name, id) == Acad::eOk) {
        if (const Opened<AcDbViewTableRecord> old(id, AcDb::kForWrite); old) {
            old->erase();
        }
    }
    if (const Acad::ErrorStatus status = table->add(id, record.get()); status != Acad::eOk) {
        return status;
    }
    record.release()->close();
    return Acad::eOk;
}

} // namespace host
