// TEXT: single-line text, line after line.
#include "host/commands/edit/textplacing.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {
namespace {

constexpr double halfPi = 3.14159265358979323846 / 2.0;

/// Lines follow each other at five thirds of the height, down from the line before.
void stepDown(TextPlacing& placing) {
    const double distance = placing.height * 5.0 / 3.0;
    const AcGeVector3d down(std::cos(placing.rotation - halfPi) * distance,
                            std::sin(placing.rotation - halfPi) * distance, 0.0);
    placing.point += down;
    placing.second += down;
}

void runText() {
    acutPrintf(L"\n当前文字样式: \"%s\"  文字高度: %s", currentTextStyle().name().kwszPtr(),
               shown(currentDatabase().textsize()).c_str());
    TextPlacing placing;
    if (!askTextPlacing(placing)) {
        return;
    }
    for (;;) {
        const TextAnswer answer = askText(L"\n输入文字: ", true);
        if (!answer.isValue()) {
            return;
        }
        auto text = std::make_unique<AcDbText>();
        text->setTextString(answer.text.c_str());
        appendPlaced(std::move(text), placing);
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
