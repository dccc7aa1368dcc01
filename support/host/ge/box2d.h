// An axis-parallel box in the plane. A default box is empty and grows by what is added.
#pragma once

#include "host/ge/point2d.h"

#include <algorithm>
#include <limits>

namespace host {

struct Box2d {
    AcGePoint2d minimum{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
    AcGePoint2d maximum{-std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};

    bool isEmpty() const { return !(minimum.x <= maximum.x && minimum.y <= maximum.y); }
    AcGePoint2d center() const { return {0.5 * (minimum.x + maximum.x), 0.5 * (minimum.y + maximum.y)}; }
    double width() const { return maximum.x - minimum.x; }
    double height() const { return maximum.y - minimum.y; }
    void add(const AcGePoint2d& point) {
        minimum.set(std::min(minimum.x, point.x), std::min(minimum.y, point.y));
        maximum.set(std::max(maximum.x, point.x), std::max(maximum.y, point.y));
    }
    void add(const Box2d& other) {
        minimum.set(std::min(minimum.x, other.minimum.x), std::min(minimum.y, other.minimum.y));
        maximum.set(std::max(maximum.x, other.maximum.x), std::max(maximum.y, other.maximum.y));
    }
    Box2d grownBy(double margin) const {
        return {{minimum.x - margin, minimum.y - margin}, {maximum.x + margin, maximum.y + margin}};
    }
    bool contains(const AcGePoint2d& point) const {
        return point.x >= minimum.x && point.x <= maximum.x && point.y >= minimum.y && point.y <= maximum.y;
    }
    bool touches(const Box2d& other) const {
        return minimum.x <= other.maximum.x && other.minimum.x <= maximum.x && minimum.y <= other.maximum.y &&
               other.minimum.y <= maximum.y;
    }
    // 0 inside.
    double distanceSqrdTo(const AcGePoint2d& point) const {
        const double dx = std::max({minimum.x - point.x, 0.0, point.x - maximum.x});
        const double dy = std::max({minimum.y - point.y, 0.0, point.y - maximum.y});
        return dx * dx + dy * dy;
    }
};

} // namespace host
