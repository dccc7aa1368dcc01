// Numbered labels: what they say and their placing.
#include "text/deltamark.h"

#include "restools/drawing.h"
#include "restools/movejig.h"
#include "restools/profilesection.h"
#include "text/deltamarkdialog.h"

#include <array>
#include <cwchar>
#include <vector>

namespace deltamark {
namespace {

constexpr std::array<const ACHAR*, alignmentCount> alignments{
    L"左-Left",          L"中-Center",          L"右-Right",           L"对齐-Aligned",
    L"中间-Middle",      L"调整-Fit",           L"左上-Top Left",      L"中上-Top Center",
    L"右上-Top Right",   L"左中-Middle Left",   L"正中-Middle Center", L"右中-Middle Right",
    L"左下-Bottom Left", L"中下-Bottom Center", L"右下-Bottom Right"};

bool names(int alignment, const ACHAR* word) {
    return std::wcsstr(alignments[static_cast<std::size_t>(alignment)], word) != nullptr;
}

} // namespace

CString LabelOf(const Series& series) {
    CString label;
    label.Format(L"%s%d%s", series.prefix.GetString(), series.number, series.postfix.GetString());
    return label;
}

void GoOn(Series& series) {
    series.number += series.countsDown ? -series.step : series.step;
}

const ACHAR* AlignmentName(int alignment) {
    return alignments[static_cast<std::size_t>(alignment)];
}

bool IsBetweenPoints(int alignment) {
    return alignment == alignedBetween || alignment == fittedBetween;
}

TextModes ModesOf(int alignment) {
    if (IsBetweenPoints(alignment) || alignment == middleOfText) {
        return {static_cast<AcDb::TextHorzMode>(alignment), AcDb::kTextBase};
    }
    TextModes modes;
    modes.vertical = names(alignment, L"Top")      ? AcDb::kTextTop
                     : names(alignment, L"Bottom") ? AcDb::kTextBottom
                     : names(alignment, L"Middle") ? AcDb::kTextVertMid
                                                   : AcDb::kTextBase;
    modes.horizontal = names(alignment, L"Right")    ? AcDb::kTextRight
                       : names(alignment, L"Center") ? AcDb::kTextCenter
                                                     : AcDb::kTextLeft;
    return modes;
}

namespace {

/// The labels of one run, each in a transaction of its own so that the last can be taken back. All that are
/// left are kept at the end.
class PlacedLabels {
public:
    PlacedLabels() = default;
    ~PlacedLabels() {
        for (std::size_t i = 0; i < mNumbers.size(); ++i) {
            mTransactions->endTransaction();
        }
    }
    PlacedLabels(const PlacedLabels&) = delete;
    PlacedLabels& operator=(const PlacedLabels&) = delete;

    bool IsEmpty() const { return mNumbers.empty(); }
    void Add(const AcDbText& text, int number) {
        mTransactions->startTransaction();
        mNumbers.push_back(number);
        AppendEnt(AcDbText::cast(text.clone()));
    }
    /// The number of the label taken back.
    int TakeBack() {
        mTransactions->abortTransaction();
        const int number = mNumbers.back();
        mNumbers.pop_back();
        return number;
    }

private:
    AcTransactionManager* mTransactions = acDocManagerPtr()->curDocument()->transactionManager();
    std::vector<int> mNumbers;
};

enum class Answer { place, undo, again, leave };

/// Drags the label's point, the second one of a text between two.
AcEdJig::DragStatus drag(const Series& series, AcDbText& text, const ACHAR* prompt, const ACHAR* keywords) {
    AcEdJigExMove jig(&text, [&](const AcGePoint3d& point) {
        if (series.alignment == leftAligned) {
            text.setPosition(point);
        } else {
            text.setAlignmentPoint(point);
            text.adjustAlignment(WorkingDatabase());
        }
    });
    jig.setDispPrompt(L"%s", prompt);
    jig.setKeywordList(keywords);
    return jig.drag();
}

Answer askPoint(const Series& series, AcDbText& text, bool mayUndo) {
    switch (drag(series, text, mayUndo ? L"\n标注点 [回退(U)]<退出>:" : L"\n标注点 <退出>:",
                 mayUndo ? L"Undo" : L"")) {
    case AcEdJig::kNormal:
        return Answer::place;
    case AcEdJig::kKW1:
        return Answer::undo;
    default:
        return Answer::leave;
    }
}

Answer askTwoPoints(const Series& series, AcDbText& text, bool mayUndo) {
    ads_point start;
    acedInitGet(0, mayUndo ? L"Undo" : L"");
    switch (acedGetPoint(nullptr, mayUndo ? L"\n起始点 [回退(U)]<退出>:" : L"\n起始点 <退出>:", start)) {
    case RTNORM:
        break;
    case RTKWORD:
        return Answer::undo;
    default:
        return Answer::leave;
    }
    AcGePoint3d position;
    acdbUcs2Wcs(start, asDblArray(position), false);
    text.setPosition(position);
    switch (drag(series, text, L"\n终止点 [重设起点(R)]<退出>:", L"Re")) {
    case AcEdJig::kNormal:
        return Answer::place;
    case AcEdJig::kKW1:
        return Answer::again;
    default:
        return Answer::leave;
    }
}

} // namespace

void PlaceLabels(Series& series, AcDbText& text) {
    PlacedLabels placed;
    const auto ask = IsBetweenPoints(series.alignment) ? askTwoPoints : askPoint;
    for (;;) {
        text.setTextString(LabelOf(series));
        switch (ask(series, text, !placed.IsEmpty())) {
        case Answer::place:
            placed.Add(text, series.number);
            GoOn(series);
            break;
        case Answer::undo:
            series.number = placed.TakeBack();
            break;
        case Answer::again:
            break;
        case Answer::leave:
            return;
        }
    }
}

} // namespace deltamark

void PlaceDeltaMarks() {
    CDeltaMarkDlg dialog(acedGetAcadFrame());
    if (dialog.DoModal() != IDOK) {
        return;
    }
    deltamark::PlaceLabels(dialog.m_series, *dialog.m_label);
    CProfileSection(CDeltaMarkDlg::sectionName).SetInt(L"Variable", dialog.m_series.number);
}
