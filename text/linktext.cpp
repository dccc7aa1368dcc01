// Joining texts in the order of their distance, and splitting them into runs of one script.
#include "text/linktext.h"

#include "restools/drawing.h"
#include "restools/textmeasure.h"
#include "text/textselection.h"

#include <algorithm>
#include <cwctype>
#include <iterator>
#include <memory>
#include <optional>

namespace linktext {
namespace {

/// Of the height of Western characters to that of Chinese ones; kept for the session.
double westernRatio = 0.7;

bool isWestern(wchar_t character) {
    return WideCharToMultiByte(CP_ACP, 0, &character, 1, nullptr, 0, nullptr, nullptr) == 1;
}

} // namespace

std::vector<Run> SplitIntoRuns(std::wstring_view text) {
    std::vector<Run> runs;
    for (const wchar_t character : text) {
        const bool western = isWestern(character);
        if (runs.empty() || runs.back().isWestern != western) {
            runs.push_back({{}, western});
        }
        runs.back().text += character;
    }
    return runs;
}

std::vector<Run> SplitIntoCharacters(std::wstring_view text) {
    std::vector<Run> runs;
    std::transform(text.begin(), text.end(), std::back_inserter(runs), [](wchar_t character) {
        return Run{std::wstring(1, character), false};
    });
    return runs;
}

namespace {

struct Piece {
    double distance = 0.0;
    AcString text;
};

/// Takes the other texts out of the drawing; those that can't be opened stay.
std::vector<Piece> takeOthers(const CEntPicks& texts, const AcGePoint3d& origin) {
    std::vector<Piece> pieces;
    for (int i = 1; i < texts.GetLength(); ++i) {
        if (const CArxObjTemplate<AcDbText> text(texts[i], true); text) {
            pieces.push_back({origin.distanceTo(text->position()), text->textStringConst()});
            text->erase(Adesk::kTrue);
        }
    }
    std::stable_sort(pieces.begin(), pieces.end(),
                     [](const Piece& near, const Piece& far) { return near.distance < far.distance; });
    return pieces;
}

/// The ratio to use now; none when the user left.
std::optional<double> askRatio() {
    for (;;) {
        acutPrintf(L"\n中西文比例 <%.2lf>:", westernRatio);
        double ratio = westernRatio;
        acedInitGet(RSG_NOZERO | RSG_NONEG, nullptr);
        const int result = acedGetReal(L"", &ratio);
        if (result != RTNORM && result != RTNONE) {
            return std::nullopt;
        }
        if (ratio != 1.0) {
            return ratio;
        }
        acutPrintf(L"\n   ***比例设置为1.0,不需调整,请重新输入!");
    }
}

bool isBlank(const std::wstring& text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t character) {
        return std::iswspace(static_cast<std::wint_t>(character)) != 0;
    });
}

std::unique_ptr<AcDbText> newRun(const AcDbText& source, const std::wstring& text,
                                 const AcGePoint3d& position, double height) {
    auto run =
        std::make_unique<AcDbText>(position, text.c_str(), source.textStyle(), height, source.rotation());
    run->setWidthFactor(source.widthFactor());
    run->setOblique(source.oblique());
    run->setLayer(source.layerId());
    return run;
}

} // namespace

bool PlaceRuns(const AcDbText& source, const std::vector<Run>& runs, double westernRatio) {
    if (runs.size() < 2) {
        return false;
    }
    double together = 0.0;
    for (const Run& run : runs) {
        together += MeasureText(source, run.text.c_str(), source.height()).width;
    }
    const double gap = (MeasureText(source).width - together) / static_cast<double>(runs.size() - 1);
    const AcGeVector3d direction = BaselineDirection(source);
    AcGePoint3d position = source.position();
    for (const Run& run : runs) {
        const double height = source.height() * (run.isWestern ? westernRatio : 1.0);
        if (!isBlank(run.text)) {
            AppendEnt(newRun(source, run.text, position, height).release());
        }
        position += (gap + MeasureText(source, run.text.c_str(), height).width) * direction;
    }
    return true;
}

} // namespace linktext

void LinkTexts() {
    using namespace linktext;
    CEntPicks texts;
    if (!SelectSeveralTexts(texts, L"选择要连接的文字:", L"\n  ***只选择了一个文本,无法连接!",
                            L"\n  选择的第一个文本将作为起始文本")) {
        return;
    }
    const CArxObjTemplate<AcDbText> first(texts[0], true);
    if (!first) {
        return;
    }
    AcString joined = first->textStringConst();
    for (const Piece& piece : takeOthers(texts, first->position())) {
        joined += piece.text;
    }
    first->setTextString(joined);
}

void ScaleWesternRuns() {
    using namespace linktext;
    const std::optional<double> ratio = askRatio();
    if (!ratio) {
        return;
    }
    westernRatio = *ratio;
    CEntPicks texts;
    if (!SelectTexts(texts, L"选择调整中西文比例的文字:")) {
        return;
    }
    for (int i = 0; i < texts.GetLength(); ++i) {
        const CArxObjTemplate<AcDbText> text(texts[i], false);
        if (!text) {
            continue;
        }
        // One that can't be erased afterwards would stand there twice: it isn't split at all.
        const std::vector<Run> runs = SplitIntoRuns(text->textStringConst());
        if (runs.size() > 1 && text->upgradeOpen() == Acad::eOk) {
            PlaceRuns(*text, runs, westernRatio);
            text->erase(Adesk::kTrue);
        }
    }
}
