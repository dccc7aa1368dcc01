// Coordinate systems, geometry and snapping of the C-style interface.
#include "host/db/dbents.h"
#include "host/ed/aced.h"
#include "host/ed/osnap.h"
#include "host/ed/question.h"
#include "host/ed/selection.h"
#include "host/ed/ucs.h"

#include <cmath>

namespace host {
namespace {

/// World to the coordinates that a buffer names; nothing for what names none.
std::optional<AcGeMatrix3d> worldTo(const resbuf& system) {
    constexpr int world = 0;
    constexpr int ucs = 1;
    constexpr int display = 2;
    constexpr int paperDisplay = 3;
    switch (system.restype) {
    case RTSHORT:
    case RTLONG: {
        const int number = system.restype == RTSHORT ? system.resval.rint : system.resval.rlong;
        if (number == ucs) {
            return ucsMatrix().inverse();
        }
        // The view is from above: its coordinates are the world's.
        return number == world || number == display || number == paperDisplay ? std::optional(AcGeMatrix3d())
                                                                              : std::nullopt;
    }
    case RTENAME: {
        AcDbObjectId id;
        acdbGetObjectId(id, system.resval.rlname);
        const auto* entity = peek<AcDbEntity>(id);
        if (entity == nullptr) {
            return std::nullopt;
        }
        const ReadAccess access(*entity);
        return entity->getEcs().inverse();
    }
    case RT3DPOINT:
    case RTPOINT: {
        const double* p = system.resval.rpoint;
        return AcGeMatrix3d::worldToPlane(AcGeVector3d(p[0], p[1], system.restype == RTPOINT ? 0.0 : p[2]));
    }
    default:
        return std::nullopt;
    }
}

bool transformPoint(const ads_point from, ads_point to, const AcGeMatrix3d& matrix, bool isVector) {
    if (isVector) {
        const AcGeVector3d moved = matrix * AcGeVector3d(from[0], from[1], from[2]);
        setPoint(to, AcGePoint3d(moved.x, moved.y, moved.z));
    } else {
        setPoint(to, matrix * asPoint3d(from));
    }
    return true;
}

AcGeMatrix3d ecsToWorld(const ads_point normal) {
    return AcGeMatrix3d::planeToWorld(AcGeVector3d(normal[0], normal[1], normal[2]));
}

} // namespace

AcGeMatrix3d ucsMatrix() {
    AcGeMatrix3d matrix;
    if (const AcDbDatabase* database = acdbCurDwg()) {
        const AcGeVector3d x = database->ucsxdir();
        const AcGeVector3d y = database->ucsydir();
        matrix.setCoordSystem(database->ucsorg(), x, y, x.crossProduct(y));
    }
    return matrix;
}

AcGePoint3d ucsToWorld(const AcGePoint3d& point) {
    return ucsMatrix() * point;
}

AcGePoint3d worldToUcs(const AcGePoint3d& point) {
    return ucsMatrix().inverse() * point;
}

} // namespace host

AcDbDatabase* acdbCurDwg() {
    AcDbHostApplicationServices* services = acdbHostApplicationServices();
    return services != nullptr ? services->workingDatabase() : nullptr;
}

int acedTrans(const ads_point point, const resbuf* from, const resbuf* to, int displacement,
              ads_point result) {
    if (from == nullptr || to == nullptr) {
        return RTERROR;
    }
    const std::optional<AcGeMatrix3d> fromWorld = host::worldTo(*from);
    const std::optional<AcGeMatrix3d> toWorld = host::worldTo(*to);
    if (!fromWorld || !toWorld) {
        return RTERROR;
    }
    host::transformPoint(point, result, *toWorld * fromWorld->inverse(), displacement != 0);
    return RTNORM;
}

bool acdbUcs2Wcs(const ads_point ucs, ads_point wcs, bool isVector) {
    return host::transformPoint(ucs, wcs, host::ucsMatrix(), isVector);
}
bool acdbWcs2Ucs(const ads_point wcs, ads_point ucs, bool isVector) {
    return host::transformPoint(wcs, ucs, host::ucsMatrix().inverse(), isVector);
}
bool acdbWcs2Ecs(const ads_point wcs, ads_point ecs, const ads_point normal, bool isVector) {
    return host::transformPoint(wcs, ecs, host::ecsToWorld(normal).inverse(), isVector);
}
bool acdbEcs2Wcs(const ads_point ecs, ads_point wcs, const ads_point normal, bool isVector) {
    return host::transformPoint(ecs, wcs, host::ecsToWorld(normal), isVector);
}
bool acdbUcs2Ecs(const ads_point ucs, ads_point ecs, const ads_point normal, bool isVector) {
    return host::transformPoint(ucs, ecs, host::ecsToWorld(normal).inverse() * host::ucsMatrix(), isVector);
}
bool acdbEcs2Ucs(const ads_point ecs, ads_point ucs, const ads_point normal, bool isVector) {
    return host::transformPoint(ecs, ucs, host::ucsMatrix().inverse() * host::ecsToWorld(normal), isVector);
}

Acad::ErrorStatus acdbGetCurUserCoordSystem(AcGeMatrix3d& matrix) {
    matrix = host::ucsMatrix();
    return acdbCurDwg() != nullptr ? Acad::eOk : Acad::eNoDatabase;
}

Acad::ErrorStatus acedGetCurrentUCS(AcGeMatrix3d& matrix) {
    return acdbGetCurUserCoordSystem(matrix);
}

Acad::ErrorStatus acedSetCurrentUCS(const AcGeMatrix3d& matrix) {
    if (acdbCurDwg() == nullptr) {
        return Acad::eNoDatabase;
    }
    AcGePoint3d origin;
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
    matrix.getCoordSystem(origin, x, y, z);
    return host::setCurrentUcs({origin, x, y, {}}) ? Acad::eOk : Acad::eInvalidInput;
}

ads_real acutDistance(const ads_point from, const ads_point to) {
    return host::asPoint3d(from).distanceTo(host::asPoint3d(to));
}

ads_real acutAngle(const ads_point from, const ads_point to) {
    return host::angleBetween(host::asPoint3d(from), host::asPoint3d(to));
}

void acutPolar(const ads_point from, ads_real angle, ads_real distance, ads_point result) {
    host::setPoint(result, host::polar(host::asPoint3d(from), angle, distance));
}

/// The point of the first line nearest to the second; they cross when it lies on both.
int acdbInters(const ads_point from1, const ads_point to1, const ads_point from2, const ads_point to2,
               int onSegments, ads_point result) {
    const AcGePoint3d p = host::asPoint3d(from1);
    const AcGePoint3d q = host::asPoint3d(from2);
    const AcGeVector3d u = host::asPoint3d(to1) - p;
    const AcGeVector3d v = host::asPoint3d(to2) - q;
    const AcGeVector3d w = q - p;
    const AcGeVector3d cross = u.crossProduct(v);
    const double area = cross.lengthSqrd();
    if (area <= 1e-20 * u.lengthSqrd() * v.lengthSqrd()) {
        return RTERROR;
    }
    const double s = w.crossProduct(v).dotProduct(cross) / area;
    const double t = w.crossProduct(u).dotProduct(cross) / area;
    const AcGePoint3d on1 = p + u * s;
    const double size = std::max({1.0, u.length(), v.length(), w.length()});
    if (on1.distanceTo(q + v * t) > 1e-9 * size) {
        return RTERROR;
    }
    constexpr double slack = 1e-10;
    const auto outside = [](double parameter) { return parameter < -slack || parameter > 1.0 + slack; };
    if (onSegments != 0 && (outside(s) || outside(t))) {
        return RTERROR;
    }
    host::setPoint(result, on1);
    return RTNORM;
}

int acedOsnap(const ads_point point, const ACHAR* modes, ads_point result) {
    const std::optional<int> parsed = modes != nullptr ? host::parseSnapModes(modes) : std::nullopt;
    if (!parsed) {
        return RTERROR;
    }
    const AcGePoint3d place = host::ucsToWorld(host::asPoint3d(point));
    const AcGePoint3d last = host::ucsToWorld(host::lastPoint());
    const std::optional<host::Snapped> snapped = host::snapPoint(place, *parsed, last);
    if (!snapped) {
        return RTERROR;
    }
    host::setPoint(result, host::worldToUcs(host::throughPointFilters(place, snapped, last, true)));
    return RTNORM;
}

int acedXformSS(const ads_name set, ads_matrix transform) {
    const host::PickSet* entities = host::pickSetOf(set);
    if (entities == nullptr) {
        return RTERROR;
    }
    AcGeMatrix3d matrix;
    for (unsigned row = 0; row < 4; ++row) {
        std::copy_n(transform[row], 4, matrix.entry[row]);
    }
    if (!matrix.isUniScaledOrtho()) {
        return RTERROR;
    }
    for (const AcDbObjectId id : entities->ids) {
        if (const host::Opened<AcDbEntity> entity(id, AcDb::kForWrite); entity) {
            entity->transformBy(matrix);
        }
    }
    return RTNORM;
}
