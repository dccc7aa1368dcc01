// CHPROP, CHANGE and MATCHPROP: layer, colour, linetype and the other common properties, and points that
// entities are changed through.
#include "host/commands/ask.h"
#include "host/commands/edit/entityproperties.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"
#include "host/ed/colornames.h"

#include <array>
#include <cmath>

namespace host {
namespace {

void forEachEntity(const Selection& selection, const std::function<Acad::ErrorStatus(AcDbEntity&)>& change) {
    int refused = 0;
    for (const AcDbObjectId id : selection.ids()) {
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        if (!entity || change(*entity.get()) != Acad::eOk) {
            ++refused;
        }
    }
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象没有更改。", refused);
    }
}

/// The value all of the selected share, else nothing.
template <class Get>
auto common(const Selection& selection, Get&& get) {
    using Value = decltype(get(std::declval<const AcDbEntity&>()));
    std::optional<Value> value;
    for (const AcDbObjectId id : selection.ids()) {
        const auto* entity = peek<AcDbEntity>(id);
        const ReadAccess access(*entity);
        const Value own = get(*entity);
        if (value && !(*value == own)) {
            return std::optional<Value>();
        }
        value = own;
    }
    return value;
}

bool changeColor(const Selection& selection) {
    const std::optional<int> now =
        common(selection, [](const AcDbEntity& entity) -> int { return entity.colorIndex(); });
    const std::optional<AcCmEntityColor> color =
        askColor(L"新颜色", now ? colorText(*now) : std::wstring(L"多种"));
    if (color) {
        forEachEntity(selection, [&](AcDbEntity& entity) { return entity.setColor(AcCmColor(*color)); });
    }
    return color.has_value();
}

bool changeLayer(const Selection& selection) {
    const std::optional<AcDbObjectId> now =
        common(selection, [](const AcDbEntity& entity) { return entity.layerId(); });
    const std::optional<AcDbObjectId> layer =
        askRecord(currentDatabase().layerTableId(), L"输入新图层名", L"图层", now.value_or(AcDbObjectId()));
    if (layer && !layer->isNull()) {
        forEachEntity(selection, [&](AcDbEntity& entity) { return entity.setLayer(*layer); });
    }
    return layer.has_value();
}

bool changeLinetype(const Selection& selection) {
    const std::optional<AcDbObjectId> now =
        common(selection, [](const AcDbEntity& entity) { return entity.linetypeId(); });
    const std::optional<AcDbObjectId> linetype = askLinetype(L"输入新线型名", now.value_or(AcDbObjectId()));
    if (linetype && !linetype->isNull()) {
        forEachEntity(selection, [&](AcDbEntity& entity) { return entity.setLinetype(*linetype); });
    }
    return linetype.has_value();
}

bool changeLinetypeScale(const Selection& selection) {
    const std::optional<double> now =
        common(selection, [](const AcDbEntity& entity) { return entity.linetypeScale(); });
    const RealAnswer scale = askReal(L"\n指定新线型比例 <" + (now ? shown(*now) : L"多种") + L">: ", nullptr,
                                     RSG_NOZERO | RSG_NONEG);
    if (scale.isValue()) {
        forEachEntity(selection, [&](AcDbEntity& entity) { return entity.setLinetypeScale(scale.value); });
    }
    return !scale.isCancelled();
}

bool changeLineWeight(const Selection& selection) {
    for (;;) {
        const TextAnswer answer =
            askText(L"\n输入新线宽 (毫米) 或 [随层(ByLayer)/随块(ByBlock)/默认(DEFAULT)]: ");
        if (!answer.isValue()) {
            return !answer.isCancelled();
        }
        if (const std::optional<AcDb::LineWeight> weight = parseLineWeight(answer.text)) {
            forEachEntity(selection, [&](AcDbEntity& entity) { return entity.setLineWeight(*weight); });
            return true;
        }
        acutPrintf(L"\n线宽必须在 0.0 和 2.11 毫米之间。");
    }
}

bool changeThickness(const Selection& selection) {
    const std::optional<std::optional<double>> now = common(selection, thicknessOf);
    const std::wstring standard = now ? shown(now->value_or(0.0)) : L"多种";
    const RealAnswer thickness = askDistance(L"\n指定新厚度 <" + standard + L">: ");
    if (thickness.isValue()) {
        forEachEntity(selection, [&](AcDbEntity& entity) {
            setThicknessOf(entity, thickness.value); // kinds without a thickness stay as they are
            return Acad::eOk;
        });
    }
    return !thickness.isCancelled();
}

bool changeElevation(const Selection& selection) {
    const std::optional<std::optional<double>> now = common(selection, elevationOf);
    const RealAnswer elevation =
        askDistance(L"\n指定新标高 <" + (now && *now ? shown(**now) : L"多种") + L">: ");
    if (elevation.isValue()) {
        forEachEntity(selection, [&](AcDbEntity& entity) {
            const std::optional<double> own = elevationOf(entity);
            return own ? entity.transformBy(AcGeMatrix3d::translation({0.0, 0.0, elevation.value - *own}))
                       : Acad::eNotApplicable;
        });
    }
    return !elevation.isCancelled();
}

struct Property {
    const wchar_t* keyword;
    bool (*change)(const Selection&);
};
constexpr Property properties[] = {{L"Color", changeColor},        {L"LAyer", changeLayer},
                                   {L"LType", changeLinetype},     {L"ltScale", changeLinetypeScale},
                                   {L"LWeight", changeLineWeight}, {L"Thickness", changeThickness},
                                   {L"Elev", changeElevation}};

void changeProperties(const Selection& selection, bool withElevation) {
    for (;;) {
        const Answer answer =
            withElevation ? askKeyword(L"\n输入要更改的特性 [颜色(C)/标高(E)/图层(LA)/线型(LT)/线型比例(S)/"
                                       L"线宽(LW)/厚度(T)]: ",
                                       L"Color Elev LAyer LType ltScale LWeight Thickness")
                          : askKeyword(L"\n输入要更改的特性 [颜色(C)/图层(LA)/线型(LT)/线型比例(S)/线宽(LW)/"
                                       L"厚度(T)]: ",
                                       L"Color LAyer LType ltScale LWeight Thickness");
        const auto* property = std::find_if(std::begin(properties), std::end(properties),
                                            [&](const Property& p) { return answer.isKeyword(p.keyword); });
        if (property == std::end(properties) || !property->change(selection)) {
            return;
        }
    }
}

void runChprop() {
    const Selection selection = Selection::askEditable();
    if (!selection.empty()) {
        changeProperties(selection, false);
    }
}

/// The end of a line nearest to the point goes there.
void changeLine(AcDbLine& line, const AcGePoint3d& to) {
    const bool start = line.startPoint().distanceTo(to) < line.endPoint().distanceTo(to);
    AcGePoint3d point = to;
    if (currentDatabase().orthomode()) {
        // With ortho on the line becomes parallel to an axis.
        const AcGePoint3d fixed = start ? line.endPoint() : line.startPoint();
        const AcGeVector3d way = to - fixed;
        const AcGeVector3d x = currentDatabase().ucsxdir();
        const AcGeVector3d y = currentDatabase().ucsydir();
        const AcGeVector3d& axis = std::fabs(way.dotProduct(x)) >= std::fabs(way.dotProduct(y)) ? x : y;
        point = fixed + axis * way.dotProduct(axis);
    }
    start ? line.setStartPoint(point) : line.setEndPoint(point);
}

bool changeCircle(AcDbCircle& circle, const AcGePoint3d* to) {
    if (to != nullptr) {
        const double radius = circle.center().distanceTo(*to);
        return radius > 0.0 && circle.setRadius(radius) == Acad::eOk;
    }
    const RealAnswer radius =
        askDistance(L"\n指定新的圆半径 <不变>: ", nullptr, nullptr, RSG_NOZERO | RSG_NONEG);
    if (radius.isValue()) {
        circle.setRadius(radius.value);
    }
    return !radius.isCancelled();
}

bool changeText(AcDbText& text, const AcGePoint3d* to) {
    const auto place = [&](const AcGePoint3d& point) {
        text.isDefaultAlignment() ? text.setPosition(point) : text.setAlignmentPoint(point);
    };
    if (to != nullptr) {
        place(*to);
    } else {
        const PointAnswer point = askPoint(L"\n指定新的文字插入点 <不变>: ");
        if (point.isCancelled()) {
            return false;
        }
        if (point.isValue()) {
            place(point.world);
        }
    }
    const std::optional<AcDbObjectId> style =
        askRecord(currentDatabase().textStyleTableId(), L"输入新文字样式", L"文字样式", text.textStyle());
    if (!style) {
        return false;
    }
    text.setTextStyle(style->isNull() ? text.textStyle() : *style);
    const auto* record = peek<AcDbTextStyleTableRecord>(text.textStyle());
    if (record == nullptr || record->textSize() == 0.0) {
        const RealAnswer height = askDistance(L"\n指定新高度 <" + shown(text.height()) + L">: ", nullptr,
                                              nullptr, RSG_NOZERO | RSG_NONEG);
        if (height.isCancelled()) {
            return false;
        }
        text.setHeight(height.isValue() ? height.value : text.height());
    }
    const RealAnswer rotation = askAngle(L"\n指定新旋转角度 <" + shownAngle(text.rotation()) + L">: ");
    if (rotation.isCancelled()) {
        return false;
    }
    text.setRotation(rotation.isValue() ? rotation.value : text.rotation());
    const TextAnswer content =
        askText(std::wstring(L"\n输入新文字 <") + text.textStringConst() + L">: ", true);
    if (content.isValue()) {
        text.setTextString(content.text.c_str());
    }
    text.adjustAlignment(&currentDatabase());
    return !content.isCancelled();
}

bool changeReference(AcDbBlockReference& reference, const AcGePoint3d* to) {
    PointAnswer point;
    if (to == nullptr) {
        point = askPoint(L"\n指定新的块插入点 <不变>: ");
        if (point.isCancelled()) {
            return false;
        }
    }
    const RealAnswer rotation =
        askAngle(L"\n指定新的块旋转角度 <" + shownAngle(reference.rotation()) + L">: ");
    if (rotation.isCancelled()) {
        return false;
    }
    // Attributes go along.
    const AcGePoint3d from = reference.position();
    const AcGePoint3d place = to != nullptr ? *to : point.isValue() ? point.world : from;
    const double turn = rotation.isValue() ? rotation.value - reference.rotation() : 0.0;
    reference.transformBy(AcGeMatrix3d::translation(place - from) *
                          AcGeMatrix3d::rotation(turn, reference.normal(), from));
    return true;
}

/// False when the user cancelled.
bool changePoint(AcDbEntity& entity, const AcGePoint3d* to) {
    if (auto* line = AcDbLine::cast(&entity)) {
        if (to != nullptr) {
            changeLine(*line, *to);
        }
        return true;
    }
    if (auto* circle = AcDbCircle::cast(&entity)) {
        return changeCircle(*circle, to);
    }
    if (auto* text = AcDbText::cast(&entity)) {
        return changeText(*text, to);
    }
    if (auto* reference = AcDbBlockReference::cast(&entity)) {
        return changeReference(*reference, to);
    }
    acutPrintf(L"\n该对象没有可这样更改的点。");
    return true;
}

void runChange() {
    const Selection selection = Selection::askEditable();
    if (selection.empty()) {
        return;
    }
    const PointAnswer point = askPoint(L"\n指定更改点或 [特性(P)]: ", L"Properties");
    if (point.isKeyword(L"Properties")) {
        changeProperties(selection, true);
        return;
    }
    if (point.isCancelled()) {
        return;
    }
    for (const AcDbObjectId id : selection.ids()) {
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        if (entity && !changePoint(*entity.get(), point.isValue() ? &point.world : nullptr)) {
            return;
        }
    }
}

void matchText(const AcDbEntity& source, AcDbEntity& target) {
    const auto* from = AcDbText::cast(&source);
    auto* to = AcDbText::cast(&target);
    if (from == nullptr || to == nullptr) {
        return;
    }
    to->setTextStyle(from->textStyle());
    to->setHeight(from->height());
    to->setWidthFactor(from->widthFactor());
    to->setOblique(from->oblique());
    to->adjustAlignment(&currentDatabase());
}

void matchPolyline(const AcDbEntity& source, AcDbEntity& target) {
    double width = 0.0;
    bool generation = false;
    if (const auto* light = AcDbPolyline::cast(&source)) {
        generation = light->hasPlinegen();
        if (light->getConstantWidth(width) != Acad::eOk) {
            return;
        }
    } else if (const auto* heavy = AcDb2dPolyline::cast(&source)) {
        generation = heavy->isLinetypeGenerationOn();
        if (heavy->constantWidth(width) != Acad::eOk) {
            return;
        }
    } else {
        return;
    }
    if (auto* light = AcDbPolyline::cast(&target)) {
        light->setConstantWidth(width);
        light->setPlinegen(generation);
    } else if (auto* heavy = AcDb2dPolyline::cast(&target)) {
        heavy->setConstantWidth(width);
        generation ? heavy->setLinetypeGenerationOn() : heavy->setLinetypeGenerationOff();
    }
}

void matchStyle(const AcDbEntity& source, AcDbEntity& target) {
    const auto* from = AcDbDimension::cast(&source);
    auto* to = AcDbDimension::cast(&target);
    if (from != nullptr && to != nullptr) {
        to->setDimensionStyle(from->dimensionStyle());
    }
}

void matchParagraph(const AcDbEntity& source, AcDbEntity& target) {
    const auto* from = AcDbMText::cast(&source);
    auto* to = AcDbMText::cast(&target);
    if (from != nullptr && to != nullptr) {
        to->setTextStyle(from->textStyle());
        to->setTextHeight(from->textHeight());
    }
}

/// One kind of property that MATCHPROP carries over, or is told to leave.
struct Match {
    const wchar_t* keyword;
    const wchar_t* name;
    void (*apply)(const AcDbEntity& source, AcDbEntity& target);
};
constexpr Match matches[] = {
    {L"Color", L"颜色", [](const AcDbEntity& from, AcDbEntity& to) { to.setColor(from.color()); }},
    {L"LAyer", L"图层", [](const AcDbEntity& from, AcDbEntity& to) { to.setLayer(from.layerId()); }},
    {L"LType", L"线型", [](const AcDbEntity& from, AcDbEntity& to) { to.setLinetype(from.linetypeId()); }},
    {L"ltScale", L"线型比例",
     [](const AcDbEntity& from, AcDbEntity& to) { to.setLinetypeScale(from.linetypeScale()); }},
    {L"LWeight", L"线宽",
     [](const AcDbEntity& from, AcDbEntity& to) { to.setLineWeight(from.lineWeight()); }},
    {L"Thickness", L"厚度",
     [](const AcDbEntity& from, AcDbEntity& to) {
         if (const std::optional<double> thickness = thicknessOf(from)) {
             setThicknessOf(to, *thickness);
         }
     }},
    {L"TeXt", L"文字",
     [](const AcDbEntity& from, AcDbEntity& to) {
         matchText(from, to);
         matchParagraph(from, to);
     }},
    {L"Polyline", L"多段线", matchPolyline},
    {L"Dimension", L"标注", matchStyle}};

using Matching = std::array<bool, std::size(matches)>;

void tellMatching(const Matching& active) {
    std::wstring names;
    for (std::size_t i = 0; i < std::size(matches); ++i) {
        names += active[i] ? std::wstring(L" ") + matches[i].name : L"";
    }
    acutPrintf(L"\n当前活动设置: %s", names.c_str());
}

/// Every keyword turns its kind on or off. False for Escape.
bool askMatching(Matching& active) {
    for (;;) {
        const Answer answer =
            askKeyword(L"\n输入要切换的特性 [颜色(C)/图层(LA)/线型(LT)/线型比例(S)/线宽(LW)/"
                       L"厚度(T)/文字(TX)/多段线(P)/标注(D)] <完成>: ",
                       L"Color LAyer LType ltScale LWeight Thickness TeXt Polyline Dimension");
        if (answer.kind != Answer::Kind::keyword) {
            return !answer.isCancelled();
        }
        for (std::size_t i = 0; i < std::size(matches); ++i) {
            active[i] = active[i] != answer.isKeyword(matches[i].keyword);
        }
        tellMatching(active);
    }
}

void runMatchprop() {
    const EntityAnswer picked = askEntity(L"\n选择源对象: ");
    if (!picked.isValue()) {
        return;
    }
    Matching active;
    active.fill(true);
    tellMatching(active);
    for (;;) {
        acedInitGet(0, L"Settings");
        const Selection targets = Selection::askWith(L"\n选择目标对象或 [设置(S)]: ", true);
        if (targets.isKeyword()) {
            if (!askMatching(active)) {
                return;
            }
            continue;
        }
        const auto* source = peek<AcDbEntity>(picked.id);
        const ReadAccess access(*source);
        forEachEntity(targets, [&](AcDbEntity& target) {
            for (std::size_t i = 0; i < std::size(matches) && &target != source; ++i) {
                if (active[i]) {
                    matches[i].apply(*source, target);
                }
            }
            return Acad::eOk;
        });
        return;
    }
}

constexpr Adesk::Int32 flags = ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW;
constexpr CommandRow rows[] = {{L"CHPROP", L"更改特性", flags, runChprop},
                               {L"CHANGE", L"更改", flags, runChange},
                               {L"MATCHPROP", L"特性匹配", ACRX_CMD_MODAL, runMatchprop}};

} // namespace

std::span<const CommandRow> propertyCommands() {
    return rows;
}

} // namespace host
