// Multi-line texts: properties, columns, transformation.
#include "host/db/entities/mtext.h"

#include "host/db/dbdatabase.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbMText, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, MTEXT,
                        ObjectDBX Classes)

namespace {

constexpr Adesk::Int32 fillWithColor = 1;
constexpr Adesk::Int32 fillWithWindowColor = 2;
constexpr Adesk::Int32 withFrame = 16;

bool isLength(double value) {
    return value >= 0.0 && std::isfinite(value);
}

} // namespace

AcGePoint3d AcDbMText::location() const {
    assertReadEnabled();
    return m.location;
}
Acad::ErrorStatus AcDbMText::setLocation(const AcGePoint3d& point) {
    if (!host::isFinite(point)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.location = point;
    return Acad::eOk;
}

AcGeVector3d AcDbMText::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbMText::setNormal(const AcGeVector3d& normal) {
    if (!host::isFinite(normal) || normal.isZeroLength()) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    const double angle = rotation();
    m.normal = host::unitNormal(normal);
    return setRotation(angle);
}

AcGeVector3d AcDbMText::direction() const {
    assertReadEnabled();
    return m.direction;
}
Acad::ErrorStatus AcDbMText::setDirection(const AcGeVector3d& direction) {
    const AcGeVector3d flat = direction - m.normal * direction.dotProduct(m.normal);
    if (!host::isFinite(direction) || !(flat.length() > 1e-12 * direction.length())) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.direction = host::unitNormal(flat);
    return Acad::eOk;
}

double AcDbMText::rotation() const {
    assertReadEnabled();
    const AcGeVector3d along = host::toObject(m.normal, m.direction);
    return host::normalizedAngle(std::atan2(along.y, along.x));
}
Acad::ErrorStatus AcDbMText::setRotation(double angle) {
    if (!std::isfinite(angle)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.direction = host::toWorld(m.normal, host::to3d(host::direction(angle)));
    return Acad::eOk;
}

double AcDbMText::width() const {
    assertReadEnabled();
    return m.width;
}
Acad::ErrorStatus AcDbMText::setWidth(double width) {
    if (!isLength(width)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.width = width;
    return Acad::eOk;
}
double AcDbMText::height() const {
    assertReadEnabled();
    return m.definedHeight;
}
Acad::ErrorStatus AcDbMText::setHeight(double height) {
    if (!isLength(height)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.definedHeight = height;
    return Acad::eOk;
}

AcDbObjectId AcDbMText::textStyle() const {
    assertReadEnabled();
    return m.style;
}
Acad::ErrorStatus AcDbMText::setTextStyle(AcDbObjectId style) {
    if (host::peek<AcDbTextStyleTableRecord>(style) == nullptr) {
        return Acad::eInvalidTextStyle;
    }
    if (database() != nullptr && style.database() != database()) {
        return Acad::eWrongDatabase;
    }
    assertWriteEnabled();
    m.style = style;
    return Acad::eOk;
}

double AcDbMText::textHeight() const {
    assertReadEnabled();
    return m.textHeight;
}
Acad::ErrorStatus AcDbMText::setTextHeight(double height) {
    if (!(height > 0.0) || !std::isfinite(height)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.textHeight = height;
    return Acad::eOk;
}

AcDbMText::AttachmentPoint AcDbMText::attachment() const {
    assertReadEnabled();
    return static_cast<AttachmentPoint>(m.attachment);
}
Acad::ErrorStatus AcDbMText::setAttachment(AttachmentPoint point) {
    if (point < kTopLeft || point > kBottomRight) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.attachment = static_cast<Adesk::Int16>(point);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setAttachmentMovingLocation(AttachmentPoint point) {
    const host::MTextLayout before = layout();
    if (const Acad::ErrorStatus status = setAttachment(point); status != Acad::eOk) {
        return status;
    }
    const host::MTextLayout after = layout();
    m.location = textToWorld() * AcGePoint3d(before.lowerLeft.x - after.lowerLeft.x,
                                             before.upperRight.y - after.upperRight.y, 0.0);
    return Acad::eOk;
}

AcDbMText::FlowDirection AcDbMText::flowDirection() const {
    assertReadEnabled();
    return static_cast<FlowDirection>(m.flow);
}
Acad::ErrorStatus AcDbMText::setFlowDirection(FlowDirection direction) {
    if (direction < kLtoR || direction > kByStyle) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.flow = static_cast<Adesk::Int16>(direction);
    return Acad::eOk;
}

ACHAR* AcDbMText::contents() const {
    assertReadEnabled();
    ACHAR* copy = nullptr;
    acutNewString(m.contents.kwszPtr(), copy);
    return copy;
}
Acad::ErrorStatus AcDbMText::contents(AcString& text) const {
    assertReadEnabled();
    text = m.contents;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setContents(const ACHAR* text) {
    if (text == nullptr) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.contents = text;
    return Acad::eOk;
}
ACHAR* AcDbMText::text() const {
    AcString plain;
    text(plain);
    ACHAR* copy = nullptr;
    acutNewString(plain.kwszPtr(), copy);
    return copy;
}
Acad::ErrorStatus AcDbMText::text(AcString& text) const {
    assertReadEnabled();
    text = host::plainMText(m.contents.view()).c_str();
    return Acad::eOk;
}

AcDb::LineSpacingStyle AcDbMText::lineSpacingStyle() const {
    assertReadEnabled();
    return static_cast<AcDb::LineSpacingStyle>(m.spacingStyle);
}
Acad::ErrorStatus AcDbMText::setLineSpacingStyle(AcDb::LineSpacingStyle style) {
    if (style != AcDb::kAtLeast && style != AcDb::kExactly) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.spacingStyle = static_cast<Adesk::Int16>(style);
    return Acad::eOk;
}
double AcDbMText::lineSpacingFactor() const {
    assertReadEnabled();
    return m.spacingFactor;
}
Acad::ErrorStatus AcDbMText::setLineSpacingFactor(double factor) {
    if (!(factor >= 0.25 && factor <= 4.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.spacingFactor = factor;
    return Acad::eOk;
}

// Background.

bool AcDbMText::backgroundFillOn() const {
    assertReadEnabled();
    return (m.fill & (fillWithColor | fillWithWindowColor)) != 0;
}
Acad::ErrorStatus AcDbMText::setBackgroundFill(bool on) {
    assertWriteEnabled();
    m.fill = (m.fill & withFrame) | (!on ? 0 : (m.fill & 3) != 0 ? m.fill & 3 : fillWithColor);
    return Acad::eOk;
}
bool AcDbMText::useBackgroundColorOn() const {
    assertReadEnabled();
    return (m.fill & fillWithWindowColor) != 0;
}
Acad::ErrorStatus AcDbMText::setUseBackgroundColor(bool on) {
    assertWriteEnabled();
    // The window's colour is a kind of filling: files have both bits.
    m.fill = (m.fill & withFrame) | (on ? fillWithColor | fillWithWindowColor : m.fill & fillWithColor);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::getBackgroundFillColor(AcCmColor& color) const {
    assertReadEnabled();
    AcCmEntityColor own;
    own.setColor(m.fillColor);
    color = AcCmColor(own);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setBackgroundFillColor(const AcCmColor& color) {
    assertWriteEnabled();
    m.fillColor = color.color();
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::getBackgroundScaleFactor(double& factor) const {
    assertReadEnabled();
    factor = m.fillScale;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setBackgroundScaleFactor(double factor) {
    if (!(factor >= 1.0 && factor <= 5.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.fillScale = factor;
    return Acad::eOk;
}
bool AcDbMText::showBorders() const {
    assertReadEnabled();
    return (m.fill & withFrame) != 0;
}
Acad::ErrorStatus AcDbMText::setShowBorders(bool on) {
    assertWriteEnabled();
    m.fill = on ? m.fill | withFrame : m.fill & ~withFrame;
    return Acad::eOk;
}

// Columns.

Acad::ErrorStatus AcDbMText::getColumnType(ColumnType& type) const {
    assertReadEnabled();
    type = static_cast<ColumnType>(m.columns.type);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setColumnType(ColumnType type) {
    if (type < kNoColumns || type > kDynamicColumns) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.columns.type = static_cast<Adesk::Int16>(type);
    mHasColumnData = type != kNoColumns;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::getColumnCount(int& count) const {
    assertReadEnabled();
    count = m.columns.count;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setColumnCount(int count) {
    if (count < 0 || count > 1000) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.columns.count = static_cast<Adesk::Int16>(count);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::getColumnWidth(double& width) const {
    assertReadEnabled();
    width = m.columns.width;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setColumnWidth(double width) {
    if (!(width > 0.0) || !std::isfinite(width)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.columns.width = width;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::getColumnGutterWidth(double& width) const {
    assertReadEnabled();
    width = m.columns.gutter;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setColumnGutterWidth(double width) {
    if (!isLength(width)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.columns.gutter = width;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::getColumnHeight(int column, double& height) const {
    assertReadEnabled();
    const std::vector<double>& heights = m.columns.heights;
    if (column < 0 || column >= std::max<int>(m.columns.count, static_cast<int>(heights.size()))) {
        return Acad::eInvalidIndex;
    }
    const auto index = static_cast<std::size_t>(column);
    height = index < heights.size() ? heights[index] : m.columns.definedHeight;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setColumnHeight(int column, double height) {
    if (column < 0 || column >= 1000 || !isLength(height)) {
        return column < 0 || column >= 1000 ? Acad::eInvalidIndex : Acad::eInvalidInput;
    }
    assertWriteEnabled();
    const auto index = static_cast<std::size_t>(column);
    if (index >= m.columns.heights.size()) {
        m.columns.heights.resize(index + 1, m.columns.definedHeight);
    }
    m.columns.heights[index] = height;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::getColumnAutoHeight(bool& automatic) const {
    assertReadEnabled();
    automatic = m.columns.autoHeight;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setColumnAutoHeight(bool automatic) {
    assertWriteEnabled();
    m.columns.autoHeight = automatic;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::getColumnFlowReversed(bool& reversed) const {
    assertReadEnabled();
    reversed = m.columns.reversed;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setColumnFlowReversed(bool reversed) {
    assertWriteEnabled();
    m.columns.reversed = reversed;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setDynamicColumns(double width, double gutter, bool autoHeight) {
    if (!(width > 0.0) || !isLength(gutter)) {
        return Acad::eInvalidInput;
    }
    setColumnType(kDynamicColumns);
    m.columns.width = width;
    m.columns.gutter = gutter;
    m.columns.autoHeight = autoHeight;
    m.columns.definedHeight = m.definedHeight;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setStaticColumns(double width, double gutter, int count) {
    if (!(width > 0.0) || !isLength(gutter) || count < 1 || count > 1000) {
        return Acad::eInvalidInput;
    }
    setColumnType(kStaticColumns);
    m.columns.width = width;
    m.columns.gutter = gutter;
    m.columns.count = static_cast<Adesk::Int16>(count);
    m.columns.definedHeight = m.definedHeight;
    return Acad::eOk;
}

// Place.

void AcDbMText::subBecameResident() {
    if (m.style.isNull()) {
        m.style = database()->textstyle();
    }
}

void AcDbMText::subSetDatabaseDefaults(AcDbDatabase* database) {
    m.style = database->textstyle();
    if (m.textHeight == 0.0) {
        m.textHeight = database->textsize();
    }
}

Acad::ErrorStatus AcDbMText::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(m.location, m.normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subTransformBy(const AcGeMatrix3d& transform) {
    const AcGeVector3d x = transform * m.direction;
    const AcGeVector3d y = transform * m.normal.crossProduct(m.direction);
    const AcGeVector3d normal = x.crossProduct(y);
    const double along = x.length();
    const double up = along > 0.0 ? normal.length() / along : 0.0; // what of y stands across x
    if (!(up > 0.0) || !std::isfinite(up)) {
        return Acad::eDegenerateGeometry;
    }
    assertWriteEnabled();
    const bool turns = !(x == m.direction) || !(y == m.normal.crossProduct(m.direction));
    m.location = transform * m.location;
    if (!turns) {
        return Acad::eOk;
    }
    m.direction = x / along;
    m.normal = host::unitNormal(normal);
    const auto factor = [](double size) { return std::fabs(size - 1.0) <= 1e-14 ? 1.0 : size; };
    // Characters keep their proportions; a scale by axis widens the frame and raises the text.
    m.textHeight *= factor(up);
    m.width *= factor(along);
    m.definedHeight *= factor(up);
    m.columns.width *= factor(along);
    m.columns.gutter *= factor(along);
    m.columns.totalWidth *= factor(along);
    m.columns.definedHeight *= factor(up);
    m.columns.totalHeight *= factor(up);
    for (double& height : m.columns.heights) {
        height *= factor(up);
    }
    if (factor(up) != 1.0) {
        m.contents = host::scaledMText(m.contents.view(), factor(up)).c_str();
    }
    return Acad::eOk;
}
