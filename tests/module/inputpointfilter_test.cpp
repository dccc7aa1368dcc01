// Which snaps the input point filter takes back, from real points of a prompt.
#include "restools/sysvar.h"
#include "services/inputpointfilter.h"
#include "tests/module/sessionfixture.h"

namespace {

/// Mouse points are typed ones with a snap mode before them: they have the snap in their history.
class PointFilter : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        AppendEnt(new AcDbLine({0, 0, 0}, {10, 0, 0}));
        SetVar(L"OSMODE", 0);
    }
    /// Where a line begins whose first point is typed.
    AcGePoint3d startOfLine(const std::string& typed) {
        type("LINE\n" + typed + "\n50,50\n\n");
        ads_name last;
        acdbEntLast(last);
        AcDbObjectId id;
        acdbGetObjectId(id, last);
        CArxObjTemplate<AcDbLine> line(id, false);
        const AcGePoint3d start = line ? line->startPoint() : AcGePoint3d(99, 99, 99);
        line.Close();
        type("U\n");
        return start;
    }
};

int keepAll(CArxEntity&, AcDb::OsnapMask, void*, bool&) {
    return 0;
}
int suppressAll(CArxEntity&, AcDb::OsnapMask, void* calls, bool& handled) {
    ++*static_cast<int*>(calls);
    handled = true;
    return 1;
}

const AcGePoint3d snapped(0, 0, 0);
const AcGePoint3d raw(0.01, 0.01, 0);

} // namespace

TEST_F(PointFilter, ListedModesOfListedClassesAreTakenBack) {
    EXPECT_TRUE(startOfLine("_end 0.01,0.01").isEqualTo(snapped)) << "without a filter";
    {
        const CQDVAcEdInputPointFilter filter(AcDbLine::desc(), AcDb::kOsMaskEnd, true);
        EXPECT_TRUE(filter.IsEnable());
        EXPECT_TRUE(startOfLine("_end 0.01,0.01").isEqualTo(raw));
        EXPECT_TRUE(startOfLine("_mid 5.01,0.01").isEqualTo({5, 0, 0})) << "another mode";
        EXPECT_TRUE(startOfLine("0.01,0.01").isEqualTo(raw)) << "typed points have no snap";
    }
    EXPECT_TRUE(startOfLine("_end 0.01,0.01").isEqualTo(snapped)) << "ended with its filter";
    const CQDVAcEdInputPointFilter base(AcDbCurve::desc(), AcDb::kOsMaskEnd, true);
    EXPECT_TRUE(startOfLine("_end 0.01,0.01").isEqualTo(snapped)) << "derived classes have rows of their own";
}

TEST_F(PointFilter, UserFunctionHasTheLastWord) {
    CQDVAcEdInputPointFilter filter(AcDbLine::desc(), AcDb::kOsMaskEnd, true);
    filter.SetUserTreatFunc(keepAll, nullptr);
    EXPECT_TRUE(startOfLine("_end 0.01,0.01").isEqualTo(snapped));
    int calls = 0;
    filter.SetUserTreatFunc(suppressAll, &calls);
    EXPECT_TRUE(startOfLine("_mid 5.01,0.01").isEqualTo({5.01, 0.01, 0})) << "whatever the modes are";
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(filter.GetUserData(), &calls);
}

TEST_F(PointFilter, OnlyExternalReferencesMeansThoseOnly) {
    AcDbObjectId blockId;
    {
        const CArxObjTemplate<AcDbBlockTable> blocks(database().blockTableId(), true);
        CArxObjTemplate<AcDbBlockTableRecord> block;
        block.New()->setName(L"桩");
        blocks->add(blockId, block.Get());
        CArxEntity stake(new AcDbLine({-1, 0, 0}, {1, 0, 0}));
        block->appendAcDbEntity(stake.Get());
    }
    InsertBlock(blockId, {30, 30, 0}, AcGeScale3d(1, 1, 1), L"0", 0.0);
    const int onlyXrefs = AcDb::kOsMaskIns | CQDVAcEdInputPointFilter::onlyExternalReferences;
    CQDVAcEdInputPointFilter filter(AcDbBlockReference::desc(), static_cast<AcDb::OsnapMask>(onlyXrefs),
                                    true);
    EXPECT_TRUE(startOfLine("_ins 30.01,30.01").isEqualTo({30, 30, 0}));
    filter.Add(AcDbBlockReference::desc(), AcDb::kOsMaskIns);
    EXPECT_TRUE(startOfLine("_ins 30.01,30.01").isEqualTo({30.01, 30.01, 0}));
    filter.Remove(AcDbBlockReference::desc());
    EXPECT_TRUE(filter.GetMapInfo().empty());
}

TEST_F(PointFilter, TablesComeFromRowsPairsAndCopies) {
    AcRxClass* line = AcDbLine::desc();
    AcRxClass* arc = AcDbArc::desc();
    const CQDVAcEdInputPointFilter rows(
        {{line, AcDb::kOsMaskEnd}, {arc, AcDb::kOsMaskCen}, {line, AcDb::kOsMaskMid}}, false);
    EXPECT_FALSE(rows.IsEnable());
    EXPECT_EQ(rows.GetMapInfo(),
              (CQDVAcEdInputPointFilter::ClassTable{{line, AcDb::kOsMaskMid}, {arc, AcDb::kOsMaskCen}}));
    const CQDVAcEdInputPointFilter pairs(true, line, AcDb::kOsMaskEnd, arc, AcDb::kOsMaskCen, nullptr);
    EXPECT_TRUE(pairs.IsEnable());
    EXPECT_EQ(pairs.GetMapInfo().size(), 2U);
    CQDVAcEdInputPointFilter copy(pairs);
    EXPECT_EQ(copy.GetMapInfo(), pairs.GetMapInfo());
    copy = rows;
    EXPECT_EQ(copy.GetMapInfo(), rows.GetMapInfo());
    // Any filter's end ends the one in force.
    rows.Disable();
    EXPECT_FALSE(pairs.IsEnable());
}
