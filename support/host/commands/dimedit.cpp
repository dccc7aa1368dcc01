// DIMEDIT, DIMTEDIT and DIMOVERRIDE: text, slant and variables of dimensions that are there.
#include "host/commands/ask.h"
#include "host/commands/edit/dimvalues.h"
#include "host/commands/registry.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {
namespace {

/// Calls change(dimension) for the dimensions among the objects; tells how many others there are.
template <class Change>
void changeDimensions(const Selection& selection, Change&& change) {
    int others = 0;
    for (const AcDbObjectId id : selection.ids()) {
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        auto* dimension = entity ? AcDbDimension::cast(entity.get()) : nullptr;
        if (dimension != nullptr && change(*dimension)) {
            dimension->recomputeDimBlock();
        } else {
            ++others;
        }
    }
    if (others > 0) {
        acutPrintf(L"\n%d 个对象不能这样修改。", others);
    }
}

void home() {
    changeDimensions(Selection::askEditable(), [](AcDbDimension& dimension) {
        dimension.useDefaultTextPosition();
        dimension.setTextRotation(0.0);
        return true;
    });
}

void newText() {
    const TextAnswer text = askText(L"\n输入新标注文字 <<>>: ", true);
    if (text.isCancelled()) {
        return;
    }
    changeDimensions(Selection::askEditable(), [&](AcDbDimension& dimension) {
        dimension.setDimensionText(text.isNone() || text.text == L"<>" ? L"" : text.text.c_str());
        return true;
    });
}

/// An angle in the UCS as one against the X axis of the dimension's plane.
double angleInPlane(const AcDbDimension& dimension, double angle) {
    const AcGeVector3d along = toObject(dimension.normal(), ucsMatrix() * to3d(direction(angle)));
    return std::atan2(along.y, along.x);
}

void rotate() {
    const RealAnswer angle = askAngle(L"\n指定标注文字的角度: ", nullptr, nullptr, RSG_NONULL);
    if (!angle.isValue()) {
        return;
    }
    changeDimensions(Selection::askEditable(), [&](AcDbDimension& dimension) {
        dimension.setTextRotation(angle.value == 0.0 ? 0.0 : angleInPlane(dimension, angle.value));
        return true;
    });
}

/// The extension lines take the direction; only linear dimensions have some.
void slant() {
    const Selection selection = Selection::askEditable();
    if (selection.empty()) {
        return;
    }
    const RealAnswer angle = askAngle(L"\n输入倾斜角度 (按 ENTER 表示无): ");
    if (angle.isCancelled()) {
        return;
    }
    changeDimensions(selection, [&](AcDbDimension& dimension) {
        auto* linear = AcDbAlignedDimension::cast(&dimension);
        if (linear == nullptr) {
            return false;
        }
        double slope = 0.0;
        if (angle.isValue()) {
            const auto* rotated = AcDbRotatedDimension::cast(linear);
            const AcGeVector3d along =
                toObject(linear->normal(), linear->xLine2Point() - linear->xLine1Point());
            const double line = rotated != nullptr ? rotated->rotation() : std::atan2(along.y, along.x);
            slope = normalizedAngle(angleInPlane(*linear, angle.value) - line);
            // Along the dimension line there would be no place for it.
            if (std::fabs(std::sin(slope)) < 1e-3) {
                return false;
            }
        }
        return linear->setOblique(slope) == Acad::eOk;
    });
}

void runDimEdit() {
    const Answer option = askKeyword(L"\n输入标注编辑类型 [默认(H)/新建(N)/旋转(R)/倾斜(O)] <默认>: ",
                                     L"Home New Rotate Oblique");
    if (option.isKeyword(L"New")) {
        newText();
    } else if (option.isKeyword(L"Rotate")) {
        rotate();
    } else if (option.isKeyword(L"Oblique")) {
        slant();
    } else if (!option.isCancelled()) {
        home();
    }
}

const wchar_t* refuseUnlessDimension(const AcDbEntity& entity) {
    return AcDbDimension::cast(&entity) == nullptr ? L"选定的对象不是标注。" : lockedRefusal(entity);
}

/// Beside the extension line to the left, to the right, or in the middle between them.
void justify(AcDbDimension& dimension, const Answer& option) {
    Adesk::Int16 just = 0;
    if (!option.isKeyword(L"Center")) {
        bool isFirstLeft = true;
        if (const auto* linear = AcDbAlignedDimension::cast(&dimension)) {
            const AcGeVector3d along =
                ucsMatrix().inverse() * (linear->xLine2Point() - linear->xLine1Point());
            const auto* rotated = AcDbRotatedDimension::cast(linear);
            const bool upright = rotated != nullptr && std::fabs(std::cos(rotated->rotation())) < 1e-6;
            isFirstLeft = upright ? along.y >= 0.0 : along.x >= 0.0;
        }
        just = option.isKeyword(L"Left") == isFirstLeft ? Adesk::Int16{1} : Adesk::Int16{2};
    }
    DimVariables variables = dimension.dimVariables();
    variables.just = just;
    dimension.useDefaultTextPosition();
    overrideDimVariables(dimension, variables);
}

void runDimTextEdit() {
    const EntityAnswer picked = askEntity(L"\n选择标注: ", nullptr, refuseUnlessDimension);
    if (!picked.isValue()) {
        return;
    }
    const PointAnswer place =
        askPoint(L"\n为标注文字指定新位置或 [左对齐(L)/右对齐(R)/居中(C)/默认(H)/角度(A)]: ",
                 L"Left Right Center Home Angle", nullptr, RSG_NONULL);
    if (place.isCancelled()) {
        return;
    }
    const RealAnswer angle = place.isKeyword(L"Angle")
                                 ? askAngle(L"\n指定标注文字的角度: ", nullptr, nullptr, RSG_NONULL)
                                 : RealAnswer();
    const Opened<AcDbDimension> dimension(picked.id, AcDb::kForWrite);
    if (!dimension || (place.isKeyword(L"Angle") && !angle.isValue())) {
        return;
    }
    if (place.isValue()) {
        dimension->setTextPosition(place.world);
    } else if (angle.isValue()) {
        dimension->setTextRotation(angle.value == 0.0 ? 0.0 : angleInPlane(*dimension.get(), angle.value));
    } else if (place.isKeyword(L"Home")) {
        dimension->useDefaultTextPosition();
        dimension->setTextRotation(0.0);
    } else {
        justify(*dimension.get(), place);
    }
    dimension->recomputeDimBlock();
}

struct Override {
    std::size_t index = 0;
    DimVariables value; ///< with the one variable set
};

/// Variables with their values until Enter; nothing for Escape. `clears` when that was chosen instead.
std::optional<std::vector<Override>> askOverrides(bool& clears) {
    std::vector<Override> overrides;
    for (;;) {
        const TextAnswer name = askText(overrides.empty() ? L"\n输入要替代的标注变量名或 [清除替代(C)]: "
                                                          : L"\n输入要替代的标注变量名: ");
        if (name.isCancelled()) {
            return std::nullopt;
        }
        if (name.isNone()) {
            return overrides;
        }
        clears = overrides.empty() && (equalNoCase(name.text, L"C") || equalNoCase(name.text, L"_C"));
        if (clears) {
            return overrides;
        }
        const std::optional<std::size_t> index = dimVariableNamed(name.text);
        if (!index) {
            acutPrintf(L"\n没有标注变量 \"%s\"。", name.text.c_str());
            continue;
        }
        DimVariables values = currentDimVariables(currentDatabase());
        const TextAnswer value =
            askText(L"\n输入标注变量的新值 <" + shownDimValue(values, *index) + L">: ", true);
        if (value.isCancelled()) {
            return std::nullopt;
        }
        if (value.isValue() && !takeDimValue(currentDatabase(), value.text, *index, values)) {
            acutPrintf(L"\n\"%s\" 不能作为标注变量的值。", value.text.c_str());
            continue;
        }
        overrides.push_back({*index, values});
    }
}

void runDimOverride() {
    bool clears = false;
    const std::optional<std::vector<Override>> overrides = askOverrides(clears);
    if (!overrides || (overrides->empty() && !clears)) {
        return;
    }
    const Selection selection = Selection::askEditable();
    for (const AcDbObjectId id : selection.ids()) {
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        std::optional<DimVariables> values = entity ? dimVariablesOf(*entity.get()) : std::nullopt;
        if (!values) {
            continue;
        }
        if (clears) {
            clearDimOverrides(*entity.get());
            continue;
        }
        for (const Override& one : *overrides) {
            copyDimVariable(*values, one.value, one.index);
        }
        overrideDimVariables(*entity.get(), *values);
    }
}

constexpr CommandRow rows[] = {{L"DIMEDIT", L"编辑标注", ACRX_CMD_MODAL, runDimEdit},
                               {L"DIMTEDIT", L"编辑标注文字", ACRX_CMD_MODAL, runDimTextEdit},
                               {L"DIMOVERRIDE", L"标注替代", ACRX_CMD_MODAL, runDimOverride}};

} // namespace

std::span<const CommandRow> dimensionEditCommands() {
    return rows;
}

} // namespace host
