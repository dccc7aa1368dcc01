// The setting is group 70 of the object WIPEOUTVARIABLES.
#include "host/db/entities/wipeoutframes.h"

#include "host/db/dbdict.h"

namespace host {
namespace {

constexpr const wchar_t* entryName = L"ACAD_WIPEOUT_VARS";
constexpr short framesCode = 70;

KeptObject* variablesOf(const AcDbDatabase& database) {
    const auto* names = peek<AcDbDictionary>(database.namedObjectsDictionaryId());
    AcDbObjectId id;
    return names != nullptr && names->getAt(entryName, id) == Acad::eOk ? peek<KeptObject>(id) : nullptr;
}

GroupList groupsFor(int frames) {
    GroupList groups;
    groups.add(100, "AcDbWipeoutVariables");
    groups.add(framesCode, std::to_string(frames));
    return groups;
}

} // namespace

int wipeoutFrames(const AcDbDatabase& database) {
    const KeptObject* variables = variablesOf(database);
    int frames = 1;
    if (variables != nullptr) {
        for (const GroupList::Group& group : variables->record.groups) {
            if (group.code == framesCode) {
                frames = std::atoi(std::string(group.text).c_str());
            }
        }
    }
    return frames >= 0 && frames <= 2 ? frames : 1;
}

void setWipeoutFrames(AcDbDatabase& database, int frames) {
    if (const KeptObject* known = variablesOf(database)) {
        const Opened<KeptObject> opened(known->objectId(), AcDb::kForWrite);
        if (opened) {
            opened->assertWriteEnabled();
            opened->record.groups = groupsFor(frames);
        }
        return;
    }
    const Opened<AcDbDictionary> names(database.namedObjectsDictionaryId(), AcDb::kForWrite);
    auto created = std::make_unique<KeptObject>();
    created->record.recordName = "WIPEOUTVARIABLES";
    created->record.groups = groupsFor(frames);
    AcDbObjectId id;
    if (names && names->setAt(entryName, created.get(), id) == Acad::eOk) {
        created.release()->close();
    }
}

} // namespace host
