// NURBS curves of the plane.
#include "host/ge/nurb2d.h"

#include <array>

AcGePoint3dArray AcGeNurbCurve2d::raised(const AcGePoint2dArray& points) {
    AcGePoint3dArray result;
    for (const AcGePoint2d& point : points)
        result.append({point.x, point.y, 0.0});
    return result;
}

AcGeNurbCurve2d& AcGeNurbCurve2d::transformBy(const AcGeMatrix2d& matrix) {
    for (int i = 0; i < numControlPoints(); ++i)
        setControlPointAt(i, matrix * controlPointAt(i));
    return *this;
}

AcGePoint2d AcGeNurbCurve2d::evaluate(double parameter, int derivativeCount,
                                      AcGeVector2d* derivatives) const {
    std::vector<AcGeVector3d> inSpace(static_cast<std::size_t>(std::max(derivativeCount, 0)));
    const AcGePoint3d point = m_space.evaluate(parameter, derivativeCount, inSpace.data());
    for (std::size_t i = 0; i < inSpace.size(); ++i)
        derivatives[i].set(inSpace[i].x, inSpace[i].y);
    return {point.x, point.y};
}
