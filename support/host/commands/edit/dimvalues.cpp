// Values go by the kind of the variable's member; what a number means else by its group code.
#include "host/commands/edit/dimvalues.h"

#include "host/commands/tables.h"
#include "host/db/dbents.h"
#include "host/db/entities/arrowheads.h"
#include "host/ed/colornames.h"
#include "host/ed/ed.h"
#include "host/ed/units.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {
namespace {

using V = DimVariables;

/// In the order of the table of variables.
constexpr const wchar_t* meanings[] = {L"标注文字的前缀和后缀",
                                       L"换算文字的前缀和后缀",
                                       L"全局比例因子",
                                       L"箭头大小",
                                       L"尺寸界线原点偏移",
                                       L"尺寸线间距",
                                       L"尺寸界线超出尺寸线的距离",
                                       L"舍入值",
                                       L"尺寸线超出尺寸界线的距离",
                                       L"正公差",
                                       L"负公差",
                                       L"固定长度的尺寸界线",
                                       L"折弯角度",
                                       L"文字背景的填充",
                                       L"文字背景的颜色",
                                       L"显示公差",
                                       L"显示极限",
                                       L"尺寸界线内的文字水平",
                                       L"尺寸界线外的文字水平",
                                       L"隐藏第一条尺寸界线",
                                       L"隐藏第二条尺寸界线",
                                       L"文字在尺寸线上方",
                                       L"消零",
                                       L"角度消零",
                                       L"弧长符号的位置",
                                       L"文字高度",
                                       L"圆心标记大小",
                                       L"斜线尺寸",
                                       L"换算单位比例",
                                       L"线性测量比例",
                                       L"文字的垂直位置",
                                       L"公差文字高度比例",
                                       L"文字与尺寸线的间距",
                                       L"换算单位的舍入值",
                                       L"使用换算单位",
                                       L"换算单位的小数位数",
                                       L"强制绘制尺寸线",
                                       L"使用单独的箭头",
                                       L"文字置于尺寸界线之间",
                                       L"隐藏尺寸界线外的尺寸线",
                                       L"尺寸线颜色",
                                       L"尺寸界线颜色",
                                       L"文字颜色",
                                       L"角度的小数位数",
                                       L"小数位数",
                                       L"公差的小数位数",
                                       L"换算单位格式",
                                       L"换算公差的小数位数",
                                       L"角度单位格式",
                                       L"分数格式",
                                       L"线性单位格式",
                                       L"小数分隔符",
                                       L"文字移动的规则",
                                       L"文字的水平位置",
                                       L"隐藏第一条尺寸线",
                                       L"隐藏第二条尺寸线",
                                       L"公差的垂直对正",
                                       L"公差消零",
                                       L"换算单位消零",
                                       L"换算公差消零",
                                       L"用户放置文字",
                                       L"箭头和文字的调整",
                                       L"固定尺寸界线长度",
                                       L"文字方向从右到左",
                                       L"文字样式",
                                       L"引线箭头",
                                       L"箭头块",
                                       L"第一个箭头块",
                                       L"第二个箭头块",
                                       L"尺寸线线型",
                                       L"第一条尺寸界线线型",
                                       L"第二条尺寸界线线型",
                                       L"尺寸线线宽",
                                       L"尺寸界线线宽"};

constexpr short textStyleCode = 340;
constexpr short firstLinetypeCode = 345;
constexpr short separatorCode = 278;

bool isLineweight(short code) {
    return code == 371 || code == 372;
}
bool isColor(short code) {
    return (code >= 176 && code <= 178) || code == 70;
}
/// Switches are shown as on and off.
bool isSwitch(short code) {
    constexpr short switches[] = {71, 72, 73, 74, 75, 76, 170, 172, 173, 174, 175, 281, 282, 288, 290, 294};
    return std::ranges::find(switches, code) != std::end(switches);
}

std::optional<Adesk::Int16> integerOf(const std::wstring& text, short code) {
    if (isLineweight(code)) {
        const std::optional<AcDb::LineWeight> weight = parseLineWeight(text);
        return weight ? std::optional(static_cast<Adesk::Int16>(*weight)) : std::nullopt;
    }
    if (isColor(code)) {
        const std::optional<AcCmEntityColor> color = parseColor(text);
        return color ? std::optional(color->colorIndex()) : std::nullopt;
    }
    if (code == separatorCode) {
        return text.size() == 1 ? std::optional(static_cast<Adesk::Int16>(text.front())) : std::nullopt;
    }
    if (isSwitch(code) && (equalNoCase(text, L"ON") || text == L"开")) {
        return Adesk::Int16{1};
    }
    if (isSwitch(code) && (equalNoCase(text, L"OFF") || text == L"关")) {
        return Adesk::Int16{0};
    }
    const std::optional<long long> number = parseInteger(trim(text));
    return number && *number >= -32768 && *number <= 32767 ? std::optional(static_cast<Adesk::Int16>(*number))
                                                           : std::nullopt;
}

/// A record by its name; nothing when there is none. "." and nothing at all are the standard.
std::optional<AcDbObjectId> recordOf(AcDbDatabase& database, const std::wstring& text, short code) {
    const bool isStandard = text.empty() || text == L".";
    if (code == textStyleCode) {
        AcDbObjectId style;
        const auto* styles = peek<AcDbTextStyleTable>(database.textStyleTableId());
        return styles->getAt(text.c_str(), style) == Acad::eOk ? std::optional(style) : std::nullopt;
    }
    if (isStandard) {
        return AcDbObjectId();
    }
    const AcDbObjectId id = code >= firstLinetypeCode ? linetypeNamed(text) : arrowBlock(database, text);
    return id.isNull() ? std::nullopt : std::optional(id);
}

} // namespace

std::optional<std::size_t> dimVariableNamed(std::wstring_view name) {
    std::wstring upper = toUpper(name);
    if (upper.starts_with(L"DIM")) {
        upper.erase(0, 3);
    }
    const std::span<const DimVariable> all = dimVariables();
    const auto found = std::ranges::find_if(
        all, [&](const DimVariable& variable) { return fromUtf8(variable.name) == upper; });
    return found != all.end() ? std::optional(static_cast<std::size_t>(found - all.begin())) : std::nullopt;
}

const wchar_t* dimVariableMeaning(std::size_t index) {
    return index < std::size(meanings) ? meanings[index] : L"";
}

std::wstring shownDimValue(const DimVariables& variables, std::size_t index) {
    const DimVariable& variable = dimVariables()[index];
    if (const auto* real = std::get_if<double V::*>(&variable.member)) {
        constexpr short angleCode = 50;
        ACHAR text[64];
        variable.code == angleCode ? acdbAngToS(variables.**real, -1, -1, text)
                                   : acdbRToS(variables.**real, -1, -1, text);
        return text;
    }
    if (const auto* text = std::get_if<AcString V::*>(&variable.member)) {
        return (variables.**text).kwszPtr();
    }
    if (const auto* id = std::get_if<AcDbObjectId V::*>(&variable.member)) {
        const AcDbObjectId record = variables.**id;
        const std::wstring_view arrow = standardArrowName(record);
        return arrow.empty() ? recordName(record) : std::wstring(arrow);
    }
    const Adesk::Int16 number = variables.*std::get<Adesk::Int16 V::*>(variable.member);
    if (isSwitch(variable.code)) {
        return number != 0 ? L"开" : L"关";
    }
    if (variable.code == separatorCode) {
        return std::wstring(1, static_cast<wchar_t>(number));
    }
    if (isColor(variable.code) && (number == 0 || number == 256)) {
        return number == 0 ? L"BYBLOCK" : L"BYLAYER";
    }
    return std::to_wstring(number);
}

bool takeDimValue(AcDbDatabase& database, const std::wstring& text, std::size_t index,
                  DimVariables& variables) {
    const DimVariable& variable = dimVariables()[index];
    DimVariables changed = variables;
    if (const auto* real = std::get_if<double V::*>(&variable.member)) {
        constexpr short angleCode = 50;
        const int status = variable.code == angleCode ? acdbAngToF(text.c_str(), -1, &(changed.**real))
                                                      : acdbDisToF(text.c_str(), -1, &(changed.**real));
        if (status != RTNORM) {
            return false;
        }
    } else if (const auto* string = std::get_if<AcString V::*>(&variable.member)) {
        changed.** string = text == L"." ? L"" : text.c_str();
    } else if (const auto* id = std::get_if<AcDbObjectId V::*>(&variable.member)) {
        const std::optional<AcDbObjectId> record = recordOf(database, text, variable.code);
        changed.** id = record.value_or(AcDbObjectId());
        if (!record) {
            return false;
        }
    } else {
        const std::optional<Adesk::Int16> number = integerOf(text, variable.code);
        changed.*std::get<Adesk::Int16 V::*>(variable.member) = number.value_or(Adesk::Int16{0});
        if (!number) {
            return false;
        }
    }
    if (checkDimVariable(changed, index) != Acad::eOk) {
        return false;
    }
    copyDimVariable(variables, changed, index);
    return true;
}

namespace {

/// Calls act(annotation) with the entity as what it is; false for other kinds.
template <class Entity, class Act>
bool forAnnotation(Entity& entity, Act&& act) {
    if (auto* dimension = AcDbDimension::cast(&entity)) {
        act(*dimension);
    } else if (auto* leader = AcDbLeader::cast(&entity)) {
        act(*leader);
    } else if (auto* frame = AcDbFcf::cast(&entity)) {
        act(*frame);
    } else {
        return false;
    }
    return true;
}

} // namespace

std::optional<DimVariables> dimVariablesOf(const AcDbEntity& entity) {
    const ReadAccess access(entity);
    std::optional<DimVariables> variables;
    forAnnotation(entity, [&](const auto& annotation) { variables = annotation.dimVariables(); });
    return variables;
}

void overrideDimVariables(AcDbEntity& entity, const DimVariables& values) {
    const auto isStandardText = [&](const DimVariables& before, std::size_t index) {
        // A style that names no text style means the standard one.
        return dimVariables()[index].code == textStyleCode && before.txsty.isNull() &&
               (values.txsty.isNull() || equalNoCase(recordName(values.txsty), L"Standard"));
    };
    forAnnotation(entity, [&](auto& annotation) {
        const DimVariables before = annotation.dimVariables();
        for (std::size_t index = 0; index < dimVariables().size(); ++index) {
            if (!equalDimVariable(before, values, index) && !isStandardText(before, index)) {
                annotation.setDimVariable(values, index);
            }
        }
    });
    if (auto* dimension = AcDbDimension::cast(&entity); dimension != nullptr && !entity.objectId().isNull()) {
        dimension->recomputeDimBlock();
    }
}

void overrideByCurrent(AcDbEntity& entity, const AcDbDatabase& database) {
    const std::optional<DimVariables> own = dimVariablesOf(entity);
    DimVariables current = currentDimVariables(database);
    for (std::size_t index = 0; own && index < dimVariables().size(); ++index) {
        const auto* reference = std::get_if<AcDbObjectId V::*>(&dimVariables()[index].member);
        if (reference != nullptr && (current.**reference).isNull()) {
            copyDimVariable(current, *own, index);
        }
    }
    overrideDimVariables(entity, current);
}

void clearDimOverrides(AcDbEntity& entity) {
    // The list DSTYLE of the application ACAD, up to its closing brace; the name with something else only.
    GroupList kept;
    std::optional<GroupList::Group> name;
    bool inList = false;
    for (const GroupList::Group& group : entity.xdataGroups()) {
        inList = inList || (group.code == 1000 && group.text == "DSTYLE");
        if (group.code == 1001) {
            name = group;
        } else if (!inList) {
            if (name) {
                kept.add(name->code, name->text);
                name.reset();
            }
            kept.add(group.code, group.text);
        } else if (group.code == 1002 && group.text == "}") {
            inList = false;
        }
    }
    entity.setXdataGroups(std::move(kept));
    if (auto* dimension = AcDbDimension::cast(&entity)) {
        dimension->recomputeDimBlock();
    }
}

AcDbObjectId dimensionStyleOf(const AcDbEntity& entity) {
    const ReadAccess access(entity);
    AcDbObjectId style;
    forAnnotation(entity, [&](const auto& annotation) { style = annotation.dimensionStyle(); });
    return style;
}

void setDimensionStyleOf(AcDbEntity& entity, AcDbObjectId style) {
    forAnnotation(entity, [&](auto& annotation) { annotation.setDimensionStyle(style); });
}

} // namespace host
