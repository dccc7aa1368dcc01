// Object snap by hand-computed points, what may be typed before a point, and the filters points go through.
#include "host.h"

#include "host/ed/osnap.h"

namespace {

using edtest::HostTest;

constexpr double pi = 3.14159265358979323846;

class Snaps : public HostTest {
protected:
    Snaps() {
        host::setSystemVariable(L"OSMODE", 0);
        addLine(0, 0, 10, 0);
        addLine(5, -5, 5, 5);
        add(new AcDbCircle(AcGePoint3d(40, 0, 0), AcGeVector3d::kZAxis, 10));
        add(new AcDbArc(AcGePoint3d(80, 0, 0), 10, 0, pi / 2));
        auto* polyline = new AcDbPolyline;
        polyline->addVertexAt(0, AcGePoint2d(0, 50), 1.0); // a half circle below the chord
        polyline->addVertexAt(1, AcGePoint2d(20, 50));
        polyline->addVertexAt(2, AcGePoint2d(20, 80));
        add(polyline);
        add(new AcDbPoint(AcGePoint3d(100, 50, 7)));
        add(new AcDbText(AcGePoint3d(120, 50, 0), L"文字", AcDbObjectId(), 5, 0));
        add(new AcDbLine(AcGePoint3d(150, 0, 0), AcGePoint3d(170, 0, 0)));
        add(new AcDbLine(AcGePoint3d(160, -5, 9), AcGePoint3d(160, 5, 9)));
    }

    ~Snaps() override {
        host::setSystemVariable(L"OSMODE", 4133);
        host::setSystemVariable(L"OSNAPCOORD", 2);
    }

    /// The answer to a question for a point (base 0,30): "x,y,z", "-" for Escape.
    std::wstring point(const std::string& script) {
        static std::wstring answered;
        acedRegCmds->addCommand(L"EDTEST", L"T_POINT", L"T_POINT", 0, [] {
            ads_point value;
            const ads_point base = {0, 30, 0};
            const int code = acedGetPoint(base, L"\nP: ", value);
            answered = code == RTNORM ? host::formatted(L"%.4g,%.4g,%.4g", value[0] + 0.0, value[1] + 0.0,
                                                        value[2] + 0.0)
                                      : L"-";
        });
        run("T_POINT\n" + script + "\n");
        acedRegCmds->removeGroup(L"EDTEST");
        return answered;
    }
};

TEST_F(Snaps, EveryMode) {
    const struct {
        const char* script;
        const wchar_t* point;
    } rows[] = {
        {"_end 8,0", L"10,0,0"},
        {"端点 2,0", L"0,0,0"},
        {"_ENDPOINT 20,78", L"20,80,0"},
        {"mid 8,0", L"5,0,0"},
        {"_mid 20,70", L"20,65,0"},
        {"_mid 10,40", L"10,40,0"},
        {"_cen 50,0", L"40,0,0"},
        {"圆心 90,0", L"80,0,0"},
        {"_nod 100,50", L"100,50,7"},
        {"_qua 49,4.3589", L"50,0,0"},
        {"_quad 88.66,5", L"90,0,0"},
        {"_int 5.2,0", L"5,0,0"},
        {"_ins 121,50", L"120,50,0"},
        {"_per 3,0", L"0,0,0"},
        {"_tan 32.5,-6.6", L"32.52,-6.638,0"},
        {"_tan 44.3,9", L"44.28,9.038,0"},
        {"_nea 3.3,0.2", L"3.3,0,0"},
        {"_app 160.1,0", L"160,0,0"},
        {"_end,_mid 4.6,0", L"5,0,0"},
        {"_end,_nea 9.9,0.1", L"10,0,0"},
        {"_end,_nea 3,0.1", L"3,0,0"},
        {"_none 8.1,0", L"8.1,0,0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(point(row.script), row.point) << row.script;
    }
    EXPECT_EQ(point("_int 160.1,0\n1,1"), L"1,1,0"); // they cross in the view only
    EXPECT_NE(transcript.shown.find(L"未找到指定的捕捉点。"), std::wstring::npos);
}

TEST_F(Snaps, WordsBeforePoints) {
    EXPECT_EQ(point(".x 7,8,9\n1,2,3"), L"7,2,3");
    EXPECT_EQ(point(".XY 7,8,9\n1,2,3"), L"7,8,3");
    EXPECT_NE(transcript.shown.find(L"(需要 Z): 1,2,3"), std::wstring::npos);
    EXPECT_EQ(point(".yz _end 8,0 1,2,3"), L"1,0,0");
    EXPECT_EQ(point("m2p _end 8,0 0,10"), L"5,5,0");
    EXPECT_EQ(point("_from _cen 50,0 @1,2"), L"41,2,0");
    EXPECT_EQ(point("_from 3,3 @2<90"), L"3,5,0");
    EXPECT_EQ(point(".q 1,1"), L"1,1,0");
    EXPECT_EQ(point(".x\n^C\n"), L"-");
    EXPECT_EQ(point("_end\n^C\n"), L"-");
}

TEST_F(Snaps, RunningModesAreForTheCursor) {
    host::setSystemVariable(L"OSMODE", 1);
    EXPECT_EQ(point("9.8,0"), L"9.8,0,0");
    host::setSystemVariable(L"OSNAPCOORD", 0);
    EXPECT_EQ(point("9.8,0"), L"10,0,0");
    EXPECT_EQ(point("_none 9.8,0"), L"9.8,0,0");
    EXPECT_EQ(point("50,30"), L"50,30,0");
    host::setSystemVariable(L"OSMODE", 16385);
    EXPECT_EQ(point("9.8,0"), L"9.8,0,0");
    host::setSystemVariable(L"OSNAPCOORD", 2);
}

TEST_F(Snaps, SnapsInATurnedUcs) {
    database().setUcs(AcGePoint3d(100, 0, 0), AcGeVector3d(0, 1, 0), AcGeVector3d(-1, 0, 0));
    // World 8,0 is 0,92 here; the end at world 10,0 is 0,90.
    EXPECT_EQ(point("_end 0,92"), L"0,90,0");
    EXPECT_EQ(point("_cen *50,0"), L"0,60,0");
}

/// Moves every point up, and counts what it sees.
struct Lift : AcEdInputPointFilter {
    Acad::ErrorStatus processInputPoint(const AcEdInputPoint& input,
                                        AcEdInputPointFilterResult& output) override {
        snapped += (input.history() & AcEdInputPointManager::eOsnapped) != 0 ? 1 : 0;
        ++seen;
        output.setNewPoint(input.computedPoint() + AcGeVector3d(0, 0, 1));
        return Acad::eOk;
    }
    int seen = 0;
    int snapped = 0;
};
struct Watch : AcEdInputPointMonitor {
    Acad::ErrorStatus monitorInputPoint(const AcEdInputPoint& input, AcEdInputPointMonitorResult&) override {
        last = input.computedPoint();
        return Acad::eOk;
    }
    AcGePoint3d last;
};

TEST_F(Snaps, FiltersChangeAndMonitorsWatchPoints) {
    AcEdInputPointManager& manager = *curDoc()->inputPointManager();
    Lift lift;
    Watch watch;
    EXPECT_EQ(manager.registerPointFilter(&lift), Acad::eOk);
    EXPECT_EQ(manager.addPointMonitor(&watch), Acad::eOk);
    EXPECT_EQ(manager.addPointMonitor(&watch), Acad::eDuplicateKey);
    EXPECT_EQ(point("1,2"), L"1,2,1");
    EXPECT_EQ(point("_end 8,0"), L"10,0,1");
    EXPECT_EQ(watch.last, AcGePoint3d(10, 0, 1));
    EXPECT_EQ(lift.seen, 2);
    EXPECT_EQ(lift.snapped, 1);
    EXPECT_EQ(manager.revokePointFilter(), Acad::eOk);
    EXPECT_EQ(manager.revokePointFilter(), Acad::eNotApplicable);
    EXPECT_EQ(point("1,2"), L"1,2,0");
    EXPECT_EQ(manager.removePointMonitor(&watch), Acad::eOk);
}

} // namespace
