// COPYCLIP, COPYBASE, CUTCLIP and PASTECLIP, PASTEORIG, PASTEBLOCK: parts of drawings over the clipboard,
// between the documents of the program and, where there is a desktop, between programs.
#include "host/commands/ask.h"
#include "host/commands/edit/clip.h"
#include "host/commands/edit/editing.h"
#include "host/commands/edit/textplacing.h"
#include "host/commands/erasing.h"
#include "host/commands/registry.h"
#include "host/ed/desktop.h"
#include "host/ed/dragging.h"
#include "host/ed/question.h"
#include "host/formats/formats.h"

namespace host {
namespace {

/// What was copied last in this program.
std::shared_ptr<AcDbDatabase>& heldClip() {
    static std::shared_ptr<AcDbDatabase> clip;
    return clip;
}

/// False, with a line told, when it can't be copied.
bool putOnClipboard(const AcDbObjectIdArray& entities, const AcGePoint3d& base) {
    std::shared_ptr<AcDbDatabase> clip = makeClip(currentDatabase(), entities, base);
    if (clip == nullptr) {
        reportFailure(L"无法复制到剪贴板");
        return false;
    }
    desktop().offerDrawing([clip] { return writeDxfText(*clip); });
    heldClip() = std::move(clip);
    return true;
}

/// What another program offers, or what was copied here; null with a line told when there is nothing.
std::shared_ptr<AcDbDatabase> clipToPaste() {
    if (const std::optional<std::string> offered = desktop().offeredDrawing()) {
        auto clip = std::make_shared<AcDbDatabase>(false);
        if (const ReadResult result = readDxfText(*clip, *offered); result.status != Acad::eOk) {
            reportFailure(L"剪贴板中的图形无法读取: " + result.message);
            return nullptr;
        }
        clip->disableUndoRecording(true);
        heldClip() = std::move(clip);
    }
    if (heldClip() == nullptr || entitiesOf(*heldClip()).isEmpty()) {
        acutPrintf(L"\n剪贴板中没有可粘贴的图形。");
        return nullptr;
    }
    return heldClip();
}

void runCopyClip() {
    const Selection selection = Selection::ask();
    if (!selection.empty()) {
        putOnClipboard(selection.ids(), lowerLeftOf(selection.ids(), ucsMatrix()));
    }
}

void runCutClip() {
    const Selection selection = Selection::askEditable();
    if (!selection.empty() && putOnClipboard(selection.ids(), lowerLeftOf(selection.ids(), ucsMatrix()))) {
        eraseForOops(selection.ids());
    }
}

void runCopyBase() {
    const PointAnswer base = askPoint(L"\n指定基点: ", nullptr, nullptr, RSG_NONULL);
    if (!base.isValue()) {
        return;
    }
    const Selection selection = Selection::ask();
    if (!selection.empty()) {
        putOnClipboard(selection.ids(), base.world);
    }
}

/// Where the clip goes; nothing for Escape. The clip follows the cursor.
std::optional<AcGePoint3d> askPlace(const AcDbDatabase& clip) {
    const Dragging preview(entitiesOf(clip), [&](const AcGePoint3d&, const AcGePoint3d& point) {
        return clipPlacing(clip, ucsMatrix(), point);
    });
    setInitGet(RSG_NONULL, L"");
    AcGePoint3d point;
    // The base has no part in it but that relative points go on from the last one, as without.
    if (askCorner(takeInitGet(), L"\n指定插入点: ", lastPoint(), Aim::Band::none, point) != RTNORM) {
        return std::nullopt;
    }
    return ucsToWorld(point);
}

void paste(AcDbDatabase& clip, const AcGeMatrix3d& placing) {
    if (const int refused = pasteClip(clip, currentDatabase().currentSpaceId(), placing); refused > 0) {
        acutPrintf(L"\n%d 个对象无法粘贴。", refused);
    }
}

void pasteText(const std::wstring& contents) {
    const PointAnswer place = askPoint(L"\n指定插入点: ", nullptr, nullptr, RSG_NONULL);
    if (!place.isValue()) {
        return;
    }
    const AcDbTextStyleTableRecord& style = currentTextStyle();
    auto* text = new AcDbMText;
    text->setDatabaseDefaults();
    text->setTextStyle(style.objectId());
    text->setTextHeight(style.textSize() > 0.0 ? style.textSize() : currentDatabase().textsize());
    text->setLocation(place.ucs);
    text->setContents(contents.c_str());
    transformFromUcs(*text);
    appendToCurrentSpace(text);
}

/// What was copied last counts, here or in another program: a drawing, or a text.
void runPasteClip() {
    if (const std::optional<std::wstring> text = desktop().offeredText()) {
        if (const std::wstring contents = mtextContents(*text); !contents.empty()) {
            pasteText(contents);
            return;
        }
    }
    const std::shared_ptr<AcDbDatabase> clip = clipToPaste();
    if (clip == nullptr) {
        return;
    }
    if (const std::optional<AcGePoint3d> point = askPlace(*clip)) {
        paste(*clip, clipPlacing(*clip, ucsMatrix(), *point));
    }
}

void runPasteOriginal() {
    if (const std::shared_ptr<AcDbDatabase> clip = clipToPaste()) {
        paste(*clip, AcGeMatrix3d::kIdentity);
    }
}

void runPasteBlock() {
    const std::shared_ptr<AcDbDatabase> clip = clipToPaste();
    const std::optional<AcGePoint3d> point = clip != nullptr ? askPlace(*clip) : std::nullopt;
    if (!point) {
        return;
    }
    std::unique_ptr<AcDbEntity> reference = blockOfClip(*clip, currentDatabase());
    if (reference == nullptr) {
        reportFailure(L"剪贴板中的图形无法作为块粘贴");
        return;
    }
    reference->transformBy(clipPlacing(*clip, ucsMatrix(), *point));
    appendToCurrentSpace(reference.release());
}

constexpr Adesk::Int32 copies = ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW;
constexpr CommandRow rows[] = {{L"COPYCLIP", L"复制到剪贴板", copies, runCopyClip},
                               {L"CUTCLIP", L"剪切", copies, runCutClip},
                               {L"COPYBASE", L"带基点复制", copies, runCopyBase},
                               {L"PASTECLIP", L"粘贴", ACRX_CMD_MODAL, runPasteClip},
                               {L"PASTEORIG", L"粘贴到原坐标", ACRX_CMD_MODAL, runPasteOriginal},
                               {L"PASTEBLOCK", L"粘贴为块", ACRX_CMD_MODAL, runPasteBlock}};

} // namespace

std::span<const CommandRow> clipboardCommands() {
    return rows;
}

} // namespace host
