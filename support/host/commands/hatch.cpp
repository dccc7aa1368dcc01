// HATCH: patterns in closed curves, picked by a point inside or one by one; BOUNDARY: polylines along them.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/hatchquestions.h"
#include "host/commands/registry.h"

#include <algorithm>

namespace host {
namespace {

/// Of the plane that hatches and boundaries are made in.
double ucsElevation() {
    return toObject(ucsNormal(), ucsToWorld(AcGePoint3d::kOrigin)).z;
}

class Hatching {
public:
    void run();

private:
    bool askAdvanced();
    bool askOrigin();
    /// False when the user gives up.
    bool takeOption(const Answer& option);
    void add(std::vector<HatchOutline> outlines) {
        std::ranges::move(outlines, std::back_inserter(mOutlines));
    }
    void make();

    HatchSettings mSettings = currentHatchSettings();
    std::vector<HatchOutline> mOutlines;
    int mOrder = 0; ///< as HPDRAWORDER
};

void Hatching::run() {
    for (;;) {
        acutPrintf(L"\n当前填充图案: %s", mSettings.pattern.c_str());
        const PointAnswer answer =
            askPoint(L"\n指定内部点或 [特性(P)/选择对象(S)/高级(A)/绘图次序(DR)/原点(O)]: ",
                     L"Properties Select Advanced DRaworder Origin");
        if (answer.isValue()) {
            add(outlinesAround(answer.world));
        } else if (answer.isNone()) {
            break;
        } else if (answer.isCancelled() || !takeOption(answer)) {
            return;
        }
    }
    if (!mOutlines.empty()) {
        make();
    }
}

bool Hatching::takeOption(const Answer& option) {
    if (option.isKeyword(L"Properties")) {
        return askHatchProperties(mSettings);
    }
    if (option.isKeyword(L"Select")) {
        add(selectedOutlines(ucsNormal()));
        return true;
    }
    if (option.isKeyword(L"Advanced")) {
        return askAdvanced();
    }
    if (option.isKeyword(L"Origin")) {
        return askOrigin();
    }
    const std::optional<int> order = askHatchOrder(mOrder);
    mOrder = order.value_or(mOrder);
    return order.has_value();
}

bool Hatching::askAdvanced() {
    for (;;) {
        const Answer answer =
            askKeyword(L"\n输入选项 [关联(A)/样式(S)/退出(X)] <退出>: ", L"Associativity Style eXit");
        if (answer.isKeyword(L"Associativity")) {
            const std::optional<bool> follows =
                askYesNo(L"\n是否创建关联图案填充?", systemVariableInteger(L"HPASSOC") != 0);
            if (!follows) {
                return false;
            }
            setSystemVariable(L"HPASSOC", *follows ? 1 : 0);
        } else if (answer.isKeyword(L"Style")) {
            const std::optional<AcDbHatch::HatchStyle> style = askHatchStyle(
                static_cast<AcDbHatch::HatchStyle>(systemVariableInteger(L"HPISLANDDETECTION")));
            if (!style) {
                return false;
            }
            setSystemVariable(L"HPISLANDDETECTION", static_cast<int>(*style));
        } else {
            return !answer.isCancelled();
        }
    }
}

AcGePoint2d patternOrigin() {
    const ResbufList value = systemVariable(L"HPORIGIN");
    return value != nullptr ? AcGePoint2d(value->resval.rpoint[0], value->resval.rpoint[1]) : AcGePoint2d();
}

bool Hatching::askOrigin() {
    const AcGePoint2d now = patternOrigin();
    const PointAnswer origin =
        askPoint(L"\n指定图案填充原点 <" + shown(now.x) + L"," + shown(now.y) + L">: ");
    if (origin.isValue()) {
        const AcGePoint3d flat = toObject(ucsNormal(), origin.world);
        resbuf value{};
        value.restype = RTPOINT;
        setPoint(value.resval.rpoint, {flat.x, flat.y, 0.0});
        setSystemVariable(L"HPORIGIN", value);
    }
    return !origin.isCancelled();
}

void Hatching::make() {
    auto hatch = std::make_unique<AcDbHatch>();
    hatch->setDatabaseDefaults();
    hatch->setNormal(ucsNormal());
    hatch->setElevation(ucsElevation());
    hatch->setHatchStyle(static_cast<AcDbHatch::HatchStyle>(systemVariableInteger(L"HPISLANDDETECTION")));
    for (const HatchOutline& outline : mOutlines) {
        appendOutline(*hatch, outline);
    }
    if (!applyHatchSettings(*hatch, mSettings)) {
        return;
    }
    if (const AcGePoint2d origin = patternOrigin(); origin != AcGePoint2d::kOrigin) {
        hatch->setOriginPoint(origin);
    }
    storeHatchSettings(mSettings);
    const AcDbObjectId id = appendToCurrentSpace(hatch.release());
    const bool hasSources =
        std::ranges::none_of(mOutlines, [](const HatchOutline& outline) { return outline.sources.empty(); });
    if (systemVariableInteger(L"HPASSOC") != 0 && hasSources) {
        associate(id, mOutlines);
    }
    putInHatchOrder(id, mOrder);
}

void runHatch() {
    Hatching().run();
}

void appendBoundary(const HatchOutline& outline) {
    AcDbHatch measure;
    appendOutline(measure, outline);
    appendOutlinePolyline(pathOf(measure.data().loops.front()), ucsNormal(), ucsElevation());
}

/// The option that says whether islands come along; false for Escape.
bool askIslands(bool& findsIslands) {
    const Answer option = askKeyword(L"\n输入选项 [孤岛检测(I)/退出(X)] <退出>: ", L"Island eXit");
    if (!option.isKeyword(L"Island")) {
        return !option.isCancelled();
    }
    const std::optional<bool> finds = askYesNo(L"\n是否检测孤岛?", findsIslands);
    findsIslands = finds.value_or(findsIslands);
    return finds.has_value();
}

void runBoundary() {
    bool findsIslands = true;
    std::vector<HatchOutline> found;
    for (;;) {
        const PointAnswer answer = askPoint(L"\n指定内部点或 [高级选项(A)]: ", L"Advanced");
        if (answer.isCancelled() || (answer.isKeyword(L"Advanced") && !askIslands(findsIslands))) {
            return;
        }
        if (answer.isNone()) {
            break;
        }
        if (answer.isValue()) {
            std::vector<HatchOutline> outlines = outlinesAround(answer.world);
            if (!findsIslands && outlines.size() > 1) {
                outlines.resize(1);
            }
            std::ranges::move(outlines, std::back_inserter(found));
        }
    }
    std::ranges::for_each(found, appendBoundary);
    if (!found.empty()) {
        acutPrintf(L"\nBOUNDARY 已创建 %d 个多段线。", static_cast<int>(found.size()));
    }
}

constexpr CommandRow rows[] = {{L"-HATCH", L"-图案填充", ACRX_CMD_MODAL, runHatch},
                               {L"HATCH", L"图案填充", ACRX_CMD_MODAL, runHatch},
                               {L"-BOUNDARY", L"-边界", ACRX_CMD_MODAL, runBoundary},
                               {L"BOUNDARY", L"边界", ACRX_CMD_MODAL, runBoundary}};

} // namespace

std::span<const CommandRow> hatchCommands() {
    return rows;
}

} // namespace host
