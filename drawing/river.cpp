// Banks and decorations of rivers.
#include "drawing/river.h"

#include "restools/curves.h"
#include "restools/hostcommand.h"
#include "restools/multipleentityjig.h"
#include "restools/polylineshape.h"
#include "restools/sysvar.h"
#include "services/linktwopolyline.h"

namespace river {
namespace {

constexpr double widestWithoutSlopes = 5.0;
constexpr double slopeSpacing = 3.0;
/// From a bank with slope symbols to the hatch.
constexpr double slopeWidth = 2.5;

constexpr const ACHAR* patternName = L"HL1";
constexpr double firstPatternScale = 15.0;
constexpr double lastPatternScale = 10000.0;

constexpr double innerSpacing = 5.0;
constexpr double dashedLtscale = 10.0;
constexpr double dashedLinetypeScale = 1.5;

constexpr double arrowLength = 20.0;
constexpr double headStart = 16.5;
constexpr double headHalfWidth = 2.0;

} // namespace

Polylines LinesOf(const std::vector<std::unique_ptr<AcDbEntity>>& pieces) {
    Polylines lines;
    for (const std::unique_ptr<AcDbEntity>& piece : pieces) {
        const AcDbLine* line = AcDbLine::cast(piece.get());
        if (line == nullptr) {
            continue;
        }
        auto polyline = std::make_unique<AcDbPolyline>(2U);
        AddVertex(*polyline, line->startPoint());
        AddVertex(*polyline, line->endPoint());
        lines.push_back(std::move(polyline));
    }
    return lines;
}

Polylines JoinLines(Polylines lines) {
    Polylines joined;
    while (!lines.empty()) {
        std::unique_ptr<AcDbPolyline> grown = std::move(lines.front());
        lines.erase(lines.begin());
        const auto attach = [&grown](const std::unique_ptr<AcDbPolyline>& other) {
            auto result = std::make_unique<AcDbPolyline>();
            int how = -1;
            if (LinkTwoPolyline(*result, *grown, *other, how) == 0) {
                return false;
            }
            grown = std::move(result);
            return true;
        };
        while (std::erase_if(lines, attach) > 0) {
        }
        joined.push_back(std::move(grown));
    }
    return joined;
}

std::vector<double> InnerLineDistances(double width) {
    int count = static_cast<int>(width / innerSpacing + 0.001);
    double distance = (width - count * innerSpacing) * 0.5 + innerSpacing;
    if (count < 2) {
        count = 2;
        distance = width * 0.5;
    }
    std::vector<double> distances;
    for (int i = 0; i + 1 < count; ++i, distance += innerSpacing) {
        distances.push_back(distance);
    }
    distances.push_back(width);
    return distances;
}

std::array<std::unique_ptr<AcDbLine>, 3> NewFlowArrow() {
    const AcGePoint3d tip(arrowLength, 0.0, 0.0);
    std::array arrow{std::make_unique<AcDbLine>(AcGePoint3d::kOrigin, tip),
                     std::make_unique<AcDbLine>(AcGePoint3d(headStart, headHalfWidth, 0.0), tip),
                     std::make_unique<AcDbLine>(AcGePoint3d(headStart, -headHalfWidth, 0.0), tip)};
    for (const std::unique_ptr<AcDbLine>& line : arrow) {
        line->setDatabaseDefaults(WorkingDatabase());
        line->setLayer(layerName);
    }
    return arrow;
}

Banks LeaveBanks(const Polylines& lines) {
    Banks banks;
    for (std::size_t i = 0; i < std::min(lines.size(), banks.ids.size()); ++i) {
        AcDb2dPolyline* bank = nullptr;
        if (lines[i]->convertTo(bank, false) != Acad::eOk) {
            continue;
        }
        // Two vertices have no curve: such a bank stays straight.
        bank->convertToPolyType(AcDb::k2dCubicSplinePoly);
        bank->setLayer(layerName);
        AppendEnt(bank, banks.ids[i]);
    }
    return banks;
}

namespace {

/// +1 when the second bank lies right of the first, else -1: the sign of offsets of the first bank toward it.
double sideOf(const Banks& banks) {
    const CArxObjTemplate<AcDbCurve> first(banks.ids[0], false);
    const CArxObjTemplate<AcDbCurve> second(banks.ids[1], false);
    AcGePoint3d start;
    return first && second && second->getStartPoint(start) == Acad::eOk && IsRightOfCurve(*first, start)
               ? 1.0
               : -1.0;
}

/// Parallels of a bank that are polylines, in no database yet.
std::vector<std::unique_ptr<AcDb2dPolyline>> parallelsOf(AcDbObjectId bank, double distance) {
    std::vector<std::unique_ptr<AcDb2dPolyline>> parallels;
    const CArxObjTemplate<AcDbCurve> curve(bank, false);
    AcDbVoidPtrArray offsets;
    if (!curve || curve->getOffsetCurves(distance, offsets) != Acad::eOk) {
        return parallels;
    }
    for (std::unique_ptr<AcDbEntity>& offset : TakeEntities(offsets)) {
        if (AcDb2dPolyline::cast(offset.get()) != nullptr) {
            parallels.emplace_back(static_cast<AcDb2dPolyline*>(offset.release()));
        }
    }
    return parallels;
}

/// The block of a slope mark, taken from the symbol library when the drawing lacks it.
AcDbObjectId needSlopeBlock(const ACHAR* name) {
    AcDbObjectId id = FindRecord<AcDbBlockTable>(name);
    if (id.isNull()) {
        // The star leaves the library's definitions in the drawing, but no reference to it.
        RunHostCommand({L"_.INSERT", L"*$DXT", L"0.0,0.0,0.0", L"", L""});
        id = FindRecord<AcDbBlockTable>(name);
    }
    return id;
}

void insertSlopes(AcDbObjectId bank, const ACHAR* blockName) {
    const AcDbObjectId block = needSlopeBlock(blockName);
    const CArxObjTemplate<AcDbCurve> curve(bank, false);
    if (!block.isNull() && curve) {
        InsertBlockAlongCurve(*curve, block, slopeSpacing, layerName);
    }
}

/// Slope marks along both banks, and parallels between which the hatch finds its place. Without both of them
/// there is none.
Banks drawSlopes(const Banks& banks) {
    const double side = sideOf(banks);
    insertSlopes(banks.ids[0], side > 0.0 ? L"RXPW" : L"LXPW");
    insertSlopes(banks.ids[1], side > 0.0 ? L"LXPW" : L"RXPW");
    Banks boundaries;
    for (const std::size_t i : {0U, 1U}) {
        std::vector<std::unique_ptr<AcDb2dPolyline>> parallels =
            parallelsOf(banks.ids[i], (i == 0 ? side : -side) * slopeWidth);
        if (!parallels.empty()) {
            AppendEnt(parallels.front().release(), boundaries.ids[i]);
        }
    }
    if (!boundaries.AreThere()) {
        for (const AcDbObjectId id : boundaries.ids) {
            if (!id.isNull()) {
                EraseEnt(id);
            }
        }
    }
    return boundaries;
}

AcDbObjectId appendLine(const AcGePoint3d& from, const AcGePoint3d& to) {
    auto line = std::make_unique<AcDbLine>(from, to);
    line->setDatabaseDefaults(WorkingDatabase());
    line->setLayer(WorkingDatabase()->clayer());
    AcDbObjectId id;
    AppendEnt(line.release(), id);
    return id;
}

/// Gives the hatch its pattern in the first scale at which its lines can be counted.
bool setPattern(AcDbHatch& hatch) {
    for (double scale = firstPatternScale; scale <= lastPatternScale; scale *= 10.0) {
        if (hatch.setPatternScale(scale) == Acad::eOk &&
            hatch.setPattern(AcDbHatch::kPreDefined, patternName) == Acad::eOk &&
            hatch.evaluateHatch() == Acad::eOk) {
            return true;
        }
    }
    return false;
}

void drawHatch(const Banks& boundaries) {
    std::array<AcGePoint3d, 2> starts;
    std::array<AcGePoint3d, 2> ends;
    for (const std::size_t i : {0U, 1U}) {
        const CArxObjTemplate<AcDbCurve> curve(boundaries.ids[i], false);
        if (!curve || curve->getStartPoint(starts[i]) != Acad::eOk ||
            curve->getEndPoint(ends[i]) != Acad::eOk) {
            return;
        }
    }
    const AcDbObjectId endLine = appendLine(ends[0], ends[1]);
    const AcDbObjectId startLine = appendLine(starts[0], starts[1]);
    auto hatch = std::make_unique<AcDbHatch>();
    hatch->setDatabaseDefaults(WorkingDatabase());
    hatch->setAssociative(false);
    hatch->setLayer(layerName);
    hatch->setPatternAngle(acutAngle(asDblArray(starts[0]), asDblArray(ends[0])));
    AcDbObjectIdArray loop;
    for (const AcDbObjectId id : {boundaries.ids[0], endLine, startLine, boundaries.ids[1]}) {
        loop.append(id);
    }
    if (hatch->appendLoop(AcDbHatch::kExternal, loop) == Acad::eOk && setPattern(*hatch)) {
        AppendEnt(hatch.release());
    } else {
        acutPrintf(L"\n   ***无法填充河流，图案: %s", patternName);
    }
}

AcDbObjectId findHidden() {
    constexpr const ACHAR* name = L"HIDDEN";
    AcDbObjectId id = FindRecord<AcDbLinetypeTable>(name);
    if (id.isNull() && acdbLoadLineTypeFile(name, L"acad.lin", WorkingDatabase()) == Acad::eOk) {
        id = FindRecord<AcDbLinetypeTable>(name);
    }
    return id;
}

void drawInnerLines(const Banks& banks, double width) {
    SetVar(L"LTSCALE", dashedLtscale);
    const AcDbObjectId hidden = findHidden();
    const double side = sideOf(banks);
    const std::vector<double> distances = InnerLineDistances(width);
    for (const double& distance : distances) {
        for (std::unique_ptr<AcDb2dPolyline>& line : parallelsOf(banks.ids[0], side * distance)) {
            line->setLayer(layerName);
            if (&distance != &distances.back()) {
                line->setLinetypeScale(dashedLinetypeScale);
                line->setLinetypeGenerationOn();
                line->setLinetype(hidden);
            }
            AppendEnt(line.release());
        }
    }
    // The last line has its place.
    EraseEnt(banks.ids[1]);
}

void placeArrows() {
    for (;;) {
        std::array<std::unique_ptr<AcDbLine>, 3> arrow = NewFlowArrow();
        const std::array<AcDbEntity*, 3> entities{arrow[0].get(), arrow[1].get(), arrow[2].get()};
        CMutipleEntityJig jig(entities);
        AcGePoint3d base;
        if (jig.DoProcess(CMutipleEntityJig::kMove, base, L"\n水流方向放置位置 <退出>:") != 0 ||
            jig.DoProcess(CMutipleEntityJig::kRotate, base, L"\n水流方向放置角度 <退出>:") != 0) {
            return;
        }
        for (std::unique_ptr<AcDbLine>& line : arrow) {
            AppendEnt(line.release());
        }
    }
}

} // namespace

void Decorate(const Banks& banks, Style style, double width) {
    if (!banks.AreThere()) {
        return;
    }
    switch (style) {
    case Style::hatchWithSlopes:
    case Style::hatch: {
        const bool hasSlopes = style == Style::hatchWithSlopes && width > widestWithoutSlopes;
        const Banks boundaries = hasSlopes ? drawSlopes(banks) : banks;
        if (boundaries.AreThere()) {
            drawHatch(boundaries);
        }
        break;
    }
    case Style::dashedLines:
        drawInnerLines(banks, width);
        break;
    case Style::flowArrows:
        placeArrows();
        break;
    }
}

} // namespace river
