// The index of places against a walk over everything, through changes of all kinds; exact selection of
// curves.
#include "host.h"

#include "host/ed/plansink.h"

#include <random>

namespace {

using edtest::HostTest;
using host::CurvePiece;

constexpr double pi = 3.14159265358979323846;

class Places : public HostTest {
protected:
    double number(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(mRandom);
    }
    std::size_t index(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(mRandom);
    }
    AcGePoint3d place() { return {number(0, 1000), number(0, 1000), number(-5, 5)}; }

    AcDbObjectId makeBlock(const wchar_t* name) {
        AcDbBlockTable* table = nullptr;
        database().getSymbolTable(table, AcDb::kForWrite);
        auto* block = new AcDbBlockTableRecord;
        block->setName(name);
        AcDbObjectId id;
        table->add(id, block);
        auto* line = new AcDbLine(AcGePoint3d(-5, 0, 0), AcGePoint3d(5, 3, 0));
        block->appendAcDbEntity(mInBlock, line);
        line->close();
        block->close();
        table->close();
        return id;
    }

    AcDbEntity* makeEntity() {
        const AcGePoint3d at = place();
        switch (index(6)) {
        case 0:
            return new AcDbLine(at, at + AcGeVector3d(number(-50, 50), number(-50, 50), 0));
        case 1:
            return new AcDbCircle(at, AcGeVector3d::kZAxis, number(1, 40));
        case 2:
            return new AcDbArc(at, number(1, 40), number(0, 6), number(0, 6));
        case 3: {
            auto* polyline = new AcDbPolyline;
            for (unsigned i = 0; i < 5; ++i) {
                polyline->addVertexAt(i, AcGePoint2d(at.x + number(-30, 30), at.y + number(-30, 30)),
                                      number(-1, 1));
            }
            return polyline;
        }
        case 4: {
            auto* text = new AcDbText(at, L"文字", AcDbObjectId(), number(1, 8), number(0, 6));
            return text;
        }
        default:
            return new AcDbBlockReference(at, mBlock);
        }
    }
    void addSome(int count) {
        for (; count > 0; --count) {
            mAll.push_back(add(makeEntity()));
        }
    }

    void changeOne() {
        const AcDbObjectId id = mAll[index(mAll.size())];
        switch (index(5)) {
        case 0:
            if (const host::Opened<AcDbEntity> entity(id, AcDb::kForWrite); entity) {
                entity->transformBy(AcGeMatrix3d::translation({number(-200, 200), number(-200, 200), 0}));
            }
            break;
        case 1:
            if (const host::Opened<AcDbEntity> entity(id, AcDb::kForWrite, true); entity) {
                entity->erase(!entity->isErased());
            }
            break;
        case 2:
            addSome(3);
            break;
        case 3:
            if (AcDbEntity* entity = nullptr; acdbOpenObject(entity, id, AcDb::kForWrite) == Acad::eOk) {
                entity->transformBy(AcGeMatrix3d::translation({500, 0, 0}));
                entity->cancel();
            }
            break;
        default:
            if (const host::Opened<AcDbEntity> line(mInBlock, AcDb::kForWrite); line) {
                line->transformBy(AcGeMatrix3d::scaling(number(0.8, 1.3), AcGePoint3d::kOrigin));
            }
        }
    }

    /// What several selections find, by the installed query.
    std::vector<std::vector<AcDbObjectId>> selections(unsigned seed) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> coordinate(-50, 1050);
        const auto point = [&] { return AcGePoint2d(coordinate(random), coordinate(random)); };
        std::vector<std::vector<AcDbObjectId>> found;
        for (const auto kind : {host::SelectionShape::Kind::window, host::SelectionShape::Kind::crossing}) {
            const AcGePoint2d a = point();
            const AcGePoint2d b = point();
            found.push_back(host::entitiesIn({kind, {a, {b.x, a.y}, b, {a.x, b.y}}}));
            found.push_back(host::entitiesIn({kind, {point(), point(), point(), point(), point()}}));
        }
        found.push_back(host::entitiesIn({host::SelectionShape::Kind::fence, {point(), point(), point()}}));
        for (int i = 0; i < 5; ++i) {
            const AcGePoint2d at = point();
            found.push_back(host::entitiesAt({at.x, at.y, 0}, 10.0));
        }
        return found;
    }

    void compare(unsigned seed) {
        const auto indexed = selections(seed);
        host::setSpatialQuery(host::makeBlockWalk());
        const auto walked = selections(seed);
        host::setSpatialQuery(nullptr);
        EXPECT_EQ(indexed, walked) << seed;
    }

    std::mt19937 mRandom{20};
    AcDbObjectId mInBlock;
    AcDbObjectId mBlock = makeBlock(L"符号");
    std::vector<AcDbObjectId> mAll;
};

TEST_F(Places, TheIndexFindsWhatAWalkFinds) {
    addSome(300);
    host::UndoLog& log = database().undoLog();
    for (unsigned round = 0; round < 60; ++round) {
        log.beginCommand(L"CHANGE");
        for (int i = 0; i < 5; ++i) {
            changeOne();
        }
        log.endCommand();
        if (round % 4 == 1) {
            log.undo(static_cast<int>(1 + index(3)));
        }
        if (round % 8 == 5) {
            log.redo(1);
        }
        compare(round);
    }
    log.undo(1000);
    compare(1000);
}

TEST_F(Places, ManyChangesAtOnceAndStylesAreSeen) {
    addSome(6000);
    compare(1);
    for (const AcDbObjectId id : mAll) {
        const host::Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        entity->transformBy(AcGeMatrix3d::translation({100, 50, 0}));
    }
    compare(2);
    {
        const host::Opened<AcDbTextStyleTableRecord> style(database().textstyle(), AcDb::kForWrite);
        style->setFileName(L"txt.shx");
        style->setXScale(3.0);
    }
    const auto* space = host::peek<AcDbBlockTableRecord>(database().modelSpaceId());
    EXPECT_EQ(space->entities().size(), mAll.size());
    compare(3);
    // While an entity is open it may go on changing between questions.
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenObject(entity, mAll[7], AcDb::kForWrite), Acad::eOk);
    for (unsigned i = 0; i < 3; ++i) {
        entity->transformBy(AcGeMatrix3d::translation({30, 30, 0}));
        compare(10 + i);
    }
    entity->close();
}

TEST_F(Places, ExtentsFollowTheDrawing) {
    const auto corner = [](const wchar_t* name) {
        return asPnt3d(host::systemVariable(name)->resval.rpoint);
    };
    EXPECT_EQ(corner(L"EXTMIN").x, 1e20);
    const AcDbObjectId first = addLine(0, 0, 10, 5);
    const AcDbObjectId second = addLine(-3, 1, 20, 2);
    EXPECT_EQ(corner(L"EXTMIN"), AcGePoint3d(-3, 0, 0));
    EXPECT_EQ(corner(L"EXTMAX"), AcGePoint3d(20, 5, 0));
    host::Opened<AcDbEntity>(second, AcDb::kForWrite)->erase();
    EXPECT_EQ(corner(L"EXTMIN"), AcGePoint3d(0, 0, 0));
    EXPECT_EQ(corner(L"EXTMAX"), AcGePoint3d(10, 5, 0));
    const AcDbObjectId frozen = addLayer(L"冻结");
    const AcDbObjectId third = addLine(0, 0, 100, 100, L"冻结");
    EXPECT_EQ(corner(L"EXTMAX").x, 100);
    {
        const host::Opened<AcDbLayerTableRecord> layer(frozen, AcDb::kForWrite);
        layer->setIsFrozen(true);
    }
    EXPECT_EQ(corner(L"EXTMAX").x, 10);
    host::Opened<AcDbEntity>(first, AcDb::kForWrite)->setVisibility(AcDb::kInvisible);
    EXPECT_EQ(corner(L"EXTMIN").x, 1e20);
    EXPECT_FALSE(third.isErased());
}

// Curves in shapes.

std::string selectedBy(host::SelectionShape::Kind kind, std::vector<AcGePoint2d> points,
                       const CurvePiece& piece) {
    const host::SelectionShape shape{kind, std::move(points)};
    host::ShapeSink sink(shape);
    sink.start();
    sink.piece(piece);
    return sink.isSelected() ? "yes" : "no";
}

TEST(PlanCurves, ArcsAreTestedAsArcs) {
    using Kind = host::SelectionShape::Kind;
    const CurvePiece circle = CurvePiece::arc({0, 0, 0}, {1000, 0, 0}, {0, 1000, 0}, 0, 2 * pi);
    const auto box = [](double x1, double y1, double x2, double y2) {
        return std::vector<AcGePoint2d>{{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}};
    };
    // A window of a millionth beside the curve, inside and outside of it.
    const double c = 1000 * std::cos(0.3);
    const double s = 1000 * std::sin(0.3);
    EXPECT_EQ(selectedBy(Kind::crossing, box(c - 1e-6, s - 1e-6, c + 1e-6, s + 1e-6), circle), "yes");
    EXPECT_EQ(selectedBy(Kind::crossing, box(c + 1e-6, s + 1e-6, c + 3e-6, s + 3e-6), circle), "no");
    EXPECT_EQ(selectedBy(Kind::crossing, box(c - 3e-6, s - 3e-6, c - 1e-6, s - 1e-6), circle), "no");
    EXPECT_EQ(selectedBy(Kind::fence, {{999.999999, -1}, {999.999999, 1}}, circle), "yes");
    EXPECT_EQ(selectedBy(Kind::fence, {{1000.000001, -1}, {1000.000001, 1}}, circle), "no");
    const CurvePiece half = CurvePiece::arc({0, 0, 0}, {10, 0, 0}, {0, 10, 0}, 0, pi);
    EXPECT_EQ(selectedBy(Kind::window, {{-10, 0}, {10, 0}, {10, 10}, {-10, 10}}, half), "yes");
    EXPECT_EQ(selectedBy(Kind::window, {{-10, 0}, {10, 0}, {10, 9.9999999}, {-10, 9.9999999}}, half), "no");
    // Ends and middle inside, but a spike of the polygon cuts in.
    EXPECT_EQ(selectedBy(Kind::window,
                         {{-11, -1}, {11, -1}, {11, 11}, {5, 11}, {4.9, 8.5}, {4.8, 11}, {-11, 11}}, half),
              "no");
    EXPECT_EQ(selectedBy(Kind::fence, {{0, -5}, {0, 5}}, half), "no");
    EXPECT_EQ(selectedBy(Kind::fence, {{0, -5}, {0, 10}}, half), "yes");
}

TEST(PlanCurves, LinesThatLeaveAConcaveWindowTwice) {
    using Kind = host::SelectionShape::Kind;
    const std::vector<AcGePoint2d> comb{{0, 0},  {10, 0}, {10, 10}, {8, 10}, {7.5, 1},
                                        {7, 10}, {3, 10}, {2.5, 1}, {2, 10}, {0, 10}};
    const auto line = [](double x1, double y1, double x2, double y2) {
        return CurvePiece::line({x1, y1, 0}, {x2, y2, 0});
    };
    EXPECT_EQ(selectedBy(Kind::window, comb, line(1, 5, 9, 5)), "no");
    EXPECT_EQ(selectedBy(Kind::window, comb, line(1, 0.5, 9, 0.5)), "yes");
    EXPECT_EQ(selectedBy(Kind::window, comb, line(0, 0, 10, 0)), "yes");
    EXPECT_EQ(selectedBy(Kind::crossing, comb, line(2.4, 9, 2.6, 9)), "no");
}

} // namespace
