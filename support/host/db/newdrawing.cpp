// What every complete drawing has: tables and their standard records, spaces and layouts, dictionaries. Made
// for new drawings, and for what old or damaged files leave out.
#include "host/db/dbdatabase.h"
#include "host/db/entities/mlinestyle.h"
#include "host/rx/text.h"

namespace host {
namespace {

/// A group as a table of standard content has it.
struct StandardGroup {
    short code;
    const char* text;
};

constexpr StandardGroup activeViewport[] = {
    {10, "0.0"},  {20, "0.0"},  {11, "1.0"},  {21, "1.0"},  {12, "210.0"}, {22, "148.5"}, {13, "0.0"},
    {23, "0.0"},  {14, "10.0"}, {24, "10.0"}, {15, "10.0"}, {25, "10.0"},  {16, "0.0"},   {26, "0.0"},
    {36, "1.0"},  {17, "0.0"},  {27, "0.0"},  {37, "0.0"},  {40, "297.0"}, {41, "1.414"}, {42, "50.0"},
    {43, "0.0"},  {44, "0.0"},  {50, "0.0"},  {51, "0.0"},  {71, "0"},     {72, "1000"},  {73, "1"},
    {74, "3"},    {75, "0"},    {76, "0"},    {77, "0"},    {78, "0"},     {281, "0"},    {65, "1"},
    {110, "0.0"}, {120, "0.0"}, {130, "0.0"}, {111, "1.0"}, {121, "0.0"},  {131, "0.0"},  {112, "0.0"},
    {122, "1.0"}, {132, "0.0"}, {79, "0"},    {146, "0.0"}};

/// One completion of one drawing.
class Completion {
public:
    Completion(AcDbDatabase& database, const std::function<void(const std::wstring&)>& report)
        : mDatabase(database), mContainers(database.impl().containers), mReport(report) {}

    void run() {
        tables();
        linetypes();
        layers();
        textStyles();
        others();
        blocks();
        dictionaries();
        plotStyles();
        layouts();
        spacesEnds();
    }

private:
    template <class T>
    T* add(T* object, AcDbObjectId owner) {
        AcDbStub* stub = mDatabase.impl().newStub();
        mDatabase.impl().adopt(stub, object, owner.stub());
        return object;
    }

    void told(const std::wstring& what) {
        if (mReport) {
            mReport(what);
        }
    }

    template <class Table>
    void table(AcDbObjectId& id) {
        if (peek<Table>(id) == nullptr) {
            id = add(new Table, AcDbObjectId())->objectId();
        }
    }

    void tables() {
        table<AcDbBlockTable>(mContainers.blockTable);
        table<AcDbLayerTable>(mContainers.layerTable);
        table<AcDbTextStyleTable>(mContainers.textStyleTable);
        table<AcDbLinetypeTable>(mContainers.linetypeTable);
        table<AcDbViewTable>(mContainers.viewTable);
        table<AcDbUCSTable>(mContainers.ucsTable);
        table<AcDbViewportTable>(mContainers.viewportTable);
        table<AcDbRegAppTable>(mContainers.regAppTable);
        table<AcDbDimStyleTable>(mContainers.dimStyleTable);
    }

    /// The record of that name, made and filled when it is missing.
    template <class Record>
    AcDbObjectId record(AcDbObjectId tableId, const wchar_t* name,
                        const std::function<void(Record&)>& fill = {}) {
        auto* owner = peek<AcDbSymbolTable>(tableId);
        AcDbObjectId id;
        if (owner->getAt(name, id) == Acad::eOk) {
            return id;
        }
        auto* created = new Record;
        created->setName(name);
        if (fill) {
            fill(*created);
        }
        add(created, tableId);
        owner->adopt(created->objectId().stub());
        return created->objectId();
    }

    void linetypes() {
        const AcDbObjectId table = mContainers.linetypeTable;
        mContainers.byBlock = record<AcDbLinetypeTableRecord>(table, L"ByBlock");
        mContainers.byLayer = record<AcDbLinetypeTableRecord>(table, L"ByLayer");
        mContainers.continuous =
            record<AcDbLinetypeTableRecord>(table, L"Continuous", [](AcDbLinetypeTableRecord& linetype) {
                linetype.setComments(L"Solid line");
            });
    }

    void layers() {
        mContainers.layerZero =
            record<AcDbLayerTableRecord>(mContainers.layerTable, L"0", [&](AcDbLayerTableRecord& layer) {
                layer.setLinetypeObjectId(mContainers.continuous);
            });
        // Layers of files without linetype names are continuous.
        for (AcDbStub* stub : peek<AcDbLayerTable>(mContainers.layerTable)->records()) {
            auto* layer = peek<AcDbLayerTableRecord>(stub);
            if (layer != nullptr && layer->linetypeObjectId().isNull()) {
                const bool open = std::exchange(stub->openForWrite, true);
                layer->setLinetypeObjectId(mContainers.continuous);
                stub->openForWrite = open;
            }
        }
    }

    void textStyles() {
        mContainers.standardTextStyle = record<AcDbTextStyleTableRecord>(
            mContainers.textStyleTable, L"Standard", [](AcDbTextStyleTableRecord& style) {
                style.setFileName(L"txt.shx");
                style.setBigFontFileName(L"gbcbig.shx");
            });
    }

    void others() {
        record<AcDbRegAppTableRecord>(mContainers.regAppTable, L"ACAD");
        if (peek<AcDbSymbolTable>(mContainers.dimStyleTable)->records().empty()) {
            const AcDbObjectId standard =
                record<AcDbDimStyleTableRecord>(mContainers.dimStyleTable, L"Standard");
            setStandardDimVariables(*peek<AcDbDimStyleTableRecord>(standard));
        }
        record<AcDbViewportTableRecord>(mContainers.viewportTable, L"*Active",
                                        [](AcDbViewportTableRecord& viewport) {
                                            for (const StandardGroup& standard : activeViewport) {
                                                DxfGroup group;
                                                group.code = standard.code;
                                                group.text = standard.text;
                                                viewport.keepGroup("AcDbViewportTableRecord", group);
                                            }
                                        });
    }

    void blocks() {
        mContainers.modelSpace = record<AcDbBlockTableRecord>(mContainers.blockTable, ACDB_MODEL_SPACE);
        mContainers.paperSpace = record<AcDbBlockTableRecord>(mContainers.blockTable, ACDB_PAPER_SPACE);
    }

    /// The dictionary of that name below the root.
    template <class Dictionary = AcDbDictionary>
    AcDbObjectId dictionary(const wchar_t* name) {
        auto* root = peek<AcDbDictionary>(mContainers.namedObjects);
        AcDbObjectId id;
        if (root->getAt(name, id) == Acad::eOk && peek<AcDbDictionary>(id) != nullptr) {
            return id;
        }
        auto* created = add(new Dictionary, mContainers.namedObjects);
        root->adopt(name, created->objectId());
        return created->objectId();
    }

    void dictionaries() {
        if (peek<AcDbDictionary>(mContainers.namedObjects) == nullptr) {
            mContainers.namedObjects = add(new AcDbDictionary, AcDbObjectId())->objectId();
        }
        mContainers.groups = dictionary(L"ACAD_GROUP");
        mContainers.layouts = dictionary(L"ACAD_LAYOUT");
        mContainers.mlineStyles = dictionary(L"ACAD_MLINESTYLE");
        dictionary(L"ACAD_PLOTSETTINGS");
        auto* styles = peek<AcDbDictionary>(mContainers.mlineStyles);
        if (!styles->has(L"Standard")) {
            auto* style = new AcDbMlineStyle;
            style->setStandard(mContainers.byLayer);
            add(style, mContainers.mlineStyles);
            styles->adopt(L"Standard", style->objectId());
        }
    }

    void plotStyles() {
        const AcDbObjectId id = dictionary<AcDbDictionaryWithDefault>(L"ACAD_PLOTSTYLENAME");
        auto* styles = peek<AcDbDictionary>(id);
        if (styles->has(L"Normal")) {
            return;
        }
        auto* normal = add(new AcDbPlaceHolder, id);
        styles->adopt(L"Normal", normal->objectId());
        if (auto* withDefault = AcDbDictionaryWithDefault::cast(styles)) {
            AcDbStub* stub = withDefault->objectId().stub();
            const bool open = std::exchange(stub->openForWrite, true);
            withDefault->setDefaultId(normal->objectId());
            stub->openForWrite = open;
        }
    }

    /// Every space needs a layout; a layout names its space.
    void layouts() {
        auto* dictionary = peek<AcDbDictionary>(mContainers.layouts);
        int order = 0;
        for (AcDbStub* stub : peek<AcDbBlockTable>(mContainers.blockTable)->records()) {
            auto* block = peek<AcDbBlockTableRecord>(stub);
            if (block == nullptr) {
                continue;
            }
            const bool model = block->objectId() == mContainers.modelSpace;
            const bool space = model || startsWithNoCase(block->name().kwszPtr(), ACDB_PAPER_SPACE);
            if (!space || peek<AcDbLayout>(block->getLayoutId()) != nullptr) {
                continue;
            }
            std::wstring name = model ? L"Model" : L"布局1";
            for (int number = 2; dictionary->has(name.c_str()); ++number) {
                name = L"布局" + std::to_wstring(number);
            }
            auto* layout = new AcDbLayout;
            layout->setLayoutName(name.c_str());
            layout->setTabOrder(model ? 0 : ++order);
            layout->setBlockTableRecordId(block->objectId());
            add(layout, mContainers.layouts);
            dictionary->adopt(name.c_str(), layout->objectId());
            const bool open = std::exchange(stub->openForWrite, true);
            block->setLayoutId(layout->objectId());
            stub->openForWrite = open;
        }
    }

    void spacesEnds() {
        for (AcDbStub* stub : peek<AcDbBlockTable>(mContainers.blockTable)->records()) {
            if (auto* block = peek<AcDbBlockTableRecord>(stub)) {
                ensureBlockEnds(*block);
            }
        }
    }

    AcDbDatabase& mDatabase;
    DatabaseImpl::Containers& mContainers;
    const std::function<void(const std::wstring&)>& mReport;
};

} // namespace

void setStandardDimVariables(AcDbDimStyleTableRecord& style) {
    const AcDbDatabase& database = *style.database();
    DimVariables variables = currentDimVariables(database);
    variables.txsty = database.standardTextStyle();
    AcDbStub* stub = style.objectId().stub();
    const bool open = std::exchange(stub->openForWrite, true);
    style.setDimVariables(variables);
    stub->openForWrite = open;
}

void ensureBlockEnds(AcDbBlockTableRecord& block) {
    AcDbDatabase& database = *block.database();
    const auto make = [&](AcDbEntity* entity) {
        entity->setLayer(database.layerZero());
        AcDbStub* stub = database.impl().newStub();
        database.impl().adopt(stub, entity, block.objectId().stub());
        return entity->objectId();
    };
    AcDbObjectId begin = block.blockBeginId();
    AcDbObjectId end = block.blockEndId();
    if (!begin.isValid()) {
        begin = make(new AcDbBlockBegin);
    }
    if (!end.isValid()) {
        end = make(new AcDbBlockEnd);
    }
    block.setBlockBeginAndEnd(begin, end);
}

void DatabaseImpl::completeDrawing(const std::function<void(const std::wstring&)>& report) {
    const UndoLog::Suspend suspend(undo);
    Completion(mDatabase, report).run();
}

AcDbObjectId DatabaseImpl::normalPlotStyle() const {
    const auto* root = peek<AcDbDictionary>(containers.namedObjects);
    AcDbObjectId id;
    if (root != nullptr && root->getAt(L"ACAD_PLOTSTYLENAME", id) == Acad::eOk) {
        const auto* styles = peek<AcDbDictionary>(id);
        if (styles != nullptr && styles->getAt(L"Normal", id) == Acad::eOk) {
            return id;
        }
    }
    return {};
}

} // namespace host
