#include "host/db/entities/pointmark.h"

#include "host/db/dbdatabase.h"

namespace host {

PointMark PointMark::of(const AcDbDatabase* database) {
    PointMark mark;
    if (database != nullptr) {
        static const HeaderIndex mode = *findHeaderVariable("PDMODE");
        static const HeaderIndex size = *findHeaderVariable("PDSIZE");
        mark.mode = std::get<Adesk::Int16>(database->variable(mode));
        mark.size = std::get<double>(database->variable(size));
    }
    return mark;
}

double PointMark::sizeIn(double viewHeight) const {
    constexpr double usual = 5.0; // percent
    if (size > 0.0) {
        return size;
    }
    return viewHeight * (size < 0.0 ? -size : usual) / 100.0;
}

void PointMark::draw(const AcGiGeometry& geometry, const AcGePoint3d& place, double drawnSize) const {
    const int figure = mode & 15;
    if (figure == 0 || !(drawnSize > 0.0)) {
        geometry.polypoint(1, &place);
    }
    if (!(drawnSize > 0.0)) {
        return;
    }
    const double half = drawnSize / 2.0;
    const auto at = [&](double x, double y) { return place + AcGeVector3d(x, y, 0.0); };
    const auto line = [&](double fromX, double fromY, double toX, double toY) {
        const AcGePoint3d points[] = {at(fromX, fromY), at(toX, toY)};
        geometry.polyline(2, points);
    };
    if (figure == 2) {
        line(-drawnSize, 0.0, drawnSize, 0.0);
        line(0.0, -drawnSize, 0.0, drawnSize);
    } else if (figure == 3) {
        line(-drawnSize, -drawnSize, drawnSize, drawnSize);
        line(-drawnSize, drawnSize, drawnSize, -drawnSize);
    } else if (figure == 4) {
        line(0.0, 0.0, 0.0, half);
    }
    if ((mode & 32) != 0) {
        geometry.circle(place, half, AcGeVector3d::kZAxis);
    }
    if ((mode & 64) != 0) {
        const AcGePoint3d corners[] = {at(-half, -half), at(half, -half), at(half, half), at(-half, half),
                                       at(-half, -half)};
        geometry.polyline(5, corners);
    }
}

} // namespace host
