// MTEXT: paragraphs in a width, typed line by line.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"

#include <cmath>

namespace host {
namespace {

constexpr const wchar_t* attachments = L"TL TC TR ML MC MR BL BC BR";

struct Settings {
    double height = 0.0;
    double rotation = 0.0;
    double width = 0.0;
    double spacing = 1.0;
    AcDbMText::AttachmentPoint attachment = AcDbMText::kTopLeft;
};

bool askAttachment(Settings& settings) {
    const Answer answer =
        askKeyword(L"\n输入对正方式 [左上(TL)/中上(TC)/右上(TR)/左中(ML)/正中(MC)/右中(MR)/左下(BL)/中下(BC)/"
                   L"右下(BR)] <左上(TL)>: ",
                   attachments);
    constexpr const wchar_t* names[] = {L"TL", L"TC", L"TR", L"ML", L"MC", L"MR", L"BL", L"BC", L"BR"};
    for (int i = 0; i < 9; ++i) {
        if (answer.isKeyword(names[i])) {
            settings.attachment = static_cast<AcDbMText::AttachmentPoint>(i + 1);
        }
    }
    return !answer.isCancelled();
}

/// An option given before the other corner; false for Escape.
bool takeOption(const Answer& option, Settings& settings, const AcGePoint3d& base) {
    if (option.isKeyword(L"Justify")) {
        return askAttachment(settings);
    }
    if (option.isKeyword(L"Style")) {
        const std::optional<AcDbObjectId> style =
            askRecord(currentDatabase().textStyleTableId(), L"输入样式名或 [?]", L"文字样式",
                      currentDatabase().textstyle());
        if (style && !style->isNull()) {
            currentDatabase().setTextstyle(*style);
        }
        return style.has_value();
    }
    if (option.isKeyword(L"Rotation")) {
        const RealAnswer angle =
            askAngle(L"\n指定旋转角度 <" + shownAngle(settings.rotation) + L">: ", nullptr, &base);
        settings.rotation = angle.isValue() ? angle.value : settings.rotation;
        return !angle.isCancelled();
    }
    if (option.isKeyword(L"Linespacing")) {
        const RealAnswer factor =
            askReal(L"\n输入行距比例 <" + shown(settings.spacing) + L">: ", nullptr, RSG_NOZERO | RSG_NONEG);
        settings.spacing = factor.isValue() ? std::clamp(factor.value, 0.25, 4.0) : settings.spacing;
        return !factor.isCancelled();
    }
    const RealAnswer height = askDistance(L"\n指定高度 <" + shown(settings.height) + L">: ", nullptr, &base,
                                          RSG_NOZERO | RSG_NONEG);
    settings.height = height.isValue() ? height.value : settings.height;
    return !height.isCancelled();
}

/// The width of the box; false when the user gives up.
bool askBox(Settings& settings, AcGePoint3d& corner) {
    for (;;) {
        const PointAnswer other =
            askPoint(L"\n指定对角点或 [高度(H)/对正(J)/行距(L)/旋转(R)/样式(S)/宽度(W)]: ",
                     L"Height Justify Linespacing Rotation Style Width", &corner, RSG_NONULL);
        if (other.isKeyword(L"Width")) {
            const RealAnswer width = askDistance(L"\n指定宽度: ", nullptr, &corner, RSG_NONULL | RSG_NONEG);
            settings.width = width.value;
            return width.isValue();
        }
        if (other.isValue()) {
            // The text fills the box from the side its attachment says.
            settings.width = std::fabs(other.ucs.x - corner.x);
            const int column = (settings.attachment - 1) % 3;
            const int row = (settings.attachment - 1) / 3;
            const double left = std::min(corner.x, other.ucs.x);
            const double top = std::max(corner.y, other.ucs.y);
            const double height = std::fabs(other.ucs.y - corner.y);
            corner.x = left + settings.width * column / 2.0;
            corner.y = top - height * row / 2.0;
            return true;
        }
        if (other.kind != Answer::Kind::keyword || !takeOption(other, settings, corner)) {
            return false;
        }
    }
}

void runMtext() {
    const auto* style = peek<AcDbTextStyleTableRecord>(currentDatabase().textstyle());
    Settings settings;
    settings.height = style->textSize() > 0.0 ? style->textSize() : currentDatabase().textsize();
    acutPrintf(L"\n当前文字样式: \"%s\"  文字高度: %s", style->name().kwszPtr(),
               shown(settings.height).c_str());
    const PointAnswer first = askPoint(L"\n指定第一角点: ", nullptr, nullptr, RSG_NONULL);
    AcGePoint3d corner = first.ucs;
    if (!first.isValue() || !askBox(settings, corner)) {
        return;
    }
    std::wstring contents;
    for (;;) {
        const TextAnswer line = askText(L"\nMText: ", true);
        if (line.isCancelled()) {
            return;
        }
        if (line.isNone()) {
            break;
        }
        contents += (contents.empty() ? L"" : L"\\P") + line.text;
    }
    if (contents.empty()) {
        return;
    }
    currentDatabase().setTextsize(settings.height);
    auto* text = new AcDbMText;
    text->setDatabaseDefaults();
    text->setTextStyle(currentDatabase().textstyle());
    text->setLocation(corner);
    text->setTextHeight(settings.height);
    text->setWidth(settings.width);
    text->setAttachment(settings.attachment);
    text->setRotation(settings.rotation);
    text->setLineSpacingFactor(settings.spacing);
    text->setContents(contents.c_str());
    transformFromUcs(*text);
    appendToCurrentSpace(text);
}

constexpr CommandRow rows[] = {{L"MTEXT", L"多行文字", ACRX_CMD_MODAL, runMtext},
                               {L"-MTEXT", L"-多行文字", ACRX_CMD_MODAL, runMtext}};

} // namespace

std::span<const CommandRow> mtextCommands() {
    return rows;
}

} // namespace host
