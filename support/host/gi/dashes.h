// Laying a linetype along a line, with the alignment that drawings use: the line starts and ends in the
// middle of (or with more of) the pattern's first dash, so that its ends are always drawn; a line too short
// for one whole pattern is continuous.
#pragma once

#include "host/gi/looks.h"

#include <span>

namespace host {

class DashLayout {
public:
    // length: of the line; scale: of the pattern; both in the line's units. Patterns shorter than resolution
    // are drawn continuous, as are lines that would need more than a hundred thousand patterns.
    DashLayout(const LinetypeLook& linetype, double scale, double length, double resolution);

    bool isContinuous() const { return mIsContinuous; }

    struct Piece { // distances along the line; equal for a dot
        double start, end;
    };
    struct InsetPlace {
        double distance;
        const LinetypeLook::Element* element;
    };
    // Both in order along the line.
    const std::vector<Piece>& pieces() const { return mPieces; }
    const std::vector<InsetPlace>& insets() const { return mInsets; }

private:
    void layAligned(const LinetypeLook& linetype, double scale, double length, double pattern);
    void layFromStart(const LinetypeLook& linetype, double scale, double length);
    void addPiece(double start, double end);

    std::vector<Piece> mPieces;
    std::vector<InsetPlace> mInsets;
    bool mIsContinuous = true;
};

// A line as points with the widths it has arriving at and leaving each of them.
struct RunPoint {
    AcGePoint3d point;
    double widthIn = 0, widthOut = 0;
};

// Cuts pieces out of a run; pieces must come in order.
class RunCutter {
public:
    explicit RunCutter(std::span<const RunPoint> run);

    double length() const { return mDistances.empty() ? 0 : mDistances.back(); }
    // Replaces result by the part between two distances; two equal points for a dot.
    void cut(double start, double end, std::vector<RunPoint>& result);
    // Point and direction (a unit vector) at a distance.
    void locate(double distance, AcGePoint3d& point, AcGeVector3d& direction) const;

private:
    RunPoint at(std::size_t segment, double distance) const;

    std::span<const RunPoint> mRun;
    std::vector<double> mDistances; // of each point from the start
    std::size_t mSegment = 0;
};

} // namespace host
