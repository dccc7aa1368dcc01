// Lines, arrows and texts of dimensions.
#include "host/db/entities/dimensionpainter.h"

#include "host/db/dbents.h"
#include "host/db/entities/arrowheads.h"
#include "host/db/entities/recordlookup.h"
#include "host/db/entities/transforms.h"

namespace host {

DimensionPainter::DimensionPainter(const AcDbDimension& owner, const DimVariables& variables,
                                   std::wstring text, double elevation)
    : v(variables), mOwner(owner), mData(owner.data()), mDatabase(owner.database()), mText(std::move(text)),
      mElevation(elevation), mScale(variables.scale > 0.0 ? variables.scale : 1.0),
      mTicks(variables.tsz > 0.0) {
    if (mDatabase == nullptr) {
        mDatabase = acdbHostApplicationServices()->workingDatabase();
    }
    if (!mText.empty()) {
        const MTextLayout layout = makeText()->layout();
        mTextWidth = layout.actualWidth;
        mTextHeight = layout.actualHeight;
        if (layout.isSplit) {
            mIsSplit = true;
            mTextShift = -0.5 * (layout.splitTop + layout.splitBottom);
        }
    }
}

std::unique_ptr<AcDbMText> DimensionPainter::makeText() const {
    auto text = std::make_unique<AcDbMText>();
    AcDbObjectId style = v.txsty;
    const auto* record = peek<AcDbTextStyleTableRecord>(style);
    if (record == nullptr && mDatabase != nullptr) {
        style = mDatabase->standardTextStyle();
        record = peek<AcDbTextStyleTableRecord>(style);
    }
    if (record != nullptr) {
        text->setTextStyle(style);
    }
    const bool fixed = record != nullptr && record->textSize() > 0.0;
    text->setTextHeight(fixed ? record->textSize() : scaled(v.txt > 0.0 ? v.txt : 0.18));
    text->setContents(mText.c_str());
    text->setAttachment(static_cast<AcDbMText::AttachmentPoint>(mData.textAttachment));
    text->setLineSpacingStyle(static_cast<AcDb::LineSpacingStyle>(mData.textSpacingStyle));
    text->setLineSpacingFactor(mData.textSpacing);
    if (v.tfill != 0) {
        AcCmEntityColor color;
        color.setColorIndex(v.tfillclr);
        text->setBackgroundFill(true);
        text->setUseBackgroundColor(v.tfill == 1);
        text->setBackgroundFillColor(AcCmColor(color));
        text->setBackgroundScaleFactor(1.0 + std::min(std::fabs(v.gap) / std::max(v.txt, 1e-9), 4.0));
    }
    return text;
}

void DimensionPainter::add(std::unique_ptr<AcDbEntity> entity, Adesk::Int16 color, Adesk::Int16 weight,
                           AcDbObjectId linetype) {
    if (!mOwner.layerId().isNull()) {
        entity->setLayer(mOwner.layerId(), false);
    }
    if (mDatabase != nullptr && linetype.isNull()) {
        linetype = mDatabase->byBlockLinetype();
    }
    if (!linetype.isNull()) {
        entity->setLinetype(linetype, false);
    }
    AcCmEntityColor own;
    own.setColorIndex(color);
    entity->setEntityColor(own);
    entity->setLineWeight(static_cast<AcDb::LineWeight>(weight), false);
    mParts.push_back(std::move(entity));
}

double DimensionPainter::readable(double angle) const {
    const double own = normalizedAngle(angle - mData.horizontalRotation);
    constexpr double slack = 1e-6;
    const bool turned = own > halfPi + slack && own <= 3.0 * halfPi + slack;
    return normalizedAngle((turned ? own + pi : own) + mData.horizontalRotation);
}

double DimensionPainter::textAngle(double lineAngle, bool forced) const {
    if (mData.hasTextRotation) {
        return normalizedAngle(mData.textRotation + mData.horizontalRotation);
    }
    const double angle = forced ? mData.horizontalRotation : readable(lineAngle);
    return normalizedAngle(v.txtdirection != 0 ? angle + pi : angle);
}

AcGeVector2d DimensionPainter::textHalfExtent(double angle, double lineAngle) const {
    const double c = std::fabs(std::cos(angle - lineAngle));
    const double s = std::fabs(std::sin(angle - lineAngle));
    return {0.5 * (mTextWidth * c + mTextHeight * s), 0.5 * (mTextWidth * s + mTextHeight * c)};
}

std::optional<AcGePoint2d> DimensionPainter::givenTextPlace() const {
    return mData.has(DimensionData::textIsPlaced) && hasText() ? std::optional(to2d(mData.textPosition))
                                                               : std::nullopt;
}

// Lines.

void DimensionPainter::dimensionLine(const AcGePoint2d& from, const AcGePoint2d& to) {
    if (from.distanceTo(to) > 1e-12 * (1.0 + std::fabs(from.x) + std::fabs(from.y))) {
        add(std::make_unique<AcDbLine>(lifted(from), lifted(to)), v.clrd, v.lwd, v.ltype);
    }
}

std::optional<std::pair<double, double>> DimensionPainter::coveredByText(const AcGePoint2d& from,
                                                                         const AcGePoint2d& to) const {
    if (!mTextPlace || !mTextBreaksLines || !hasText()) {
        return std::nullopt;
    }
    // The line in coordinates of the text, cut at the sides of its frame.
    const AcGeVector2d x = direction(mTextAngle);
    const AcGeVector2d y = x.perpVector();
    const AcGeVector2d arm = from - *mTextPlace;
    const AcGeVector2d span = to - from;
    const double start[] = {arm.dotProduct(x), arm.dotProduct(y)};
    const double step[] = {span.dotProduct(x), span.dotProduct(y)};
    const double half[] = {0.5 * mTextWidth + gap(), 0.5 * mTextHeight + gap()};
    double enter = 0.0;
    double leave = 1.0;
    for (int axis = 0; axis < 2; ++axis) {
        if (std::fabs(step[axis]) < 1e-14 * (half[axis] + std::fabs(start[axis]))) {
            if (std::fabs(start[axis]) >= half[axis] - 1e-9 * half[axis]) {
                return std::nullopt;
            }
            continue;
        }
        const double a = (-half[axis] - start[axis]) / step[axis];
        const double b = (half[axis] - start[axis]) / step[axis];
        enter = std::max(enter, std::min(a, b));
        leave = std::min(leave, std::max(a, b));
    }
    return enter < leave ? std::optional(std::pair(enter, leave)) : std::nullopt;
}

void DimensionPainter::brokenLine(const AcGePoint2d& from, const AcGePoint2d& to) {
    const auto covered = coveredByText(from, to);
    if (!covered) {
        return dimensionLine(from, to);
    }
    const AcGeVector2d span = to - from;
    if (covered->first > 1e-9) {
        dimensionLine(from, from + span * covered->first);
    }
    if (covered->second < 1.0 - 1e-9) {
        dimensionLine(from + span * covered->second, to);
    }
}

void DimensionPainter::extensionLine(const AcGePoint2d& from, const AcGePoint2d& to, bool second) {
    if (from.distanceTo(to) > 0.0) {
        add(std::make_unique<AcDbLine>(lifted(from), lifted(to)), v.clre, v.lwe, second ? v.ltex2 : v.ltex1);
    }
}

void DimensionPainter::dimensionArc(const AcGePoint2d& center, double radius, double start, double sweep) {
    if (sweep > 1e-9 && radius > 0.0) {
        add(std::make_unique<AcDbArc>(lifted(center), radius, start, start + sweep), v.clrd, v.lwd, v.ltype);
    }
}

void DimensionPainter::brokenArc(const AcGePoint2d& center, double radius, double start, double sweep) {
    // The text covers the arc where short chords of it run through the text's frame.
    constexpr int chords = 256;
    int first = chords;
    int last = -1;
    for (int index = 0; index < chords && hasText(); ++index) {
        const AcGePoint2d a = polar(center, start + sweep * index / chords, radius);
        const AcGePoint2d b = polar(center, start + sweep * (index + 1) / chords, radius);
        if (coveredByText(a, b)) {
            first = std::min(first, index);
            last = index;
        }
    }
    if (last < 0) {
        return dimensionArc(center, radius, start, sweep);
    }
    dimensionArc(center, radius, start, sweep * first / chords);
    dimensionArc(center, radius, start + sweep * (last + 1) / chords, sweep * (chords - last - 1) / chords);
}

// Arrows.

AcDbObjectId DimensionPainter::arrowBlockOf(bool second) const {
    return v.sah == 0 ? v.blk : second ? v.blk2 : v.blk1;
}

double DimensionPainter::arrowCut(bool second) const {
    return mTicks || arrowKeepsLine(arrowBlockOf(second)) ? 0.0 : scaled(v.asz);
}

void DimensionPainter::arrow(const AcGePoint2d& tip, double angle, bool second) {
    const bool flipped = (mData.flip & (second ? 2 : 1)) != 0;
    if (mTicks) {
        const double size = scaled(v.tsz);
        const double slanted = readable(angle) + 0.25 * pi;
        dimensionLine(polar(tip, slanted + pi, size * std::numbers::sqrt2),
                      polar(tip, slanted, size * std::numbers::sqrt2));
        return;
    }
    const AcDbObjectId block = arrowBlockOf(second);
    const double size = scaled(v.asz);
    if (size > 0.0 && !isNoArrow(block)) {
        add(makeArrow(block, lifted(tip), flipped ? normalizedAngle(angle + pi) : normalizedAngle(angle),
                      size),
            v.clrd, AcDb::kLnWtByBlock);
    }
}

// Text and marks.

void DimensionPainter::placeText(const AcGePoint2d& middle, double angle, bool breaksLines) {
    mTextPlace = middle;
    mTextAngle = angle;
    mTextBreaksLines = breaksLines && !mIsSplit;
    if (mIsSplit) {
        *mTextPlace += direction(angle).perpVector() * mTextShift;
    }
}

void DimensionPainter::centerMark(const AcGePoint2d& center, double radius) {
    const double size = std::fabs(scaled(v.cen));
    if (size == 0.0) {
        return;
    }
    for (int quarter = 0; quarter < 4; ++quarter) {
        const double angle = quarter * halfPi + mData.horizontalRotation;
        if (quarter < 2) {
            dimensionLine(polar(center, angle + pi, size), polar(center, angle, size));
        }
        if (v.cen < 0.0 && radius > size) {
            dimensionLine(polar(center, angle, 2.0 * size), polar(center, angle, radius + size));
        }
    }
}

void DimensionPainter::definitionPoint(const AcGePoint2d& point) {
    definitionPoint(lifted(point));
}

void DimensionPainter::definitionPoint(const AcGePoint3d& point) {
    auto made = std::make_unique<AcDbPoint>(point);
    add(std::move(made), 0, AcDb::kLnWtByBlock);
    if (mDatabase != nullptr) {
        const AcDbObjectId layer(findRecord<AcDbLayerTable>(mDatabase->layerTableId(), L"Defpoints"));
        if (!layer.isNull()) {
            mParts.back()->setLayer(layer);
        }
    }
}

void DimensionPainter::addTextFrame() {
    const AcGeVector2d x = direction(mTextAngle) * (0.5 * mTextWidth + gap());
    const AcGeVector2d y = direction(mTextAngle).perpVector() * (0.5 * mTextHeight + gap());
    const AcGePoint2d corners[] = {*mTextPlace - x - y, *mTextPlace + x - y, *mTextPlace + x + y,
                                   *mTextPlace - x + y};
    for (std::size_t side = 0; side < 4; ++side) {
        dimensionLine(corners[side], corners[(side + 1) % 4]);
    }
}

std::vector<std::unique_ptr<AcDbEntity>> DimensionPainter::take() {
    if (hasText() && mTextPlace) {
        if (v.gap < 0.0) {
            addTextFrame();
        }
        auto text = makeText();
        // The attachment says where the place lies in the text; the place here is its middle.
        const int across = (mData.textAttachment - 1) % 3 - 1;
        const int down = (mData.textAttachment - 1) / 3 - 1;
        const AcGeVector2d x = direction(mTextAngle);
        const AcGePoint2d at =
            *mTextPlace + x * (0.5 * across * mTextWidth) - x.perpVector() * (0.5 * down * mTextHeight);
        text->setRotation(mTextAngle);
        text->setLocation(lifted(at));
        add(std::move(text), v.clrt, AcDb::kLnWtByBlock);
    }
    if (!isWorldNormal(mData.normal)) {
        const AcGeMatrix3d toPlane = AcGeMatrix3d::planeToWorld(mData.normal);
        for (const std::unique_ptr<AcDbEntity>& part : mParts) {
            part->transformBy(toPlane);
        }
    }
    return std::move(mParts);
}

} // namespace host
