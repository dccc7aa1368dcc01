// The object core: open states, undo, transactions, tables, dictionaries, cloning, extended data.
#include "host/db/db.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

class DatabaseTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        host::initializeRuntime();
        host::initializeDatabaseClasses();
    }

    AcDbObjectId addLine(double x, AcDbDatabase* into = nullptr) {
        AcDbDatabase& target = into != nullptr ? *into : database;
        const host::Opened<AcDbBlockTableRecord> space(target.modelSpaceId(), AcDb::kForWrite);
        auto* line = new AcDbLine(AcGePoint3d(x, 0, 0), AcGePoint3d(x, 10, 0));
        AcDbObjectId id;
        space->appendAcDbEntity(id, line);
        line->close();
        return id;
    }

    void moveTo(AcDbObjectId id, double x) {
        const host::Opened<AcDbLine> line(id, AcDb::kForWrite);
        line->setStartPoint(AcGePoint3d(x, 0, 0));
    }

    static double startX(AcDbObjectId id) {
        const auto* line = host::peek<AcDbLine>(id, true);
        const host::ReadAccess access(*line);
        return line->startPoint().x;
    }

    template <class Change>
    void step(const wchar_t* name, Change change) {
        database.undoLog().beginCommand(name);
        change();
        database.undoLog().endCommand();
    }

    AcDbDatabase database;
};

TEST_F(DatabaseTest, OpenModesExcludeEachOther) {
    const AcDbObjectId id = addLine(0);
    AcDbObject* first = nullptr;
    AcDbObject* second = nullptr;
    ASSERT_EQ(acdbOpenAcDbObject(first, id, AcDb::kForRead), Acad::eOk);
    ASSERT_EQ(acdbOpenAcDbObject(second, id, AcDb::kForRead), Acad::eOk);
    AcDbObject* third = nullptr;
    EXPECT_EQ(acdbOpenAcDbObject(third, id, AcDb::kForWrite), Acad::eWasOpenForRead);
    EXPECT_EQ(first->upgradeOpen(), Acad::eHadMultipleReaders);
    second->close();
    EXPECT_EQ(first->upgradeOpen(), Acad::eOk);
    EXPECT_EQ(acdbOpenAcDbObject(third, id, AcDb::kForRead), Acad::eWasOpenForWrite);
    EXPECT_EQ(first->downgradeOpen(), Acad::eOk);
    EXPECT_THROW(static_cast<AcDbLine*>(first)->setStartPoint(AcGePoint3d()), host::OpenStateError);
    first->close();
    EXPECT_EQ(first->close(), Acad::eNotOpened);
}

TEST_F(DatabaseTest, ErasedObjectsAreFoundOnlyWhenAskedFor) {
    const AcDbObjectId id = addLine(0);
    host::Opened<AcDbLine>(id, AcDb::kForWrite)->erase();
    AcDbObject* object = nullptr;
    EXPECT_EQ(acdbOpenAcDbObject(object, id, AcDb::kForRead), Acad::eWasErased);
    ASSERT_EQ(acdbOpenAcDbObject(object, id, AcDb::kForWrite, true), Acad::eOk);
    EXPECT_EQ(object->erase(false), Acad::eOk);
    object->close();
    EXPECT_FALSE(id.isErased());
}

TEST_F(DatabaseTest, UndoAndRedoWalkBackAndForth) {
    AcDbObjectId id;
    step(L"LINE", [&] { id = addLine(1); });
    step(L"MOVE", [&] {
        moveTo(id, 2);
        moveTo(id, 3);
    });
    step(L"LOOK", [] {});
    step(L"ERASE", [&] { host::Opened<AcDbLine>(id, AcDb::kForWrite)->erase(); });
    host::UndoLog& log = database.undoLog();
    EXPECT_EQ(log.undoableSteps(), 3);

    std::vector<std::wstring> names;
    EXPECT_EQ(log.undo(1, &names), 1);
    EXPECT_FALSE(id.isErased());
    EXPECT_EQ(startX(id), 3);
    EXPECT_EQ(log.undo(1, &names), 1);
    EXPECT_EQ(startX(id), 1);
    EXPECT_EQ(log.undo(5, &names), 1);
    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(names, (std::vector<std::wstring>{L"ERASE", L"MOVE", L"LINE"}));

    EXPECT_EQ(log.redo(2), 2);
    EXPECT_FALSE(id.isErased());
    EXPECT_EQ(startX(id), 3);
    step(L"MOVE", [&] { moveTo(id, 9); });
    EXPECT_EQ(log.redo(1), 0) << "a new change forgets what could be redone";
}

TEST_F(DatabaseTest, GroupsAndMarks) {
    host::UndoLog& log = database.undoLog();
    AcDbObjectId first;
    AcDbObjectId second;
    AcDbObjectId third;
    step(L"LINE", [&] { first = addLine(1); });
    log.setMark();
    log.beginGroup();
    step(L"LINE", [&] { second = addLine(2); });
    step(L"LINE", [&] { third = addLine(3); });
    log.endGroup();
    EXPECT_EQ(log.undo(1), 1);
    EXPECT_TRUE(second.isErased() && third.isErased());
    EXPECT_EQ(log.redo(1), 1);
    step(L"MOVE", [&] { moveTo(third, 5); });
    EXPECT_TRUE(log.undoBack());
    EXPECT_TRUE(second.isErased() && third.isErased());
    EXPECT_FALSE(first.isErased());
    EXPECT_FALSE(log.undoBack());
    EXPECT_TRUE(first.isErased());
}

TEST_F(DatabaseTest, AMarkInAGroupStandsBeforeItAndARedoRepeatsOneUndo) {
    host::UndoLog& log = database.undoLog();
    AcDbObjectId first;
    AcDbObjectId second;
    step(L"LINE", [&] { first = addLine(1); });
    log.beginGroup();
    step(L"LINE", [&] { second = addLine(2); });
    log.setMark();
    step(L"MOVE", [&] { moveTo(second, 5); });
    log.endGroup();
    EXPECT_TRUE(log.undoBack());
    EXPECT_TRUE(second.isErased());
    EXPECT_FALSE(first.isErased());
    EXPECT_EQ(log.undo(1), 1);
    EXPECT_EQ(log.redoLastUndo(), 1);
    EXPECT_FALSE(first.isErased());
    EXPECT_TRUE(second.isErased());
    EXPECT_EQ(log.redoLastUndo(), 1);
    EXPECT_EQ(startX(second), 5);
    EXPECT_EQ(log.undo(9), 2);
    EXPECT_EQ(log.redoLastUndo(), 2) << "all that one undo took back";
    EXPECT_EQ(startX(second), 5);
    EXPECT_EQ(log.redoLastUndo(), 0);
}

TEST_F(DatabaseTest, GroupsNestAndAnOpenOneIsTakenBackStepByStep) {
    host::UndoLog& log = database.undoLog();
    std::vector<AcDbObjectId> lines;
    const auto line = [&] { step(L"LINE", [&] { lines.push_back(addLine(1)); }); };
    const auto present = [&] {
        return std::count_if(lines.begin(), lines.end(), [](AcDbObjectId id) { return !id.isErased(); });
    };
    line();
    line(); // made just before the group, by the one that begins it
    log.beginGroup(1);
    line();
    for (int mark = 0; mark < 3; ++mark) {
        log.beginGroup();
        line();
        line();
        log.endGroup();
    }
    EXPECT_TRUE(log.inGroup());
    std::vector<std::wstring> names;
    EXPECT_EQ(log.undo(1, &names), 1);
    EXPECT_EQ(present(), 7) << "the inner group, while the outer is open";
    line();
    log.endGroup();
    EXPECT_FALSE(log.inGroup());
    EXPECT_EQ(log.undo(1, &names), 1);
    EXPECT_EQ(present(), 1);
    EXPECT_EQ(names, (std::vector<std::wstring>{L"GROUP", L"GROUP"}));
    EXPECT_EQ(log.redo(1), 1);
    EXPECT_EQ(present(), 8);
    log.beginGroup();
    line();
    EXPECT_EQ(log.undo(3), 3) << "beyond the beginning of an open group";
    EXPECT_EQ(present(), 0);
    EXPECT_FALSE(log.inGroup());
    log.beginGroup();
    log.beginGroup();
    log.endAllGroups();
    EXPECT_EQ(log.stepCount(), 0u) << "groups without changes are no steps";
}

TEST_F(DatabaseTest, AbortedTransactionsLeaveNoTrace) {
    const AcDbObjectId id = addLine(1);
    AcDbTransactionManager& manager = *database.transactionManager();
    manager.startTransaction();
    AcDbObject* outer = nullptr;
    ASSERT_EQ(manager.getObject(outer, id, AcDb::kForWrite), Acad::eOk);
    static_cast<AcDbLine*>(outer)->setStartPoint(AcGePoint3d(2, 0, 0));
    manager.startTransaction();
    AcDbObject* inner = nullptr;
    ASSERT_EQ(manager.getObject(inner, id, AcDb::kForWrite), Acad::eOk);
    static_cast<AcDbLine*>(inner)->setStartPoint(AcGePoint3d(3, 0, 0));
    const AcDbObjectId added = addLine(7);
    EXPECT_EQ(manager.abortTransaction(), Acad::eOk);
    EXPECT_EQ(startX(id), 2);
    EXPECT_TRUE(added.isErased());
    EXPECT_EQ(manager.endTransaction(), Acad::eOk);
    EXPECT_EQ(startX(id), 2);
    EXPECT_EQ(manager.endTransaction(), Acad::eNoActiveTransactions);
    EXPECT_EQ(id.stub()->readers, 0);
    EXPECT_FALSE(id.stub()->openForWrite);
}

TEST_F(DatabaseTest, HeaderVariablesHaveRangesAndUndo) {
    step(L"SETVAR", [&] {
        EXPECT_EQ(database.setLtscale(10.0), Acad::eOk);
        EXPECT_EQ(database.setLtscale(0.0), Acad::eOutOfRange);
        EXPECT_EQ(database.setLuprec(9), Acad::eOutOfRange);
    });
    EXPECT_EQ(database.ltscale(), 10.0);
    database.undoLog().undo(1);
    EXPECT_EQ(database.ltscale(), 1.0);
}

TEST_F(DatabaseTest, TablesFindNamesWithoutCaseAndFollowRenaming) {
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(database.getSymbolTable(layers, AcDb::kForWrite), Acad::eOk);
    auto* layer = new AcDbLayerTableRecord;
    EXPECT_EQ(layer->setName(L"a/b"), Acad::eInvalidInput);
    ASSERT_EQ(layer->setName(L"道路"), Acad::eOk);
    AcDbObjectId id;
    ASSERT_EQ(layers->add(id, layer), Acad::eOk);
    EXPECT_EQ(layer->setName(L"0"), Acad::eDuplicateRecordName);
    EXPECT_EQ(layer->setName(L"Road"), Acad::eOk);
    layer->close();
    EXPECT_TRUE(layers->has(L"ROAD"));
    EXPECT_FALSE(layers->has(L"道路"));
    layers->close();

    step(L"RENAME", [&] { host::Opened<AcDbLayerTableRecord>(id, AcDb::kForWrite)->setName(L"Street"); });
    database.undoLog().undo(1);
    const auto* table = host::peek<AcDbLayerTable>(database.layerTableId());
    EXPECT_TRUE(table->has(L"road"));
    EXPECT_FALSE(table->has(L"street"));
}

TEST_F(DatabaseTest, EntitiesOnLockedLayersOpenForReadOnly) {
    const AcDbObjectId id = addLine(0);
    host::Opened<AcDbLayerTableRecord>(database.layerZero(), AcDb::kForWrite)->setIsLocked(true);
    EXPECT_EQ(host::Opened<AcDbLine>(id, AcDb::kForWrite).status(), Acad::eOnLockedLayer);
    EXPECT_EQ(host::Opened<AcDbLine>(id, AcDb::kForRead).status(), Acad::eOk);
}

TEST_F(DatabaseTest, ExtendedDataIsReplacedByApplication) {
    AcDbRegAppTable* applications = nullptr;
    database.getSymbolTable(applications, AcDb::kForWrite);
    auto* application = new AcDbRegAppTableRecord;
    application->setName(L"QDV_TEST");
    applications->add(application);
    application->close();
    applications->close();

    const host::Opened<AcDbLine> line(addLine(0), AcDb::kForWrite);
    const host::ResbufList unknown(acutBuildList(1001, L"NOBODY", 1000, L"x", 0));
    EXPECT_EQ(line->setXData(unknown.get()), Acad::eRegappIdNotFound);
    const host::ResbufList data(acutBuildList(1001, L"QDV_TEST", 1071, 4711, 1040, 0.1, 1000, L"文字", 0));
    ASSERT_EQ(line->setXData(data.get()), Acad::eOk);
    const host::ResbufList back(line->xData(L"qdv_test"));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->rbnext->resval.rlong, 4711);
    EXPECT_EQ(back->rbnext->rbnext->resval.rreal, 0.1);
    EXPECT_STREQ(back->rbnext->rbnext->rbnext->resval.rstring, L"文字");
    const host::ResbufList nothing(acutBuildList(1001, L"QDV_TEST", 0));
    ASSERT_EQ(line->setXData(nothing.get()), Acad::eOk);
    EXPECT_EQ(host::ResbufList(line->xData(nullptr)), nullptr);
}

TEST_F(DatabaseTest, DictionariesReplaceAndUndo) {
    AcDbDictionary* root = nullptr;
    database.getNamedObjectsDictionary(root, AcDb::kForWrite);
    AcDbObjectId first;
    AcDbObjectId second;
    auto* record = new AcDbXrecord;
    ASSERT_EQ(root->setAt(L"QDV", record, first), Acad::eOk);
    record->close();
    record = new AcDbXrecord;
    ASSERT_EQ(root->setAt(L"qdv", record, second), Acad::eOk);
    record->close();
    root->close();
    EXPECT_TRUE(first.isErased());
    step(L"DICT", [&] {
        host::Opened<AcDbDictionary>(database.namedObjectsDictionaryId(), AcDb::kForWrite)->remove(L"QDV");
    });
    AcDbObjectId found;
    const auto* dictionary = host::peek<AcDbDictionary>(database.namedObjectsDictionaryId());
    EXPECT_EQ(dictionary->getAt(L"QDV", found), Acad::eKeyNotFound);
    database.undoLog().undo(1);
    EXPECT_EQ(dictionary->getAt(L"QDV", found), Acad::eOk);
    EXPECT_EQ(found, second);
}

TEST_F(DatabaseTest, CopiesAreIndependentAndReferToCopies) {
    const AcDbObjectId source = addLine(4);
    {
        const host::Opened<AcDbLine> line(source, AcDb::kForWrite);
        line->createExtensionDictionary();
    }
    AcDbObjectIdArray ids;
    ids.append(source);
    AcDbIdMapping mapping;
    ASSERT_EQ(database.deepCloneObjects(ids, database.modelSpaceId(), mapping), Acad::eOk);
    AcDbIdPair pair(source, AcDbObjectId(), false);
    ASSERT_TRUE(mapping.compute(pair));
    moveTo(pair.value(), 8);
    EXPECT_EQ(startX(source), 4);
    const AcDbObjectId dictionary = host::peek<AcDbLine>(pair.value())->extensionDictionary();
    EXPECT_NE(dictionary, host::peek<AcDbLine>(source)->extensionDictionary());
    EXPECT_EQ(host::peek<AcDbDictionary>(dictionary)->ownerId(), pair.value());
}

TEST_F(DatabaseTest, InsertingADrawingBringsItsLayersAndKeepsOurs) {
    AcDbDatabase source;
    AcDbObjectId far;
    {
        AcDbLayerTable* layers = nullptr;
        source.getSymbolTable(layers, AcDb::kForWrite);
        auto* layer = new AcDbLayerTableRecord;
        layer->setName(L"河流");
        layers->add(far, layer);
        layer->close();
        layers->close();
    }
    host::Opened<AcDbLine>(addLine(1, &source), AcDb::kForWrite)->setLayer(far);
    AcDbObjectId block;
    ASSERT_EQ(database.insert(block, L"符号", &source), Acad::eOk);
    const auto* record = host::peek<AcDbBlockTableRecord>(block);
    ASSERT_EQ(record->entities().size(), 1U);
    const auto* line = host::peek<AcDbLine>(record->entities()[0]);
    const auto* layer = host::peek<AcDbLayerTableRecord>(line->layerId());
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->database(), &database);
    EXPECT_STREQ(layer->name().kwszPtr(), L"河流");
    EXPECT_EQ(host::peek<AcDbLinetypeTableRecord>(layer->linetypeObjectId())->database(), &database);
}

TEST_F(DatabaseTest, BlocksBuiltBeforeTheyAreAddedTakeTheirEntitiesAlong) {
    auto* record = new AcDbBlockTableRecord;
    record->setName(L"$_短线");
    record->setOrigin(AcGePoint3d(0, 1, 0));
    auto* line = new AcDbLine(AcGePoint3d(), AcGePoint3d(0, 1, 0));
    record->appendAcDbEntity(line);
    AcDbObjectId id;
    const host::Opened<AcDbBlockTable> table(database.blockTableId(), AcDb::kForWrite);
    ASSERT_EQ(table->add(id, record), Acad::eOk);
    record->close();
    ASSERT_EQ(host::peek<AcDbBlockTableRecord>(id)->entities().size(), 1U);
    EXPECT_EQ(line->ownerId(), id);
    EXPECT_EQ(line->close(), Acad::eNotOpened);
}

TEST(GroupListTest, KeepsTextAndRefusesDamagedBytes) {
    host::GroupList groups;
    groups.add(1, "a");
    groups.addReal(40, 0.1);
    groups.addInteger(70, -3);
    host::GroupList copy;
    ASSERT_TRUE(copy.setBytes(groups.bytes()));
    EXPECT_EQ((*copy.begin()).text, "a");
    std::string damaged = groups.bytes();
    damaged.pop_back();
    EXPECT_FALSE(copy.setBytes(damaged));

    char buffer[40];
    EXPECT_EQ(host::formatReal(1.0, buffer), "1.0");
    EXPECT_EQ(host::formatReal(0.44999999999999996, buffer), "0.44999999999999996");
    EXPECT_EQ(host::formatReal(1e20, buffer), "1e+20");
}

} // namespace
