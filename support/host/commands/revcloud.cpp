// REVCLOUD: closed outlines of arcs that mark what was revised.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/registry.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr double arcBulge = 0.5;      ///< of each arc
constexpr double penWidthShare = 0.1; ///< of an arc drawn by a broad pen, at its end

struct CloudSettings {
    double least = 15.0; ///< lengths of the arcs' chords
    double most = 15.0;
    bool isCalligraphic = false;
};

/// Chords between the lengths along a stretch: longer and shorter ones in turn, none at all beyond.
void addChordEnds(double length, const CloudSettings& settings, std::vector<double>& ends) {
    const double mean = (settings.least + settings.most) / 2.0;
    const int count = std::max(1, static_cast<int>(std::lround(length / mean)));
    const double swing = (settings.most - settings.least) / (settings.most + settings.least);
    double at = 0.0;
    const double start = ends.empty() ? 0.0 : ends.back();
    for (int i = 0; i < count; ++i) {
        const bool isPaired = i < count / 2 * 2;
        at += length / count * (isPaired ? (i % 2 == 0 ? 1.0 + swing : 1.0 - swing) : 1.0);
        ends.push_back(start + (i + 1 == count ? length : at));
    }
}

/// Distances along the curve at which arcs meet: corners of polylines among them.
std::vector<double> chordEnds(const AcDbCurve& curve, const CloudSettings& settings) {
    std::vector<double> ends;
    double last = 0.0;
    curve.getEndParam(last);
    const bool hasCorners = flatPathOf(curve).has_value();
    double before = 0.0;
    for (double parameter = hasCorners ? 1.0 : last;; parameter += 1.0) {
        double distance = 0.0;
        curve.getDistAtParam(std::min(parameter, last), distance);
        if (distance > before) {
            addChordEnds(distance - before, settings, ends);
            before = distance;
        }
        if (parameter >= last) {
            return ends;
        }
    }
}

/// The cloud along a curve, with arcs to the right of its direction where `right`.
std::unique_ptr<AcDbPolyline> cloudAlong(const AcDbCurve& curve, const AcGeVector3d& normal,
                                         const CloudSettings& settings, bool right) {
    auto cloud = std::make_unique<AcDbPolyline>();
    cloud->setDatabaseDefaults();
    cloud->setNormal(normal);
    std::vector<double> distances = chordEnds(curve, settings);
    const bool isClosed = curve.isClosed();
    distances.insert(distances.begin(), 0.0);
    if (isClosed) {
        distances.pop_back();
    }
    for (const double distance : distances) {
        AcGePoint3d point;
        if (curve.getPointAtDist(distance, point) != Acad::eOk) {
            continue;
        }
        const AcGePoint3d flat = toObject(normal, point);
        cloud->setElevation(flat.z);
        cloud->addVertexAt(cloud->numVerts(), to2d(flat), right ? arcBulge : -arcBulge);
    }
    cloud->setClosed(isClosed);
    if (settings.isCalligraphic) {
        const double width = penWidthShare * (settings.least + settings.most) / 2.0;
        for (unsigned i = 0; i < cloud->numVerts(); ++i) {
            cloud->setWidthsAt(i, 0.0, width);
        }
    }
    return cloud;
}

/// Positive for a closed curve that runs counterclockwise about the normal.
double turnOf(const AcDbCurve& curve, const AcGeVector3d& normal) {
    constexpr int samples = 64;
    double last = 0.0;
    double length = 0.0;
    curve.getEndParam(last);
    curve.getDistAtParam(last, length);
    double twice = 0.0;
    AcGePoint2d before;
    AcGePoint2d first;
    for (int i = 0; i < samples; ++i) {
        AcGePoint3d point;
        curve.getPointAtDist(length * i / samples, point);
        const AcGePoint2d flat = to2d(toObject(normal, point));
        first = i == 0 ? flat : first;
        twice += i == 0 ? 0.0 : (before - first).crossProduct(flat - first);
        before = flat;
    }
    return twice;
}

class CloudDrawing {
public:
    void run();

private:
    bool askLengths();
    bool askStyle();
    void alongObject();
    void alongCorners(const AcGePoint3d& first);
    void alongRectangle();
    void finish(const AcDbCurve& curve, AcDbObjectId replaced);
    void appendClosed(const std::vector<AcGePoint3d>& corners);

    CloudSettings mSettings{systemVariableReal(L"REVCLOUDMINARCLENGTH"),
                            systemVariableReal(L"REVCLOUDMAXARCLENGTH"), false};
};

bool CloudDrawing::askLengths() {
    const RealAnswer least = askDistance(L"\n指定最小弧长 <" + shown(mSettings.least) + L">: ", nullptr,
                                         nullptr, RSG_NOZERO | RSG_NONEG);
    if (least.isCancelled()) {
        return false;
    }
    const double low = least.isValue() ? least.value : mSettings.least;
    for (;;) {
        const double standard = std::clamp(mSettings.most, low, 3.0 * low);
        const RealAnswer most = askDistance(L"\n指定最大弧长 <" + shown(standard) + L">: ", nullptr, nullptr,
                                            RSG_NOZERO | RSG_NONEG);
        if (most.isCancelled()) {
            return false;
        }
        const double high = most.isValue() ? most.value : standard;
        if (high >= low && high <= 3.0 * low) {
            mSettings.least = low;
            mSettings.most = high;
            setSystemVariable(L"REVCLOUDMINARCLENGTH", low);
            setSystemVariable(L"REVCLOUDMAXARCLENGTH", high);
            return true;
        }
        acutPrintf(L"\n最大弧长不能小于最小弧长，也不能大于它的三倍。");
    }
}

bool CloudDrawing::askStyle() {
    const Answer style = askKeyword(std::wstring(L"\n选择圆弧样式 [普通(N)/手绘(C)] <") +
                                        (mSettings.isCalligraphic ? L"手绘" : L"普通") + L">: ",
                                    L"Normal Calligraphy");
    if (style.kind == Answer::Kind::keyword) {
        mSettings.isCalligraphic = style.isKeyword(L"Calligraphy");
    }
    return !style.isCancelled();
}

/// Arcs stand outwards unless they are turned round; the object gives way to its cloud.
void CloudDrawing::finish(const AcDbCurve& curve, AcDbObjectId replaced) {
    AcGePlane plane;
    AcDb::Planarity planarity = AcDb::kNonPlanar;
    AcGeVector3d normal = ucsNormal();
    if (curve.getPlane(plane, planarity) == Acad::eOk && planarity == AcDb::kPlanar &&
        !plane.normal().isParallelTo(normal)) {
        normal = plane.normal();
    }
    double length = 0.0;
    double last = 0.0;
    curve.getEndParam(last);
    curve.getDistAtParam(last, length);
    constexpr double mostArcs = 100'000.0;
    if (!(length > 0.0) || length / mSettings.least > mostArcs) {
        acutPrintf(L"\n弧长太小，无法创建修订云线。");
        return;
    }
    const std::optional<bool> turned = askYesNo(L"\n是否反转方向?", false);
    if (!turned) {
        return;
    }
    const bool outwards = !curve.isClosed() || turnOf(curve, normal) > 0.0;
    appendToCurrentSpace(cloudAlong(curve, normal, mSettings, outwards != *turned).release());
    if (!replaced.isNull() && systemVariableInteger(L"DELOBJ") > 0) {
        eraseEntity(replaced);
    }
    acutPrintf(L"\n修订云线完成。");
}

void CloudDrawing::alongObject() {
    const auto refuse = [](const AcDbEntity& entity) -> const wchar_t* {
        const bool isCurve = AcDbCurve::cast(&entity) != nullptr && AcDbRay::cast(&entity) == nullptr &&
                             AcDbXline::cast(&entity) == nullptr && AcDbLeader::cast(&entity) == nullptr;
        return !isCurve ? L"需要直线、圆、圆弧、椭圆、多段线或样条曲线。" : lockedRefusal(entity);
    };
    const EntityAnswer picked = askEntity(L"\n选择对象: ", nullptr, refuse);
    if (!picked.isValue()) {
        return;
    }
    std::unique_ptr<AcDbCurve> curve;
    {
        const Opened<AcDbCurve> opened(picked.id, AcDb::kForRead);
        curve.reset(opened ? AcDbCurve::cast(opened->clone()) : nullptr);
    }
    if (curve != nullptr) {
        finish(*curve, picked.id);
    }
}

void CloudDrawing::appendClosed(const std::vector<AcGePoint3d>& corners) {
    AcDbPolyline path;
    path.setNormal(ucsNormal());
    path.setElevation(toObject(ucsNormal(), ucsToWorld(corners.front())).z);
    for (const AcGePoint3d& corner : corners) {
        path.addVertexAt(path.numVerts(), to2d(toObject(ucsNormal(), ucsToWorld(corner))));
    }
    path.setClosed(true);
    finish(path, {});
}

void CloudDrawing::alongCorners(const AcGePoint3d& first) {
    std::vector<AcGePoint3d> corners{first};
    for (;;) {
        const PointAnswer next =
            corners.size() < 3 ? askPoint(L"\n指定下一点: ", nullptr, &corners.back(), RSG_NONULL)
                               : askPoint(L"\n指定下一点或 [放弃(U)] <闭合>: ", L"Undo", &corners.back());
        if (next.isCancelled()) {
            return;
        }
        if (next.isKeyword(L"Undo")) {
            corners.pop_back();
        } else if (next.isValue()) {
            corners.push_back(next.ucs);
        } else {
            appendClosed(corners);
            return;
        }
    }
}

void CloudDrawing::alongRectangle() {
    const PointAnswer first = askPoint(L"\n指定第一个角点: ", nullptr, nullptr, RSG_NONULL);
    const PointAnswer other =
        first.isValue() ? askPoint(L"\n指定对角点: ", nullptr, &first.ucs, RSG_NONULL) : PointAnswer();
    if (other.isValue()) {
        const double z = first.ucs.z;
        appendClosed({{first.ucs.x, first.ucs.y, z},
                      {other.ucs.x, first.ucs.y, z},
                      {other.ucs.x, other.ucs.y, z},
                      {first.ucs.x, other.ucs.y, z}});
    }
}

void CloudDrawing::run() {
    for (;;) {
        acutPrintf(L"\n最小弧长: %s   最大弧长: %s   样式: %s", shown(mSettings.least).c_str(),
                   shown(mSettings.most).c_str(), mSettings.isCalligraphic ? L"手绘" : L"普通");
        const PointAnswer first = askPoint(L"\n指定第一个点或 [弧长(A)/对象(O)/矩形(R)/样式(S)] <对象>: ",
                                           L"Arc Object Rectangular Style");
        if (first.isKeyword(L"Arc") ? askLengths() : first.isKeyword(L"Style") && askStyle()) {
            continue;
        }
        if (first.isValue()) {
            alongCorners(first.ucs);
        } else if (first.isKeyword(L"Rectangular")) {
            alongRectangle();
        } else if (first.isNone() || first.isKeyword(L"Object")) {
            alongObject();
        }
        return;
    }
}

void runRevcloud() {
    CloudDrawing().run();
}

constexpr CommandRow rows[] = {{L"REVCLOUD", L"修订云线", ACRX_CMD_MODAL, runRevcloud}};

} // namespace

std::span<const CommandRow> revcloudCommands() {
    return rows;
}

} // namespace host
