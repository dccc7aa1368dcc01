// What can be purged from a drawing.
#include "host/commands/edit/purging.h"

#include "host/commands/edit/references.h"
#include "host/ed/aced.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {
namespace {

/// A kind of thing to be purged: where it stands and how it is called.
struct Kind {
    const wchar_t* keyword;
    const wchar_t* name;
    AcDbObjectId (AcDbDatabase::*table)() const; ///< null for dictionaries
    const wchar_t* dictionary;                   ///< below the root dictionary
};

constexpr Kind kinds[] = {{L"Blocks", L"块", &AcDbDatabase::blockTableId, nullptr},
                          {L"Dimstyles", L"标注样式", &AcDbDatabase::dimStyleTableId, nullptr},
                          {L"Groups", L"组", nullptr, L"ACAD_GROUP"},
                          {L"LAyers", L"图层", &AcDbDatabase::layerTableId, nullptr},
                          {L"LTypes", L"线型", &AcDbDatabase::linetypeTableId, nullptr},
                          {L"MAterials", L"材质", nullptr, L"ACAD_MATERIAL"},
                          {L"MUltileaderstyles", L"多重引线样式", nullptr, L"ACAD_MLEADERSTYLE"},
                          {L"SHapes", L"形", &AcDbDatabase::textStyleTableId, nullptr},
                          {L"textSTyles", L"文字样式", &AcDbDatabase::textStyleTableId, nullptr},
                          {L"Mlinestyles", L"多线样式", nullptr, L"ACAD_MLINESTYLE"},
                          {L"Tablestyles", L"表格样式", nullptr, L"ACAD_TABLESTYLE"},
                          {L"Regapps", L"注册应用程序", &AcDbDatabase::regAppTableId, nullptr}};

/// Records that every drawing has, or that are not the user's to purge.
bool isFixed(const AcDbSymbolTableRecord& record, const Kind& kind) {
    if (record.isDependent()) {
        return true;
    }
    if (const auto* block = AcDbBlockTableRecord::cast(&record)) {
        return block->isLayout() || block->isAnonymous() || block->name().kwszPtr()[0] == L'*';
    }
    if (const auto* style = AcDbTextStyleTableRecord::cast(&record)) {
        return style->isShapeFile() != (std::wstring_view(kind.keyword) == L"SHapes");
    }
    const bool standard =
        AcDbDimStyleTableRecord::cast(&record) != nullptr && record.name().compareNoCase(L"Standard") == 0;
    const bool ownApplication =
        AcDbRegAppTableRecord::cast(&record) != nullptr && record.name().compareNoCase(L"ACAD") == 0;
    return standard || ownApplication;
}

void addRecords(const AcDbDatabase& database, const Kind& kind, const std::wstring& pattern,
                std::vector<PurgeCandidate>& candidates) {
    const auto* table = peek<AcDbSymbolTable>((database.*kind.table)());
    if (table == nullptr) {
        return;
    }
    for (AcDbStub* stub : table->records()) {
        const auto* record = peek<AcDbSymbolTableRecord>(stub);
        if (record != nullptr && !isFixed(*record, kind) &&
            wildcardMatch(record->name().kwszPtr(), pattern)) {
            candidates.push_back({stub, record->name().kwszPtr(), kind.name});
        }
    }
}

/// An entry of a dictionary of styles that each drawing has, or that is current by name.
bool isStandardEntry(const AcDbDatabase& database, std::wstring_view name) {
    for (const std::wstring_view standard : {L"Standard", L"ByLayer", L"ByBlock", L"Global", L"Annotative"}) {
        if (equalNoCase(name, standard)) {
            return true;
        }
    }
    return std::any_of(database.impl().header.begin(), database.impl().header.end(),
                       [&](const HeaderValue& value) {
                           const auto* text = std::get_if<AcString>(&value);
                           return text != nullptr && equalNoCase(name, text->view());
                       });
}

/// A group that holds nothing any more.
bool isEmptyGroup(AcDbObjectId id) {
    const auto* group = peek<AcDbObject>(id);
    IdCollector collector(AcDb::kPurgeFiler);
    const ReadAccess access(*group);
    group->dwgOutFields(&collector);
    return std::none_of(collector.references.begin(), collector.references.end(),
                        [](const auto& reference) { return peek<AcDbEntity>(reference.id) != nullptr; });
}

void addEntries(const AcDbDatabase& database, const Kind& kind, const std::wstring& pattern,
                std::vector<PurgeCandidate>& candidates) {
    const auto* root = peek<AcDbDictionary>(database.namedObjectsDictionaryId());
    AcDbObjectId id;
    const auto* dictionary =
        root != nullptr && root->getAt(kind.dictionary, id) == Acad::eOk ? peek<AcDbDictionary>(id) : nullptr;
    if (dictionary == nullptr) {
        return;
    }
    const bool groups = std::wstring_view(kind.keyword) == L"Groups";
    for (const AcDbDictionary::Entry& entry : dictionary->entries()) {
        const std::wstring name = entry.name.kwszPtr();
        if (peek<AcDbObject>(entry.id) == nullptr || !wildcardMatch(name, pattern)) {
            continue;
        }
        if (groups ? isEmptyGroup(entry.id) : !isStandardEntry(database, name)) {
            candidates.push_back({entry.id, name, kind.name});
        }
    }
}

} // namespace

const wchar_t* purgeKindName(std::wstring_view keyword) {
    const auto* found = std::find_if(std::begin(kinds), std::end(kinds),
                                     [&](const Kind& kind) { return keyword == kind.keyword; });
    return found != std::end(kinds) ? found->name : nullptr;
}

std::vector<PurgeCandidate> purgeCandidates(AcDbDatabase& database, std::wstring_view keyword,
                                            const std::wstring& pattern) {
    std::vector<PurgeCandidate> candidates;
    for (const Kind& kind : kinds) {
        if (keyword == L"All" || keyword == kind.keyword) {
            kind.table != nullptr ? addRecords(database, kind, pattern, candidates)
                                  : addEntries(database, kind, pattern, candidates);
        }
    }
    return candidates;
}

int purgeUnused(AcDbDatabase& database, std::vector<PurgeCandidate> candidates,
                const std::function<std::optional<bool>(const PurgeCandidate&)>& agrees) {
    ReferenceCounts counts(database);
    int purged = 0;
    for (bool again = true; again;) {
        again = false;
        std::vector<PurgeCandidate> left;
        for (PurgeCandidate& candidate : candidates) {
            if (counts.isUsed(candidate.id)) {
                left.push_back(std::move(candidate));
                continue;
            }
            const std::optional<bool> sure = agrees(candidate);
            if (!sure) {
                return purged;
            }
            const Opened<AcDbObject> object(*sure ? candidate.id : AcDbObjectId(), AcDb::kForWrite);
            if (object) {
                counts.remove(candidate.id);
                object->erase();
                ++purged;
                again = true;
            }
        }
        candidates = std::move(left);
    }
    return purged;
}

} // namespace host
