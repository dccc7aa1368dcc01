// Lining up of texts: the questions, and each text's new place.
#include "text/textalign.h"

#include "text/textselection.h"

#include <algorithm>
#include <map>
#include <optional>

namespace textalign {
namespace {

double shareBefore(Mode mode) {
    return mode == Mode::left ? 0.0 : mode == Mode::center ? 0.5 : 1.0;
}

} // namespace

AcGePoint3d AlignedPosition(const AcGePoint3d& position, const AcGeVector3d& direction, double width,
                            Mode mode, const AcGePoint3d& alignment) {
    const AcGeLine3d baseline(position, direction);
    return baseline.closestPointTo(alignment) - shareBefore(mode) * width * direction;
}

namespace {

constexpr const ACHAR* onlyOneText = L"\n  ***只选择了一个文本,无法对齐!";

std::optional<Mode> askMode() {
    AcString keyword;
    acedInitGet(0, L"Left Right Center");
    switch (acedGetKword(L"\n选择对齐方式 [中心对齐(C)/左对齐(L)/右对齐(R)]<左对齐>:", keyword)) {
    case RTNORM:
        return keyword == L"Right" ? Mode::right : keyword == L"Center" ? Mode::center : Mode::left;
    case RTNONE:
        return Mode::left;
    default:
        return std::nullopt;
    }
}

/// Where the mode's end of a text that the user picks stands.
std::optional<AcGePoint3d> askReferenceText(Mode mode) {
    for (;;) {
        const std::optional<AcDbObjectId> id = PickText(L"\n选择作为对齐参考的文本 <退出>:");
        if (!id) {
            return std::nullopt;
        }
        const CArxObjTemplate<AcDbText> text(*id, false);
        if (!text) {
            acutPrintf(L"\n   读取文本数据失败！");
            continue;
        }
        const double width = mode == Mode::left ? 0.0 : MeasureText(*text).width;
        return text->position() + shareBefore(mode) * width * BaselineDirection(*text);
    }
}

std::optional<AcGePoint3d> askAlignment(Mode mode) {
    ads_point picked;
    acedInitGet(RSG_NONULL, L"Align");
    switch (acedGetPoint(nullptr, L"\n点取对齐点 [选择文本(A)]:", picked)) {
    case RTNORM:
        return asPnt3d(picked);
    case RTKWORD:
        return askReferenceText(mode);
    default:
        return std::nullopt;
    }
}

void moveTo(AcDbText& text, const AcGePoint3d& position) {
    if (text.isDefaultAlignment()) {
        text.setPosition(position);
    } else {
        text.setAlignmentPoint(text.alignmentPoint() + (position - text.position()));
    }
}

void align(AcDbText& text, Mode mode, const AcGePoint3d& alignment) {
    const double width = mode == Mode::left ? 0.0 : MeasureText(text).width;
    moveTo(text, AlignedPosition(text.position(), BaselineDirection(text), width, mode, alignment));
}

/// The texts with the greatest Y first.
AcDbObjectIdArray sortedDownwards(const CEntPicks& texts, std::map<AcDbObjectId, double>& heights) {
    AcDbObjectIdArray ids;
    texts.IntoArray(ids);
    for (const AcDbObjectId id : ids) {
        if (const CArxObjTemplate<AcDbText> text(id, false); text) {
            heights[id] = text->position().y;
        }
    }
    std::stable_sort(ids.begin(), ids.end(), [&](const AcDbObjectId& upper, const AcDbObjectId& lower) {
        return heights[upper] > heights[lower];
    });
    return ids;
}

void setHeight(AcDbText& text, double y) {
    const auto atHeight = [y](const AcGePoint3d& point) { return AcGePoint3d(point.x, y, point.z); };
    if (text.isDefaultAlignment()) {
        text.setPosition(atHeight(text.position()));
    } else {
        text.setAlignmentPoint(atHeight(text.alignmentPoint()));
    }
}

void stack(const CEntPicks& texts, double gap) {
    std::map<AcDbObjectId, double> heights;
    const AcDbObjectIdArray ids = sortedDownwards(texts, heights);
    double y = heights[ids.first()];
    for (int i = 1; i < ids.length(); ++i) {
        if (const CArxObjTemplate<AcDbText> text(ids[i], true); text) {
            y -= MeasureText(*text).height + gap;
            setHeight(*text, y);
        }
    }
}

} // namespace
} // namespace textalign

void AlignTextsHorizontally() {
    using namespace textalign;
    CEntPicks texts;
    if (!SelectSeveralTexts(texts, L"选择要水平对齐的文字:", onlyOneText)) {
        return;
    }
    const std::optional<Mode> mode = askMode();
    if (!mode) {
        return;
    }
    const std::optional<AcGePoint3d> alignment = askAlignment(*mode);
    if (!alignment) {
        return;
    }
    for (int i = 0; i < texts.GetLength(); ++i) {
        if (const CArxObjTemplate<AcDbText> text(texts[i], true); text) {
            align(*text, *mode, *alignment);
        }
    }
}

void AlignTextsVertically() {
    using namespace textalign;
    CEntPicks texts;
    if (!SelectSeveralTexts(texts, L"选择要垂直对齐的文字:", onlyOneText)) {
        return;
    }
    double gap = 0.0;
    acedInitGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG, nullptr);
    if (acedGetDist(nullptr, L"\n设置文本间距:", &gap) == RTNORM) {
        stack(texts, gap);
    }
}
