// Lines of text: properties, alignment, extents, transformation, drawing.
#include "host/db/entities/text.h"

#include "host/db/dbdatabase.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbText, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, TEXT,
                        ObjectDBX Classes)

namespace {

constexpr int backwards = 2;
constexpr int upsideDown = 4;

/// From text coordinates, mirroring included, to object coordinates.
struct TextFrame {
    AcGePoint3d origin;
    AcGeVector2d x, y;

    explicit TextFrame(const host::TextData& data) : origin(data.position) {
        const double c = std::cos(data.rotation);
        const double s = std::sin(data.rotation);
        const double alongSign = (data.generation & backwards) != 0 ? -1.0 : 1.0;
        const double upSign = (data.generation & upsideDown) != 0 ? -1.0 : 1.0;
        x.set(alongSign * c, alongSign * s);
        y.set(-upSign * s, upSign * c);
    }
    AcGePoint3d operator()(double along, double up) const {
        return origin + AcGeVector3d(x.x * along + y.x * up, x.y * along + y.y * up, 0.0);
    }
};

} // namespace

AcDbText::AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style, double height,
                   double rotation) {
    m.position = position;
    m.text = text;
    m.style = style;
    m.height = height;
    m.rotation = rotation;
}

AcGePoint3d AcDbText::position() const {
    assertReadEnabled();
    const bool isMeasured = !isDefaultAlignment() && !shownText().isEmpty();
    return host::toWorld(m.normal, isMeasured ? startPoint(textBox()) : m.position);
}

Acad::ErrorStatus AcDbText::setPosition(const AcGePoint3d& position) {
    assertWriteEnabled();
    if (isDefaultAlignment()) {
        subPartChanged(Part::place, position - this->position());
    }
    m.position = host::toObject(m.normal, position);
    const bool betweenPoints = m.horizontal == AcDb::kTextAlign || m.horizontal == AcDb::kTextFit;
    return betweenPoints ? changed() : Acad::eOk;
}

AcGePoint3d AcDbText::alignmentPoint() const {
    assertReadEnabled();
    return host::toWorld(m.normal, m.alignment);
}

Acad::ErrorStatus AcDbText::setAlignmentPoint(const AcGePoint3d& point) {
    assertWriteEnabled();
    if (!isDefaultAlignment()) {
        subPartChanged(Part::place, point - alignmentPoint());
    }
    m.alignment = host::toObject(m.normal, point);
    return changed();
}

bool AcDbText::isDefaultAlignment() const {
    assertReadEnabled();
    return m.horizontal == AcDb::kTextLeft && m.vertical == AcDb::kTextBase;
}

AcGeVector3d AcDbText::normal() const {
    assertReadEnabled();
    return m.normal;
}

Acad::ErrorStatus AcDbText::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    const AcGePoint3d at = host::toWorld(m.normal, m.position);
    const AcGePoint3d aligned = host::toWorld(m.normal, m.alignment);
    m.normal = host::unitNormal(normal);
    m.position = host::toObject(m.normal, at);
    m.alignment = host::toObject(m.normal, aligned);
    return changed();
}

double AcDbText::thickness() const {
    assertReadEnabled();
    return m.thickness;
}
Acad::ErrorStatus AcDbText::setThickness(double thickness) {
    assertWriteEnabled();
    m.thickness = thickness;
    return Acad::eOk;
}

double AcDbText::oblique() const {
    assertReadEnabled();
    return m.oblique;
}

Acad::ErrorStatus AcDbText::setOblique(double angle) {
    constexpr double steepest = 85.0 * host::pi / 180.0;
    const double turned = host::signedAngle(angle);
    if (!(std::fabs(turned) <= steepest + 1e-9)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.oblique = turned;
    return changed();
}

double AcDbText::rotation() const {
    assertReadEnabled();
    return m.rotation;
}
Acad::ErrorStatus AcDbText::setRotation(double angle) {
    if (!std::isfinite(angle)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.rotation = host::normalizedAngle(angle);
    return changed(Part::rotation);
}

double AcDbText::height() const {
    assertReadEnabled();
    return m.height;
}
Acad::ErrorStatus AcDbText::setHeight(double height) {
    if (!(height > 0.0) || !std::isfinite(height)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.height = height;
    return changed(Part::height);
}

double AcDbText::widthFactor() const {
    assertReadEnabled();
    return m.widthFactor;
}
Acad::ErrorStatus AcDbText::setWidthFactor(double factor) {
    if (!(factor > 0.0) || !std::isfinite(factor)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.widthFactor = factor;
    return changed();
}

ACHAR* AcDbText::textString() const {
    assertReadEnabled();
    ACHAR* copy = nullptr;
    acutNewString(m.text.kwszPtr(), copy);
    return copy;
}
Acad::ErrorStatus AcDbText::textString(AcString& text) const {
    assertReadEnabled();
    text = m.text;
    return Acad::eOk;
}
const ACHAR* AcDbText::textStringConst() const {
    assertReadEnabled();
    return m.text.kwszPtr();
}
Acad::ErrorStatus AcDbText::setTextString(const ACHAR* text) {
    if (text == nullptr) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    if (m.text == text) {
        return Acad::eOk;
    }
    m.text = text;
    return changed(Part::text);
}

AcDbObjectId AcDbText::textStyle() const {
    assertReadEnabled();
    return m.style;
}
Acad::ErrorStatus AcDbText::setTextStyle(AcDbObjectId style) {
    if (host::peek<AcDbTextStyleTableRecord>(style) == nullptr) {
        return Acad::eInvalidTextStyle;
    }
    if (database() != nullptr && style.database() != database()) {
        return Acad::eWrongDatabase;
    }
    assertWriteEnabled();
    m.style = style;
    return changed(Part::style);
}

bool AcDbText::isMirroredInX() const {
    assertReadEnabled();
    return (m.generation & backwards) != 0;
}
Acad::ErrorStatus AcDbText::mirrorInX(bool mirrored) {
    assertWriteEnabled();
    m.generation = static_cast<Adesk::UInt8>(mirrored ? m.generation | backwards : m.generation & ~backwards);
    return changed();
}
bool AcDbText::isMirroredInY() const {
    assertReadEnabled();
    return (m.generation & upsideDown) != 0;
}
Acad::ErrorStatus AcDbText::mirrorInY(bool mirrored) {
    assertWriteEnabled();
    m.generation =
        static_cast<Adesk::UInt8>(mirrored ? m.generation | upsideDown : m.generation & ~upsideDown);
    return changed();
}

AcDb::TextHorzMode AcDbText::horizontalMode() const {
    assertReadEnabled();
    return static_cast<AcDb::TextHorzMode>(m.horizontal);
}
Acad::ErrorStatus AcDbText::setHorizontalMode(AcDb::TextHorzMode mode) {
    if (mode < AcDb::kTextLeft || mode > AcDb::kTextFit) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.horizontal = static_cast<Adesk::UInt8>(mode);
    if (mode >= AcDb::kTextAlign) {
        m.vertical = AcDb::kTextBase; // these say both
    }
    return changed();
}
AcDb::TextVertMode AcDbText::verticalMode() const {
    assertReadEnabled();
    return static_cast<AcDb::TextVertMode>(m.vertical);
}
Acad::ErrorStatus AcDbText::setVerticalMode(AcDb::TextVertMode mode) {
    if (mode < AcDb::kTextBase || mode > AcDb::kTextTop) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.vertical = static_cast<Adesk::UInt8>(mode);
    return changed();
}

Acad::ErrorStatus AcDbText::changed() {
    if (!isDefaultAlignment() && !shownText().isEmpty()) {
        adjustAlignment();
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::changed(Part part) {
    const Acad::ErrorStatus status = changed();
    subPartChanged(part, AcGeVector3d::kIdentity);
    return status;
}

AcGiTextStyle AcDbText::giTextStyle(const AcDbDatabase* database) const {
    AcGiTextStyle style;
    const auto* record = host::peek<AcDbTextStyleTableRecord>(m.style);
    if (record == nullptr) {
        const AcDbDatabase* home = this->database() != nullptr ? this->database() : database;
        home = home != nullptr ? home : acdbHostApplicationServices()->workingDatabase();
        record = home != nullptr ? host::peek<AcDbTextStyleTableRecord>(home->textstyle()) : nullptr;
    }
    if (record != nullptr) {
        const host::ReadAccess access(*record);
        record->toGiTextStyle(style);
    }
    style.setTextSize(m.height);
    style.setXScale(m.widthFactor);
    style.setObliquingAngle(m.oblique);
    style.setBackward((m.generation & backwards) != 0);
    style.setUpsideDown((m.generation & upsideDown) != 0);
    return style;
}

namespace {

host::TextBox boxOf(const AcString& text, const AcGiTextStyle& style) {
    host::TextBox box;
    const host::GlyphBox ink = host::FontEngine::instance().inkBox(text.view(), style.format());
    if (!ink.empty) {
        box.left = ink.left;
        box.right = ink.right;
        box.bottom = ink.bottom;
        box.top = ink.top;
        box.width = std::max(ink.right, 0.0);
    }
    box.isVertical = style.isVertical();
    box.descent = host::FontEngine::instance().metrics(style.format().font).descent * style.textSize();
    return box;
}

} // namespace

host::TextBox AcDbText::textBox() const {
    assertReadEnabled();
    return boxOf(shownText(), giTextStyle());
}

Acad::ErrorStatus AcDbText::adjustAlignment(const AcDbDatabase* database) {
    if (isDefaultAlignment()) {
        return Acad::eOk;
    }
    assertWriteEnabled();
    AcGiTextStyle style = giTextStyle(database);
    if (m.horizontal == AcDb::kTextAlign || m.horizontal == AcDb::kTextFit) {
        return stretchBetweenPoints(style);
    }
    m.position = startPoint(boxOf(shownText(), style));
    return Acad::eOk;
}

/// The height of an aligned text and the width factor of a fitted one follow from the distance of its points.
/// A fitted vertical text has nothing that could give way: it only runs from one point towards the other.
Acad::ErrorStatus AcDbText::stretchBetweenPoints(AcGiTextStyle style) {
    const bool align = m.horizontal == AcDb::kTextAlign;
    const AcGeVector2d span(m.alignment.x - m.position.x, m.alignment.y - m.position.y);
    const double distance = span.length();
    // Lengths grow with the height and with the width factor, slant aside.
    style.setObliquingAngle(0.0);
    style.setTextSize(align ? 1.0 : m.height);
    style.setXScale(align ? m.widthFactor : 1.0);
    const host::TextBox box = boxOf(shownText(), style);
    const double length = box.isVertical ? -box.bottom : box.width;
    if (!(distance > 0.0) || !(length > 0.0)) {
        return Acad::eDegenerateGeometry;
    }
    const bool isReversed = (m.generation & (box.isVertical ? upsideDown : backwards)) != 0;
    const double ahead = box.isVertical ? -0.5 * host::pi : 0.0; // of the line in the text's coordinates
    m.rotation = host::normalizedAngle(span.angle() - ahead + (isReversed ? host::pi : 0.0));
    if (align) {
        m.height = distance / length;
    } else if (!box.isVertical) {
        m.widthFactor = distance / length;
    }
    return Acad::eOk;
}

namespace {

/// The part of a text's length that lies before its alignment point.
double shareBefore(int horizontal) {
    return horizontal == AcDb::kTextLeft ? 0.0 : horizontal == AcDb::kTextRight ? 1.0 : 0.5;
}

/// Where the alignment point lies in a vertical text. On its line, as programs offer it; a text that a style
/// has made vertical and that is aligned by a corner has the corner of what is drawn there.
AcGePoint2d alignedInVertical(const host::TextBox& box, const host::TextData& data) {
    const double share = shareBefore(data.horizontal);
    if (data.vertical == AcDb::kTextBase) {
        return {0.0, share * box.bottom};
    }
    const double shareBelow = data.vertical == AcDb::kTextTop       ? 1.0
                              : data.vertical == AcDb::kTextVertMid ? 0.5
                                                                    : 0.0;
    return {box.left + share * (box.right - box.left), box.bottom + shareBelow * (box.top - box.bottom)};
}

AcGePoint2d alignedInHorizontal(const host::TextBox& box, const host::TextData& data) {
    const double along = shareBefore(data.horizontal) * box.width;
    if (data.horizontal == AcDb::kTextMid) {
        return {along, 0.5 * (box.bottom + box.top)};
    }
    return {along, data.vertical == AcDb::kTextTop       ? data.height
                   : data.vertical == AcDb::kTextVertMid ? 0.5 * data.height
                   : data.vertical == AcDb::kTextBottom  ? -box.descent
                                                         : 0.0};
}

} // namespace

AcGePoint3d AcDbText::startPoint(const host::TextBox& box) const {
    const bool betweenPoints = m.horizontal == AcDb::kTextAlign || m.horizontal == AcDb::kTextFit;
    if (isDefaultAlignment() || betweenPoints) {
        return m.position;
    }
    const AcGePoint2d aligned = box.isVertical ? alignedInVertical(box, m) : alignedInHorizontal(box, m);
    TextFrame frame(m);
    frame.origin = m.alignment;
    return frame(-aligned.x, -aligned.y);
}

void AcDbText::getCorners(AcGePoint3d (&corners)[4]) const {
    const host::TextBox box = textBox();
    TextFrame frame(m);
    frame.origin = startPoint(box);
    corners[0] = host::toWorld(m.normal, frame(box.left, box.bottom));
    corners[1] = host::toWorld(m.normal, frame(box.right, box.bottom));
    corners[2] = host::toWorld(m.normal, frame(box.right, box.top));
    corners[3] = host::toWorld(m.normal, frame(box.left, box.top));
}

void AcDbText::subBecameResident() {
    if (m.style.isNull()) {
        m.style = database()->textstyle();
    }
}

void AcDbText::subSetDatabaseDefaults(AcDbDatabase* database) {
    m.style = database->textstyle();
}

Acad::ErrorStatus AcDbText::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(position(), m.normal);
    return Acad::eOk;
}

bool AcDbText::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    AcGePoint3d corners[4];
    getCorners(corners);
    for (std::size_t index = 0; index < 4; ++index) {
        pieces.push_back(host::CurvePiece::line(corners[index], corners[(index + 1) % 4]));
    }
    return true;
}

Acad::ErrorStatus AcDbText::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    assertReadEnabled();
    extents = AcDbExtents();
    AcGePoint3d corners[4];
    getCorners(corners);
    for (const AcGePoint3d& corner : corners) {
        extents.addPoint(transform * corner);
    }
    extents.expandBy(transform * (m.normal * m.thickness));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subTransformBy(const AcGeMatrix3d& transform) {
    const host::PlanarTransform planar(transform, m.normal, m.position.z);
    if (planar.isSingular) {
        return Acad::eDegenerateGeometry;
    }
    assertWriteEnabled();
    const auto moved = [&](const AcGePoint3d& point) {
        const AcGePoint2d flat = planar(host::to2d(point));
        return AcGePoint3d(flat.x, flat.y, planar.elevation + (point.z - m.position.z) * planar.normalScale);
    };
    const AcGePoint3d position = moved(m.position);
    const AcGePoint3d alignment = moved(m.alignment);
    const auto& linear = planar.local.entry;
    const bool turns =
        linear[0][0] != 1.0 || linear[0][1] != 0.0 || linear[1][0] != 0.0 || linear[1][1] != 1.0;
    if (turns) {
        // The directions of a character's width and height, as drawn; mirrored texts get one mirroring more
        // or less, the one that turns the base line least.
        const bool wasBackward = (m.generation & backwards) != 0;
        const bool wasUpsideDown = (m.generation & upsideDown) != 0;
        const double side = wasBackward ? -1.0 : 1.0;
        const AcGeVector2d x = host::direction(m.rotation);
        const AcGeVector2d y = x.perpVector();
        const double slope = std::tan(m.oblique);
        const AcGeVector2d along = planar.local * (x * (side * m.widthFactor));
        const AcGeVector2d up = planar.local * (x * (side * slope) + y * (wasUpsideDown ? -1.0 : 1.0));
        bool backward = wasBackward;
        double rotation = (along * side).angle();
        if (planar.isMirrored) {
            const double keep = std::fabs(host::signedAngle(rotation - m.rotation));
            const double turned = std::fabs(host::signedAngle(rotation + host::pi - m.rotation));
            if (turned <= keep + 1e-9) {
                backward = !wasBackward;
                rotation = host::normalizedAngle(rotation + host::pi);
            }
        }
        const AcGeVector2d newX = host::direction(rotation);
        const double rise = up.dotProduct(newX.perpVector());
        m.rotation = rotation;
        if (planar.isUniform) {
            m.height *= planar.scale;
        } else {
            const double growth = std::fabs(rise);
            m.height *= growth;
            m.widthFactor = along.length() / growth;
            m.oblique = std::atan((backward ? -1.0 : 1.0) * up.dotProduct(newX) / growth);
        }
        m.generation = static_cast<Adesk::UInt8>((m.generation & ~(backwards | upsideDown)) |
                                                 (backward ? backwards : 0) | (rise < 0.0 ? upsideDown : 0));
    }
    m.position = position;
    m.alignment = alignment;
    m.normal = planar.normal;
    m.thickness *= planar.normalScale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    points.append(position());
    if (!isDefaultAlignment()) {
        points.append(alignmentPoint());
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    const AcGeVector3d move = host::toObject(m.normal, offset);
    const bool betweenPoints = m.horizontal == AcDb::kTextAlign || m.horizontal == AcDb::kTextFit;
    bool moved = false;
    const Acad::ErrorStatus status = host::forGrips(indices, isDefaultAlignment() ? 1 : 2, [&](int index) {
        if (betweenPoints) {
            (index == 0 ? m.position : m.alignment) += move;
        } else if (!std::exchange(moved, true)) {
            m.position += move;
            m.alignment += move;
        }
    });
    return status == Acad::eOk && betweenPoints ? changed() : status;
}

Acad::ErrorStatus AcDbText::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker, const AcGePoint3d&,
                                              const AcGePoint3d&, const AcGeMatrix3d&,
                                              AcGePoint3dArray& points, AcDbIntArray&) const {
    if (mode == AcDb::kOsModeIns || mode == AcDb::kOsModeNode) {
        points.append(isDefaultAlignment() ? position() : alignmentPoint());
    }
    return Acad::eOk;
}

void AcDbText::drawText(AcGiWorldDraw* draw, const AcString& text) const {
    if (text.isEmpty()) {
        return;
    }
    if (m.thickness != 0.0) {
        draw->subEntityTraits().setThickness(m.thickness);
    }
    const AcGeVector3d along(std::cos(m.rotation), std::sin(m.rotation), 0.0);
    const AcGiTextStyle style = giTextStyle();
    const AcGePoint3d start = isDefaultAlignment() ? m.position : startPoint(boxOf(text, style));
    draw->geometry().text(host::toWorld(m.normal, start), m.normal, host::toWorld(m.normal, along),
                          text.kwszPtr(), -1, false, style);
}

bool AcDbText::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    drawText(draw, shownText());
    return true;
}
