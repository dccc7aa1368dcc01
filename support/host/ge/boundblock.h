// AcGeBoundBlock2d and AcGeBoundBlock3d: axis-parallel boxes around curves.
#pragma once

#include "host/ge/point3d.h"

#include <limits>

namespace host {

template <class Point, unsigned int dimension>
class BoundBlock {
public:
    // Empty; grows by what is added.
    BoundBlock() {
        for (unsigned int i = 0; i < dimension; ++i) {
            m_minimum[i] = std::numeric_limits<double>::infinity();
            m_maximum[i] = -m_minimum[i];
        }
    }
    // Around two points.
    BoundBlock(const Point& first, const Point& second) : m_minimum(first), m_maximum(first) {
        extend(second);
    }

    void getMinMaxPoints(Point& minimum, Point& maximum) const {
        minimum = m_minimum;
        maximum = m_maximum;
    }
    const Point& minPoint() const { return m_minimum; }
    const Point& maxPoint() const { return m_maximum; }
    BoundBlock& set(const Point& first, const Point& second) { return *this = BoundBlock(first, second); }
    BoundBlock& extend(const Point& point) {
        for (unsigned int i = 0; i < dimension; ++i) {
            m_minimum[i] = point[i] < m_minimum[i] ? point[i] : m_minimum[i];
            m_maximum[i] = point[i] > m_maximum[i] ? point[i] : m_maximum[i];
        }
        return *this;
    }
    BoundBlock& swell(double distance) {
        for (unsigned int i = 0; i < dimension; ++i) {
            m_minimum[i] -= distance;
            m_maximum[i] += distance;
        }
        return *this;
    }
    bool contains(const Point& point) const {
        for (unsigned int i = 0; i < dimension; ++i)
            if (point[i] < m_minimum[i] || point[i] > m_maximum[i])
                return false;
        return true;
    }
    bool isDisjoint(const BoundBlock& other) const {
        for (unsigned int i = 0; i < dimension; ++i)
            if (m_minimum[i] > other.m_maximum[i] || other.m_minimum[i] > m_maximum[i])
                return true;
        return false;
    }
    bool isBox() const { return true; }

private:
    Point m_minimum;
    Point m_maximum;
};

} // namespace host

class AcGeBoundBlock2d : public host::BoundBlock<AcGePoint2d, 2> {
public:
    using host::BoundBlock<AcGePoint2d, 2>::BoundBlock;
};
class AcGeBoundBlock3d : public host::BoundBlock<AcGePoint3d, 3> {
public:
    using host::BoundBlock<AcGePoint3d, 3>::BoundBlock;
};
