// Joining of open paths over a grid of their ends.
#include "host/commands/edit/pathjoin.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace host {
namespace {

/// An end of a path: paths 0, 1, 2, ... have the ends 0 and 1, 2 and 3, ...
using End = std::size_t;

/// Ends of paths by cells as large as the greatest gap.
class EndGrid {
public:
    explicit EndGrid(double cell) : mCell(cell) {}

    void add(End end, const AcGePoint2d& point) {
        mCells[keyOf(cellOf(point.x), cellOf(point.y))].push_back({end, point});
    }
    void remove(End end, const AcGePoint2d& point) {
        std::vector<Entry>& entries = mCells[keyOf(cellOf(point.x), cellOf(point.y))];
        std::erase_if(entries, [&](const Entry& entry) { return entry.end == end; });
    }
    /// The nearest end within a cell's size; of equals the one added first.
    std::optional<End> nearest(const AcGePoint2d& point) const {
        double best = mCell;
        std::optional<End> found;
        const std::int64_t x = cellOf(point.x);
        const std::int64_t y = cellOf(point.y);
        for (std::int64_t i = x - 1; i <= x + 1; ++i) {
            for (std::int64_t j = y - 1; j <= y + 1; ++j) {
                const auto cell = mCells.find(keyOf(i, j));
                for (const Entry& entry : cell != mCells.end() ? cell->second : mNone) {
                    const double distance = entry.point.distanceTo(point);
                    if (distance < best || (distance == best && (!found || entry.end < *found))) {
                        best = distance;
                        found = entry.end;
                    }
                }
            }
        }
        return found;
    }

private:
    struct Entry {
        End end;
        AcGePoint2d point;
    };
    std::int64_t cellOf(double value) const {
        return static_cast<std::int64_t>(std::floor(std::clamp(value / mCell, -4e18, 4e18)));
    }
    static std::uint64_t keyOf(std::int64_t x, std::int64_t y) {
        return static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15ULL ^
               (static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4FULL + 0x165667B19E3779F9ULL);
    }

    double mCell;
    std::unordered_map<std::uint64_t, std::vector<Entry>> mCells; ///< cells may share a key: distances decide
    std::vector<Entry> mNone;
};

WidePath reversedPath(const WidePath& path) {
    WidePath turned{reversed(path.path), {}};
    for (auto widths = path.widths.rbegin(); widths != path.widths.rend(); ++widths) {
        turned.widths.push_back({widths->end, widths->start});
    }
    return turned;
}

/// The point where the continued end segments meet, when both stay what they are.
std::optional<AcGePoint2d> meeting(const PathSegment& last, const PathSegment& first, double fuzz) {
    const CarrierIntersections common = intersectCarriers(last, first);
    std::optional<AcGePoint2d> best;
    double nearest = std::numeric_limits<double>::infinity();
    for (int i = 0; i < common.count; ++i) {
        const AcGePoint2d& point = common.points[static_cast<std::size_t>(i)];
        const double distance = std::max(point.distanceTo(last.end), point.distanceTo(first.start));
        if (last.unboundedFraction(point) > 0.0 && first.unboundedFraction(point) < 1.0 &&
            distance < nearest) {
            nearest = distance;
            best = point;
        }
    }
    // Nearly parallel segments meet far away: that is no joint of these two ends.
    return nearest <= 20.0 * fuzz ? best : std::nullopt;
}

void setSegment(BulgePath& path, int index, const PathSegment& segment) {
    auto& from = path.vertices[static_cast<std::size_t>(index)];
    from.point = segment.start;
    from.bulge = segment.bulge;
    path.vertices[static_cast<std::size_t>(index + 1) % path.vertices.size()].point = segment.end;
}

/// A path while it grows: parts are only put together at the end, once.
class Joining {
public:
    Joining(std::vector<WidePath> paths, const JoinOptions& options)
        : mPaths(std::move(paths)), mOptions(options), mTolerance(toleranceOf(mPaths)),
          mGrid(std::max(options.fuzz, mTolerance)), mUsed(mPaths.size(), false) {
        for (std::size_t i = 0; i < mPaths.size(); ++i) {
            if (isOpen(i)) {
                mGrid.add(2 * i, endPoint(2 * i));
                mGrid.add(2 * i + 1, endPoint(2 * i + 1));
            }
        }
    }

    bool isUsed(std::size_t index) const { return mUsed[index]; }
    JoinedPath grow(std::size_t first);

private:
    struct Part {
        std::size_t path;
        bool turned;
    };

    static double toleranceOf(const std::vector<WidePath>& paths) {
        double magnitude = 1.0;
        for (const WidePath& path : paths) {
            for (const BulgeVertex& vertex : path.path.vertices) {
                magnitude = std::max({magnitude, std::fabs(vertex.point.x), std::fabs(vertex.point.y)});
            }
        }
        return 1e-9 * magnitude;
    }
    bool isOpen(std::size_t index) const {
        return !mPaths[index].path.closed && mPaths[index].path.segmentCount() > 0;
    }
    const AcGePoint2d& endPoint(End end) const {
        const std::vector<BulgeVertex>& vertices = mPaths[end / 2].path.vertices;
        return end % 2 == 0 ? vertices.front().point : vertices.back().point;
    }
    void take(std::size_t index) {
        mUsed[index] = true;
        mGrid.remove(2 * index, endPoint(2 * index));
        mGrid.remove(2 * index + 1, endPoint(2 * index + 1));
    }
    bool isGap(const AcGePoint2d& a, const AcGePoint2d& b) const { return a.distanceTo(b) > mTolerance; }
    WidePath oriented(const Part& part) const {
        return part.turned ? reversedPath(mPaths[part.path]) : mPaths[part.path];
    }
    /// Whether the gap between the end of a part and the begin of the next can be closed.
    bool canClose(const Part& before, const Part& after) const;
    void append(WidePath& whole, WidePath next) const;
    void closeRing(WidePath& whole) const;

    std::vector<WidePath> mPaths;
    JoinOptions mOptions;
    double mTolerance;
    EndGrid mGrid;
    std::vector<bool> mUsed;
};

bool Joining::canClose(const Part& before, const Part& after) const {
    const WidePath& first = mPaths[before.path];
    const WidePath& second = mPaths[after.path];
    const PathSegment last =
        before.turned ? first.path.segment(0).reversed() : first.path.segment(first.path.segmentCount() - 1);
    const PathSegment next = after.turned ? second.path.segment(second.path.segmentCount() - 1).reversed()
                                          : second.path.segment(0);
    return mOptions.type != JoinType::extend || !isGap(last.end, next.start) ||
           meeting(last, next, mOptions.fuzz).has_value();
}

JoinedPath Joining::grow(std::size_t first) {
    JoinedPath joined;
    joined.sources.push_back(first);
    if (!isOpen(first)) {
        mUsed[first] = true;
        joined.shape = mPaths[first];
        return joined;
    }
    take(first);
    const auto extend = [&](std::vector<Part>& parts, bool forwards) {
        for (;;) {
            const Part& part = parts.back();
            // Going backwards every part is turned as the way goes.
            const End open = 2 * part.path + (part.turned == forwards ? 0 : 1);
            const std::optional<End> next = mGrid.nearest(endPoint(open));
            if (!next) {
                return;
            }
            const bool atStart = *next % 2 == 0;
            const Part found{*next / 2, forwards ? !atStart : atStart};
            if (forwards ? !canClose(part, found) : !canClose(found, part)) {
                return;
            }
            take(found.path);
            joined.sources.push_back(found.path);
            parts.push_back(found);
        }
    };
    std::vector<Part> after{{first, false}};
    extend(after, true);
    std::vector<Part> before{{first, false}};
    extend(before, false);
    std::vector<Part> all(before.rbegin(), before.rend());
    all.insert(all.end(), after.begin() + 1, after.end());
    joined.shape = oriented(all.front());
    for (std::size_t i = 1; i < all.size(); ++i) {
        append(joined.shape, oriented(all[i]));
    }
    closeRing(joined.shape);
    return joined;
}

void Joining::append(WidePath& whole, WidePath next) const {
    if (whole.widths.empty() != next.widths.empty()) {
        WidePath& plain = whole.widths.empty() ? whole : next;
        plain.widths.resize(static_cast<std::size_t>(plain.path.segmentCount()));
    }
    std::vector<BulgeVertex>& vertices = whole.path.vertices;
    const AcGePoint2d from = vertices.back().point;
    const AcGePoint2d to = next.path.vertices.front().point;
    const int lastIndex = whole.path.segmentCount() - 1;
    const PathSegment last = whole.path.segment(lastIndex);
    const PathSegment first = next.path.segment(0);
    std::optional<AcGePoint2d> corner;
    if (!isGap(from, to)) {
        vertices.pop_back();
    } else if (mOptions.type != JoinType::add && (corner = meeting(last, first, mOptions.fuzz))) {
        setSegment(whole.path, lastIndex, last.part(0.0, last.unboundedFraction(*corner)));
        setSegment(next.path, 0, first.part(first.unboundedFraction(*corner), 1.0));
        vertices.pop_back();
    } else {
        vertices.back().bulge = 0.0;
        if (!whole.widths.empty()) {
            whole.widths.push_back({whole.widths.back().end, next.widths.front().start});
        }
    }
    vertices.insert(vertices.end(), next.path.vertices.begin(), next.path.vertices.end());
    whole.widths.insert(whole.widths.end(), next.widths.begin(), next.widths.end());
}

void Joining::closeRing(WidePath& whole) const {
    std::vector<BulgeVertex>& vertices = whole.path.vertices;
    const AcGePoint2d first = vertices.front().point;
    const AcGePoint2d last = vertices.back().point;
    if (whole.path.segmentCount() < 2 || last.distanceTo(first) > std::max(mOptions.fuzz, mTolerance)) {
        return;
    }
    if (!isGap(last, first)) {
        vertices.pop_back();
        whole.path.closed = true;
        return;
    }
    const int lastIndex = whole.path.segmentCount() - 1;
    const PathSegment end = whole.path.segment(lastIndex);
    const PathSegment begin = whole.path.segment(0);
    const std::optional<AcGePoint2d> corner =
        mOptions.type == JoinType::add ? std::nullopt : meeting(end, begin, mOptions.fuzz);
    if (corner) {
        setSegment(whole.path, lastIndex, end.part(0.0, end.unboundedFraction(*corner)));
        setSegment(whole.path, 0, begin.part(begin.unboundedFraction(*corner), 1.0));
        vertices.pop_back();
    } else if (mOptions.type == JoinType::extend) {
        return;
    } else {
        vertices.back().bulge = 0.0;
        if (!whole.widths.empty()) {
            whole.widths.push_back({whole.widths.back().end, whole.widths.front().start});
        }
    }
    whole.path.closed = true;
}

} // namespace

std::vector<JoinedPath> joinPaths(std::vector<WidePath> paths, const JoinOptions& options) {
    const std::size_t count = paths.size();
    Joining joining(std::move(paths), options);
    std::vector<JoinedPath> joined;
    for (std::size_t i = 0; i < count; ++i) {
        if (!joining.isUsed(i)) {
            joined.push_back(joining.grow(i));
        }
    }
    return joined;
}

JoinedPath growPath(std::vector<WidePath> paths, const JoinOptions& options) {
    return Joining(std::move(paths), options).grow(0);
}

} // namespace host
