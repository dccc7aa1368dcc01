// What an entity is and where, as lines of text.
#include "host/commands/edit/describe.h"

#include "host/commands/ask.h"
#include "host/commands/edit/curvemarks.h"
#include "host/commands/edit/editing.h"
#include "host/commands/edit/entityproperties.h"
#include "host/commands/tables.h"
#include "host/ed/colornames.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {
namespace {

using Lines = std::vector<std::wstring>;

const std::wstring indent(20, L' ');

std::wstring at(const AcGePoint3d& world) {
    const AcGePoint3d point = worldToUcs(world);
    return L"X=" + shown(point.x) + L"  Y=" + shown(point.y) + L"  Z=" + shown(point.z);
}

/// Angle of a world direction in the XY plane of the UCS.
double ucsAngle(const AcGeVector3d& direction) {
    const AcGeVector3d own = ucsMatrix().inverse() * direction;
    return std::atan2(own.y, own.x);
}

void addCommon(const AcDbEntity& entity, Lines& lines) {
    const std::wstring kind = toUpper(fromUtf8(entity.dxfRecordName()));
    lines.push_back(indent.substr(2) + kind + std::wstring(kind.size() < 12 ? 12 - kind.size() : 1, L' ') +
                    L"图层: \"" + recordName(entity.layerId()) + L"\"");
    const auto* owner = peek<AcDbBlockTableRecord>(entity.ownerId());
    lines.push_back(indent + L"空间: " +
                    (owner == nullptr || owner->isModelSpace() ? L"模型空间" : L"图纸空间"));
    if (!entity.entityColor().isByLayer()) {
        lines.push_back(indent + L"颜色: " + colorText(entity.colorIndex()));
    }
    const AcDbDatabase* database = entity.database();
    if (database != nullptr && entity.linetypeId() != database->byLayerLinetype()) {
        lines.push_back(indent + L"线型: \"" + recordName(entity.linetypeId()) + L"\"");
    }
    if (entity.linetypeScale() != 1.0) {
        lines.push_back(indent + L"线型比例 = " + shown(entity.linetypeScale()));
    }
    lines.push_back(indent + L"句柄 = " + entity.handle().toString());
    if (const double thickness = thicknessOf(entity).value_or(0.0); thickness != 0.0) {
        lines.push_back(indent + L"厚度 = " + shown(thickness));
    }
}

void addLine(const AcDbLine& line, Lines& lines) {
    const AcGeVector3d way = line.endPoint() - line.startPoint();
    const AcGeVector3d own = ucsMatrix().inverse() * way;
    lines.push_back(indent + L"自点  " + at(line.startPoint()));
    lines.push_back(indent + L"到点  " + at(line.endPoint()));
    lines.push_back(indent + L"长度 = " + shown(way.length()) + L"，在 XY 平面中的角度 = " +
                    shownAngle(ucsAngle(way)));
    lines.push_back(indent + L"X 增量 = " + shown(own.x) + L"，Y 增量 = " + shown(own.y) + L"，Z 增量 = " +
                    shown(own.z));
}

void addCircle(const AcDbCircle& circle, Lines& lines) {
    lines.push_back(indent + L"圆心点  " + at(circle.center()));
    lines.push_back(indent + L"半径 " + shown(circle.radius()));
    lines.push_back(indent + L"周长 " + shown(circle.circumference()));
    lines.push_back(indent + L"面积 " + shown(pi * circle.radius() * circle.radius()));
}

void addArc(const AcDbArc& arc, Lines& lines) {
    lines.push_back(indent + L"圆心点  " + at(arc.center()));
    lines.push_back(indent + L"半径 " + shown(arc.radius()));
    lines.push_back(indent + L"起点角度 " + shownAngle(arc.startAngle()));
    lines.push_back(indent + L"端点角度 " + shownAngle(arc.endAngle()));
    lines.push_back(indent + L"长度 " + shown(arc.length()));
}

void addPath(const AcDbCurve& curve, const FlatPath& flat, Lines& lines) {
    lines.push_back(indent + (flat.shape.path.closed ? L"闭合" : L"打开"));
    if (const std::optional<Measures> measures = measuresOf(curve)) {
        lines.push_back(indent + L"面积 " + shown(measures->area));
        lines.push_back(indent + (flat.shape.path.closed ? L"周长 " : L"长度 ") + shown(measures->length));
    }
    for (std::size_t i = 0; i < flat.shape.path.vertices.size(); ++i) {
        const BulgeVertex& vertex = flat.shape.path.vertices[i];
        lines.push_back(indent + L"于端点  " + at(flat.toWorld(vertex.point)));
        if (vertex.bulge != 0.0 && static_cast<int>(i) < flat.shape.path.segmentCount()) {
            lines.push_back(indent + L"    凸度 " + shown(vertex.bulge));
        }
        if (i < flat.shape.widths.size()) {
            lines.push_back(indent + L"    起点宽度 " + shown(flat.shape.widths[i].start) + L"，端点宽度 " +
                            shown(flat.shape.widths[i].end));
        }
    }
}

void addText(const AcDbText& text, Lines& lines) {
    lines.push_back(indent + L"样式 = \"" + recordName(text.textStyle()) + L"\"");
    lines.push_back(indent + L"起点  " + at(text.position()));
    lines.push_back(indent + L"高度 " + shown(text.height()));
    lines.push_back(indent + L"文字 " + text.textStringConst());
    lines.push_back(indent + L"旋转角度 " + shownAngle(text.rotation()));
    lines.push_back(indent + L"宽度比例因子 " + shown(text.widthFactor()));
    lines.push_back(indent + L"倾斜角度 " + shownAngle(text.oblique()));
}

void addReference(const AcDbBlockReference& reference, Lines& lines) {
    lines.push_back(indent + L"块名: \"" + recordName(reference.blockTableRecord()) + L"\"");
    lines.push_back(indent + L"于点  " + at(reference.position()));
    const AcGeScale3d scale = reference.scaleFactors();
    lines.push_back(indent + L"X 比例因子 " + shown(scale.sx));
    lines.push_back(indent + L"Y 比例因子 " + shown(scale.sy));
    lines.push_back(indent + L"Z 比例因子 " + shown(scale.sz));
    lines.push_back(indent + L"旋转角度 " + shownAngle(reference.rotation()));
    if (const SubentityList* attributes = static_cast<const AcDbEntity&>(reference).subentities()) {
        attributes->forEach<AcDbAttribute>([&](const AcDbAttribute& attribute) {
            lines.push_back(indent + L"属性 " + attribute.tagConst() + L" = " + attribute.textStringConst());
        });
    }
}

void addOther(const AcDbEntity& entity, Lines& lines) {
    if (const auto* point = AcDbPoint::cast(&entity)) {
        lines.push_back(indent + L"于点  " + at(point->position()));
        return;
    }
    const auto* curve = AcDbCurve::cast(&entity);
    AcGePoint3d start;
    AcGePoint3d end;
    if (curve != nullptr && curve->getStartPoint(start) == Acad::eOk &&
        curve->getEndPoint(end) == Acad::eOk) {
        lines.push_back(indent + L"起点  " + at(start));
        lines.push_back(indent + L"端点  " + at(end));
        if (const std::optional<double> length = curveLength(*curve)) {
            lines.push_back(indent + L"长度 " + shown(*length));
        }
        return;
    }
    AcDbExtents extents;
    if (entity.getGeomExtents(extents) == Acad::eOk) {
        lines.push_back(indent + L"边界  " + at(extents.minPoint()));
        lines.push_back(indent + L"      " + at(extents.maxPoint()));
    }
}

} // namespace

std::vector<std::wstring> describeEntity(const AcDbEntity& entity) {
    Lines lines;
    addCommon(entity, lines);
    if (const auto* line = AcDbLine::cast(&entity)) {
        addLine(*line, lines);
    } else if (const auto* circle = AcDbCircle::cast(&entity)) {
        addCircle(*circle, lines);
    } else if (const auto* arc = AcDbArc::cast(&entity)) {
        addArc(*arc, lines);
    } else if (const std::optional<FlatPath> flat = flatPathOf(entity)) {
        addPath(static_cast<const AcDbCurve&>(entity), *flat, lines);
    } else if (const auto* text = AcDbText::cast(&entity)) {
        addText(*text, lines);
    } else if (const auto* reference = AcDbBlockReference::cast(&entity)) {
        addReference(*reference, lines);
    } else {
        addOther(entity, lines);
    }
    return lines;
}

std::optional<Measures> measuresOf(const AcDbEntity& entity) {
    const auto* curve = AcDbCurve::cast(&entity);
    const std::optional<double> length = curve != nullptr ? curveLength(*curve) : std::nullopt;
    Measures measures;
    if (!length || curve->getArea(measures.area) != Acad::eOk) {
        return std::nullopt;
    }
    measures.length = *length;
    measures.area = std::fabs(measures.area);
    return measures;
}

} // namespace host
