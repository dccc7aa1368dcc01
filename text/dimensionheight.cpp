// Text heights of dimensions.
#include "text/dimensionheight.h"

#include "restools/arxobject.h"
#include "restools/entpicks.h"
#include "restools/resbuf.h"

#include <cmath>
#include <memory>

namespace {

/// The last one given, for the session.
double factor = 0.5;

/// False when the user left.
bool askFactor() {
    acutPrintf(L"\n字高缩放比例 <%.2lf>:", factor);
    double answer = factor;
    acedInitGet(RSG_NOZERO | RSG_NONEG, nullptr);
    switch (acedGetReal(L"", &answer)) {
    case RTNORM:
        factor = std::abs(answer);
        return true;
    case RTNONE:
        return true;
    default:
        return false;
    }
}

void scaleTextHeight(AcDbDimension& dimension) {
    AcDbDimStyleTableRecord* data = nullptr;
    dimension.getDimstyleData(data);
    const std::unique_ptr<AcDbDimStyleTableRecord> style(data);
    style->setDimtxt(style->dimtxt() * factor);
    dimension.setDimstyleData(style.get());
}

} // namespace

void ScaleDimensionTextHeights() {
    const CResbuf filter(acutBuildList(RTDXF0, L"DIMENSION", RTNONE));
    CEntPicks dimensions;
    if (!dimensions.GetSelection(L"请选择需要改字高的标注:", filter) || !askFactor() || factor == 1.0) {
        return;
    }
    for (int i = 0; i < dimensions.GetLength(); ++i) {
        if (const CArxObjTemplate<AcDbDimension> dimension(dimensions[i], true); dimension) {
            scaleTextHeight(*dimension);
        }
    }
}
