#include "host/gi/strips.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr double mitreLimit = 4; // of a corner's distance from the line, in half widths

struct Direction {
    double x, y;
};

Direction directionOf(const AcGePoint3d& from, const AcGePoint3d& to) {
    const double dx = to.x - from.x, dy = to.y - from.y, length = std::hypot(dx, dy);
    return {dx / length, dy / length};
}

bool isSameWidth(const RunPoint& point) {
    return std::abs(point.widthIn - point.widthOut) <= 1e-6 * std::max(point.widthIn, point.widthOut);
}

bool isMitred(const RunPoint& point, Direction before, Direction after) {
    const double cosine = before.x * after.x + before.y * after.y;
    return isSameWidth(point) && 2 <= mitreLimit * mitreLimit * (1 + cosine);
}

// One strip's two edges.
class Strip {
public:
    void square(const AcGePoint3d& point, Direction direction, double width) {
        addEdges(point, {-direction.y, direction.x}, width / 2);
    }

    void mitre(const AcGePoint3d& point, Direction before, Direction after, double width) {
        const double share = 1 + before.x * after.x + before.y * after.y;
        addEdges(point, {(-before.y - after.y) / share, (before.x + after.x) / share}, width / 2);
    }

    void endOpen(std::vector<AcGePoint3d>& points, std::vector<std::uint32_t>& contourEnds) {
        mLeft.insert(mLeft.end(), mRight.rbegin(), mRight.rend());
        addContour(mLeft, points, contourEnds);
        clear();
    }

    void endRing(std::vector<AcGePoint3d>& points, std::vector<std::uint32_t>& contourEnds) {
        std::ranges::reverse(mRight);
        addContour(mLeft, points, contourEnds);
        addContour(mRight, points, contourEnds);
        clear();
    }

private:
    void addEdges(const AcGePoint3d& point, Direction normal, double half) {
        mLeft.push_back({point.x + normal.x * half, point.y + normal.y * half, point.z});
        mRight.push_back({point.x - normal.x * half, point.y - normal.y * half, point.z});
    }

    static void addContour(const std::vector<AcGePoint3d>& contour, std::vector<AcGePoint3d>& points,
                           std::vector<std::uint32_t>& contourEnds) {
        points.insert(points.end(), contour.begin(), contour.end());
        contourEnds.push_back(static_cast<std::uint32_t>(points.size()));
    }

    void clear() {
        mLeft.clear();
        mRight.clear();
    }

    std::vector<AcGePoint3d> mLeft, mRight;
};

// The run without points that repeat the one before.
std::vector<RunPoint> withoutRepeats(std::span<const RunPoint> run) {
    std::vector<RunPoint> result;
    result.reserve(run.size());
    for (const RunPoint& point : run) {
        if (!result.empty() &&
            std::hypot(point.point.x - result.back().point.x, point.point.y - result.back().point.y) <= 1e-12)
            result.back().widthOut = point.widthOut;
        else
            result.push_back(point);
    }
    return result;
}

} // namespace

void appendStrip(std::span<const RunPoint> run, bool isClosed, std::vector<AcGePoint3d>& points,
                 std::vector<std::uint32_t>& contourEnds) {
    const std::vector<RunPoint> line = withoutRepeats(run);
    if (line.size() < 2)
        return;
    std::vector<Direction> directions;
    directions.reserve(line.size());
    for (std::size_t i = 0; i + 1 < line.size(); ++i)
        directions.push_back(directionOf(line[i].point, line[i + 1].point));

    RunPoint seam = line.front(); // where a closed run's end meets its start
    seam.widthIn = line.back().widthIn;
    const bool isSeamMitred =
        isClosed && line.size() > 3 && isMitred(seam, directions.back(), directions.front());
    bool isWhole = isSeamMitred;
    Strip strip;
    if (isSeamMitred)
        strip.mitre(seam.point, directions.back(), directions.front(), seam.widthOut);
    else
        strip.square(line.front().point, directions.front(), line.front().widthOut);
    for (std::size_t i = 1; i + 1 < line.size(); ++i) {
        if (isMitred(line[i], directions[i - 1], directions[i])) {
            strip.mitre(line[i].point, directions[i - 1], directions[i], line[i].widthOut);
            continue;
        }
        strip.square(line[i].point, directions[i - 1], line[i].widthIn);
        strip.endOpen(points, contourEnds);
        strip.square(line[i].point, directions[i], line[i].widthOut);
        isWhole = false;
    }
    if (isWhole) {
        strip.endRing(points, contourEnds);
        return;
    }
    if (isSeamMitred)
        strip.mitre(seam.point, directions.back(), directions.front(), seam.widthIn);
    else
        strip.square(line.back().point, directions.back(), line.back().widthIn);
    strip.endOpen(points, contourEnds);
}

} // namespace host
