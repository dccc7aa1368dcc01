// DIMCONTINUE and DIMBASELINE: linear dimensions that go on from one that is there, end to end or from its
// first extension line; DIMORDINATE: one coordinate of a point.
#include "host/commands/ask.h"
#include "host/commands/dimensions.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {
namespace {

/// What a further dimension is made from; points are UCS.
struct ChainLink {
    AcGePoint3d first;
    AcGePoint3d second;
    AcGePoint3d line;       ///< a point on the dimension line
    double direction = 0.0; ///< of the dimension line
};

std::optional<ChainLink> linkOf(AcDbObjectId id) {
    const auto* dimension = peek<AcDbAlignedDimension>(id);
    if (dimension == nullptr) {
        return std::nullopt;
    }
    const ReadAccess access(*dimension);
    ChainLink link{worldToUcs(dimension->xLine1Point()), worldToUcs(dimension->xLine2Point()),
                   worldToUcs(dimension->dimLinePoint()), 0.0};
    if (const auto* rotated = AcDbRotatedDimension::cast(dimension)) {
        const AcGeVector3d along =
            AcGeMatrix3d::planeToWorld(rotated->normal()) *
            AcGeVector3d(std::cos(rotated->rotation()), std::sin(rotated->rotation()), 0.0);
        const AcGeVector3d inUcs = ucsMatrix().inverse() * along;
        link.direction = std::atan2(inUcs.y, inUcs.x);
    } else {
        link.direction = angleBetween(link.first, link.second);
    }
    return link;
}

class Chain {
public:
    explicit Chain(bool fromBaseline) : mFromBaseline(fromBaseline) {}
    void run();

private:
    bool select();
    void add(const AcGePoint3d& origin);
    void undo();

    bool mFromBaseline;
    std::optional<ChainLink> mLink;
    struct Step {
        AcDbObjectId made;
        std::optional<ChainLink> before;
    };
    std::vector<Step> mSteps;
};

/// The extension line nearer to the pick is the one to go on from.
bool Chain::select() {
    const auto refuse = [](const AcDbEntity& entity) -> const wchar_t* {
        return AcDbAlignedDimension::cast(&entity) != nullptr ? nullptr : L"需要线性标注。";
    };
    const EntityAnswer picked =
        askEntity(mFromBaseline ? L"\n选择基准标注: " : L"\n选择连续标注: ", nullptr, refuse);
    if (!picked.isValue()) {
        return false;
    }
    mLink = linkOf(picked.id);
    const bool nearFirst =
        picked.hasPoint && picked.ucs.distanceTo(mLink->first) < picked.ucs.distanceTo(mLink->second);
    const bool nearSecond = picked.hasPoint && !nearFirst;
    if (mFromBaseline ? nearSecond : nearFirst) {
        std::swap(mLink->first, mLink->second);
    }
    return true;
}

void Chain::add(const AcGePoint3d& origin) {
    ChainLink next = *mLink;
    next.second = origin;
    if (mFromBaseline) {
        // Every further line stands farther out, as DIMDLI says.
        const double scale = systemVariableReal(L"DIMSCALE");
        const double step = systemVariableReal(L"DIMDLI") * (scale > 0.0 ? scale : 1.0);
        const AcGeVector3d across = to3d(direction(mLink->direction + halfPi));
        const double side = across.dotProduct(mLink->line - mLink->first) < 0.0 ? -1.0 : 1.0;
        next.line += across * (side * step);
    } else {
        next.first = mLink->second;
    }
    // The point that defines the line stands where the second extension line meets it.
    const AcGeVector3d along = to3d(direction(next.direction));
    next.line += along * along.dotProduct(next.second - next.line);
    appendDimension(
        new AcDbRotatedDimension(normalizedAngle(next.direction), next.first, next.second, next.line));
    ads_name last;
    AcDbObjectId made;
    if (acdbEntLast(last) == RTNORM) {
        acdbGetObjectId(made, last);
    }
    mSteps.push_back({made, mLink});
    mLink = next;
}

void Chain::undo() {
    if (mSteps.empty()) {
        acutPrintf(L"\n没有可放弃的标注。");
        return;
    }
    const Step step = mSteps.back();
    mSteps.pop_back();
    mLink = step.before;
    if (const Opened<AcDbEntity> entity(step.made, AcDb::kForWrite); entity) {
        entity->erase();
    }
}

void Chain::run() {
    ads_name last;
    AcDbObjectId id;
    if (acdbEntLast(last) == RTNORM && acdbGetObjectId(id, last) == Acad::eOk) {
        mLink = linkOf(id);
    }
    if (!mLink && !select()) {
        return;
    }
    for (;;) {
        const PointAnswer origin = askPoint(L"\n指定第二个尺寸界线原点或 [选择(S)/放弃(U)] <选择>: ",
                                            L"Select Undo", mFromBaseline ? &mLink->first : &mLink->second);
        if (origin.isValue()) {
            add(origin.ucs);
        } else if (origin.isKeyword(L"Undo")) {
            undo();
        } else if (origin.isCancelled() || !select()) {
            return;
        }
    }
}

void runContinue() {
    Chain(false).run();
}
void runBaseline() {
    Chain(true).run();
}

/// The farther way of the leader tells which coordinate is shown, unless it was asked for.
void runOrdinate() {
    const PointAnswer feature = askPoint(L"\n指定点坐标: ", nullptr, nullptr, RSG_NONULL);
    if (!feature.isValue()) {
        return;
    }
    std::optional<bool> usesX;
    std::wstring text;
    for (;;) {
        const PointAnswer end = askPoint(L"\n指定引线端点或 [X 基准(X)/Y 基准(Y)/文字(T)]: ", L"X Y Text",
                                         &feature.ucs, RSG_NONULL);
        if (end.isValue()) {
            const AcGeVector3d way = end.ucs - feature.ucs;
            const bool isX = usesX.value_or(std::fabs(way.y) > std::fabs(way.x));
            auto* dimension = new AcDbOrdinateDimension(isX, feature.ucs, end.ucs);
            if (!text.empty()) {
                dimension->setDimensionText(text.c_str());
            }
            appendDimension(dimension);
            return;
        }
        if (end.isKeyword(L"Text")) {
            const TextAnswer given = askText(L"\n输入标注文字 <测量值>: ", true);
            if (given.isCancelled()) {
                return;
            }
            text = given.isValue() ? given.text : L"";
        } else if (end.kind == Answer::Kind::keyword) {
            usesX = end.isKeyword(L"X");
        } else {
            return;
        }
    }
}

constexpr CommandRow rows[] = {{L"DIMCONTINUE", L"连续标注", ACRX_CMD_MODAL, runContinue},
                               {L"DIMBASELINE", L"基线标注", ACRX_CMD_MODAL, runBaseline},
                               {L"DIMORDINATE", L"坐标标注", ACRX_CMD_MODAL, runOrdinate}};

} // namespace

std::span<const CommandRow> dimensionChainCommands() {
    return rows;
}

} // namespace host
