// Hatches that follow their boundaries: what changes with the objects, what gives it up, what undo brings
// back.
#include "commandtest.h"

#include "host/formats/formats.h"

#include <fstream>

namespace {

using commandtest::CommandTest;

class HatchFollowing : public CommandTest {
protected:
    HatchFollowing() { host::setSystemVariable(L"HPNAME", L"SOLID"); }
    AcDbHatch& hatch(std::size_t index = 0) { return *entities<AcDbHatch>().at(index); }
    double area(std::size_t index = 0) {
        const host::ReadAccess access(hatch(index));
        double value = 0.0;
        hatch(index).getArea(value);
        return value;
    }
    AcDbExtents box(std::size_t index = 0) {
        const host::ReadAccess access(hatch(index));
        AcDbExtents extents;
        hatch(index).getGeomExtents(extents);
        return extents;
    }
    bool follows(std::size_t index = 0) { return hatch(index).data().associative; }
    template <class T>
    std::vector<AcDbObjectId> reactors(std::size_t index = 0) {
        return entities<T>().at(index)->persistentReactors();
    }
    void rectangleWithCircle() {
        run("RECTANG 0,0 20,10\nCIRCLE 5,5 2\n-HATCH P SOLID 15,5\n\n");
        ASSERT_TRUE(follows());
    }
    /// Four lines that reach over the corners of a square of 10.
    void crossedLines() {
        run("LINE -5,0 15,0\n\nLINE 10,-5 10,15\n\nLINE 15,10 -5,10\n\nLINE 0,15 0,-5\n\n-HATCH 5,5\n\n");
        ASSERT_TRUE(follows());
        ASSERT_NEAR(area(), 100.0, 1e-9);
    }
    bool lostAssociation() { return showed(L"关联性已删除"); }
};

TEST_F(HatchFollowing, LoopsAreMadeAnewAndUndoneTogether) {
    rectangleWithCircle();
    const double whole = 200.0 - 4.0 * host::pi;
    EXPECT_NEAR(area(), whole, 1e-9);
    run("MOVE W 2,2 8,8\n\n0,0 100,0\n");
    EXPECT_NEAR(area(), 200.0 + 4.0 * host::pi, 1e-9) << "outside it is no island, it is hatched itself";
    run("U\n");
    EXPECT_NEAR(area(), whole, 1e-9);
    run("SCALE W 2,2 8,8\n\n5,5 2\n");
    EXPECT_NEAR(area(), 200.0 - 16.0 * host::pi, 1e-9);
    run("U\nSTRETCH C 25,15 15,-5\n\n0,0 10,0\n");
    EXPECT_NEAR(area(), 300.0 - 4.0 * host::pi, 1e-9);
    EXPECT_EQ(hatch().data().loops.size(), 2u);
    run("U\n");
    EXPECT_NEAR(area(), whole, 1e-9);
    EXPECT_NEAR(box().maxPoint().x, 20.0, 1e-9);
    run("REDO\n");
    EXPECT_NEAR(box().maxPoint().x, 30.0, 1e-9);
    EXPECT_TRUE(follows());
    EXPECT_EQ(reactors<AcDbPolyline>(), std::vector{hatch().objectId()});
}

TEST_F(HatchFollowing, TracedBoundariesAreFoundAgain) {
    crossedLines();
    run("MOVE 10,-4\n\n0,0 5,0\n");
    EXPECT_NEAR(area(), 150.0, 1e-9);
    run("TRIM\n\n-4,0 -4,10\n\n");
    EXPECT_NEAR(area(), 150.0, 1e-9);
    EXPECT_TRUE(follows());
    run("MOVE ALL\nR\nL\n\n0,0 1000,1000\n");
    EXPECT_NEAR(area(), 150.0, 1e-9);
    EXPECT_NEAR(box().minPoint().x, 1000.0, 1e-9);
    run("ROTATE ALL\nR\nL\n\n1000,1000 90\n");
    EXPECT_NEAR(area(), 150.0, 1e-6);
    EXPECT_NEAR(box().maxPoint().y, 1015.0, 1e-6);
    // A side that is taken away leaves the area open.
    run("MOVE 1000,1012\n\n0,0 500,0\n");
    EXPECT_TRUE(lostAssociation());
    EXPECT_FALSE(follows());
    EXPECT_NEAR(area(), 150.0, 1e-6) << "it stays as it was";
    EXPECT_TRUE(reactors<AcDbLine>(0).empty());
    run("U\n");
    EXPECT_TRUE(follows());
    EXPECT_EQ(reactors<AcDbLine>(0).size(), 1u);
}

TEST_F(HatchFollowing, ErasedBoundariesAndHatchesThatGoAway) {
    rectangleWithCircle();
    run("ERASE W 2,2 8,8\n\n");
    EXPECT_TRUE(lostAssociation());
    EXPECT_FALSE(follows());
    EXPECT_TRUE(reactors<AcDbPolyline>().empty());
    run("U\n");
    EXPECT_TRUE(follows());
    EXPECT_EQ(reactors<AcDbCircle>().size(), 1u);
    // Both erased: nothing to tell.
    run("ERASE ALL\n\n");
    EXPECT_FALSE(lostAssociation());
    run("U\nMOVE L\n\n0,0 3,3\n");
    EXPECT_TRUE(lostAssociation());
    EXPECT_FALSE(follows());
    run("U\nMOVE ALL\n\n0,0 3,3\n");
    EXPECT_FALSE(lostAssociation());
    EXPECT_NEAR(box().minPoint().x, 3.0, 1e-9);
    // Other properties say nothing about the place.
    run("CHPROP ALL\n\nC 1\n\n");
    EXPECT_TRUE(follows());
}

TEST_F(HatchFollowing, CopiesFollowCopiesOnly) {
    rectangleWithCircle();
    run("COPY ALL\n\n0,0 0,50\n\n");
    ASSERT_EQ(entities<AcDbHatch>().size(), 2u);
    EXPECT_TRUE(follows(1));
    EXPECT_EQ(reactors<AcDbPolyline>(1), std::vector{hatch(1).objectId()});
    EXPECT_EQ(reactors<AcDbPolyline>(0), std::vector{hatch(0).objectId()});
    run("MOVE W 2,52 8,58\n\n0,0 100,0\n");
    EXPECT_NEAR(area(1), 200.0 + 4.0 * host::pi, 1e-9);
    EXPECT_NEAR(area(0), 200.0 - 4.0 * host::pi, 1e-9);
    // Alone, or with a part of the boundary, it follows nothing; nor is anything left on the objects.
    run("COPY L\n\n0,0 0,200\n\n");
    EXPECT_FALSE(follows(2));
    run("COPY W 2,2 8,8\n\n0,0 0,-50\n\n");
    EXPECT_TRUE(reactors<AcDbCircle>(2).empty());
    run("UNDO 2\n");
    EXPECT_TRUE(follows(0));
}

TEST_F(HatchFollowing, FilesKeepTheAssociation) {
    crossedLines();
    const std::filesystem::path file = folder() / "a.dxf";
    run("HPASSOC 0\n-HATCH S ALL\n\n\n");
    ASSERT_EQ(entities<AcDbHatch>().size(), 2u);
    EXPECT_FALSE(follows(1));
    EXPECT_NEAR(area(1), 100.0, 1e-9);
    run("ERASE L\n\nHPASSOC 1\n");
    host::writeDxf(database(), file);
    std::ifstream stream(file);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    const std::string handle = host::toUtf8(hatch().handle().toString());
    std::size_t told = 0;
    for (std::size_t at = text.find("{ACAD_REACTORS\r\n330\r\n" + handle); at != std::string::npos;
         at = text.find("{ACAD_REACTORS\r\n330\r\n" + handle, at + 1)) {
        ++told;
    }
    EXPECT_EQ(told, 4u);
    ASSERT_NE(session->openDrawing(file), nullptr);
    EXPECT_TRUE(follows());
    run("MOVE 10,-4\n\n0,0 5,0\n");
    EXPECT_NEAR(area(), 150.0, 1e-9);
}

TEST_F(HatchFollowing, DrawingsOfTheirOwnKeepWhatIsWhole) {
    rectangleWithCircle();
    AcDbObjectIdArray all;
    for (const AcDbEntity* entity : entities()) {
        all.append(entity->objectId());
    }
    for (const bool isWhole : {true, false}) {
        AcDbObjectIdArray written = all;
        if (!isWhole) {
            written.removeAt(1); // without the island
        }
        AcDbDatabase* made = nullptr;
        ASSERT_EQ(database().wblock(made, written, AcGePoint3d::kOrigin), Acad::eOk);
        const std::unique_ptr<AcDbDatabase> output(made);
        const auto* space = host::peek<AcDbBlockTableRecord>(output->modelSpaceId());
        const auto* outer = host::peek<AcDbPolyline>(AcDbObjectId(space->entities().front()));
        const auto* copy = host::peek<AcDbHatch>(AcDbObjectId(space->entities().back()));
        ASSERT_TRUE(outer != nullptr && copy != nullptr);
        EXPECT_EQ(copy->data().associative, isWhole);
        EXPECT_EQ(outer->persistentReactors().size(), isWhole ? 1u : 0u);
        EXPECT_EQ(copy->data().loops.front().sources.size(), isWhole ? 1u : 0u);
    }
}

TEST_F(HatchFollowing, ArcsOfEllipsesAreGoneAlongBackwards) {
    run("ELLIPSE C 0,0 10,0 5\nLINE -20,0 20,0\n\n-HATCH 0,2\n\n");
    EXPECT_NEAR(area(), host::pi * 25.0, 1e-6);
    run("-HATCH 0,-2\n\nMOVE -15,0\n\n0,0 0,1\n");
    EXPECT_TRUE(follows(0) && follows(1)) << host::toUtf8(transcript.shown);
    const double half = std::sqrt(1.0 - 0.04);
    const double cap = 50.0 * (std::acos(0.2) - 0.2 * half);
    EXPECT_NEAR(area(0), cap, 1e-6);
    EXPECT_NEAR(area(1), host::pi * 50.0 - cap, 1e-6);
}

TEST_F(HatchFollowing, ManyHatches) {
    run("RECTANG 0,0 1,1\n-HATCH S L\n\n\n-ARRAY ALL\n\nR 30 30 2 2\n");
    ASSERT_EQ(entities<AcDbHatch>().size(), 900u);
    run("MOVE ALL\n\n0,0 1,0\n");
    EXPECT_FALSE(lostAssociation());
    const std::vector<AcDbHatch*> all = entities<AcDbHatch>();
    EXPECT_TRUE(std::ranges::all_of(all, [](const AcDbHatch* one) { return one->data().associative; }));
}

} // namespace
