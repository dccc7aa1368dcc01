// The custom classes: filing, geometry, pictures.
#include "entities/blockpline.h"
#include "entities/lineentity.h"
#include "entities/softmark.h"
#include "tests/module/picture.h"
#include "tests/module/sessionfixture.h"

#include <limits>

namespace {

/// The fields of an object's own class, as the data of a proxy hold them.
std::string ownFields(const AcDbObject& object) {
    host::ProxyDataFiler filer(nullptr);
    EXPECT_EQ(object.dwgOutFields(&filer), Acad::eOk);
    return filer.takeBytes();
}

Acad::ErrorStatus readFields(AcDbObject& object, const std::string& bytes) {
    host::ProxyDataFiler filer(nullptr, bytes, {});
    return object.dwgInFields(&filer);
}

template <class Write>
std::string fields(Write write) {
    host::ProxyDataFiler filer(nullptr);
    write(filer);
    return filer.takeBytes();
}

struct Vertex {
    AcGePoint2d point;
    double bulge = 0.0;
    double startWidth = 0.0;
    double endWidth = 0.0;
};

/// The stored form of a line entity, written out by hand.
std::string lineFields(bool isClosed, const double* constantWidth, const std::vector<Vertex>& vertices) {
    return fields([&](AcDbDwgFiler& filer) {
        filer.writeInt16(1);
        filer.writeString(L"线路甲");
        filer.writeBool(isClosed);
        filer.writeBool(constantWidth != nullptr);
        if (constantWidth != nullptr) {
            filer.writeDouble(*constantWidth);
        }
        filer.writeUInt32(static_cast<Adesk::UInt32>(vertices.size()));
        for (const Vertex& vertex : vertices) {
            filer.writePoint2d(vertex.point);
            filer.writeDouble(vertex.bulge);
            if (constantWidth == nullptr) {
                filer.writeDouble(vertex.startWidth);
                filer.writeDouble(vertex.endWidth);
            }
        }
    });
}

/// From (0,0) to (10,0), without width.
std::string straightLine() {
    const double width = 0.0;
    return lineFields(false, &width, {{{0, 0}}, {{10, 0}}});
}

class EntitiesTest : public SessionTest {
protected:
    /// A line entity in model space, open for write.
    static CArxObjTemplate<CQDVAcDbPolyline> addLineEntity(const std::string& stored) {
        CArxObjTemplate<CQDVAcDbPolyline> line;
        line.New();
        EXPECT_EQ(readFields(*line.Get(), stored), Acad::eOk);
        EXPECT_EQ(AppendEnt(line, &database()), Acad::eOk);
        return line;
    }
    /// Moves an entity of model space into a block of its own.
    static AcDbObjectId addToBlock(AcDbEntity* entity, bool explodable) {
        CArxObjTemplate<AcDbBlockTable> blocks(database().blockTableId(), true);
        CArxObjTemplate<AcDbBlockTableRecord> block;
        block.New()->setName(explodable ? L"loose" : L"whole");
        EXPECT_EQ(blocks->add(block.Get()), Acad::eOk);
        block->setExplodable(explodable);
        AcDbObjectId id;
        CArxEntity added(entity);
        EXPECT_EQ(block->appendAcDbEntity(id, added.Get()), Acad::eOk);
        return id;
    }
};

} // namespace

TEST_F(EntitiesTest, LineEntityFilesExactlyWhatItRead) {
    const double half = 0.5;
    const std::vector<Vertex> shape = {
        {{0, 0}, 1.0, 0.1, 0.2}, {{10, 5}, 0.0, 0.3, 0.4}, {{-3, 7}, -0.5, 0, 9}};
    for (const std::string& stored : {lineFields(true, &half, shape), lineFields(false, nullptr, shape),
                                      lineFields(true, nullptr, shape), lineFields(false, &half, {})}) {
        CQDVAcDbPolyline line;
        ASSERT_EQ(readFields(line, stored), Acad::eOk);
        EXPECT_EQ(ownFields(line), stored);
        const std::unique_ptr<AcRxObject> copy(line.clone());
        ASSERT_NE(copy, nullptr);
        EXPECT_EQ(ownFields(*CQDVAcDbPolyline::cast(copy.get())), stored);
        // What was there before goes.
        CQDVAcDbPolyline other;
        ASSERT_EQ(readFields(other, lineFields(true, nullptr, shape)), Acad::eOk);
        ASSERT_EQ(readFields(other, stored), Acad::eOk);
        EXPECT_EQ(ownFields(other), stored);
    }
}

TEST_F(EntitiesTest, VersionsDecideWhatIsRead) {
    CQDVAcDbPolyline line;
    CQDVAcDbSoftMark mark;
    CQDVBlockPline polyline;
    const auto version = [](Adesk::Int16 number) {
        return fields([&](AcDbDwgFiler& filer) { filer.writeInt16(number); });
    };
    EXPECT_EQ(readFields(line, version(2)), Acad::eMakeMeProxy);
    EXPECT_EQ(readFields(mark, version(2)), Acad::eMakeMeProxy);
    EXPECT_EQ(readFields(line, version(0)), Acad::eOk);
    EXPECT_EQ(readFields(mark, version(0)), Acad::eOk);
    EXPECT_EQ(readFields(mark, version(1)), Acad::eOk);
    EXPECT_EQ(ownFields(mark), version(1));

    const std::string base = fields([](AcDbDwgFiler& filer) {
        const CQDVBlockPline empty;
        empty.AcDbPolyline::dwgOutFields(&filer);
    });
    const auto tail = [&](Adesk::Int16 number) {
        return base + fields([&](AcDbDwgFiler& filer) {
                   filer.writeInt16(number);
                   filer.writeString(L"AcDbArc");
               });
    };
    EXPECT_EQ(readFields(polyline, tail(3)), Acad::eMakeMeProxy);
    EXPECT_EQ(readFields(polyline, tail(0)), Acad::eOk);
    EXPECT_TRUE(polyline.sourceClassName().isEmpty());
    EXPECT_EQ(readFields(polyline, tail(1)), Acad::eOk);
    EXPECT_EQ(polyline.sourceClassName(), L"AcDbArc");
    EXPECT_EQ(ownFields(polyline), tail(2));
}

TEST_F(EntitiesTest, DamagedFieldsEndWithAStatus) {
    const std::string stored = lineFields(true, nullptr, {{{0, 0}, 1.0}, {{10, 5}, 0.0}});
    for (std::size_t length = 0; length < stored.size(); ++length) {
        CQDVAcDbPolyline line;
        EXPECT_NE(readFields(line, stored.substr(0, length)), Acad::eOk) << length;
    }
    std::string endless = lineFields(false, nullptr, {});
    endless.replace(endless.size() - 4, 4, 4, '\xff');
    CQDVAcDbPolyline line;
    EXPECT_NE(readFields(line, endless), Acad::eOk);
}

TEST_F(EntitiesTest, LineEntityBehavesAsItsPolyline) {
    const CArxObjTemplate<CQDVAcDbPolyline> line = addLineEntity(straightLine());
    AcGePoint3dArray grips;
    AcDbIntArray snapModes;
    AcDbIntArray geometryIds;
    ASSERT_EQ(line->getGripPoints(grips, snapModes, geometryIds), Acad::eOk);
    ASSERT_GE(grips.length(), 2);
    EXPECT_EQ(grips[1], AcGePoint3d(10, 0, 0));
    ASSERT_EQ(line->moveGripPointsAt({1}, AcGeVector3d(0, 10, 0)), Acad::eOk);
    ASSERT_EQ(line->transformBy(AcGeMatrix3d::translation({5, 0, 0})), Acad::eOk);
    AcDbExtents extents;
    ASSERT_EQ(line->getGeomExtents(extents), Acad::eOk);
    EXPECT_EQ(extents.minPoint(), AcGePoint3d(5, 0, 0));
    EXPECT_EQ(extents.maxPoint(), AcGePoint3d(15, 10, 0));

    const CArxObjTemplate<CQDVAcDbPolyline> other = addLineEntity(straightLine());
    other->transformBy(AcGeMatrix3d::translation({5, 4, 0}));
    const AcDbLine crossing({0, 4, 0}, {20, 4, 0});
    for (const AcDbEntity* second :
         {static_cast<const AcDbEntity*>(&crossing), static_cast<const AcDbEntity*>(other.Get())}) {
        AcGePoint3dArray points;
        ASSERT_EQ(line->intersectWith(second, AcDb::kOnBothOperands, points), Acad::eOk);
        ASSERT_EQ(points.length(), 1);
        EXPECT_TRUE(points[0].isEqualTo({9, 4, 0}));
        points.setLogicalLength(0);
        ASSERT_EQ(line->intersectWith(second, AcDb::kOnBothOperands, AcGePlane::kXYPlane, points), Acad::eOk);
        EXPECT_EQ(points.length(), 1);
    }
}

TEST_F(EntitiesTest, ChangesOfALineEntityAreUndone) {
    CArxObjTemplate<CQDVAcDbPolyline> line = addLineEntity(straightLine());
    const AcDbObjectId id = line->objectId();
    line.Close();
    type("MOVE\nL\n\n0,0\n7,0\n");
    ASSERT_TRUE(line.OpenObject(id, false));
    EXPECT_NE(ownFields(*line.Get()), straightLine());
    line.Close();
    type("U\n");
    ASSERT_TRUE(line.OpenObject(id, false));
    EXPECT_EQ(ownFields(*line.Get()), straightLine());
}

TEST_F(EntitiesTest, LineEntityIsShownByATextWhereItMayComeApart) {
    const auto isText = [](AcDbEntity& entity, AcGiRegenType regenType) {
        const Picture picture = pictureOf(entity, regenType);
        EXPECT_EQ(picture.texts.size() + static_cast<std::size_t>(picture.shapes), 1U);
        if (!picture.texts.empty()) {
            EXPECT_EQ(picture.texts[0].position, AcGePoint3d(0, 0, 0));
        }
        return !picture.texts.empty();
    };
    const CArxObjTemplate<CQDVAcDbPolyline> line = addLineEntity(straightLine());
    EXPECT_FALSE(isText(*line.Get(), kAcGiStandardDisplay));
    EXPECT_TRUE(isText(*line.Get(), kAcGiSaveWorldDrawForProxy));

    for (const bool explodable : {true, false}) {
        auto nested = std::make_unique<CQDVAcDbPolyline>();
        readFields(*nested, straightLine());
        const CArxEntity inBlock(addToBlock(nested.release(), explodable), false);
        EXPECT_EQ(isText(*inBlock.Get(), kAcGiSaveWorldDrawForProxy), explodable);
        EXPECT_FALSE(isText(*inBlock.Get(), kAcGiHideOrShadeCommand));
    }
}

TEST_F(EntitiesTest, BlockPlineIsALineOnlyInTheStandardDisplay) {
    CArxObjTemplate<CQDVBlockPline> polyline;
    polyline.Attach(QDVB_CreatePolyline());
    polyline->addVertexAt(0, {3, 4});
    polyline->addVertexAt(1, {13, 4});
    ASSERT_EQ(AppendEnt(polyline), Acad::eOk);
    EXPECT_TRUE(pictureOf(*polyline, kAcGiStandardDisplay).texts.empty());
    for (const AcGiRegenType type :
         {kAcGiHideOrShadeCommand, kAcGiRenderCommand, kAcGiForExplode, kAcGiSaveWorldDrawForProxy}) {
        const Picture picture = pictureOf(*polyline, type);
        EXPECT_EQ(picture.shapes, 0);
        ASSERT_EQ(picture.texts.size(), 1U);
        EXPECT_EQ(picture.texts[0].position, AcGePoint3d(3, 4, 0));
    }
    AcDbVoidPtrArray parts;
    EXPECT_EQ(polyline->explode(parts), Acad::eNotApplicable);
    EXPECT_TRUE(parts.isEmpty());
}
