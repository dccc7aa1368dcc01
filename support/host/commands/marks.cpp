// MEASURE and DIVIDE: points or blocks at equal distances along a curve.
#include "host/commands/ask.h"
#include "host/commands/edit/curvemarks.h"
#include "host/commands/registry.h"
#include "host/db/entities/fields.h"

#include <cmath>

namespace host {
namespace {

constexpr double maximumMarks = 1e6;

/// What is set on the curve: a point, or a block.
struct MarkKind {
    AcDbObjectId block;
    bool aligned = false;
};

const wchar_t* refuseUnlessCurve(const AcDbEntity& entity) {
    const auto* curve = AcDbCurve::cast(&entity);
    const std::optional<double> length = curve != nullptr ? curveLength(*curve) : std::nullopt;
    return length && *length > 0.0 ? nullptr : L"不能等分该对象。";
}

/// The block's name and how it stands; nothing when there is no such block.
std::optional<MarkKind> askBlock() {
    const TextAnswer name = askName(L"\n输入要插入的块名: ");
    if (!name.isValue()) {
        return std::nullopt;
    }
    MarkKind kind;
    if (peek<AcDbBlockTable>(currentDatabase().blockTableId())->getAt(name.text.c_str(), kind.block) !=
        Acad::eOk) {
        reportFailure(L"找不到块 \"" + name.text + L"\"");
        return std::nullopt;
    }
    if (kind.block == currentDatabase().currentSpaceId()) {
        reportFailure(L"块 \"" + name.text + L"\" 不能插入它自身");
        return std::nullopt;
    }
    const std::optional<bool> aligned = askYesNo(L"\n是否对齐块和对象?", true);
    if (!aligned) {
        return std::nullopt;
    }
    kind.aligned = *aligned;
    return kind;
}

AcGeVector3d normalOf(const AcDbCurve& curve) {
    AcGePlane plane;
    AcDb::Planarity planarity = AcDb::kNonPlanar;
    const bool flat = curve.getPlane(plane, planarity) == Acad::eOk && planarity == AcDb::kPlanar;
    return flat ? plane.normal() : ucsNormal();
}

AcDbObjectId setMark(const CurveMark& mark, const MarkKind& kind, const AcGeVector3d& normal) {
    if (kind.block.isNull()) {
        auto* point = new AcDbPoint(mark.point);
        point->setNormal(normal);
        return appendToCurrentSpace(point);
    }
    auto* reference = new AcDbBlockReference(AcGePoint3d::kOrigin, kind.block);
    reference->setDatabaseDefaults();
    reference->setNormal(normal);
    reference->setPosition(mark.point);
    const AcGeVector3d along =
        toObject(normal, kind.aligned ? mark.tangent : ucsMatrix() * AcGeVector3d::kXAxis);
    reference->setRotation(normalizedAngle(std::atan2(along.y, along.x)));
    return appendToCurrentSpace(reference);
}

/// Sets marks at the distances, counted from the end that was picked.
void setMarks(const EntityAnswer& picked, std::vector<double> distances, const MarkKind& kind) {
    const auto* curve = peek<AcDbCurve>(picked.id);
    const ReadAccess access(*curve);
    const double length = *curveLength(*curve);
    AcGePoint3d start;
    AcGePoint3d end;
    const bool fromEnd = picked.hasPoint && !curve->isClosed() && curve->getStartPoint(start) == Acad::eOk &&
                         curve->getEndPoint(end) == Acad::eOk &&
                         picked.world.distanceTo(end) < picked.world.distanceTo(start);
    if (fromEnd) {
        std::transform(distances.begin(), distances.end(), distances.begin(),
                       [&](double distance) { return length - distance; });
    }
    const AcGeVector3d normal = normalOf(*curve);
    PickSet set;
    for (CurveMark mark : marksAlong(*curve, distances)) {
        if (fromEnd) {
            mark.tangent = -mark.tangent;
        }
        set.add(setMark(mark, kind, normal));
    }
    previousSelection() = std::move(set);
}

void runMeasure() {
    const EntityAnswer picked = askEntity(L"\n选择要定距等分的对象: ", nullptr, refuseUnlessCurve);
    if (!picked.isValue()) {
        return;
    }
    MarkKind kind;
    RealAnswer spacing =
        askDistance(L"\n指定线段长度或 [块(B)]: ", L"Block", nullptr, RSG_NONULL | RSG_NOZERO | RSG_NONEG);
    if (spacing.isKeyword(L"Block")) {
        const std::optional<MarkKind> block = askBlock();
        if (!block) {
            return;
        }
        kind = *block;
        spacing = askDistance(L"\n指定线段长度: ", nullptr, nullptr, RSG_NONULL | RSG_NOZERO | RSG_NONEG);
    }
    if (!spacing.isValue()) {
        return;
    }
    const auto* curve = peek<AcDbCurve>(picked.id);
    const double length = [&] {
        const ReadAccess access(*curve);
        return *curveLength(*curve);
    }();
    if (length / spacing.value > maximumMarks) {
        acutPrintf(L"\n线段长度太小：标记会多于 %d 个。", static_cast<int>(maximumMarks));
        return;
    }
    // A mark at the very end counts although rounding may put it a little beyond.
    const auto count = static_cast<int>(std::floor(length / spacing.value * (1.0 + 1e-12)));
    if (count == 0) {
        acutPrintf(L"\n对象的长度小于线段长度。");
        return;
    }
    std::vector<double> distances;
    for (int i = 1; i <= count; ++i) {
        distances.push_back(std::min(i * spacing.value, length));
    }
    setMarks(picked, std::move(distances), kind);
}

void runDivide() {
    const EntityAnswer picked = askEntity(L"\n选择要定数等分的对象: ", nullptr, refuseUnlessCurve);
    if (!picked.isValue()) {
        return;
    }
    MarkKind kind;
    const wchar_t* range = L"\n需要 2 和 32767 之间的整数。";
    IntegerAnswer count;
    for (;;) {
        count = kind.block.isNull() ? askInteger(L"\n输入线段数目或 [块(B)]: ", L"Block", RSG_NONULL)
                                    : askInteger(L"\n输入线段数目: ", nullptr, RSG_NONULL);
        if (count.isKeyword(L"Block")) {
            const std::optional<MarkKind> block = askBlock();
            if (!block) {
                return;
            }
            kind = *block;
        } else if (!count.isValue()) {
            return;
        } else if (count.value >= 2) {
            break;
        } else {
            acutPrintf(L"%s", range);
        }
    }
    const auto* curve = peek<AcDbCurve>(picked.id);
    const ReadAccess access(*curve);
    const double length = *curveLength(*curve);
    std::vector<double> distances;
    // A closed curve has as many places as parts: its first is where it starts.
    for (int i = curve->isClosed() ? 0 : 1; i < count.value; ++i) {
        distances.push_back(length * i / count.value);
    }
    setMarks(picked, std::move(distances), kind);
}

constexpr CommandRow rows[] = {{L"MEASURE", L"定距等分", ACRX_CMD_MODAL, runMeasure},
                               {L"DIVIDE", L"定数等分", ACRX_CMD_MODAL, runDivide}};

} // namespace

std::span<const CommandRow> markCommands() {
    return rows;
}

} // namespace host
