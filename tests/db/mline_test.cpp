// Multilines: mitres, justification, caps, cuts, what they explode into.
#include "entitysamples.h"

#include <algorithm>
#include <cmath>

using namespace testing_entities;

namespace {

class MlineTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }

    /// A style with the given offsets, in the dictionary.
    AcDbMlineStyle* style(std::initializer_list<double> offsets) {
        const host::Opened<AcDbDictionary> styles(drawing.database.mLStyleDictionaryId(), AcDb::kForWrite);
        auto* made = new AcDbMlineStyle;
        int index = 0;
        for (const double offset : offsets) {
            EXPECT_EQ(made->addElement(index, offset, AcCmColor(), drawing.database.byLayerLinetype()),
                      Acad::eOk);
        }
        styles->setAt(L"T", made, styleId);
        return made;
    }

    std::unique_ptr<AcDbMline> line(std::initializer_list<AcGePoint3d> points, bool closed = false,
                                    Mline::MlineJustification justification = Mline::kZero) const {
        auto made = std::make_unique<AcDbMline>();
        made->setStyle(styleId);
        made->setJustification(justification);
        for (const AcGePoint3d& point : points) {
            EXPECT_EQ(made->appendSeg(point), Acad::eOk);
        }
        made->setClosedMline(closed);
        return made;
    }

    static std::vector<std::string> pieces(const AcDbMline& line) {
        std::vector<host::CurvePiece> all;
        line.curvePieces(all);
        std::vector<std::string> told;
        for (const host::CurvePiece& piece : all) {
            char text[120];
            const auto plain = [](double value) { return std::fabs(value) < 1e-9 ? 0.0 : value; };
            const AcGePoint3d from = piece.start();
            const AcGePoint3d to = piece.end();
            std::snprintf(text, sizeof text, "%s %.4g,%.4g %.4g,%.4g", piece.isArc() ? "arc" : "line",
                          plain(from.x), plain(from.y), plain(to.x), plain(to.y));
            told.emplace_back(text);
        }
        return told;
    }

    Drawing drawing;
    AcDbObjectId styleId;
};

using Told = std::vector<std::string>;

TEST_F(MlineTest, MitresByJustification) {
    style({1, -1})->close();
    const std::initializer_list<AcGePoint3d> corner{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}};
    EXPECT_EQ(pieces(*line(corner)),
              (Told{"line 0,1 9,1", "line 9,1 9,10", "line 0,-1 11,-1", "line 11,-1 11,10"}));
    EXPECT_EQ(pieces(*line(corner, false, Mline::kTop)),
              (Told{"line 0,0 10,0", "line 10,0 10,10", "line 0,-2 12,-2", "line 12,-2 12,10"}));
    EXPECT_EQ(pieces(*line(corner, false, Mline::kBottom)),
              (Told{"line 0,2 8,2", "line 8,2 8,10", "line 0,0 10,0", "line 10,0 10,10"}));
    const auto scaled = line(corner);
    scaled->setScale(-2);
    EXPECT_EQ(pieces(*scaled),
              (Told{"line 0,-2 12,-2", "line 12,-2 12,10", "line 0,2 8,2", "line 8,2 8,10"}));
    const auto obtuse = line({{0, 0, 0}, {10, 0, 0}, {20, 10, 0}});
    // At a turn of 45 degrees the outer element meets its mitre tan(22.5) further on.
    EXPECT_NEAR(obtuse->miterAt(1).dotProduct(AcGeVector3d(0, 1, 0)), std::cos(host::pi / 8), 1e-12);
    EXPECT_EQ(pieces(*obtuse)[2], "line 0,-1 10.41,-1");
}

TEST_F(MlineTest, ClosedOnesMitreEverywhereAndHaveNoCaps) {
    AcDbMlineStyle* own = style({1, -1});
    own->setStartSquareCap(true);
    own->setShowMiters(true);
    own->close();
    EXPECT_EQ(pieces(*line({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}, true)).size(), 6U + 3U);
    const Told square = pieces(*line({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, true));
    EXPECT_EQ(square[0], "line 1,1 9,1");
    EXPECT_EQ(square[3], "line 1,9 1,1");
    EXPECT_EQ(square[4], "line -1,-1 11,-1");
    EXPECT_EQ(square[8], "line 1,1 -1,-1") << "the joint of the first corner";
}

TEST_F(MlineTest, Caps) {
    AcDbMlineStyle* own = style({2, 1, 0, -1, -2});
    own->setStartSquareCap(true);
    own->setEndRoundCap(true);
    own->setEndInnerArcs(true);
    own->close();
    const std::initializer_list<AcGePoint3d> points{{0, 0, 0}, {10, 0, 0}};
    auto made = line(points);
    const Told all = pieces(*made);
    EXPECT_EQ(Told(all.begin() + 5, all.end()), (Told{"line 0,2 0,-2", "arc 10,2 10,-2", "arc 10,1 10,-1"}));
    AcDbExtents box;
    ASSERT_EQ(made->getGeomExtents(box), Acad::eOk);
    EXPECT_NEAR(box.maxPoint().x, 12, 1e-9) << "arcs bulge away";
    EXPECT_NEAR(box.minPoint().x, 0, 1e-9);
    made->setSupressEndCaps(true);
    EXPECT_EQ(pieces(*made).size(), 6U);
    {
        const host::Opened<AcDbMlineStyle> open(styleId, AcDb::kForWrite);
        EXPECT_EQ(open->setStartAngle(host::pi / 4), Acad::eOk);
        EXPECT_EQ(open->setEndAngle(host::pi / 90), Acad::eInvalidInput);
    }
    EXPECT_EQ(pieces(*line(points))[0], "line 2,2 10,2") << "a slanted start";
    EXPECT_EQ(pieces(*line(points))[4], "line -2,-2 10,-2");
}

TEST_F(MlineTest, CutsStayWithTheirSegments) {
    style({1, -1})->close();
    auto made = line({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    AcGeDoubleArray cuts, fill;
    made->getParametersAt(0, 0, cuts, fill);
    cuts.append(3);
    cuts.append(5);
    ASSERT_EQ(made->setParametersAt(0, 0, cuts), Acad::eOk);
    EXPECT_EQ(pieces(*made)[0], "line 0,1 3,1");
    EXPECT_EQ(pieces(*made)[1], "line 5,1 9,1");
    ASSERT_EQ(made->moveVertexAt(2, {10, -10, 0}), Acad::eOk);
    EXPECT_EQ(pieces(*made)[1], "line 5,1 11,1");
    cuts[1] = 9;
    EXPECT_EQ(made->setParametersAt(0, 0, cuts), Acad::eInvalidInput) << "not in order";
    EXPECT_EQ(made->setParametersAt(7, 0, cuts), Acad::eInvalidIndex);
    EXPECT_EQ(made->appendSeg({10, -10, 0}), Acad::eOk) << "a vertex that is still to be moved";
    AcGePoint3d removed;
    EXPECT_EQ(made->removeLastSeg(removed), Acad::eOk);
}

TEST_F(MlineTest, ExplodesWithTheLooksOfItsElements) {
    AcDbMlineStyle* own = style({1, -1});
    AcCmColor red;
    red.setColorIndex(1);
    own->setElement(1, red, drawing.database.continuousLinetype());
    own->setStartRoundCap(true);
    own->close();
    auto made = line({{0, 0, 0}, {10, 0, 0}});
    made->setColorIndex(5);
    AcDbVoidPtrArray parts;
    ASSERT_EQ(made->explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 3);
    std::vector<std::unique_ptr<AcDbEntity>> owned;
    for (void* part : parts) {
        owned.emplace_back(static_cast<AcDbEntity*>(part));
    }
    EXPECT_EQ(owned[0]->colorIndex(), 5);
    EXPECT_EQ(owned[1]->colorIndex(), 1);
    EXPECT_EQ(owned[1]->linetypeId(), drawing.database.continuousLinetype());
    const auto* arc = AcDbArc::cast(owned[2].get());
    ASSERT_NE(arc, nullptr);
    EXPECT_NEAR(arc->radius(), 1, 1e-12);
    AcGePoint3d middle;
    double start = 0, end = 0;
    arc->getStartParam(start);
    arc->getEndParam(end);
    arc->getPointAtParam((start + end) / 2, middle);
    EXPECT_NEAR(middle.x, -1, 1e-9);
}

TEST_F(MlineTest, MirroredOnesCanBeLaidOutAnew) {
    style({2, 1, -0.5})->close();
    auto made = line({{0, 0, 0}, {10, 2, 0}, {15, 9, 0}}, false, Mline::kTop);
    const AcGeMatrix3d mirror =
        AcGeMatrix3d::mirroring(AcGePlane({3, 1, 0}, AcGeVector3d(1, 0.5, 0).normal()));
    ASSERT_EQ(made->transformBy(mirror), Acad::eOk);
    const Told before = pieces(*made);
    made->setScale(made->scale());
    EXPECT_EQ(pieces(*made), before);
    EXPECT_LT(made->scale(), 0);
}

} // namespace
