// The run of the command: it borrows the snap and ortho settings of the drawing and gives them back.
#include "drawing/widthpolyline.h"

#include "drawing/linepara.h"
#include "drawing/widthpolylinejig.h"
#include "restools/drawing.h"
#include "restools/profilesection.h"
#include "restools/sysvar.h"

#include <cmath>

namespace {

constexpr const ACHAR* sectionName = L"CPline\\";

/// One drawing of a polyline.
class CDrawTipPolyLine {
public:
    CDrawTipPolyLine();
    ~CDrawTipPolyLine();
    CDrawTipPolyLine(const CDrawTipPolyLine&) = delete;
    CDrawTipPolyLine& operator=(const CDrawTipPolyLine&) = delete;

    void Run();

private:
    void PickPoints();
    void Leave() const;

    bool mOrthomode;
    bool mTilemode;
    AcGePoint2d mSnapUnit;
    AcGePoint2d mSnapBase;
    int mSnapMode = 0;
    WidthPolylineCourse mCourse;
    bool mIsClosed = false;
};

CDrawTipPolyLine::CDrawTipPolyLine()
    : mOrthomode(WorkingDatabase()->orthomode()), mTilemode(WorkingDatabase()->tilemode()) {
    WorkingDatabase()->setTilemode(true);
    WorkingDatabase()->setOrthomode(false);
    GetVar(L"SNAPMODE", mSnapMode);
    GetVar(L"SNAPBASE", mSnapBase);
    GetVar(L"SNAPUNIT", mSnapUnit);
    LoadWidthPolylineSettings();
}

CDrawTipPolyLine::~CDrawTipPolyLine() {
    WorkingDatabase()->setTilemode(mTilemode);
    WorkingDatabase()->setOrthomode(mOrthomode);
    SetVar(L"SNAPMODE", mSnapMode);
    SetVar(L"SNAPBASE", mSnapBase);
    SetVar(L"SNAPUNIT", mSnapUnit);
    SaveWidthPolylineSettings();
}

AcGePoint3d inWorld(const ads_point picked) {
    resbuf ucs{};
    ucs.restype = RTSHORT;
    ucs.resval.rint = 1;
    resbuf world = ucs;
    world.resval.rint = 0;
    ads_point point;
    acedTrans(picked, &ucs, &world, 0, point);
    return asPnt3d(point);
}

void CDrawTipPolyLine::Run() {
    ads_point picked;
    if (acedGetPoint(nullptr, L"\n起点:", picked) != RTNORM) {
        return;
    }
    const CLineParaHolder panel;
    const WidthPolylineSettings& settings = GetWidthPolylineSettings();
    SetVar(L"SNAPMODE", settings.useSnap);
    SetVar(L"SNAPUNIT", AcGePoint2d(settings.xIncrement, settings.yIncrement));
    mCourse.Add(inWorld(picked));
    PickPoints();
    if (mCourse.points.length() >= 2) {
        Leave();
    }
}

void CDrawTipPolyLine::PickPoints() {
    for (;;) {
        const AcGePoint3d last = mCourse.points.last();
        SetVar(L"SNAPBASE", AcGePoint2d(last.x, last.y));
        const WidthPolylineQuestion question = WidthPolylineQuestionAfter(mCourse.points.length());
        // Segments run along the axes unless the user turns that off while he drags.
        SetVar(L"ORTHOMODE", 1);
        AsdkPolyLine preview(mCourse);
        AsdkPolyLineJig jig(preview, question.keywords);
        jig.setDispPrompt(L"\n%s", question.prompt);
        switch (jig.drag()) {
        case AcEdJig::kNormal:
            mCourse.AddSegment(jig.Point(), GetWidthPolylineSettings().startWidth,
                               GetWidthPolylineSettings().endWidth);
            break;
        case AcEdJig::kKW1:
            if (jig.Keyword() != L"Undo") {
                mIsClosed = jig.Keyword() == L"Close";
                return;
            }
            mCourse.RemoveLast();
            break;
        default:
            return;
        }
    }
}

void CDrawTipPolyLine::Leave() const {
    auto polyline = std::make_unique<AcDbPolyline>(static_cast<unsigned>(mCourse.points.length()));
    polyline->setDatabaseDefaults(WorkingDatabase());
    mCourse.AddVertices(*polyline);
    if (mIsClosed) {
        polyline->setClosed(Adesk::kTrue);
    }
    AppendEnt(polyline.release());
}

} // namespace

WidthPolylineSettings& GetWidthPolylineSettings() {
    static WidthPolylineSettings settings;
    return settings;
}

void LoadWidthPolylineSettings() {
    const CProfileSection section(sectionName);
    WidthPolylineSettings& settings = GetWidthPolylineSettings();
    settings.startWidth = std::fabs(section.GetReal(L"StartWidth", L"0.0"));
    settings.endWidth = std::fabs(section.GetReal(L"EndWidth", L"0.0"));
    settings.xIncrement = std::fabs(section.GetReal(L"XInc", L"10.0"));
    settings.yIncrement = std::fabs(section.GetReal(L"YInc", L"10.0"));
    settings.useSnap = section.GetInt(L"UseSnap", 1);
}

void SaveWidthPolylineSettings() {
    const CProfileSection section(sectionName);
    const WidthPolylineSettings& settings = GetWidthPolylineSettings();
    const auto setReal = [&section](const ACHAR* value, double number) { section.SetReal(value, number, 6); };
    section.SetText(L"Author", L"沐岚川软件");
    setReal(L"StartWidth", settings.startWidth);
    setReal(L"EndWidth", settings.endWidth);
    setReal(L"XInc", settings.xIncrement);
    setReal(L"YInc", settings.yIncrement);
    section.SetInt(L"UseSnap", settings.useSnap);
}

void WidthPolylineCourse::Add(const AcGePoint3d& point) {
    points.append(point);
}

void WidthPolylineCourse::AddSegment(const AcGePoint3d& point, double startWidth, double endWidth) {
    points.append(point);
    widths.append(startWidth);
    widths.append(endWidth);
}

void WidthPolylineCourse::RemoveLast() {
    if (!points.isEmpty()) {
        points.removeLast();
    }
    for (int i = 0; i < 2 && !widths.isEmpty(); ++i) {
        widths.removeLast();
    }
}

void WidthPolylineCourse::AddVertices(AcDbPolyline& polyline) const {
    for (int i = 0; i < points.length(); ++i) {
        const bool isLast = i + 1 == points.length();
        polyline.addVertexAt(static_cast<unsigned>(i), AcGePoint2d(points[i].x, points[i].y), 0.0,
                             isLast ? 0.0 : widths[2 * i], isLast ? 0.0 : widths[2 * i + 1]);
    }
}

WidthPolylineQuestion WidthPolylineQuestionAfter(int points) {
    switch (points) {
    case 1:
        return {L"下一点 [宽度(W)]<退出>:", L"Width"};
    case 2:
        return {L"下一点 [回退(U)/宽度(W)]<退出>:", L"Undo Width"};
    default:
        return {L"下一点 [闭合(C)/回退(U)/宽度(W)]<退出>:", L"Close Undo Width"};
    }
}

int DrawWidthPolyline() {
    CDrawTipPolyLine().Run();
    return RTNORM;
}
