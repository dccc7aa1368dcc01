// AcGeInterval: a range of parameters, open or closed at either end.
#pragma once

#include "host/ge/tolerance.h"

#include <algorithm>
#include <cmath>

class AcGeInterval {
public:
    // Unbounded on both sides.
    explicit AcGeInterval(double tolerance = 1e-12) : m_tolerance(tolerance) {}
    AcGeInterval(double lower, double upper, double tolerance = 1e-12)
        : m_lower(lower), m_upper(upper), m_tolerance(tolerance), m_boundedBelow(true), m_boundedAbove(true) {
    }
    // Bounded on one side only.
    AcGeInterval(bool boundedBelow, double bound, double tolerance = 1e-12) : m_tolerance(tolerance) {
        boundedBelow ? setLower(bound) : setUpper(bound);
    }

    double lowerBound() const { return m_lower; }
    double upperBound() const { return m_upper; }
    double element() const { return m_boundedBelow ? m_lower : m_boundedAbove ? m_upper : 0.0; }
    void getBounds(double& lower, double& upper) const {
        lower = m_lower;
        upper = m_upper;
    }
    double length() const { return isBounded() ? m_upper - m_lower : -1.0; }
    double tolerance() const { return m_tolerance; }
    AcGeInterval& set(double lower, double upper) {
        setLower(lower);
        return setUpper(upper);
    }
    AcGeInterval& set() { return *this = AcGeInterval(m_tolerance); }
    AcGeInterval& setLower(double bound) {
        m_lower = bound;
        m_boundedBelow = true;
        return *this;
    }
    AcGeInterval& setUpper(double bound) {
        m_upper = bound;
        m_boundedAbove = true;
        return *this;
    }
    AcGeInterval& setTolerance(double tolerance) {
        m_tolerance = tolerance;
        return *this;
    }

    bool isBounded() const { return m_boundedBelow && m_boundedAbove; }
    bool isBoundedAbove() const { return m_boundedAbove; }
    bool isBoundedBelow() const { return m_boundedBelow; }
    bool isUnBounded() const { return !isBounded(); }
    bool isSingleton() const { return isBounded() && std::fabs(m_upper - m_lower) <= m_tolerance; }
    bool contains(double value) const {
        return (!m_boundedBelow || value >= m_lower - m_tolerance) &&
               (!m_boundedAbove || value <= m_upper + m_tolerance);
    }
    bool contains(const AcGeInterval& other) const {
        return (!m_boundedBelow || (other.m_boundedBelow && other.m_lower >= m_lower - m_tolerance)) &&
               (!m_boundedAbove || (other.m_boundedAbove && other.m_upper <= m_upper + m_tolerance));
    }
    bool isDisjoint(const AcGeInterval& other) const {
        return (m_boundedAbove && other.m_boundedBelow && m_upper < other.m_lower - m_tolerance) ||
               (m_boundedBelow && other.m_boundedAbove && m_lower > other.m_upper + m_tolerance);
    }
    // The nearest value inside.
    double clamp(double value) const {
        if (m_boundedBelow)
            value = std::max(value, m_lower);
        return m_boundedAbove ? std::min(value, m_upper) : value;
    }
    bool operator==(const AcGeInterval& other) const {
        return m_boundedBelow == other.m_boundedBelow && m_boundedAbove == other.m_boundedAbove &&
               (!m_boundedBelow || std::fabs(m_lower - other.m_lower) <= m_tolerance) &&
               (!m_boundedAbove || std::fabs(m_upper - other.m_upper) <= m_tolerance);
    }

private:
    double m_lower = 0.0;
    double m_upper = 0.0;
    double m_tolerance;
    bool m_boundedBelow = false;
    bool m_boundedAbove = false;
};
