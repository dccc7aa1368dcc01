// SPLINEDIT: fit points, control points, closing, refining, reversing; polylines of splines.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/edit/editspline.h"
#include "host/commands/registry.h"

#include <algorithm>
#include <functional>

namespace host {
namespace {

const wchar_t* refuseUnlessSpline(const AcDbEntity& entity) {
    return AcDbSpline::cast(&entity) == nullptr ? L"选定的对象不是样条曲线。" : lockedRefusal(entity);
}

class SplineEditing {
public:
    explicit SplineEditing(AcDbObjectId id) : mId(id) {}
    void run();

private:
    /// Changes the spline and keeps what it was; tells when it can't be.
    template <class Change>
    bool change(Change&& act);
    void undo();
    /// What a question needs, read from the spline.
    template <class Read>
    auto read(Read&& get) const {
        const Opened<AcDbSpline> spline(mId, AcDb::kForRead);
        return get(*spline.get());
    }
    bool hasFitData() const {
        return read([](const AcDbSpline& spline) { return spline.hasFitData(); });
    }
    bool isClosed() const {
        return read([](const AcDbSpline& spline) { return spline.isClosed(); });
    }
    std::vector<AcGePoint3d> points(bool fit) const;
    /// The nearest of the points to one that is picked; nothing when the user gives up.
    std::optional<int> askIndex(const wchar_t* prompt, bool fit) const;
    /// Goes from point to point; calls move(index, place) for places that are given.
    void walkPoints(bool fit, const std::wstring& question,
                    const std::function<void(int, const AcGePoint3d&)>& move);

    void toggleClosed();
    void moveVertices();
    void refine();
    void askWeights();
    bool convert();
    void editFitData();
    void addFitPoints();
    void askTangents();
    void askTolerance();

    AcDbObjectId mId;
    std::vector<std::unique_ptr<AcDbSpline>> mBefore;
};

template <class Change>
bool SplineEditing::change(Change&& act) {
    const Opened<AcDbSpline> spline(mId, AcDb::kForWrite);
    std::unique_ptr<AcDbSpline> before(spline ? AcDbSpline::cast(spline->clone()) : nullptr);
    if (before == nullptr || act(*spline.get()) != Acad::eOk) {
        acutPrintf(L"\n样条曲线不能这样修改。");
        return false;
    }
    mBefore.push_back(std::move(before));
    return true;
}

void SplineEditing::undo() {
    if (mBefore.empty()) {
        acutPrintf(L"\n没有可放弃的操作。");
        return;
    }
    const Opened<AcDbSpline> spline(mId, AcDb::kForWrite);
    if (spline) {
        spline->assertWriteEnabled();
        spline->copyFrom(mBefore.back().get());
        mBefore.pop_back();
    }
}

std::vector<AcGePoint3d> SplineEditing::points(bool fit) const {
    return read([&](const AcDbSpline& spline) {
        std::vector<AcGePoint3d> found(
            static_cast<std::size_t>(fit ? spline.numFitPoints() : spline.numControlPoints()));
        for (int i = 0; i < static_cast<int>(found.size()); ++i) {
            AcGePoint3d& point = found[static_cast<std::size_t>(i)];
            fit ? spline.getFitPointAt(i, point) : spline.getControlPointAt(i, point);
        }
        return found;
    });
}

std::optional<int> SplineEditing::askIndex(const wchar_t* prompt, bool fit) const {
    const PointAnswer picked = askPoint(prompt);
    if (!picked.isValue()) {
        return std::nullopt;
    }
    const std::vector<AcGePoint3d> all = points(fit);
    const auto nearest = std::ranges::min_element(
        all, {}, [&](const AcGePoint3d& point) { return point.distanceTo(picked.world); });
    return nearest != all.end() ? std::optional(static_cast<int>(nearest - all.begin())) : std::nullopt;
}

void SplineEditing::walkPoints(bool fit, const std::wstring& question,
                               const std::function<void(int, const AcGePoint3d&)>& move) {
    int index = 0;
    for (;;) {
        const std::vector<AcGePoint3d> all = points(fit);
        const int count = static_cast<int>(all.size());
        index = std::clamp(index, 0, count - 1);
        const AcGePoint3d at = worldToUcs(all[static_cast<std::size_t>(index)]);
        acutPrintf(L"\n当前点 %d: %s", index + 1, shownPoint(at).c_str());
        const PointAnswer answer = askPoint(question + L" [下一个(N)/上一个(P)/选择点(S)/退出(X)] <下一个>: ",
                                            L"Next Previous Select eXit", &at);
        if (answer.isValue()) {
            move(index, answer.world);
        } else if (answer.isKeyword(L"Select")) {
            index = askIndex(L"\n选择点: ", fit).value_or(index);
        } else if (answer.isKeyword(L"Previous")) {
            index = (index + count - 1) % count;
        } else if (answer.isNone() || answer.isKeyword(L"Next")) {
            index = (index + 1) % count;
        } else {
            return;
        }
    }
}

void SplineEditing::toggleClosed() {
    change(isClosed() ? openSpline : closeSpline);
}

void SplineEditing::moveVertices() {
    walkPoints(false, L"\n指定新位置或", [this](int index, const AcGePoint3d& place) {
        change([&](AcDbSpline& spline) { return moveControlPoint(spline, index, place); });
    });
}

/// Weights of control points, one after the other.
void SplineEditing::askWeights() {
    int index = 0;
    for (;;) {
        const int count = read([](const AcDbSpline& spline) { return spline.numControlPoints(); });
        const double weight = read([&](const AcDbSpline& spline) { return spline.weightAt(index); });
        const RealAnswer answer =
            askReal(L"\n控制点 " + std::to_wstring(index + 1) + L": 输入新权值 (当前值 = " + shown(weight) +
                        L") 或 [下一个(N)/上一个(P)/选择点(S)/退出(X)] <下一个>: ",
                    L"Next Previous Select eXit", RSG_NOZERO | RSG_NONEG);
        if (answer.isValue()) {
            change([&](AcDbSpline& spline) { return weighControlPoint(spline, index, answer.value); });
        } else if (answer.isKeyword(L"Select")) {
            index = askIndex(L"\n选择点: ", false).value_or(index);
        } else if (answer.isKeyword(L"Previous")) {
            index = (index + count - 1) % count;
        } else if (answer.isNone() || answer.isKeyword(L"Next")) {
            index = (index + 1) % count;
        } else {
            return;
        }
    }
}

void SplineEditing::refine() {
    for (;;) {
        const Answer option =
            askKeyword(L"\n输入优化选项 [添加控制点(A)/提高阶数(E)/权值(W)/退出(X)] <退出>: ",
                       L"Add Elevate Weight eXit");
        if (option.isKeyword(L"Add")) {
            const PointAnswer point = askPoint(L"\n在样条曲线上指定点 <退出>: ");
            if (point.isValue()) {
                change([&](AcDbSpline& spline) {
                    AcGePoint3d closest;
                    double parameter = 0.0;
                    spline.getClosestPointTo(point.world, closest);
                    spline.getParamAtPoint(closest, parameter);
                    return spline.insertKnot(parameter);
                });
            }
        } else if (option.isKeyword(L"Elevate")) {
            const int order = read([](const AcDbSpline& spline) { return spline.degree() + 1; });
            const IntegerAnswer higher = askInteger(L"\n输入新阶数 <" + std::to_wstring(order) + L">: ",
                                                    nullptr, RSG_NOZERO | RSG_NONEG);
            if (higher.isValue() && higher.value != order) {
                change([&](AcDbSpline& spline) { return spline.elevateDegree(higher.value - 1); });
            }
        } else if (option.isKeyword(L"Weight")) {
            askWeights();
        } else {
            return;
        }
    }
}

/// True when the spline is a polyline now.
bool SplineEditing::convert() {
    AcDbCurve* made = nullptr;
    read([&](const AcDbSpline& spline) { return spline.toPolyline(made); });
    std::unique_ptr<AcDbEntity> polyline(made);
    if (polyline == nullptr || !replaceEntity(mId, std::move(polyline))) {
        acutPrintf(L"\n样条曲线不能转换为多段线。");
        return false;
    }
    return true;
}

void SplineEditing::addFitPoints() {
    while (const std::optional<int> index = askIndex(L"\n选择拟合点 <退出>: ", true)) {
        int after = *index;
        for (;;) {
            const AcGePoint3d base = worldToUcs(points(true)[static_cast<std::size_t>(after)]);
            const PointAnswer point = askPoint(L"\n指定新点 <退出>: ", nullptr, &base);
            if (!point.isValue()) {
                break;
            }
            if (change([&](AcDbSpline& spline) { return spline.insertFitPointAt(after + 1, point.world); })) {
                ++after;
            }
        }
    }
}

void SplineEditing::askTangents() {
    AcGeVector3d tangents[2];
    const std::vector<AcGePoint3d> all = points(true);
    const wchar_t* prompts[] = {L"\n指定起点切向或 [系统默认值(S)] <不变>: ",
                                L"\n指定端点切向或 [系统默认值(S)] <不变>: "};
    read([&](const AcDbSpline& spline) { return spline.getFitTangents(tangents[0], tangents[1]); });
    for (int i = 0; i < 2; ++i) {
        const AcGePoint3d& at = i == 0 ? all.front() : all.back();
        const AcGePoint3d base = worldToUcs(at);
        const PointAnswer answer = askPoint(prompts[i], L"System", &base);
        if (answer.isCancelled()) {
            return;
        }
        if (answer.isKeyword(L"System")) {
            tangents[i] = AcGeVector3d();
        } else if (answer.isValue()) {
            tangents[i] = i == 0 ? at - answer.world : answer.world - at;
        }
    }
    change([&](AcDbSpline& spline) { return spline.setFitTangents(tangents[0], tangents[1]); });
}

void SplineEditing::askTolerance() {
    const double now = read([](const AcDbSpline& spline) { return spline.fitTolerance(); });
    const RealAnswer tolerance =
        askDistance(L"\n输入拟合公差 <" + shown(now) + L">: ", nullptr, nullptr, RSG_NONEG);
    if (tolerance.isValue()) {
        change([&](AcDbSpline& spline) { return spline.setFitTol(tolerance.value); });
    }
}

void SplineEditing::editFitData() {
    while (hasFitData()) {
        const bool closed = isClosed();
        const Answer option =
            askKeyword(std::wstring(L"\n输入拟合数据选项 [添加(A)/") + (closed ? L"打开(O)" : L"闭合(C)") +
                           L"/删除(D)/移动(M)/清理(P)/切线(T)/公差(L)/退出(X)] <退出>: ",
                       closed ? L"Add Open Delete Move Purge Tangents toLerance eXit"
                              : L"Add Close Delete Move Purge Tangents toLerance eXit");
        if (option.isKeyword(L"Add")) {
            addFitPoints();
        } else if (option.isKeyword(L"Open") || option.isKeyword(L"Close")) {
            toggleClosed();
        } else if (option.isKeyword(L"Delete")) {
            while (const std::optional<int> index = askIndex(L"\n选择要删除的拟合点 <退出>: ", true)) {
                change([&](AcDbSpline& spline) {
                    return spline.numFitPoints() > 2 ? spline.removeFitPointAt(*index) : Acad::eNotApplicable;
                });
            }
        } else if (option.isKeyword(L"Move")) {
            walkPoints(true, L"\n指定新位置或", [this](int index, const AcGePoint3d& place) {
                change([&](AcDbSpline& spline) { return spline.setFitPointAt(index, place); });
            });
        } else if (option.isKeyword(L"Purge")) {
            change([](AcDbSpline& spline) { return spline.purgeFitData(); });
        } else if (option.isKeyword(L"Tangents")) {
            askTangents();
        } else if (option.isKeyword(L"toLerance")) {
            askTolerance();
        } else {
            return;
        }
    }
}

void SplineEditing::run() {
    for (;;) {
        const bool closed = isClosed();
        const Answer option =
            askKeyword(std::wstring(L"\n输入选项 [拟合数据(F)/") + (closed ? L"打开(O)" : L"闭合(C)") +
                           L"/移动顶点(M)/优化(R)/反转(E)/转换为多段线(P)/放弃(U)/退出(X)] <退出>: ",
                       closed ? L"Fit Open Move Refine rEverse Polyline Undo eXit"
                              : L"Fit Close Move Refine rEverse Polyline Undo eXit");
        if (option.isKeyword(L"Fit")) {
            if (!hasFitData()) {
                acutPrintf(L"\n样条曲线没有拟合数据。");
            }
            editFitData();
        } else if (option.isKeyword(L"Open") || option.isKeyword(L"Close")) {
            toggleClosed();
        } else if (option.isKeyword(L"Move")) {
            moveVertices();
        } else if (option.isKeyword(L"Refine")) {
            refine();
        } else if (option.isKeyword(L"rEverse")) {
            change([](AcDbSpline& spline) { return spline.reverseCurve(); });
        } else if (option.isKeyword(L"Undo")) {
            undo();
        } else if (!option.isKeyword(L"Polyline") || convert()) {
            return;
        }
    }
}

void runSplineEdit() {
    const EntityAnswer picked = askEntity(L"\n选择样条曲线: ", nullptr, refuseUnlessSpline);
    if (picked.isValue()) {
        SplineEditing(picked.id).run();
    }
}

constexpr CommandRow rows[] = {{L"SPLINEDIT", L"编辑样条曲线", ACRX_CMD_MODAL, runSplineEdit}};

} // namespace

std::span<const CommandRow> splineEditCommands() {
    return rows;
}

} // namespace host
