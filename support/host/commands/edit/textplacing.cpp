// Where a single-line text goes and how large it is, as TEXT asks for it.
#include "host/commands/edit/textplacing.h"

#include "host/commands/registry.h"

namespace host {
namespace {

constexpr const wchar_t* alignmentPrompt = L"\n指定文字的中心点: ";
constexpr TextJustification justifications[] = {
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

void askStyle() {
    for (;;) {
        const TextAnswer answer =
            askName(L"\n输入样式名或 [?] <" + std::wstring(currentTextStyle().name().kwszPtr()) + L">: ");
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

bool askJustified(TextPlacing& placing) {
    const Answer answer = askKeyword(
        L"\n输入选项 "
        L"[左(L)/居中(C)/右(R)/对齐(A)/中间(M)/布满(F)/左上(TL)/中上(TC)/右上(TR)/左中(ML)/正中(MC)/"
        L"右中(MR)/左下(BL)/中下(BC)/右下(BR)]: ",
        justificationKeywords, 1);
    const auto* found = std::find_if(std::begin(justifications), std::end(justifications),
                                     [&](const TextJustification& j) { return answer.isKeyword(j.keyword); });
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

bool askPlace(TextPlacing& placing) {
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

bool askSize(TextPlacing& placing) {
    const double fixed = currentTextStyle().textSize();
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

} // namespace

const AcDbTextStyleTableRecord& currentTextStyle() {
    return *peek<AcDbTextStyleTableRecord>(currentDatabase().textstyle());
}

bool askTextPlacing(TextPlacing& placing) {
    return askPlace(placing) && askSize(placing);
}

void appendPlaced(std::unique_ptr<AcDbText> text, const TextPlacing& placing) {
    text->setDatabaseDefaults();
    text->setTextStyle(currentDatabase().textstyle());
    text->setHeight(placing.height);
    text->setRotation(placing.rotation);
    text->setWidthFactor(currentTextStyle().xScale());
    text->setOblique(currentTextStyle().obliquingAngle());
    text->setPosition(placing.point);
    text->setHorizontalMode(placing.justification.horizontal);
    text->setVerticalMode(placing.justification.vertical);
    if (!placing.justification.isPlain()) {
        text->setAlignmentPoint(placing.betweenPoints() ? placing.second : placing.point);
    }
    transformFromUcs(*text);
    text->adjustAlignment(&currentDatabase());
    appendToCurrentSpace(text.release());
}

} // namespace host
