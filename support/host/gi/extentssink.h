// The box around what is drawn.
#pragma once

#include "host/gi/primitives.h"

namespace host {

class ExtentsSink final : public PrimitiveSink {
public:
    bool isEmpty() const { return mMin.x > mMax.x; }
    const AcGePoint3d& min() const { return mMin; }
    const AcGePoint3d& max() const { return mMax; }

    void polyline(std::span<const AcGePoint3d> points, const Pen& pen) override;
    void area(const Area& area, const Pen& pen) override;
    void glyphs(const GlyphRun& run, const Pen& pen) override;
    bool wantsCurves() const override { return true; }
    void path(const WorldPath& path, const Pen& pen) override;

private:
    void add(const AcGePoint3d& point);
    void addCurve(const AcGePoint3d& start, const AcGePoint3d* controls);

    AcGePoint3d mMin{HUGE_VAL, HUGE_VAL, HUGE_VAL};
    AcGePoint3d mMax{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
};

} // namespace host
