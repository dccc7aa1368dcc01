// Multi-line texts: layout, drawing, extents, grips, parts.
#include "host/db/dbdatabase.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/line.h"
#include "host/db/entities/mtext.h"
#include "host/db/entities/text.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

namespace {

AcGiTextStyle styleOf(const host::TextFormat& format) {
    AcGiTextStyle style(format.font.file.c_str(), format.font.bigFontFile.c_str(), format.height,
                        format.widthFactor, format.oblique, format.tracking, false, false, format.vertical,
                        format.overlined, format.underlined);
    style.setStrikethrough(format.struckThrough);
    style.setFont(format.font.typeface.c_str(), format.font.bold, format.font.italic, 0, 0);
    return style;
}

AcGePoint3d flat(double x, double y) {
    return {x, y, 0.0};
}

} // namespace

host::MTextSettings AcDbMText::settings() const {
    host::MTextSettings settings;
    AcGiTextStyle style;
    const auto* record = host::peek<AcDbTextStyleTableRecord>(m.style);
    if (record == nullptr) {
        const AcDbDatabase* home =
            database() != nullptr ? database() : acdbHostApplicationServices()->workingDatabase();
        record = home != nullptr ? host::peek<AcDbTextStyleTableRecord>(home->textstyle()) : nullptr;
    }
    if (record != nullptr) {
        const host::ReadAccess access(*record);
        record->toGiTextStyle(style);
    }
    settings.look.format = style.format();
    settings.look.format.backward = settings.look.format.upsideDown = false;
    settings.look.format.vertical = m.flow == kTtoB || (m.flow == kByStyle && style.isVertical());
    settings.look.format.height = m.textHeight;
    settings.width = m.width;
    settings.attachment = m.attachment;
    settings.spacingFactor = m.spacingFactor;
    settings.exactSpacing = m.spacingStyle == AcDb::kExactly;
    const host::MTextColumnData& columns = m.columns;
    if (columns.type != kNoColumns && columns.width > 0.0) {
        settings.columns.width = columns.width;
        settings.columns.gutter = columns.gutter;
        settings.columns.rightToLeft = columns.reversed;
        settings.columns.height = columns.definedHeight > 0.0 ? columns.definedHeight : m.definedHeight;
        settings.columns.count = columns.type == kStaticColumns ? columns.count : 0;
        if (!columns.autoHeight && columns.type == kDynamicColumns) {
            settings.columns.heights = columns.heights;
        }
    }
    return settings;
}

host::MTextLayout AcDbMText::layout() const {
    assertReadEnabled();
    return host::layOutMText(m.contents.view(), settings());
}

AcGeMatrix3d AcDbMText::textToWorld() const {
    assertReadEnabled();
    AcGeMatrix3d transform;
    transform.setCoordSystem(m.location, m.direction, m.normal.crossProduct(m.direction), m.normal);
    return transform;
}

double AcDbMText::actualWidth() const {
    return layout().actualWidth;
}
double AcDbMText::actualHeight(AcGiWorldDraw*) const {
    return layout().actualHeight;
}
double AcDbMText::ascent() const {
    return host::FontEngine::instance().metrics(settings().look.format.font).ascent * m.textHeight;
}
double AcDbMText::descent() const {
    return host::FontEngine::instance().metrics(settings().look.format.font).descent * m.textHeight;
}

Acad::ErrorStatus AcDbMText::boundingPoints(AcGePoint3dArray& corners) const {
    const host::MTextLayout laid = layout();
    const AcGeMatrix3d toWorld = textToWorld();
    corners.append(toWorld * flat(laid.lowerLeft.x, laid.upperRight.y));
    corners.append(toWorld * flat(laid.upperRight.x, laid.upperRight.y));
    corners.append(toWorld * flat(laid.lowerLeft.x, laid.lowerLeft.y));
    corners.append(toWorld * flat(laid.upperRight.x, laid.lowerLeft.y));
    return Acad::eOk;
}

bool AcDbMText::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    AcGePoint3dArray corners;
    boundingPoints(corners);
    constexpr int around[] = {0, 1, 3, 2, 0};
    for (std::size_t side = 0; side < 4; ++side) {
        pieces.push_back(host::CurvePiece::line(corners[around[side]], corners[around[side + 1]]));
    }
    return true;
}

Acad::ErrorStatus AcDbMText::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    const host::MTextLayout laid = layout();
    host::GlyphBox box = laid.ink;
    if (m.fill != 0) {
        const double margin = m.textHeight * (m.fillScale - 1.0);
        box.add(laid.lowerLeft.x - margin, laid.lowerLeft.y - margin);
        box.add(laid.upperRight.x + margin, laid.upperRight.y + margin);
    }
    if (box.empty) {
        box.add(0.0, 0.0);
    }
    const AcGeMatrix3d placed = transform * textToWorld();
    extents = AcDbExtents();
    extents.addPoint(placed * flat(box.left, box.bottom));
    extents.addPoint(placed * flat(box.right, box.bottom));
    extents.addPoint(placed * flat(box.right, box.top));
    extents.addPoint(placed * flat(box.left, box.top));
    return Acad::eOk;
}

// Drawing.

void AcDbMText::drawBackground(AcGiWorldDraw* draw, const host::MTextLayout& laid) const {
    if (m.fill == 0) {
        return;
    }
    const double margin = m.textHeight * (m.fillScale - 1.0);
    const double left = laid.lowerLeft.x - margin;
    const double right = laid.upperRight.x + margin;
    const double bottom = laid.lowerLeft.y - margin;
    const double top = laid.upperRight.y + margin;
    const AcGeMatrix3d toWorld = textToWorld();
    AcGePoint3d corners[] = {toWorld * flat(left, bottom), toWorld * flat(right, bottom),
                             toWorld * flat(right, top), toWorld * flat(left, top),
                             toWorld * flat(left, bottom)};
    AcGiSubEntityTraits& traits = draw->subEntityTraits();
    const AcCmEntityColor own = traits.trueColor();
    if (backgroundFillOn()) {
        AcCmEntityColor color;
        color.setColor(m.fillColor);
        if (useBackgroundColorOn()) {
            color.setRGB(255, 255, 255); // the paper's: sheets and pictures are white
        }
        traits.setTrueColor(color);
        traits.setFillType(kAcGiFillAlways);
        draw->geometry().polygon(4, corners);
        traits.setFillType(kAcGiFillNever);
        traits.setTrueColor(own);
    }
    if (showBorders()) {
        draw->geometry().polyline(5, corners);
    }
}

bool AcDbMText::subWorldDraw(AcGiWorldDraw* draw) {
    const host::MTextLayout laid = layout();
    const AcGeMatrix3d toWorld = textToWorld();
    drawBackground(draw, laid);
    AcGiSubEntityTraits& traits = draw->subEntityTraits();
    const AcCmEntityColor own = traits.trueColor();
    const auto setColor = [&](bool has, const AcCmEntityColor& color) {
        traits.setTrueColor(has ? color : own);
    };
    for (const host::MTextRun& run : laid.runs) {
        setColor(run.hasColor, run.color);
        draw->geometry().text(toWorld * flat(run.x, run.y), m.normal, m.direction, run.text.c_str(), -1, true,
                              styleOf(run.format));
    }
    for (const host::MTextBar& bar : laid.bars) {
        setColor(bar.hasColor, bar.color);
        const AcGePoint3d ends[] = {toWorld * flat(bar.start.x, bar.start.y),
                                    toWorld * flat(bar.end.x, bar.end.y)};
        draw->geometry().polyline(2, ends);
    }
    return true;
}

// Parts.

void AcDbMText::explodeFragments(AcDbMTextEnum visit, void* data, AcGiWorldDraw*) const {
    const host::MTextLayout laid = layout();
    const AcGeMatrix3d toWorld = textToWorld();
    for (const host::MTextRun& run : laid.runs) {
        AcDbMTextFragment fragment;
        std::wstring text = run.text;
        std::wstring font =
            run.format.font.typeface.empty() ? run.format.font.file : run.format.font.typeface;
        std::wstring bigFont = run.format.font.bigFontFile;
        fragment.location = toWorld * flat(run.x, run.y);
        fragment.normal = m.normal;
        fragment.direction = m.direction;
        fragment.text = text.data();
        fragment.font = font.data();
        fragment.bigfont = bigFont.data();
        fragment.extents = {run.advance, run.format.height};
        fragment.capsHeight = run.format.height;
        fragment.widthFactor = run.format.widthFactor;
        fragment.obliqueAngle = run.format.oblique;
        fragment.trackingFactor = run.format.tracking;
        fragment.color = run.hasColor ? run.color : entityColor();
        fragment.underlined = run.format.underlined;
        fragment.overlined = run.format.overlined;
        fragment.strikethrough = run.format.struckThrough;
        fragment.bold = run.format.font.bold;
        fragment.italic = run.format.font.italic;
        if (visit(&fragment, data) == 0) {
            return;
        }
    }
}

namespace {

/// The characters of a vertical run as runs that are not, each where it stands.
std::vector<host::MTextRun> uprightCharacters(const host::MTextRun& run) {
    host::FontEngine& fonts = host::FontEngine::instance();
    std::vector<host::MTextRun> characters;
    double drop = 0.0;
    for (const wchar_t character : run.text) {
        host::MTextRun& one = characters.emplace_back(run);
        one.text.assign(1, character);
        const double step = -fonts.shape(one.text, run.format, true).advanceY;
        one.format.vertical = false;
        const host::GlyphBox ink = fonts.inkBox(one.text, one.format, true);
        one.x = run.x - 0.5 * (ink.left + ink.right);
        one.y = run.y - drop - run.format.height;
        drop += step;
    }
    return characters;
}

} // namespace

std::unique_ptr<AcDbText> AcDbMText::newTextOf(const host::MTextRun& run) const {
    auto text = host::newLike<AcDbText>(*this);
    std::wstring codes = run.text;
    for (std::size_t at = 0; (at = codes.find(L"%%", at)) != std::wstring::npos; at += 5) {
        codes.replace(at, 2, L"%%%%%"); // a percent sign as a code, then one more
    }
    codes = (run.format.underlined ? L"%%u" : L"") + ((run.format.overlined ? L"%%o" : L"") + codes);
    codes = (run.format.struckThrough ? L"%%k" : L"") + codes;
    text->setTextString(codes.c_str());
    if (!m.style.isNull()) {
        text->setTextStyle(m.style);
    }
    text->setNormal(m.normal);
    text->setHeight(run.format.height);
    text->setWidthFactor(run.format.widthFactor);
    text->setOblique(run.format.oblique);
    text->setRotation(rotation());
    text->setPosition(textToWorld() * flat(run.x, run.y));
    if (run.hasColor) {
        text->setEntityColor(run.color);
    }
    return text;
}

Acad::ErrorStatus AcDbMText::subExplode(AcDbVoidPtrArray& parts) const {
    const host::MTextLayout laid = layout();
    const AcGeMatrix3d toWorld = textToWorld();
    const auto* style = host::peek<AcDbTextStyleTableRecord>(m.style);
    const bool styleIsVertical = style != nullptr && style->isVertical();
    const auto addText = [&](const host::MTextRun& run) {
        if (run.text.find_first_not_of(L" \x3000\xA0") != std::wstring::npos) {
            parts.append(newTextOf(run).release());
        }
    };
    for (const host::MTextRun& run : laid.runs) {
        if (run.format.vertical && !styleIsVertical) { // one line of text runs as its style says
            const std::vector<host::MTextRun> characters = uprightCharacters(run);
            std::for_each(characters.begin(), characters.end(), addText);
        } else {
            addText(run);
        }
    }
    for (const host::MTextBar& bar : laid.bars) {
        auto line = host::newLike<AcDbLine>(*this);
        line->setStartPoint(toWorld * flat(bar.start.x, bar.start.y));
        line->setEndPoint(toWorld * flat(bar.end.x, bar.end.y));
        line->setNormal(m.normal);
        if (bar.hasColor) {
            line->setEntityColor(bar.color);
        }
        parts.append(line.release());
    }
    return Acad::eOk;
}

// Grips.

/// The side of the frame that a change of width moves: 1 to the right, -1 to the left.
double AcDbMText::gripSide() const {
    return m.attachment % 3 == 0 ? -1.0 : 1.0;
}

bool AcDbMText::hasWidthGrip() const {
    return m.width > 0.0 && m.columns.type == kNoColumns && !settings().look.format.vertical;
}

Acad::ErrorStatus AcDbMText::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    points.append(m.location);
    if (hasWidthGrip()) {
        const host::MTextLayout laid = layout();
        const double x = gripSide() > 0.0 ? laid.upperRight.x : laid.lowerLeft.x;
        points.append(textToWorld() * flat(x, 0.5 * (laid.upperRight.y + laid.lowerLeft.y)));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    const int count = hasWidthGrip() ? 2 : 1;
    const bool moves = indices.contains(0);
    assertWriteEnabled();
    return host::forGrips(indices, count, [&](int index) {
        if (index == 0) {
            m.location += offset;
        } else if (!moves) {
            const double centred = m.attachment % 3 == 2 ? 2.0 : 1.0;
            const double width = m.width + gripSide() * centred * offset.dotProduct(m.direction);
            m.width = std::max(width, 1e-3 * m.textHeight);
        }
    });
}

Acad::ErrorStatus AcDbMText::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(m.location);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    return host::forGrips(indices, 1, [&](int) { m.location += offset; });
}

Acad::ErrorStatus AcDbMText::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker, const AcGePoint3d&,
                                               const AcGePoint3d&, const AcGeMatrix3d&,
                                               AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeIns || mode == AcDb::kOsModeNode) {
        points.append(m.location);
    }
    return Acad::eOk;
}
