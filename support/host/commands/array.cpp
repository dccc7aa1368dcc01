// ARRAY and -ARRAY: copies in rows and columns, or around a centre.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {
namespace {

constexpr long maximumCopies = 1000000;

struct Grid {
    int rows = 1;
    int columns = 1;
    double rowDistance = 0.0;
    double columnDistance = 0.0;
};

std::optional<int> askCount(const std::wstring& prompt) {
    const IntegerAnswer answer = askInteger(prompt, nullptr, RSG_NOZERO | RSG_NONEG);
    if (answer.isCancelled()) {
        return std::nullopt;
    }
    return answer.isValue() ? answer.value : 1;
}

bool askDistances(Grid& grid) {
    if (grid.rows > 1) {
        const RealAnswer rows =
            askDistance(L"\n输入行间距 (---): ", nullptr, nullptr, RSG_NONULL | RSG_NOZERO);
        if (!rows.isValue()) {
            return false;
        }
        grid.rowDistance = rows.value;
    }
    if (grid.columns > 1) {
        const RealAnswer columns =
            askDistance(L"\n指定列间距 (|||): ", nullptr, nullptr, RSG_NONULL | RSG_NOZERO);
        if (!columns.isValue()) {
            return false;
        }
        grid.columnDistance = columns.value;
    }
    return true;
}

void rectangular(const Selection& selection) {
    const std::optional<int> rows = askCount(L"\n输入行数 (---) <1>: ");
    const std::optional<int> columns = rows ? askCount(L"\n输入列数 (|||) <1>: ") : std::nullopt;
    if (!columns) {
        return;
    }
    if (*rows == 1 && *columns == 1) {
        acutPrintf(L"\n单个元素的阵列，没有要做的事。");
        return;
    }
    if (static_cast<long>(*rows) * *columns * selection.ids().length() > maximumCopies) {
        acutPrintf(L"\n阵列的对象多于 %ld 个。", maximumCopies);
        return;
    }
    Grid grid{*rows, *columns};
    if (!askDistances(grid)) {
        return;
    }
    // Rows run along the snap grid's own direction.
    const double turn = systemVariableReal(L"SNAPANG");
    const AcGeMatrix3d plane = ucsMatrix() * AcGeMatrix3d::rotation(turn, AcGeVector3d::kZAxis);
    int refused = 0;
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            if (row == 0 && column == 0) {
                continue;
            }
            const AcGeVector3d step(column * grid.columnDistance, row * grid.rowDistance, 0.0);
            refused += copyTransformed(selection.ids(), currentDatabase().currentSpaceId(),
                                       AcGeMatrix3d::translation(plane * step));
        }
    }
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象无法复制。", refused);
    }
}

struct Ring {
    int items = 0;
    double step = 0.0; ///< radians from item to item
};

/// Two of number, fill angle and angle between items.
std::optional<Ring> askRing() {
    const IntegerAnswer items = askInteger(L"\n输入阵列中项目的数目: ", nullptr, RSG_NOZERO | RSG_NONEG);
    if (items.isCancelled()) {
        return std::nullopt;
    }
    const RealAnswer fill = askReal(L"\n指定填充角度 (+=逆时针, -=顺时针) <360>: ", nullptr);
    if (fill.isCancelled()) {
        return std::nullopt;
    }
    double angle = fill.isValue() ? fill.value : 360.0;
    if (std::fabs(angle) > 360.0) {
        acutPrintf(L"\n填充角度限于 360 度。");
        angle = std::copysign(360.0, angle);
    }
    if (!items.isValue() || angle == 0.0) {
        const RealAnswer between = askReal(L"\n项目间的角度: ", nullptr, RSG_NONULL | RSG_NOZERO);
        if (!between.isValue()) {
            return std::nullopt;
        }
        const double step =
            std::copysign(between.value, angle != 0.0 ? angle * between.value : between.value);
        if (items.isValue()) {
            return Ring{items.value, step * pi / 180.0};
        }
        const double whole = std::floor(std::fabs(angle / step) + 1e-9);
        const bool full =
            std::fabs(std::fabs(angle) - 360.0) < 1e-9 && std::fabs(whole * std::fabs(step) - 360.0) < 1e-9;
        return Ring{static_cast<int>(std::min(whole, 32767.0)) + (full ? 0 : 1), step * pi / 180.0};
    }
    if (items.value == 1) {
        return Ring{1, 0.0};
    }
    // A full turn ends before its first item; a part of one has an item at its end.
    const bool full = std::fabs(std::fabs(angle) - 360.0) < 1e-9;
    return Ring{items.value, angle * pi / 180.0 / (full ? items.value : items.value - 1)};
}

/// The point of an entity that is carried around where it is not turned itself.
AcGePoint3d carriedPoint(const AcDbEntity& entity) {
    if (const auto* reference = AcDbBlockReference::cast(&entity)) {
        return reference->position();
    }
    if (const auto* text = AcDbText::cast(&entity)) {
        return text->position();
    }
    AcGePoint3d point;
    if (const auto* circle = AcDbCircle::cast(&entity)) {
        return circle->center();
    }
    if (const auto* curve = AcDbCurve::cast(&entity);
        curve != nullptr && curve->getStartPoint(point) == Acad::eOk) {
        return point;
    }
    AcDbExtents extents;
    if (entity.getGeomExtents(extents) == Acad::eOk) {
        return extents.minPoint() + (extents.maxPoint() - extents.minPoint()) * 0.5;
    }
    return {};
}

void polar(const Selection& selection) {
    PointAnswer centre = askPoint(L"\n指定阵列的中心点或 [基点(B)]: ", L"Base", nullptr, RSG_NONULL);
    std::optional<AcGePoint3d> base;
    if (centre.isKeyword(L"Base")) {
        const PointAnswer point = askPoint(L"\n指定对象的基点: ", nullptr, nullptr, RSG_NONULL);
        if (!point.isValue()) {
            return;
        }
        base = point.world;
        centre = askPoint(L"\n指定阵列的中心点: ", nullptr, nullptr, RSG_NONULL);
    }
    const std::optional<Ring> ring = centre.isValue() ? askRing() : std::nullopt;
    if (!ring) {
        return;
    }
    const std::optional<bool> turns = askYesNo(L"\n是否旋转阵列中的对象?", true);
    if (!turns) {
        return;
    }
    if (static_cast<long>(ring->items) * selection.ids().length() > maximumCopies) {
        acutPrintf(L"\n阵列的对象多于 %ld 个。", maximumCopies);
        return;
    }
    if (!base && !*turns) {
        const auto* last = peek<AcDbEntity>(selection.ids()[selection.ids().length() - 1]);
        const ReadAccess access(*last);
        base = carriedPoint(*last);
    }
    int refused = 0;
    for (int item = 1; item < ring->items; ++item) {
        AcGeMatrix3d matrix = AcGeMatrix3d::rotation(item * ring->step, ucsNormal(), centre.world);
        if (!*turns) {
            matrix = AcGeMatrix3d::translation(matrix * *base - *base);
        }
        refused += copyTransformed(selection.ids(), currentDatabase().currentSpaceId(), matrix);
    }
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象无法复制。", refused);
    }
}

void runArray() {
    const Selection selection = Selection::askEditable();
    if (selection.empty()) {
        return;
    }
    const Answer kind = askKeyword(L"\n输入阵列类型 [矩形(R)/环形(P)] <R>: ", L"Rectangular Polar");
    if (kind.isCancelled()) {
        return;
    }
    kind.isKeyword(L"Polar") ? polar(selection) : rectangular(selection);
}

constexpr Adesk::Int32 flags = ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW;
constexpr CommandRow rows[] = {{L"ARRAY", L"阵列", flags, runArray}, {L"-ARRAY", L"-阵列", flags, runArray}};

} // namespace

std::span<const CommandRow> arrayCommands() {
    return rows;
}

} // namespace host
