// The box around what is drawn.
#pragma once

#include "host/gi/primitives.h"

namespace host {

class ExtentsSink final : public PrimitiveSink {
public:
    bool isEmpty() const { return m_min.x > m_max.x; }
    const AcGePoint3d& min() const { return m_min; }
    const AcGePoint3d& max() const { return m_max; }

    void polyline(std::span<const AcGePoint3d> points, const Pen& pen) override;
    void area(const Area& area, const Pen& pen) override;
    void glyphs(const GlyphRun& run, const Pen& pen) override;
    bool wantsCurves() const override { return true; }
    void path(const WorldPath& path, const Pen& pen) override;

private:
    void add(const AcGePoint3d& point);
    void addCurve(const AcGePoint3d& start, const AcGePoint3d* controls);

    AcGePoint3d m_min{HUGE_VAL, HUGE_VAL, HUGE_VAL};
    AcGePoint3d m_max{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
};

} // namespace host
