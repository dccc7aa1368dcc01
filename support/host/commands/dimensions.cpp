// DIMLINEAR, DIMALIGNED, DIMRADIUS, DIMDIAMETER and DIMANGULAR.
#include "host/commands/dimensions.h"

#include "host/commands/ask.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {

void appendDimension(AcDbDimension* dimension) {
    dimension->setDatabaseDefaults();
    dimension->setDimensionStyle(currentDatabase().dimstyle());
    transformFromUcs(*dimension);
    double measured = 0.0;
    const bool known = dimension->measurement(measured) == Acad::eOk;
    const bool angular = AcDb3PointAngularDimension::cast(dimension) != nullptr ||
                         AcDb2LineAngularDimension::cast(dimension) != nullptr;
    appendToCurrentSpace(dimension);
    if (known) {
        acutPrintf(L"\n标注文字 = %s", angular ? shownAngle(measured).c_str() : shown(measured).c_str());
    }
}

namespace {

/// What may be set before a dimension is placed.
struct DimensionText {
    std::wstring text; ///< empty: the measured value
    std::optional<double> textAngle;
};

/// Where the extension lines start.
struct Origins {
    AcGePoint3d first; ///< UCS
    AcGePoint3d second;
};

/// Two points, or the ends of a line, an arc or a segment picked after Enter.
std::optional<Origins> askOrigins() {
    const PointAnswer first = askPoint(L"\n指定第一个尺寸界线原点或 <选择对象>: ");
    if (first.isCancelled()) {
        return std::nullopt;
    }
    if (first.isValue()) {
        const PointAnswer second = askPoint(L"\n指定第二条尺寸界线原点: ", nullptr, &first.ucs, RSG_NONULL);
        return second.isValue() ? std::optional(Origins{first.ucs, second.ucs}) : std::nullopt;
    }
    const auto refuse = [](const AcDbEntity& entity) -> const wchar_t* {
        const auto* curve = AcDbCurve::cast(&entity);
        return curve != nullptr && (!curve->isClosed() || AcDbCircle::cast(curve) != nullptr ||
                                    AcDbPolyline::cast(curve) != nullptr)
                   ? nullptr
                   : L"对象不能这样标注。";
    };
    const EntityAnswer picked = askEntity(L"\n选择标注对象: ", nullptr, refuse);
    if (!picked.isValue()) {
        return std::nullopt;
    }
    const auto* entity = peek<AcDbCurve>(picked.id);
    const ReadAccess access(*entity);
    AcGePoint3d start;
    AcGePoint3d end;
    if (const auto* circle = AcDbCircle::cast(entity)) {
        const AcGeVector3d arm = ucsMatrix() * AcGeVector3d(circle->radius(), 0.0, 0.0);
        return Origins{worldToUcs(circle->center() - arm), worldToUcs(circle->center() + arm)};
    }
    if (const auto* light = AcDbPolyline::cast(entity)) {
        AcGePoint3d closest;
        double parameter = 0.0;
        entity->getClosestPointTo(picked.world, closest);
        entity->getParamAtPoint(closest, parameter);
        const unsigned segments = light->numVerts() - (light->isClosed() ? 0 : 1);
        const auto index = std::min(static_cast<unsigned>(parameter), std::max(segments, 1U) - 1);
        light->getPointAt(index, start);
        light->getPointAt((index + 1) % light->numVerts(), end);
    } else {
        entity->getStartPoint(start);
        entity->getEndPoint(end);
    }
    return Origins{worldToUcs(start), worldToUcs(end)};
}

/// The text or its angle; false for Escape.
bool takeTextOption(const Answer& option, DimensionText& text) {
    if (option.isKeyword(L"Angle")) {
        const RealAnswer angle = askAngle(L"\n指定标注文字的角度: ");
        if (angle.isValue()) {
            text.textAngle = angle.value;
        }
        return !angle.isCancelled();
    }
    const TextAnswer given = askText(L"\n输入标注文字 <测量值>: ", true);
    text.text = given.isValue() ? given.text : L"";
    return !given.isCancelled();
}

void finish(AcDbDimension* dimension, const DimensionText& text) {
    if (!text.text.empty()) {
        dimension->setDimensionText(text.text.c_str());
    }
    if (text.textAngle) {
        dimension->setTextRotation(*text.textAngle);
    }
    appendDimension(dimension);
}

/// Level or upright, after where the dimension line is put.
double linearDirection(const Origins& origins, const AcGePoint3d& place) {
    const double low = std::min(origins.first.x, origins.second.x);
    const double high = std::max(origins.first.x, origins.second.x);
    const double bottom = std::min(origins.first.y, origins.second.y);
    const double top = std::max(origins.first.y, origins.second.y);
    const double beside = std::max({low - place.x, place.x - high, 0.0});
    const double above = std::max({bottom - place.y, place.y - top, 0.0});
    if (beside == above) {
        return high - low >= top - bottom ? 0.0 : halfPi;
    }
    return beside > above ? halfPi : 0.0;
}

void runLinear() {
    const std::optional<Origins> origins = askOrigins();
    if (!origins) {
        return;
    }
    DimensionText text;
    std::optional<double> direction;
    for (;;) {
        const PointAnswer place =
            askPoint(L"\n指定尺寸线位置或\n[多行文字(M)/文字(T)/角度(A)/水平(H)/垂直(V)/旋转(R)]: ",
                     L"Mtext Text Angle Horizontal Vertical Rotated", &origins->second, RSG_NONULL);
        if (place.isValue()) {
            finish(new AcDbRotatedDimension(direction.value_or(linearDirection(*origins, place.ucs)),
                                            origins->first, origins->second, place.ucs),
                   text);
            return;
        }
        if (place.isKeyword(L"Horizontal") || place.isKeyword(L"Vertical")) {
            direction = place.isKeyword(L"Vertical") ? halfPi : 0.0;
        } else if (place.isKeyword(L"Rotated")) {
            const RealAnswer angle = askAngle(L"\n指定尺寸线的角度 <0>: ");
            direction = angle.isValue() ? angle.value : 0.0;
        } else if (place.kind != Answer::Kind::keyword || !takeTextOption(place, text)) {
            return;
        }
    }
}

/// The place of the dimension line, after options for its text; nothing when the user gives up.
std::optional<AcGePoint3d> askPlace(const std::wstring& what, DimensionText& text, const AcGePoint3d* base) {
    for (;;) {
        const PointAnswer place = askPoint(L"\n指定" + what + L"位置或\n[多行文字(M)/文字(T)/角度(A)]: ",
                                           L"Mtext Text Angle", base, RSG_NONULL);
        if (place.isValue()) {
            return place.ucs;
        }
        if (place.kind != Answer::Kind::keyword || !takeTextOption(place, text)) {
            return std::nullopt;
        }
    }
}

void runAligned() {
    const std::optional<Origins> origins = askOrigins();
    DimensionText text;
    const std::optional<AcGePoint3d> place =
        origins ? askPlace(L"尺寸线", text, &origins->second) : std::nullopt;
    if (place) {
        finish(new AcDbAlignedDimension(origins->first, origins->second, *place), text);
    }
}

const wchar_t* refuseUnlessRound(const AcDbEntity& entity) {
    return AcDbCircle::cast(&entity) != nullptr || AcDbArc::cast(&entity) != nullptr
               ? nullptr
               : L"选定的对象不是圆或圆弧。";
}

struct Round {
    AcGePoint3d center; ///< UCS
    double radius = 0.0;
};

std::optional<Round> askRound() {
    const EntityAnswer picked = askEntity(L"\n选择圆弧或圆: ", nullptr, refuseUnlessRound);
    if (!picked.isValue()) {
        return std::nullopt;
    }
    const auto* entity = peek<AcDbEntity>(picked.id);
    const ReadAccess access(*entity);
    const auto* circle = AcDbCircle::cast(entity);
    const auto* arc = AcDbArc::cast(entity);
    return Round{worldToUcs(circle != nullptr ? circle->center() : arc->center()),
                 circle != nullptr ? circle->radius() : arc->radius()};
}

/// The dimension runs through the place that is picked, inside or outside of the circle.
void placeRound(bool diameter) {
    const std::optional<Round> round = askRound();
    DimensionText text;
    const std::optional<AcGePoint3d> place = round ? askPlace(L"尺寸线", text, &round->center) : std::nullopt;
    if (!place) {
        return;
    }
    const AcGeVector2d arm = to2d(*place) - to2d(round->center);
    const double angle = arm.lengthSqrd() > 0.0 ? arm.angle() : 0.0;
    const AcGePoint3d chord = polar(round->center, angle, round->radius);
    const double leader = std::max(arm.length() - round->radius, 0.0);
    if (diameter) {
        finish(new AcDbDiametricDimension(chord, polar(round->center, angle + pi, round->radius), leader),
               text);
    } else {
        finish(new AcDbRadialDimension(round->center, chord, leader), text);
    }
}

void runRadius() {
    placeRound(false);
}
void runDiameter() {
    placeRound(true);
}

/// Between the ends of an arc.
void dimensionArc(const AcDbArc& arc) {
    AcGePoint3d start;
    AcGePoint3d end;
    arc.getStartPoint(start);
    arc.getEndPoint(end);
    DimensionText text;
    const AcGePoint3d center = worldToUcs(arc.center());
    if (const std::optional<AcGePoint3d> place = askPlace(L"标注弧线", text, &center)) {
        finish(new AcDb3PointAngularDimension(center, worldToUcs(start), worldToUcs(end), *place), text);
    }
}

void dimensionVertex() {
    const PointAnswer vertex = askPoint(L"\n指定角的顶点: ", nullptr, nullptr, RSG_NONULL);
    const PointAnswer first = vertex.isValue()
                                  ? askPoint(L"\n指定角的第一个端点: ", nullptr, &vertex.ucs, RSG_NONULL)
                                  : PointAnswer();
    const PointAnswer second = first.isValue()
                                   ? askPoint(L"\n指定角的第二个端点: ", nullptr, &vertex.ucs, RSG_NONULL)
                                   : PointAnswer();
    DimensionText text;
    const std::optional<AcGePoint3d> place =
        second.isValue() ? askPlace(L"标注弧线", text, &vertex.ucs) : std::nullopt;
    if (place) {
        finish(new AcDb3PointAngularDimension(vertex.ucs, first.ucs, second.ucs, *place), text);
    }
}

void dimensionLines(AcDbObjectId firstId) {
    const auto refuse = [&](const AcDbEntity& entity) -> const wchar_t* {
        return AcDbLine::cast(&entity) != nullptr && entity.objectId() != firstId ? nullptr
                                                                                  : L"需要另一条直线。";
    };
    const EntityAnswer second = askEntity(L"\n选择第二条直线: ", nullptr, refuse);
    if (!second.isValue()) {
        return;
    }
    const auto ends = [](AcDbObjectId id) {
        const auto* line = peek<AcDbLine>(id);
        const ReadAccess access(*line);
        return std::pair(worldToUcs(line->startPoint()), worldToUcs(line->endPoint()));
    };
    const auto [a, b] = ends(firstId);
    const auto [c, d] = ends(second.id);
    const double cross = (b - a).crossProduct(d - c).z;
    if (std::fabs(cross) < 1e-12 * (b - a).length() * (d - c).length()) {
        acutPrintf(L"\n两条直线平行，没有夹角。");
        return;
    }
    DimensionText text;
    if (const std::optional<AcGePoint3d> place = askPlace(L"标注弧线", text, nullptr)) {
        finish(new AcDb2LineAngularDimension(a, b, c, d, *place), text);
    }
}

void runAngular() {
    const auto refuse = [](const AcDbEntity& entity) -> const wchar_t* {
        return AcDbLine::cast(&entity) != nullptr || AcDbArc::cast(&entity) != nullptr ? nullptr
                                                                                       : L"需要圆弧或直线。";
    };
    const EntityAnswer picked = askEntity(L"\n选择圆弧、直线或 <指定顶点>: ", nullptr, refuse);
    if (picked.isNone()) {
        dimensionVertex();
    } else if (const auto* arc = peek<AcDbArc>(picked.id)) {
        const ReadAccess access(*arc);
        dimensionArc(*arc);
    } else if (picked.isValue()) {
        dimensionLines(picked.id);
    }
}

constexpr CommandRow rows[] = {{L"DIMLINEAR", L"线性标注", ACRX_CMD_MODAL, runLinear},
                               {L"DIMALIGNED", L"对齐标注", ACRX_CMD_MODAL, runAligned},
                               {L"DIMRADIUS", L"半径标注", ACRX_CMD_MODAL, runRadius},
                               {L"DIMDIAMETER", L"直径标注", ACRX_CMD_MODAL, runDiameter},
                               {L"DIMANGULAR", L"角度标注", ACRX_CMD_MODAL, runAngular}};

} // namespace

std::span<const CommandRow> dimensionCommands() {
    return rows;
}

} // namespace host
