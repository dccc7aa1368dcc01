// MSLIDE and VSLIDE: the current view as a slide file, and slides shown in its place until the next redraw.
#include "host/commands/ask.h"
#include "host/commands/filenames.h"
#include "host/commands/registry.h"
#include "host/ed/documentstate.h"
#include "host/formats/sld/slidedrawing.h"
#include "host/win/win.h"

namespace host {
namespace {

/// The name of the drawing with the extension of slides.
std::wstring standardName() {
    const std::wstring drawing = curDoc()->fileName();
    const std::wstring_view extension = extensionOf(drawing);
    return drawing.substr(0, drawing.size() - extension.size()) + L".sld";
}

/// As typed, or the standard name; nothing when the question was left.
std::optional<std::wstring> askSlideName(const wchar_t* prompt) {
    const TextAnswer answer = askText(prompt + (L" <" + standardName() + L">: "), true);
    if (answer.isCancelled()) {
        return std::nullopt;
    }
    return answer.isNone() ? standardName() : unquoted(answer.text);
}

SlideView currentView() {
    const ResbufList centre = systemVariable(L"VIEWCTR");
    const ResbufList screen = systemVariable(L"SCREENSIZE");
    SlideView view;
    const AcGePoint3d middle = ucsToWorld(asPoint3d(centre->resval.rpoint));
    view.centre.set(middle.x, middle.y);
    view.height = systemVariableReal(L"VIEWSIZE");
    view.dotsAcross = std::max(static_cast<int>(screen->resval.rpoint[X]), 2);
    view.dotsUp = std::max(static_cast<int>(screen->resval.rpoint[Y]), 2);
    return view;
}

void runMakeSlide() {
    std::optional<std::wstring> name = askSlideName(L"\n输入要创建的幻灯片文件名");
    if (!name) {
        return;
    }
    if (extensionOf(*name).empty()) {
        *name += L".sld";
    }
    if (!mayWriteFile(*name)) {
        return;
    }
    const Slide slide = slideOfView(currentDatabase(), currentView());
    if (const std::wstring fault = writeSlide(slide, toNativePath(*name)); !fault.empty()) {
        reportFailure(fault);
    }
}

void runViewSlide() {
    const std::optional<std::wstring> name = askSlideName(L"\n输入要观看的幻灯片文件名");
    if (!name) {
        return;
    }
    std::wstring message;
    std::optional<Slide> slide = readSlide(*name, message);
    if (!slide) {
        reportFailure(message);
        return;
    }
    curDoc()->state().shownSlide = std::make_shared<const Slide>(std::move(*slide));
    acedUpdateDisplay();
}

constexpr Adesk::Int32 flags = ACRX_CMD_MODAL | ACRX_CMD_NO_UNDO_MARKER;
constexpr CommandRow rows[] = {{L"MSLIDE", L"制作幻灯片", flags, runMakeSlide},
                               {L"VSLIDE", L"观看幻灯片", flags, runViewSlide}};

} // namespace

std::span<const CommandRow> slideCommands() {
    return rows;
}

} // namespace host
