// Images and wipeouts: orientation, clipping, drawing.
#include "host/db/entities/rasterimage.h"

#include "host/db/dbdatabase.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/transforms.h"
#include "host/db/entities/wipeoutframes.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbRasterImage, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 2175, IMAGE,
                        ISM)
ACRX_DXF_DEFINE_MEMBERS(AcDbWipeout, AcDbRasterImage, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 127,
                        WIPEOUT, WipeOut)

AcDbObjectId AcDbRasterImage::imageDefId() const {
    assertReadEnabled();
    return m.definition;
}
Acad::ErrorStatus AcDbRasterImage::setImageDefId(AcDbObjectId definition) {
    const auto* found = host::peek<AcDbRasterImageDef>(definition);
    if (found == nullptr) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.definition = definition;
    return setImageSize(found->size());
}

void AcDbRasterImage::getOrientation(AcGePoint3d& origin, AcGeVector3d& u, AcGeVector3d& v) const {
    assertReadEnabled();
    origin = m.origin;
    u = m.u * m.width;
    v = m.v * m.height;
}
Acad::ErrorStatus AcDbRasterImage::setOrientation(const AcGePoint3d& origin, const AcGeVector3d& u,
                                                  const AcGeVector3d& v) {
    if (u.crossProduct(v).isZeroLength()) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.origin = origin;
    m.u = u / m.width;
    m.v = v / m.height;
    return Acad::eOk;
}
AcGeVector2d AcDbRasterImage::imageSize() const {
    assertReadEnabled();
    return {m.width, m.height};
}
Acad::ErrorStatus AcDbRasterImage::setImageSize(const AcGeVector2d& pixels) {
    if (!(pixels.x > 0.0 && pixels.y > 0.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.u *= m.width / pixels.x;
    m.v *= m.height / pixels.y;
    m.width = pixels.x;
    m.height = pixels.y;
    return m.clipped ? Acad::eOk : setClipBoundaryToWholeImage();
}

bool AcDbRasterImage::isClipped() const {
    assertReadEnabled();
    return m.clipped;
}
AcDbRasterImage::ClipBoundaryType AcDbRasterImage::clipBoundaryType() const {
    assertReadEnabled();
    return static_cast<ClipBoundaryType>(m.clipType);
}
const std::vector<AcGePoint2d>& AcDbRasterImage::clipBoundary() const {
    assertReadEnabled();
    return m.clip;
}
Acad::ErrorStatus AcDbRasterImage::setClipBoundary(ClipBoundaryType type, const AcGePoint2dArray& points) {
    const bool rectangle = type == kRect && points.length() == 2;
    const bool polygon = type == kPoly && points.length() >= 4 && points.first().isEqualTo(points.last());
    if (!rectangle && !polygon) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.clipType = static_cast<Adesk::Int16>(type);
    m.clip.assign(points.begin(), points.end());
    m.clipped = true;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbRasterImage::setClipBoundaryToWholeImage() {
    assertWriteEnabled();
    m.clipType = host::RasterImageData::rectangle;
    m.clip = {{-0.5, -0.5}, {m.width - 0.5, m.height - 0.5}};
    m.clipped = false;
    return Acad::eOk;
}

bool AcDbRasterImage::isDisplayOptSet(ImageDisplayOpt option) const {
    assertReadEnabled();
    return (m.options & option) != 0;
}
Acad::ErrorStatus AcDbRasterImage::setDisplayOpt(ImageDisplayOpt option, bool on) {
    assertWriteEnabled();
    m.options = static_cast<Adesk::Int16>(on ? m.options | option : m.options & ~option);
    return Acad::eOk;
}
Adesk::Int16 AcDbRasterImage::brightness() const {
    assertReadEnabled();
    return m.brightness;
}
Adesk::Int16 AcDbRasterImage::contrast() const {
    assertReadEnabled();
    return m.contrast;
}
Adesk::Int16 AcDbRasterImage::fade() const {
    assertReadEnabled();
    return m.fade;
}

namespace {

Acad::ErrorStatus setPercent(AcDbRasterImage& image, Adesk::Int16& field, Adesk::Int16 percent) {
    if (percent < 0 || percent > 100) {
        return Acad::eInvalidInput;
    }
    image.assertWriteEnabled();
    field = percent;
    return Acad::eOk;
}

} // namespace

Acad::ErrorStatus AcDbRasterImage::setBrightness(Adesk::Int16 percent) {
    return setPercent(*this, m.brightness, percent);
}
Acad::ErrorStatus AcDbRasterImage::setContrast(Adesk::Int16 percent) {
    return setPercent(*this, m.contrast, percent);
}
Acad::ErrorStatus AcDbRasterImage::setFade(Adesk::Int16 percent) {
    return setPercent(*this, m.fade, percent);
}

AcGeMatrix3d AcDbRasterImage::pixelToModel() const {
    // The upper left corner of the image lies half a pixel left of and above the middle of its first pixel.
    AcGeMatrix3d matrix;
    const AcGePoint3d first = m.origin + m.v * (m.height - 0.5) + m.u * 0.5;
    matrix.setCoordSystem(first, m.u, -m.v, host::unitNormal(m.u.crossProduct(m.v)));
    return matrix;
}

std::vector<AcGePoint2d> AcDbRasterImage::clipPolygon() const {
    std::vector<AcGePoint2d> points = m.clip;
    const bool rectangle = m.clipType == host::RasterImageData::rectangle && points.size() == 2;
    if (!m.clipped || m.clipsInside || points.size() < 2) {
        points = {{-0.5, -0.5}, {m.width - 0.5, m.height - 0.5}};
    }
    if (rectangle || points.size() == 2) {
        const AcGePoint2d a = points[0];
        const AcGePoint2d b = points[1];
        return {a, {b.x, a.y}, b, {a.x, b.y}};
    }
    if (points.front().isEqualTo(points.back())) {
        points.pop_back();
    }
    return points;
}

std::vector<AcGePoint3d> AcDbRasterImage::outline() const {
    assertReadEnabled();
    const AcGeMatrix3d toModel = pixelToModel();
    std::vector<AcGePoint3d> corners;
    for (const AcGePoint2d& point : clipPolygon()) {
        corners.push_back(toModel * host::to3d(point));
    }
    return corners;
}

bool AcDbRasterImage::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    const std::vector<AcGePoint3d> corners = outline();
    for (std::size_t index = 0; index < corners.size(); ++index) {
        pieces.push_back(host::CurvePiece::line(corners[index], corners[(index + 1) % corners.size()]));
    }
    return true;
}

Acad::ErrorStatus AcDbRasterImage::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(m.origin, subEcsNormal());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::subTransformBy(const AcGeMatrix3d& transform) {
    const AcGeVector3d u = transform * m.u;
    const AcGeVector3d v = transform * m.v;
    if (!(u.crossProduct(v).length() > 1e-20 * u.length() * v.length())) {
        return Acad::eDegenerateGeometry;
    }
    assertWriteEnabled();
    m.origin = transform * m.origin;
    m.u = u;
    m.v = v;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                    AcDbIntArray&) const {
    for (const AcGePoint3d& corner : outline()) {
        points.append(corner);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                       const AcGeVector3d& offset) {
    std::vector<AcGePoint2d> corners = clipPolygon();
    const AcGeMatrix3d toModel = pixelToModel();
    const AcGeVector2d move = host::to2d(toModel.inverse() * offset);
    const Acad::ErrorStatus status =
        host::forGrips(indices, static_cast<int>(corners.size()),
                       [&](int index) { corners[static_cast<std::size_t>(index)] += move; });
    if (status != Acad::eOk || indices.isEmpty()) {
        return status;
    }
    if (indices.length() == std::ssize(corners)) {
        return subTransformBy(AcGeMatrix3d::translation(offset));
    }
    assertWriteEnabled();
    corners.push_back(corners.front());
    m.clip = std::move(corners);
    m.clipType = host::RasterImageData::polygon;
    m.clipped = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                     const AcGePoint3d& pick, const AcGePoint3d& last,
                                                     const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                                     AcDbIntArray&) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeIns) {
        points.append(m.origin);
        return Acad::eOk;
    }
    std::vector<host::CurvePiece> pieces;
    curvePieces(pieces);
    host::addOsnapPoints(pieces, mode, pick, last, view, points);
    return Acad::eOk;
}

bool AcDbRasterImage::subWorldDraw(AcGiWorldDraw* draw) {
    std::vector<AcGePoint3d> corners = outline();
    if (corners.empty()) {
        return true;
    }
    corners.push_back(corners.front());
    draw->geometry().polyline(static_cast<Adesk::UInt32>(corners.size()), corners.data());
    const auto* definition = host::peek<AcDbRasterImageDef>(m.definition);
    if (definition == nullptr || definition->sourceFileName().isEmpty()) {
        return true;
    }
    // The name of the file along the lower edge, as high as fits the width.
    const AcGeVector3d along = m.u * m.width;
    const AcGeVector3d up = m.v * m.height;
    const auto length = static_cast<double>(definition->sourceFileName().length());
    const double height = std::min(along.length() * 0.9 / length, up.length() / 10.0);
    const AcGePoint3d at = m.origin + along * 0.05 + up.normal() * height;
    draw->geometry().text(at, subEcsNormal(), along.normal(), height, 1.0, 0.0,
                          definition->sourceFileName().kwszPtr());
    return true;
}

// Wipeouts.

Acad::ErrorStatus AcDbWipeout::setOutline(const AcGePoint3dArray& corners) {
    host::Box2d box;
    for (const AcGePoint3d& corner : corners) {
        box.add(host::to2d(corner));
    }
    const AcGeVector2d size = box.maximum - box.minimum;
    const double side = std::max(size.x, size.y);
    if (corners.length() < 3 || !(side > 0.0) || !std::isfinite(side)) {
        return Acad::eInvalidInput;
    }
    const AcGePoint3d origin(box.minimum.x, box.minimum.y, corners.first().z);
    if (const Acad::ErrorStatus status = setImageSize({1.0, 1.0}); status != Acad::eOk) {
        return status;
    }
    setOrientation(origin, {side, 0.0, 0.0}, {0.0, side, 0.0});
    AcGePoint2dArray clip;
    for (const AcGePoint3d& corner : corners) {
        clip.append({(corner.x - origin.x) / side - 0.5, 0.5 - (corner.y - origin.y) / side});
    }
    if (!clip.first().isEqualTo(clip.last())) {
        clip.append(AcGePoint2d(clip.first()));
    }
    return setClipBoundary(kPoly, clip);
}

bool AcDbWipeout::subWorldDraw(AcGiWorldDraw* draw) {
    const std::vector<AcGePoint3d> corners = outline();
    if (corners.size() < 3) {
        return true;
    }
    const auto count = static_cast<Adesk::UInt32>(corners.size());
    draw->subEntityTraits().setTrueColor(AcCmEntityColor(AcCmEntityColor::kNone)); // the background's
    draw->geometry().polyPolygon(1, &count, corners.data());
    const int frames = database() != nullptr ? host::wipeoutFrames(*database()) : 0;
    if (frames == 1 ||
        (frames == 2 && (draw->context() == nullptr || !draw->context()->isPlotGeneration()))) {
        std::vector<AcGePoint3d> frame = corners;
        frame.push_back(corners.front());
        draw->subEntityTraits().setTrueColor(entityColor());
        draw->geometry().polyline(count + 1, frame.data());
    }
    return true;
}
