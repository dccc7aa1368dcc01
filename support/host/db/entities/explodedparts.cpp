// What entities come to under a scale that differs by axis.
#include "host/db/entities/explodedparts.h"

#include "host/db/dbents.h"
#include "host/db/entities/transforms.h"

namespace host {
namespace {

std::unique_ptr<AcDbEntity> circularEntity(const AcDbEntity& source, const CurvePiece& piece) {
    const AcGeVector3d normal = piece.normal().normal();
    if (piece.isFull()) {
        auto circle = newLike<AcDbCircle>(source);
        circle->setNormal(normal);
        circle->setCenter(piece.origin);
        circle->setRadius(piece.radius());
        return circle;
    }
    auto arc = newLike<AcDbArc>(source);
    const double turn = to2d(toObject(normal, piece.u)).angle();
    arc->setNormal(normal);
    arc->setCenter(piece.origin);
    arc->setRadius(piece.radius());
    arc->setStartAngle(normalizedAngle(turn + piece.from));
    arc->setEndAngle(normalizedAngle(turn + piece.to));
    return arc;
}

std::unique_ptr<AcDbEntity> splineEntity(const AcDbEntity& source, const BezierCurve& curve) {
    const auto count = static_cast<int>(curve.points().size());
    AcGePoint3dArray points;
    AcGeDoubleArray weights;
    AcGeDoubleArray knots;
    for (const WeightedPoint& point : curve.points()) {
        points.append(point.point());
        weights.append(point.w);
    }
    for (int index = 0; index < 2 * count; ++index) {
        knots.append(index < count ? 0.0 : 1.0);
    }
    if (!curve.isRational()) {
        weights.setLogicalLength(0);
    }
    auto spline = std::make_unique<AcDbSpline>(curve.degree(), curve.isRational(), false, false, points,
                                               knots, weights);
    spline->setPropertiesFrom(&source);
    return spline;
}

Acad::ErrorStatus pieceParts(const AcDbEntity& entity, const AcGeMatrix3d& transform,
                             std::vector<std::unique_ptr<AcDbEntity>>& parts) {
    std::vector<CurvePiece> pieces;
    if (!entity.isKindOf(AcDbCurve::desc()) || !entity.curvePieces(pieces)) {
        return Acad::eCannotScaleNonUniformly;
    }
    for (const CurvePiece& piece : pieces) {
        const CurvePiece moved = piece.transformed(transform);
        if (moved.isBezier()) {
            parts.push_back(splineEntity(entity, moved.bezier));
        } else if (!moved.isArc()) {
            auto line = newLike<AcDbLine>(entity);
            line->setStartPoint(moved.start());
            line->setEndPoint(moved.end());
            parts.push_back(std::move(line));
        } else {
            std::unique_ptr<AcDbEntity> arc =
                moved.isCircular() ? circularEntity(entity, moved)
                                   : newEllipse(entity, moved, moved.normal(), AcGeMatrix3d::kIdentity);
            if (arc == nullptr) {
                return Acad::eDegenerateGeometry;
            }
            parts.push_back(std::move(arc));
        }
    }
    return Acad::eOk;
}

} // namespace

Acad::ErrorStatus transformedParts(const AcDbEntity& entity, const AcGeMatrix3d& transform,
                                   std::vector<std::unique_ptr<AcDbEntity>>& parts, int depth) {
    AcDbEntity* copy = nullptr;
    if (entity.getTransformedCopy(transform, copy) == Acad::eOk) {
        parts.emplace_back(copy);
        return Acad::eOk;
    }
    AcDbVoidPtrArray own;
    if (depth == 0 || entity.explode(own) != Acad::eOk) {
        return pieceParts(entity, transform, parts);
    }
    std::vector<std::unique_ptr<AcDbEntity>> pieces;
    for (void* piece : own) {
        pieces.emplace_back(static_cast<AcDbEntity*>(piece));
    }
    for (const std::unique_ptr<AcDbEntity>& piece : pieces) {
        if (const Acad::ErrorStatus inner = transformedParts(*piece, transform, parts, depth - 1);
            inner != Acad::eOk) {
            return inner;
        }
    }
    return Acad::eOk;
}

} // namespace host
