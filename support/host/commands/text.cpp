// TEXT: single-line text, line after line.
#include "host/commands/ask.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {
namespace {

constexpr double halfPi = 3.14159265358979323846 / 2.0;

struct Justification {
    const wchar_t* keyword;
    AcDb::TextHorzMode horizontal;
    AcDb::TextVertMode vertical;
    const wchar_t* prompt;
};

constexpr const wchar_t* alignmentPrompt = L"\n指定文字的中心点: ";
constexpr Justification justifications[] = {
    {L"Left", AcDb::kTextLeft, AcDb::kTextBase, L"\n指定文字的起点: "},
    {L"Center", AcDb::kTextCenter, AcDb::kTextBase, alignmentPrompt},
    {L"Right", AcDb::kTextRight, AcDb::kTextBase, L"\n指定文字基线的右端点: "},
    {L"Align", AcDb::kTextAlign, AcDb::kTextBase, L"\n指定文字基线的第一个端点: "},
    {L"Middle", AcDb::kTextMid, AcDb::kTextBase, L"\n指定文字的中间点: "},
    {L"Fit", AcDb::kTextFit, AcDb::kTextBase, L"\n指定文字基线的第一个端点: "},
    {L"TL", AcDb::kTextLeft, AcDb::kTextTop, L"\n指定文字的左上点: "},
    {L"TC", AcDb::kTextCenter, AcDb::kTextTop, L"\n指定文字的中上点: "},
    {L"TR", AcDb::kTextRight, AcDb::kTextTop, L"\n指定文字的右上点: "},
    {L"ML", AcDb::kTextLeft, AcDb::kTextVertMid, L"\n指定文字的左中点: "},
    {L"MC", AcDb::kTextCenter, AcDb::kTextVertMid, L"\n指定文字的中间点: "},
    {L"MR", AcDb::kTextRight, AcDb::kTextVertMid, L"\n指定文字的右中点: "},
    {L"BL", AcDb::kTextLeft, AcDb::kTextBottom, L"\n指定文字的左下点: "},
    {L"BC", AcDb::kTextCenter, AcDb::kTextBottom, L"\n指定文字的中下点: "},
    {L"BR", AcDb::kTextRight, AcDb::kTextBottom, L"\n指定文字的右下点: "}};

constexpr const wchar_t* justificationKeywords =
    L"Left Center Right Align Middle Fit TL TC TR ML MC MR BL BC BR";

/// What is asked before the text itself.
struct Placing {
    Justification justification = justifications[0];
    AcGePoint3d point;  ///< UCS
    AcGePoint3d second; ///< aligned and fitted text
    double height = 0.0;
    double rotation = 0.0;

    bool betweenPoints() const {
        return justification.horizontal == AcDb::kTextAlign || justification.horizontal == AcDb::kTextFit;
    }
};

const AcDbTextStyleTableRecord& currentStyle() {
    return *peek<AcDbTextStyleTableRecord>(currentDatabase().textstyle());
}

void askStyle() {
    for (;;) {
        const TextAnswer answer =
            askName(L"\n输入样式名或 [?] <" + std::wstring(currentStyle().name().kwszPtr()) + L">: ");
        if (!answer.isValue()) {
            return;
        }
        const auto* styles = peek<AcDbTextStyleTable>(currentDatabase().textStyleTableId());
        AcDbObjectId id;
        if (answer.text == L"?") {
            for (AcDbStub* stub : styles->records()) {
                if (const auto* style = peek<AcDbTextStyleTableRecord>(stub);
                    style != nullptr && !style->isShapeFile()) {
                    acutPrintf(L"\n样式名: \"%s\"   字体文件: %s", style->name().kwszPtr(),
                               style->fontFileName().kwszPtr());
                }
            }
        } else if (styles->getAt(answer.text.c_str(), id) == Acad::eOk) {
            currentDatabase().setTextstyle(id);
            return;
        } else {
            acutPrintf(L"\n找不到文字样式 \"%s\"。", answer.text.c_str());
        }
    }
}

bool askJustified(Placing& placing) {
    const Answer answer = askKeyword(
        L"\n输入选项 "
        L"[左(L)/居中(C)/右(R)/对齐(A)/中间(M)/布满(F)/左上(TL)/中上(TC)/右上(TR)/左中(ML)/正中(MC)/"
        L"右中(MR)/左下(BL)/中下(BC)/右下(BR)]: ",
        justificationKeywords, 1);
    const auto* found = std::find_if(std::begin(justifications), std::end(justifications),
                                     [&](const Justification& j) { return answer.isKeyword(j.keyword); });
    if (found == std::end(justifications)) {
        return false;
    }
    placing.justification = *found;
    const PointAnswer point = askPoint(found->prompt, nullptr, nullptr, 1);
    placing.point = point.ucs;
    if (!point.isValue() || !placing.betweenPoints()) {
        return point.isValue();
    }
    const PointAnswer second = askPoint(L"\n指定文字基线的第二个端点: ", nullptr, &placing.point, 1);
    placing.second = second.ucs;
    return second.isValue();
}

bool askPlace(Placing& placing) {
    for (;;) {
        const PointAnswer start =
            askPoint(L"\n指定文字的起点或 [对正(J)/样式(S)]: ",
                     (std::wstring(L"Justify Style ") + justificationKeywords).c_str(), nullptr, 1);
        if (start.isValue()) {
            placing.point = start.ucs;
            return true;
        }
        if (start.isKeyword(L"Style")) {
            askStyle();
        } else if (start.isKeyword(L"Justify")) {
            return askJustified(placing);
        } else if (start.kind == Answer::Kind::keyword) {
            acutPrintf(L"\n请先输入 J。");
        } else {
            return false;
        }
    }
}

bool askSize(Placing& placing) {
    const double fixed = currentStyle().textSize();
    placing.height = fixed > 0.0 ? fixed : currentDatabase().textsize();
    const bool heightFollows = placing.justification.horizontal == AcDb::kTextAlign;
    if (fixed == 0.0 && !heightFollows) {
        const RealAnswer height =
            askDistance(L"\n指定高度 <" + shown(placing.height) + L">: ", nullptr, &placing.point, 6);
        if (height.isCancelled()) {
            return false;
        }
        if (height.isValue()) {
            placing.height = height.value;
            currentDatabase().setTextsize(height.value);
        }
    }
    if (placing.betweenPoints()) {
        return true;
    }
    const RealAnswer rotation =
        askAngle(L"\n指定文字的旋转角度 <" + shownAngle(0.0) + L">: ", nullptr, &placing.point, 0);
    placing.rotation = rotation.isValue() ? rotation.value : 0.0;
    return !rotation.isCancelled();
}

void append(const Placing& placing, const std::wstring& content) {
    auto* text = new AcDbText;
    text->setDatabaseDefaults();
    text->setTextStyle(currentDatabase().textstyle());
    text->setTextString(content.c_str());
    text->setHeight(placing.height);
    text->setRotation(placing.rotation);
    text->setWidthFactor(currentStyle().xScale());
    text->setOblique(currentStyle().obliquingAngle());
    text->setPosition(placing.point);
    text->setHorizontalMode(placing.justification.horizontal);
    text->setVerticalMode(placing.justification.vertical);
    const bool plain = placing.justification.horizontal == AcDb::kTextLeft &&
                       placing.justification.vertical == AcDb::kTextBase;
    if (!plain) {
        text->setAlignmentPoint(placing.betweenPoints() ? placing.second : placing.point);
    }
    if (const AcGeMatrix3d matrix = ucsMatrix(); matrix != AcGeMatrix3d::kIdentity) {
        text->transformBy(matrix);
    }
    text->adjustAlignment(&currentDatabase());
    appendToCurrentSpace(text);
}

/// Lines follow each other at five thirds of the height, down from the line before.
void stepDown(Placing& placing) {
    const double distance = placing.height * 5.0 / 3.0;
    const AcGeVector3d down(std::cos(placing.rotation - halfPi) * distance,
                            std::sin(placing.rotation - halfPi) * distance, 0.0);
    placing.point += down;
    placing.second += down;
}

void runText() {
    acutPrintf(L"\n当前文字样式: \"%s\"  文字高度: %s", currentStyle().name().kwszPtr(),
               shown(currentDatabase().textsize()).c_str());
    Placing placing;
    if (!askPlace(placing) || !askSize(placing)) {
        return;
    }
    for (;;) {
        const TextAnswer answer = askText(L"\n输入文字: ", true);
        if (!answer.isValue()) {
            return;
        }
        append(placing, answer.text);
        stepDown(placing);
    }
}

constexpr CommandRow rows[] = {{L"TEXT", L"单行文字", ACRX_CMD_MODAL, runText},
                               {L"-TEXT", L"-单行文字", ACRX_CMD_MODAL, runText}};

} // namespace

std::span<const CommandRow> textCommands() {
    return rows;
}

} // namespace host
