// The UCS command, points in turned coordinate systems, and the transforms between the systems.
#include "host.h"

#include <random>

namespace {

using edtest::HostTest;

constexpr double pi = 3.14159265358979323846;

class Ucs : public HostTest {
protected:
    Ucs() { edtest::registerCommands(); }
    /// Origin and X and Y axes of the current system, rounded.
    static std::wstring now() {
        const host::UcsFrame ucs = host::currentUcs();
        const auto text = [](double x, double y, double z) {
            const auto rounded = [](double value) { return std::round(value * 1e4) / 1e4 + 0.0; };
            return host::formatted(L"%g,%g,%g", rounded(x), rounded(y), rounded(z));
        };
        return text(ucs.origin.x, ucs.origin.y, ucs.origin.z) + L" " + text(ucs.x.x, ucs.x.y, ucs.x.z) +
               L" " + text(ucs.y.x, ucs.y.y, ucs.y.z);
    }
    std::wstring after(const std::string& script) {
        EXPECT_TRUE(run(script)) << script;
        return now();
    }
    /// What was drawn last, for reading.
    template <class Entity>
    std::unique_ptr<Entity> last() {
        ads_name name;
        AcDbObjectId id;
        acdbEntLast(name);
        acdbGetObjectId(id, name);
        const auto* entity = host::peek<Entity>(id);
        if (entity == nullptr) {
            return nullptr;
        }
        const host::ReadAccess access(*entity);
        return std::unique_ptr<Entity>(Entity::cast(entity->clone()));
    }
};

TEST_F(Ucs, EveryWayToSetIt) {
    const std::wstring world = L"0,0,0 1,0,0 0,1,0";
    EXPECT_EQ(after("UCS\n10,5\n\n"), L"10,5,0 1,0,0 0,1,0");
    EXPECT_EQ(after("UCS\nZ\n90\n"), L"10,5,0 0,1,0 -1,0,0");
    EXPECT_EQ(after("UCS\n_P\n"), L"10,5,0 1,0,0 0,1,0");
    EXPECT_EQ(after("UCS\n_X\n\n"), L"10,5,0 1,0,0 0,0,1");
    EXPECT_EQ(after("UCS\n\n"), world);
    EXPECT_EQ(after("UCS\nY\n90\n"), L"0,0,0 0,0,-1 0,1,0");
    EXPECT_EQ(after("UCS\n_World\n"), world);
    // Origin, a point on X, one in the plane.
    EXPECT_EQ(after("UCS\n1,1\n1,5\n-3,9\n"), L"1,1,0 0,1,0 -1,0,0");
    EXPECT_EQ(after("UCS\n3\n*0,0\n*0,0,5\n*7,0,0\n"), L"0,0,0 0,0,1 1,0,0");
    EXPECT_EQ(after("UCS\nW\nUCS\nZA\n1,2,3\n1,2,8\n"), L"1,2,3 1,0,0 0,1,0");
    EXPECT_EQ(after("UCS\nM\nZ\n4\n"), L"1,2,7 1,0,0 0,1,0");
    EXPECT_EQ(after("UCS\nN\nX\n90\n"), L"1,2,7 1,0,0 0,0,1");
    EXPECT_EQ(after("UCS\nV\n"), L"1,2,7 1,0,0 0,1,0");
    EXPECT_EQ(after("UCS\nW\n"), world);
    // Points on one line give no plane; nothing changes.
    EXPECT_EQ(after("UCS\n0,0\n1,0\n2,0\n"), world);
    EXPECT_NE(transcript.shown.find(L"所选的点不能定义坐标系。"), std::wstring::npos);
    EXPECT_EQ(after("UCS\n^C\n"), world);
}

TEST_F(Ucs, FromObjects) {
    addLine(0, 0, 0, 10);
    add(new AcDbCircle(AcGePoint3d(50, 0, 0), AcGeVector3d::kZAxis, 10));
    auto* tilted = new AcDbArc(AcGePoint3d(0, 100, 0), 10, 0, pi);
    add(tilted);
    EXPECT_EQ(after("UCS\nOB\n0,8\n"), L"0,10,0 0,-1,0 1,0,0");
    EXPECT_EQ(after("UCS\nW\nUCS\nOB\n0,2\n"), L"0,0,0 0,1,0 -1,0,0");
    EXPECT_EQ(after("UCS\nW\nUCS\nOB\n50,10\n"), L"50,0,0 0,1,0 -1,0,0");
    EXPECT_EQ(after("UCS\nW\nUCS\nOB\n-9.9499,101\n"), L"0,100,0 -1,0,0 0,-1,0");
    EXPECT_EQ(after("UCS\nW\nUCS\nOB\n500,500\n"), L"0,0,0 1,0,0 0,1,0");
}

TEST_F(Ucs, NamedOnesAreSavedInTheDrawing) {
    EXPECT_EQ(after("UCS\n1,2\n\nUCS\nNA\nS\n塔位\nUCS\nW\n"), L"0,0,0 1,0,0 0,1,0");
    EXPECT_EQ(after("UCS\nR\n塔位\n"), L"1,2,0 1,0,0 0,1,0");
    EXPECT_EQ(host::systemVariableText(L"UCSNAME"), L"塔位");
    EXPECT_TRUE(run("UCS\nW\nUCS\n?\n*\n"));
    EXPECT_NE(transcript.shown.find(L"当前 UCS 名称: *世界*"), std::wstring::npos);
    EXPECT_NE(transcript.shown.find(L"\"塔位\""), std::wstring::npos);
    const std::filesystem::path file = folder() / "ucs.dxf";
    ASSERT_EQ(database().saveAs(host::toWindowsPath(file).c_str()), Acad::eOk);
    ASSERT_NE(session->openDrawing(file), nullptr);
    EXPECT_EQ(after("UCS\nR\n塔位\n"), L"1,2,0 1,0,0 0,1,0");
    EXPECT_EQ(after("UCS\nD\n塔位,没有\nUCS\nR\n塔位\n"), L"1,2,0 1,0,0 0,1,0");
    EXPECT_NE(transcript.shown.find(L"已删除 1 个 UCS 名称。"), std::wstring::npos);
    EXPECT_NE(transcript.shown.find(L"找不到 UCS \"塔位\"。"), std::wstring::npos);
    database().undoLog().undo(1);
    EXPECT_EQ(host::peek<AcDbUCSTable>(database().UCSTableId())->has(L"塔位"), true);
}

TEST_F(Ucs, CommandsDrawInIt) {
    EXPECT_TRUE(run("UCS\n100,0\n\nUCS\nZ\n90\nLINE\n1,2\n@5,0\n\n"));
    auto line = last<AcDbLine>();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->startPoint(), AcGePoint3d(98, 1, 0));
    EXPECT_EQ(line->endPoint(), AcGePoint3d(98, 6, 0));
    EXPECT_TRUE(run("MOVE\nL\n\n0,0\n0,10\n"));
    EXPECT_EQ(last<AcDbLine>()->startPoint(), AcGePoint3d(88, 1, 0));
    EXPECT_TRUE(run("COPY\nL\n\n0,0\n10,0\n\n"));
    EXPECT_EQ(last<AcDbLine>()->startPoint(), AcGePoint3d(88, 11, 0));
    EXPECT_TRUE(run("UCS\nX\n90\nCIRCLE\n0,0\n4\n"));
    const auto circle = last<AcDbCircle>();
    ASSERT_NE(circle, nullptr);
    EXPECT_TRUE(circle->normal().isEqualTo(AcGeVector3d(1, 0, 0)));
    EXPECT_EQ(circle->center(), AcGePoint3d(100, 0, 0));
    EXPECT_TRUE(run("PLINE\n0,0\n3,0\n3,4\n\n"));
    AcGePoint3d end;
    const auto polyline = last<AcDbPolyline>();
    ASSERT_NE(polyline, nullptr);
    polyline->getEndPoint(end);
    EXPECT_TRUE(end.isEqualTo(AcGePoint3d(100, 3, 4)));
    EXPECT_TRUE(run("ARC\n1,0\n0,1\n-1,0\n"));
    const auto arc = last<AcDbArc>();
    ASSERT_NE(arc, nullptr);
    arc->getStartPoint(end);
    EXPECT_TRUE(end.isEqualTo(AcGePoint3d(100, 1, 0)));
    EXPECT_TRUE(run("TEXT\n2,3\n5\n0\n文字\n\n"));
    const auto text = last<AcDbText>();
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(text->position().isEqualTo(AcGePoint3d(100, 2, 3)));
    EXPECT_TRUE(text->normal().isEqualTo(AcGeVector3d(1, 0, 0)));
    // What was the last point stays in its place when the system changes.
    EXPECT_TRUE(run("LINE\n1,1\n2,2\n\nUCS\nW\nLINE\n@\n@1,0\n\n"));
    EXPECT_EQ(last<AcDbLine>()->startPoint(), AcGePoint3d(100, 2, 2));
}

TEST_F(Ucs, TransformsThereAndBack) {
    std::mt19937 random(4);
    std::uniform_real_distribution<double> number(-1000, 1000);
    for (int i = 0; i < 200; ++i) {
        const AcGeVector3d x = AcGeVector3d(number(random), number(random), number(random)).normal();
        const AcGeVector3d z = x.crossProduct(AcGeVector3d(number(random), number(random), number(random)));
        if (z.isZeroLength()) {
            continue;
        }
        host::setCurrentUcs(
            {{number(random), number(random), number(random)}, x, z.normal().crossProduct(x), {}});
        const ads_point point = {number(random), number(random), number(random)};
        const ads_point normal = {number(random), number(random), number(random)};
        ads_point there;
        ads_point back;
        for (const bool vector : {false, true}) {
            acdbUcs2Wcs(point, there, vector);
            acdbWcs2Ucs(there, back, vector);
            EXPECT_NEAR(acutDistance(point, back), 0.0, 1e-8);
            acdbUcs2Ecs(point, there, normal, vector);
            acdbEcs2Ucs(there, back, normal, vector);
            EXPECT_NEAR(acutDistance(point, back), 0.0, 1e-8);
            // By way of the world.
            ads_point world;
            acdbUcs2Wcs(point, world, vector);
            acdbWcs2Ecs(world, back, normal, vector);
            EXPECT_NEAR(acutDistance(there, back), 0.0, 1e-8);
        }
        resbuf from{};
        resbuf to{};
        from.restype = to.restype = RTSHORT;
        from.resval.rint = 1;
        acdbUcs2Wcs(point, there, false);
        ASSERT_EQ(acedTrans(point, &from, &to, 0, back), RTNORM);
        EXPECT_NEAR(acutDistance(there, back), 0.0, 1e-9);
        to.resval.rint = 2;
        EXPECT_EQ(acedTrans(point, &from, &to, 0, back), RTNORM);
        to.resval.rint = 4;
        EXPECT_EQ(acedTrans(point, &from, &to, 0, back), RTERROR);
    }
}

} // namespace
