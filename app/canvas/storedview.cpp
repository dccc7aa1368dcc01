#include "app/canvas/storedview.h"

#include "host/db/dbents.h"
#include "host/rx/text.h"

#include <cmath>
#include <map>
#include <string>

namespace app {
namespace {

constexpr std::string_view subclass = "AcDbViewportTableRecord";

// Group codes of the record. The centre lies in display coordinates, whose origin is the target.
constexpr short centreX = 12, centreY = 22, directionX = 16, directionY = 26, directionZ = 36, targetX = 17,
                targetY = 27, heightCode = 40, aspectCode = 41, twist = 51;

AcDbViewportTableRecord* activeViewport(const AcDbDatabase& database) {
    const auto* table = host::peek<AcDbViewportTable>(database.viewportTableId());
    for (AcDbStub* stub : table != nullptr ? table->records() : std::vector<AcDbStub*>()) {
        auto* record = host::peek<AcDbViewportTableRecord>(AcDbObjectId(stub));
        if (record != nullptr && host::equalNoCase(record->name().kwszPtr(), L"*Active")) {
            return record;
        }
    }
    return nullptr;
}

std::map<short, double> numbersOf(const host::GroupList& groups) {
    std::map<short, double> numbers;
    for (const host::GroupList::Group group : groups) {
        if (group.code >= 10 && group.code < 60) {
            numbers.emplace(group.code, std::strtod(std::string(group.text).c_str(), nullptr));
        }
    }
    return numbers;
}

bool isFromAbove(std::map<short, double>& numbers) {
    return numbers[directionX] == 0 && numbers[directionY] == 0 && numbers[directionZ] > 0 &&
           numbers[twist] == 0;
}

} // namespace

std::optional<StoredView> storedView(const AcDbDatabase& database) {
    constexpr double farthest = 1e15;
    const AcDbViewportTableRecord* record = activeViewport(database);
    const host::GroupList* groups = record != nullptr ? record->keptGroups(subclass) : nullptr;
    if (groups == nullptr) {
        return std::nullopt;
    }
    std::map<short, double> numbers = numbersOf(*groups);
    StoredView view{{numbers[centreX] + numbers[targetX], numbers[centreY] + numbers[targetY]},
                    numbers[heightCode],
                    numbers[aspectCode]};
    const bool isSane = view.height > 0 && view.height < farthest && view.aspect > 0 &&
                        view.aspect < farthest && std::abs(view.centre.x) < farthest &&
                        std::abs(view.centre.y) < farthest;
    return isSane && isFromAbove(numbers) ? std::optional(view) : std::nullopt;
}

void storeView(AcDbDatabase& database, const StoredView& view) {
    AcDbViewportTableRecord* record = activeViewport(database);
    const host::GroupList* groups = record != nullptr ? record->keptGroups(subclass) : nullptr;
    if (groups == nullptr) {
        return;
    }
    std::map<short, double> numbers = numbersOf(*groups);
    if (!isFromAbove(numbers)) {
        return;
    }
    const std::map<short, double> own = {{centreX, view.centre.x - numbers[targetX]},
                                         {centreY, view.centre.y - numbers[targetY]},
                                         {heightCode, view.height},
                                         {aspectCode, view.aspect}};
    host::GroupList changed;
    for (const host::GroupList::Group group : *groups) {
        if (const auto found = own.find(group.code); found != own.end()) {
            changed.addReal(group.code, found->second);
        } else {
            changed.add(group.code, group.text);
        }
    }
    record->replaceKeptGroups(subclass, std::move(changed));
}

} // namespace app
