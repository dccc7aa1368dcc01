// What is particular to single kinds of entities: widths of polylines and their change of class, alignment
// of texts, contents of block references, the groups of files.
#include "entitysamples.h"

#include "host/gi/gi.h"

#include <cmath>

using namespace testing_entities;

namespace {

constexpr double pi = host::pi;

class KindTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }
    Drawing drawing;
};

TEST_F(KindTest, WidthsNotGivenAreTheConstantWidth) {
    AcDbPolyline polyline;
    EXPECT_EQ(polyline.setConstantWidth(0.4), Acad::eOk);
    polyline.addVertexAt(0, {0, 0}, 0, -1, -1);
    polyline.addVertexAt(0, {1, 0}, 0, -1, -1);
    double width = 0.0;
    EXPECT_EQ(polyline.getConstantWidth(width), Acad::eOk);
    EXPECT_EQ(width, 0.4);
    polyline.addVertexAt(2, {2, 0}, 0, 0.4, 0.9);
    EXPECT_EQ(polyline.getConstantWidth(width), Acad::eInvalidInput);
    double start = 0.0;
    double end = 0.0;
    polyline.getWidthsAt(0, start, end);
    EXPECT_EQ(start + end, 0.8);
    polyline.removeVertexAt(2);
    EXPECT_EQ(polyline.getConstantWidth(width), Acad::eOk);
    AcGePoint3d point;
    EXPECT_EQ(polyline.getPointAt(2, point), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.addVertexAt(5, {0, 0}), Acad::eInvalidIndex);
    polyline.reset(false, 0);
    EXPECT_EQ(polyline.numVerts(), 0U);
}

TEST_F(KindTest, WidthsFollowSplitsAndReversal) {
    AcDbPolyline polyline;
    polyline.addVertexAt(0, {0, 0}, 0, 0, 1);
    polyline.addVertexAt(1, {10, 0}, 0, 2, 4);
    polyline.addVertexAt(2, {10, 10});
    AcGeDoubleArray cut;
    cut.append(1.5);
    AcDbVoidPtrArray pieces;
    ASSERT_EQ(polyline.getSplitCurves(cut, pieces), Acad::eOk);
    const std::unique_ptr<AcDbPolyline> first(static_cast<AcDbPolyline*>(pieces[0]));
    const std::unique_ptr<AcDbPolyline> second(static_cast<AcDbPolyline*>(pieces[1]));
    double start = 0.0;
    double end = 0.0;
    first->getWidthsAt(1, start, end);
    EXPECT_EQ(start, 2);
    EXPECT_EQ(end, 3);
    second->getWidthsAt(0, start, end);
    EXPECT_EQ(start, 3);
    EXPECT_EQ(end, 4);
    polyline.reverseCurve();
    polyline.getWidthsAt(0, start, end);
    EXPECT_EQ(start, 4);
    EXPECT_EQ(end, 2);
}

TEST_F(KindTest, ChangingClassKeepsIdAndHandleAndUndoes) {
    auto* light = new AcDbPolyline;
    light->addVertexAt(0, {0, 0}, 0.5, 0.2, 0.2);
    light->addVertexAt(1, {10, 0}, 0, 0.2, 0.2);
    light->addVertexAt(2, {10, 5}, -1, 0.2, 0.2);
    light->setClosed(true);
    light->setLayer(drawing.layer);
    const AcDbObjectId id = drawing.append(light);
    const std::string before = bytesOf(*light);
    host::UndoLog& undo = drawing.database.undoLog();
    undo.beginCommand(L"CONVERT");
    AcDbPolyline* open = nullptr;
    ASSERT_EQ(acdbOpenObject(open, id, AcDb::kForWrite), Acad::eOk);
    AcDb2dPolyline* heavy = nullptr;
    ASSERT_EQ(open->convertTo(heavy, true), Acad::eOk); // the light one is gone
    EXPECT_EQ(heavy->objectId(), id);
    EXPECT_EQ(heavy->layerId(), drawing.layer);
    EXPECT_EQ(heavy->subentities()->ids().size(), 3U);
    double width = 0.0;
    EXPECT_EQ(heavy->constantWidth(width), Acad::eOk);
    EXPECT_EQ(width, 0.2);
    const std::vector<AcDbStub*> vertices = heavy->subentities()->ids();
    auto* back = new AcDbPolyline;
    AcDbEntity* entity = heavy;
    ASSERT_EQ(back->convertFrom(entity, true), Acad::eOk);
    EXPECT_EQ(entity, nullptr);
    EXPECT_EQ(back->objectId(), id);
    EXPECT_TRUE(back->isClosed());
    for (AcDbStub* vertex : vertices) {
        EXPECT_TRUE(vertex->erased);
    }
    EXPECT_EQ(bytesOf(*back), before);
    back->close();
    undo.endCommand();
    undo.undo(1);
    EXPECT_EQ(bytesOf(*host::peek<AcDbPolyline>(id)), before);
    undo.redo(1);
    EXPECT_EQ(bytesOf(*host::peek<AcDbPolyline>(id)), before);
    // Splines do not become light polylines, nor do other things.
    AcDb2dPolyline spline;
    spline.setPolyType(AcDb::k2dCubicSplinePoly);
    entity = &spline;
    AcDbPolyline target;
    EXPECT_EQ(target.convertFrom(entity, false), Acad::eNotApplicable);
    AcDbLine line;
    entity = &line;
    EXPECT_EQ(target.convertFrom(entity, false), Acad::eIllegalEntityType);
}

TEST_F(KindTest, VerticesAreResidentsWithTheirPolyline) {
    AcGePoint3dArray points{AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 0)};
    auto* polyline = new AcDb2dPolyline(AcDb::k2dSimplePoly, points);
    const std::unique_ptr<AcDbObjectIterator> loose(polyline->vertexIterator());
    EXPECT_TRUE(loose->objectId().isNull());
    EXPECT_NE(loose->entity(), nullptr);
    const AcDbObjectId id = drawing.append(polyline);
    const host::Opened<AcDb2dPolyline> open(id, AcDb::kForWrite);
    auto* added = new AcDb2dVertex(AcGePoint3d(4, 3, 0));
    AcDbObjectId addedId;
    ASSERT_EQ(open->insertVertexAt(addedId, AcDbObjectId(open->subentities()->ids()[0]), added), Acad::eOk);
    added->close();
    std::vector<AcGePoint3d> seen;
    const std::unique_ptr<AcDbObjectIterator> iterator(open->vertexIterator());
    for (; !iterator->done(); iterator->step()) {
        AcDb2dVertex* vertex = nullptr;
        ASSERT_EQ(open->openVertex(vertex, iterator->objectId(), AcDb::kForRead), Acad::eOk);
        EXPECT_EQ(vertex->ownerId(), id);
        EXPECT_FALSE(vertex->handle().isNull());
        seen.push_back(vertex->position());
        vertex->close();
    }
    ASSERT_EQ(seen.size(), 3U);
    EXPECT_TRUE(seen[1].isEqualTo({4, 3, 0}));
    double length = 0.0;
    open->length(length);
    EXPECT_DOUBLE_EQ(length, 8);
    open->erase();
    EXPECT_TRUE(addedId.isErased());
    open->erase(false);
    EXPECT_FALSE(addedId.isErased());
}

TEST_F(KindTest, ClosedPolylinesOffsetOutwardsEitherWayRound) {
    for (const bool clockwise : {false, true}) {
        AcDbPolyline square;
        square.addVertexAt(0, {0, 0});
        square.addVertexAt(1, {4, 0});
        square.addVertexAt(2, {4, 4});
        square.addVertexAt(3, {0, 4});
        square.setClosed(true);
        if (clockwise) {
            square.reverseCurve();
        }
        for (const double distance : {1.0, -1.0}) {
            AcDbVoidPtrArray curves;
            ASSERT_EQ(square.getOffsetCurves(distance, curves), Acad::eOk);
            const std::unique_ptr<AcDbPolyline> offset(static_cast<AcDbPolyline*>(curves[0]));
            double area = 0.0;
            offset->getArea(area);
            EXPECT_NEAR(area, distance > 0 ? 36 : 4, 1e-9);
        }
        AcDbVoidPtrArray none;
        EXPECT_NE(square.getOffsetCurves(-3, none), Acad::eOk);
    }
}

// Attributes.

TEST_F(KindTest, AttributesOfSeveralLinesAreKeptWhole) {
    host::ResbufBuilder builder;
    builder.string(100, L"AcDbEntity").string(8, L"0").string(100, L"AcDbText").point(10, 1, 2).real(40, 2.5);
    builder.string(1, L"one").integer(71, 4).string(100, L"AcDbAttribute").integer(280, 0).string(2, L"TAG");
    builder.integer(70, 0).integer(280, 1).integer(71, 2).integer(72, 0);
    builder.string(101, L"Embedded Object").point(10, 1, 2).string(1, L"one\\Ptwo");
    const host::ResbufList list = builder.release();
    host::ResbufDxfReader reader(&drawing.database, list.get());
    AcDbAttribute attribute;
    ASSERT_EQ(attribute.dxfIn(&reader), Acad::eOk);
    EXPECT_TRUE(attribute.isMirroredInY());
    EXPECT_FALSE(attribute.isMirroredInX());
    EXPECT_TRUE(attribute.lockPositionInBlock());
    const std::vector<std::string> groups = groupsOf(attribute);
    const std::vector<std::string> tail(groups.end() - 7, groups.end());
    EXPECT_EQ(tail, (std::vector<std::string>{"71=2", "72=0", "101=Embedded Object", "10=1,0,0", "20=2",
                                              "30=0", "1=one\\Ptwo"}));
}

// Texts.

struct Justification {
    AcDb::TextHorzMode horizontal;
    AcDb::TextVertMode vertical;
    double along; ///< part of the width at which the alignment point stands
};

TEST_F(KindTest, TextsStandOnTheirAlignmentPoint) {
    for (const double rotation : {0.0, 0.7}) {
        for (const bool backward : {false, true}) {
            for (int horizontal = 0; horizontal <= 2; ++horizontal) {
                for (int vertical = 0; vertical <= 3; ++vertical) {
                    AcDbText text({1, 2, 0}, L"Hg", drawing.style, 2.0, rotation);
                    text.mirrorInX(backward);
                    text.setHorizontalMode(static_cast<AcDb::TextHorzMode>(horizontal));
                    text.setVerticalMode(static_cast<AcDb::TextVertMode>(vertical));
                    text.setAlignmentPoint({10, 20, 0});
                    const host::TextBox box = text.textBox();
                    // The alignment point in text coordinates.
                    AcGeVector3d arm = AcGePoint3d(10, 20, 0) - text.position();
                    arm.rotateBy(-rotation, AcGeVector3d::kZAxis);
                    if (text.isDefaultAlignment()) {
                        EXPECT_TRUE(text.position().isEqualTo({1, 2, 0}));
                        continue;
                    }
                    EXPECT_NEAR(arm.x, (backward ? -0.5 : 0.5) * horizontal * box.width, 1e-9);
                    const double levels[] = {0.0, -box.descent, 1.0, 2.0};
                    EXPECT_NEAR(arm.y, levels[vertical], 1e-9);
                }
            }
        }
    }
}

TEST_F(KindTest, TextsAreFittedBetweenPoints) {
    AcDbText text({0, 0, 0}, L"HHH", drawing.style, 2.0);
    text.setHorizontalMode(AcDb::kTextFit);
    text.setAlignmentPoint({30, 40, 0});
    EXPECT_EQ(text.height(), 2.0);
    EXPECT_NEAR(text.rotation(), std::atan2(40, 30), 1e-12);
    EXPECT_NEAR(text.textBox().width, 50, 1e-6);
    text.setHorizontalMode(AcDb::kTextAlign);
    text.setWidthFactor(1.0);
    EXPECT_NEAR(text.textBox().width, 50, 1e-6);
    EXPECT_GT(text.height(), 2.0);
    text.setHorizontalMode(AcDb::kTextMid);
    text.setRotation(0);
    text.setHeight(2);
    text.setAlignmentPoint({5, 5, 0});
    AcDbExtents box;
    text.getGeomExtents(box);
    EXPECT_NEAR((box.minPoint().y + box.maxPoint().y) / 2, 5, 1e-9);
    EXPECT_EQ(text.setHeight(0), Acad::eInvalidInput);
}

TEST_F(KindTest, MirroredTextsShowTheMirrorImage) {
    for (const double axis : {0.0, 0.3, 1.2, 2.0}) {
        AcDbText text({3, 4, 0}, L"Ag", drawing.style, 2.0, 0.4);
        text.setOblique(0.3);
        AcGePoint3d before[4];
        text.getCorners(before);
        const AcGeMatrix3d mirror =
            AcGeMatrix3d::mirroring(AcGePlane({1, 1, 0}, AcGeVector3d(std::cos(axis), std::sin(axis), 0)));
        ASSERT_EQ(text.transformBy(mirror), Acad::eOk);
        EXPECT_NE(text.isMirroredInX(), text.isMirroredInY());
        AcGePoint3d after[4];
        text.getCorners(after);
        for (int corner = 0; corner < 4; ++corner) {
            EXPECT_TRUE(after[corner].isEqualTo(mirror * before[corner], AcGeTol().setEqualPoint(1e-9)));
        }
        ASSERT_EQ(text.transformBy(mirror), Acad::eOk);
        EXPECT_NEAR(text.rotation(), 0.4, 1e-9);
        EXPECT_FALSE(text.isMirroredInX() || text.isMirroredInY());
        EXPECT_NEAR(text.oblique(), 0.3, 1e-9);
    }
    // A scale by axis and a turn together: slant, width and height take it up.
    AcDbText text({3, 4, 0}, L"HH", drawing.style, 2.0, 0.4);
    AcGeMatrix3d uneven;
    uneven.setCoordSystem({1, 0, 0}, {2, 0, 0}, {0, 3, 0}, {0, 0, 1});
    const double slantBefore = text.oblique();
    ASSERT_EQ(text.transformBy(uneven), Acad::eOk);
    EXPECT_NE(text.oblique(), slantBefore);
    EXPECT_NEAR(text.rotation(), std::atan2(3 * std::sin(0.4), 2 * std::cos(0.4)), 1e-12);
    // Area of a character grows with the determinant.
    EXPECT_NEAR(text.height() * text.height() * text.widthFactor(), 4.0 * 6.0, 1e-9);
}

// Block references.

TEST_F(KindTest, BlockTransformAndExtents) {
    AcDbBlockReference reference({10, 20, 0}, drawing.block);
    reference.setScaleFactors({2, 3, 1});
    reference.setRotation(pi / 2);
    EXPECT_TRUE((reference.blockTransform() * AcGePoint3d(1, 1, 0)).isEqualTo({10, 20, 0}));
    EXPECT_TRUE((reference.blockTransform() * AcGePoint3d(2, 1, 0)).isEqualTo({10, 22, 0}));
    EXPECT_TRUE((reference.blockTransform() * AcGePoint3d(1, 2, 0)).isEqualTo({7, 20, 0}));
    // Exact though the arc becomes an ellipse's.
    AcDbExtents box;
    ASSERT_EQ(reference.getGeomExtents(box), Acad::eOk);
    EXPECT_NEAR(box.maxPoint().x, 10 + 3 * 1, 1e-9);   // where the nested line begins
    EXPECT_NEAR(box.minPoint().x, 10 - 3 * 2.5, 1e-9); // the top of the arc
    EXPECT_EQ(reference.setScaleFactors({0, 1, 1}), Acad::eInvalidInput);
    AcGeMatrix3d shear;
    shear.entry[0][1] = 0.5;
    EXPECT_EQ(reference.transformBy(shear), Acad::eCannotScaleNonUniformly);
    const AcGeMatrix3d wanted = AcGeMatrix3d::rotation(0.3, AcGeVector3d::kZAxis) *
                                AcGeMatrix3d::mirroring(AcGePlane::kYZPlane) * AcGeMatrix3d::scaling(4);
    ASSERT_EQ(reference.setBlockTransform(wanted), Acad::eOk);
    EXPECT_TRUE(reference.blockTransform().isEqualTo(wanted, AcGeTol().setEqualVector(1e-9)));
}

TEST_F(KindTest, ExplodingGivesTransformedCopies) {
    AcDbBlockReference reference({10, 20, 0}, drawing.block);
    reference.setScaleFactors({-2, 2, 2});
    AcDbVoidPtrArray parts;
    ASSERT_EQ(reference.explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 2);
    const std::unique_ptr<AcDbEntity> arc(static_cast<AcDbEntity*>(parts[0]));
    const std::unique_ptr<AcDbEntity> nested(static_cast<AcDbEntity*>(parts[1]));
    ASSERT_TRUE(arc->isKindOf(AcDbArc::desc()));
    EXPECT_TRUE(AcDbArc::cast(arc.get())->center().isEqualTo({8, 22, 0}));
    EXPECT_DOUBLE_EQ(AcDbArc::cast(arc.get())->radius(), 3);
    AcDbExtents whole;
    AcDbExtents together;
    AcDbExtents part;
    reference.getGeomExtents(whole);
    for (AcDbEntity* entity : {arc.get(), nested.get()}) {
        entity->getGeomExtents(part);
        together.addExt(part);
    }
    EXPECT_TRUE(whole.minPoint().isEqualTo(together.minPoint(), AcGeTol().setEqualPoint(1e-9)));
    EXPECT_TRUE(whole.maxPoint().isEqualTo(together.maxPoint(), AcGeTol().setEqualPoint(1e-9)));
    auto* resident = new AcDbBlockReference({0, 0, 0}, drawing.block);
    drawing.append(resident);
    const auto* space = host::peek<AcDbBlockTableRecord>(drawing.database.modelSpaceId());
    const std::size_t before = space->entities().size();
    const host::Opened<AcDbBlockReference> open(resident->objectId(), AcDb::kForRead);
    EXPECT_EQ(open->explodeToOwnerSpace(), Acad::eOk);
    EXPECT_EQ(space->entities().size(), before + 2);
}

TEST_F(KindTest, BlocksThatHoldThemselvesEnd) {
    auto* reference = new AcDbBlockReference({0, 0, 0}, drawing.block);
    {
        const host::Opened<AcDbBlockTableRecord> block(drawing.block, AcDb::kForWrite);
        AcDbObjectId id; // as a damaged file may have it
        drawing.database.addAcDbObject(id, reference);
        reference->setOwnerId(drawing.block);
        block->entitiesForReaders().push_back(id.stub());
        reference->close();
    }
    AcDbBlockReference outside({0, 0, 0}, drawing.block);
    AcDbExtents box;
    EXPECT_EQ(outside.getGeomExtents(box), Acad::eOk);
    std::vector<host::CurvePiece> pieces;
    EXPECT_TRUE(outside.curvePieces(pieces));
    EXPECT_EQ(pieces.size(), 2U);
    const host::Opened<AcDbBlockReference> open(reference->objectId(), AcDb::kForWrite);
    EXPECT_EQ(open->setBlockTableRecord(drawing.block), Acad::eSelfReference);
}

TEST_F(KindTest, BlocksThatMultiplyWithoutBoundEnd) {
    // Each of forty blocks shows the one before twice.
    AcDbObjectId inner = drawing.block;
    for (int level = 0; level < 40; ++level) {
        const host::Opened<AcDbBlockTable> blocks(drawing.database.blockTableId(), AcDb::kForWrite);
        auto* record = new AcDbBlockTableRecord;
        record->setName((L"L" + std::to_wstring(level)).c_str());
        AcDbObjectId id;
        blocks->add(id, record);
        for (const double x : {0.0, 1.0}) {
            auto* reference = new AcDbBlockReference({x, 0, 0}, inner);
            record->appendAcDbEntity(reference);
            reference->close();
        }
        record->close();
        inner = id;
    }
    AcDbExtents box;
    EXPECT_EQ(AcDbBlockReference({0, 0, 0}, inner).getGeomExtents(box), Acad::eOk);
}

TEST_F(KindTest, AttributesFollowTheirReference) {
    AcDbAttributeDefinition definition({2, 2, 0}, L"?", L"NO", L"number", drawing.style);
    definition.setHeight(1);
    definition.setHorizontalMode(AcDb::kTextCenter);
    definition.setAlignmentPoint({3, 2, 0});
    auto* reference = new AcDbBlockReference({10, 20, 0}, drawing.block);
    reference->setScaleFactors(2);
    const AcDbObjectId id = drawing.append(reference);
    AcDbObjectId attributeId;
    {
        const host::Opened<AcDbBlockReference> open(id, AcDb::kForWrite);
        auto* attribute = new AcDbAttribute;
        ASSERT_EQ(attribute->setAttributeFromBlock(&definition, open->blockTransform()), Acad::eOk);
        attribute->setTextString(L"17");
        ASSERT_EQ(open->appendAttribute(attributeId, attribute), Acad::eOk);
        EXPECT_STREQ(attribute->tagConst(), L"NO");
        EXPECT_DOUBLE_EQ(attribute->height(), 2);
        EXPECT_TRUE(attribute->alignmentPoint().isEqualTo({14, 22, 0}));
        attribute->close();
        open->transformBy(AcGeMatrix3d::translation({1, 1, 0}));
    }
    const auto* attribute = host::peek<AcDbAttribute>(attributeId);
    {
        const host::ReadAccess access(*attribute);
        EXPECT_TRUE(attribute->alignmentPoint().isEqualTo({15, 23, 0}));
        EXPECT_EQ(attribute->ownerId(), id);
    }
    EXPECT_EQ(groupsOf(*reference)[3], "66=1");
    const host::Opened<AcDbBlockReference> open(id, AcDb::kForWrite);
    open->erase();
    EXPECT_TRUE(attributeId.isErased());
}

// Properties and groups.

TEST_F(KindTest, PropertiesTakeNamesOfTheDrawing) {
    auto* line = new AcDbLine;
    const AcDbObjectId id = drawing.append(line);
    const host::Opened<AcDbLine> open(id, AcDb::kForWrite);
    EXPECT_EQ(open->layerId(), drawing.database.clayer());
    EXPECT_EQ(open->setLayer(L"没有"), Acad::eKeyNotFound);
    EXPECT_EQ(open->setLayer(L"道路"), Acad::eOk);
    EXPECT_EQ(open->setLinetype(L"没有"), Acad::eKeyNotFound);
    EXPECT_EQ(open->setLinetype(AcDbObjectId::kNull), Acad::eNullObjectId);
    EXPECT_EQ(open->setLinetype(L"bylayer"), Acad::eOk);
    EXPECT_EQ(open->setColorIndex(300), Acad::eInvalidInput);
    EXPECT_EQ(open->setLinetypeScale(0), Acad::eInvalidInput);
    AcCmColor named(AcCmEntityColor(1, 2, 3));
    named.setNames(L"红", L"色卡");
    open->setColor(named);
    EXPECT_STREQ(open->color().bookName(), L"色卡");
    open->setColorIndex(1);
    EXPECT_FALSE(open->color().hasColorName());
}

TEST_F(KindTest, GroupsStandInTheOrderOfFiles) {
    using Groups = std::vector<std::string>;
    AcDbLine line({1, 2, 0}, {3, 4, 0});
    EXPECT_EQ(groupsOf(line), (Groups{"100=AcDbEntity", "8=0", "100=AcDbLine", "10=1,2,0", "11=3,4,0"}));
    EXPECT_EQ(groupsOf(line, true),
              (Groups{"100=AcDbEntity", "67=0", "8=0", "100=AcDbLine", "10=1,2,0", "11=3,4,0", "210=0,0,1"}));
    AcDbPolyline polyline;
    polyline.addVertexAt(0, {0, 0}, 1);
    polyline.addVertexAt(1, {2, 0});
    EXPECT_EQ(groupsOf(polyline), (Groups{"100=AcDbEntity", "8=0", "100=AcDbPolyline", "90=2", "70=0", "43=0",
                                          "10=0,0,0", "42=1", "10=2,0,0"}));
    polyline.setWidthsAt(1, 0.5, 0.25);
    EXPECT_EQ(groupsOf(polyline),
              (Groups{"100=AcDbEntity", "8=0", "100=AcDbPolyline", "90=2", "70=0", "10=0,0,0", "40=0", "41=0",
                      "42=1", "10=2,0,0", "40=0.5", "41=0.25"}));
    AcDbArc arc({1, 1, 0}, 2, 0, pi / 4);
    EXPECT_EQ(groupsOf(arc), (Groups{"100=AcDbEntity", "8=0", "100=AcDbCircle", "10=1,1,0", "40=2",
                                     "100=AcDbArc", "50=0", "51=45"}));
    AcDbText text({1, 2, 0}, L"字", drawing.database.standardTextStyle(), 2.5);
    EXPECT_EQ(groupsOf(text), (Groups{"100=AcDbEntity", "8=0", "100=AcDbText", "10=1,2,0", "40=2.5", "1=字",
                                      "100=AcDbText"}));
    EXPECT_EQ(groupsOf(text, true), (Groups{"100=AcDbEntity", "67=0", "8=0", "100=AcDbText", "10=1,2,0",
                                            "40=2.5", "1=字", "50=0", "41=1", "51=0", "7=Standard", "71=0",
                                            "72=0", "11=0,0,0", "210=0,0,1", "100=AcDbText", "73=0"}));
}

TEST_F(KindTest, HostileGroupsEndInAStatus) {
    host::ResbufBuilder builder;
    builder.string(100, L"AcDbEntity").string(8, L"没有这个图层").string(100, L"AcDbPolyline");
    builder.integer(90, 2000000000).point(10, 1, 2).real(42, 0.5).real(40, 1).point(10, 3, 4);
    const host::ResbufList list = builder.release();
    host::ResbufDxfReader reader(&drawing.database, list.get());
    AcDbPolyline polyline;
    ASSERT_EQ(polyline.dxfIn(&reader), Acad::eOk);
    EXPECT_EQ(polyline.numVerts(), 2U);
    EXPECT_EQ(polyline.layerId(), drawing.database.layerZero());
    builder.string(100, L"AcDbEntity").string(100, L"AcDbCircle").point(10, std::nan(""), 2).real(40, 3);
    const host::ResbufList none = builder.release();
    host::ResbufDxfReader second(&drawing.database, none.get());
    AcDbCircle circle;
    EXPECT_EQ(circle.dxfIn(&second), Acad::eInvalidInput);
    builder.integer(70, 8);
    const host::ResbufList other = builder.release();
    host::ResbufDxfReader third(&drawing.database, other.get());
    AcDb2dPolyline heavy;
    EXPECT_EQ(heavy.dxfIn(&third), Acad::eNotThatKindOfClass);
}

} // namespace
