// Summing of numbers in texts.
#include "text/sumnumbers.h"

#include "restools/draworder.h"
#include "restools/movejig.h"
#include "text/textselection.h"

#include <algorithm>

namespace sumnumbers {
namespace {

constexpr int decimalUnits = 2;
constexpr double labelHeight = 3.5;

} // namespace

void AddNumber(Sum& sum, const AcString& text) {
    double value = 0.0;
    if (acdbDisToF(text, decimalUnits, &value) != RTNORM) {
        return;
    }
    sum.value += value;
    ++sum.count;
    if (const int point = text.findOneOf(L"."); point >= 0) {
        sum.precision = std::max(sum.precision, static_cast<int>(text.length()) - point - 1);
    }
}

CString ReportOf(const Sum& sum, long selected) {
    CString format;
    format.Format(L"\n   选中了 %%ld 个文本，有效文本 %%ld 个,数值合计为: %%.%dlf", sum.precision);
    CString report;
    report.Format(format, selected, sum.count, sum.value);
    return report;
}

CString LabelOf(const Sum& sum) {
    CString format;
    format.Format(L"%%ld/%%.%dlf", sum.precision);
    CString label;
    label.Format(format, sum.count, sum.value);
    return label;
}

namespace {

Sum sumOf(const CEntPicks& texts) {
    Sum sum;
    for (int i = 0; i < texts.GetLength(); ++i) {
        if (const CArxObjTemplate<AcDbText> text(texts[i], false); text) {
            AddNumber(sum, text->textStringConst());
        }
    }
    return sum;
}

void placeLabel(const CString& text) {
    CArxObjTemplate<AcDbText> label;
    label.New()->setTextString(text);
    label->setHeight(labelHeight);
    AcEdJigExMove jig(label.Get(), [&](const AcGePoint3d& point) { label->setPosition(point); });
    jig.setDispPrompt(L"\n点取标注统计值位置 <退出>:");
    if (jig.drag() == AcEdJig::kNormal) {
        jig.append();
        label.Release();
    }
}

} // namespace
} // namespace sumnumbers

void SumNumbers() {
    using namespace sumnumbers;
    CEntPicks picked;
    if (picked.GetSingleSelection(L"选择:")) {
        CDrawOrder::MoveToTop(picked[0]);
        return;
    }
    CEntPicks texts;
    if (!SelectTexts(texts, L"选择要合计的数字文本:")) {
        return;
    }
    const Sum sum = sumOf(texts);
    acutPrintf(L"%s", ReportOf(sum, texts.GetLength()).GetString());
    texts.Release();
    if (sum.count > 0) {
        placeLabel(LabelOf(sum));
    }
}
