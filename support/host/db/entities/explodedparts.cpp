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

/// An elliptical piece as a polyline whose corners lie on it.
std::unique_ptr<AcDbEntity> ellipticalEntity(const AcDbEntity& source, const CurvePiece& piece) {
    constexpr double chordsPerTurn = 256.0;
    const AcGeVector3d normal = piece.normal().normal();
    auto polyline = newLike<AcDbPolyline>(source);
    const bool full = piece.isFull();
    const int count =
        std::max(2, static_cast<int>(std::ceil((piece.to - piece.from) / twoPi * chordsPerTurn)));
    polyline->setNormal(normal);
    for (int index = 0; index < count + (full ? 0 : 1); ++index) {
        const AcGePoint3d point =
            toObject(normal, piece.pointAt(piece.from + (piece.to - piece.from) * index / count));
        polyline->setElevation(point.z);
        polyline->addVertexAt(static_cast<unsigned int>(index), to2d(point));
    }
    polyline->setClosed(full);
    return polyline;
}

Acad::ErrorStatus pieceParts(const AcDbEntity& entity, const AcGeMatrix3d& transform,
                             std::vector<std::unique_ptr<AcDbEntity>>& parts) {
    std::vector<CurvePiece> pieces;
    if (!entity.isKindOf(AcDbCurve::desc()) || !entity.curvePieces(pieces)) {
        return Acad::eCannotScaleNonUniformly;
    }
    for (const CurvePiece& piece : pieces) {
        const CurvePiece moved = piece.transformed(transform);
        if (!moved.isArc()) {
            auto line = newLike<AcDbLine>(entity);
            line->setStartPoint(moved.start());
            line->setEndPoint(moved.end());
            parts.push_back(std::move(line));
        } else if (moved.normal().isZeroLength()) {
            return Acad::eDegenerateGeometry;
        } else {
            parts.push_back(moved.isCircular() ? circularEntity(entity, moved)
                                               : ellipticalEntity(entity, moved));
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
