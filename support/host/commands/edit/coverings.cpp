#include "host/commands/edit/coverings.h"

#include "host/ge/box_index.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace host {
namespace {

/// Sets that grow together.
class Unions {
public:
    explicit Unions(std::size_t size) : mParents(size) { std::iota(mParents.begin(), mParents.end(), 0U); }
    std::uint32_t rootOf(std::uint32_t item) {
        while (mParents[item] != item) {
            item = mParents[item] = mParents[mParents[item]];
        }
        return item;
    }
    /// The root is always the first of its members.
    void join(std::uint32_t a, std::uint32_t b) {
        const std::uint32_t first = rootOf(a);
        const std::uint32_t second = rootOf(b);
        mParents[std::max(first, second)] = std::min(first, second);
    }
    /// Sets of two and more, in the order of their first members.
    std::vector<std::vector<std::uint32_t>> sets() {
        std::vector<std::vector<std::uint32_t>> byRoot(mParents.size());
        for (std::uint32_t item = 0; item < mParents.size(); ++item) {
            byRoot[rootOf(item)].push_back(item);
        }
        std::erase_if(byRoot, [](const auto& set) { return set.size() < 2; });
        return byRoot;
    }

private:
    std::vector<std::uint32_t> mParents;
};

double distanceToLine(const AcGePoint3d& point, const AcGePoint3d& origin, const AcGeVector3d& direction) {
    const AcGeVector3d way = point - origin;
    return (way - direction * way.dotProduct(direction)).length();
}

/// Both lie on one line, and overlap on it or touch.
bool goTogether(const Segment& a, const Segment& b, const CoverOptions& options) {
    if (a.kind != b.kind) {
        return false;
    }
    const bool isFirstLonger = (a.end - a.start).length() >= (b.end - b.start).length();
    const Segment& longer = isFirstLonger ? a : b;
    const Segment& shorter = isFirstLonger ? b : a;
    const double length = (longer.end - longer.start).length();
    const AcGeVector3d direction = (longer.end - longer.start) / length;
    if (distanceToLine(shorter.start, longer.start, direction) > options.tolerance ||
        distanceToLine(shorter.end, longer.start, direction) > options.tolerance) {
        return false;
    }
    const auto [from, to] = std::minmax({(shorter.start - longer.start).dotProduct(direction),
                                         (shorter.end - longer.start).dotProduct(direction)});
    const double common = std::min(to, length) - std::max(from, 0.0);
    return options.joinsEnds ? common >= -options.tolerance : common > options.tolerance;
}

/// Segments by their direction. In a system turned into a bin's direction their boxes are flat, so that boxes
/// that touch are nearly always segments that lie on each other.
constexpr int binCount = 360;
constexpr double binWidth = CircleArc::full / 2.0 / binCount;

class SegmentBin {
public:
    explicit SegmentBin(int bin)
        : mCos(std::cos((bin + 0.5) * binWidth)), mSin(std::sin((bin + 0.5) * binWidth)) {}
    void add(std::uint32_t item, const Segment& segment, const AcGePoint3d& origin, double margin) {
        Box2d box;
        box.add(turned(segment.start - origin));
        box.add(turned(segment.end - origin));
        mItems.push_back(item);
        mBoxes.push_back(box.grownBy(margin));
    }
    template <class Join>
    void joinTouching(Join&& join) const {
        const BoxIndex index(mBoxes);
        for (std::uint32_t i = 0; i < mBoxes.size(); ++i) {
            index.search(mBoxes[i], [&](std::uint32_t other) {
                if (other > i) {
                    join(mItems[i], mItems[other]);
                }
                return true;
            });
        }
    }

private:
    AcGePoint2d turned(const AcGeVector3d& vector) const {
        return {vector.x * mCos + vector.y * mSin, vector.y * mCos - vector.x * mSin};
    }
    double mCos;
    double mSin;
    std::vector<std::uint32_t> mItems;
    std::vector<Box2d> mBoxes;
};

/// The segment from one end of all members to the other; nothing when one of them is not on it (a chain of
/// small deviations).
bool span(const std::vector<Segment>& segments, SegmentCover& cover, double tolerance) {
    const auto length = [&](std::uint32_t item) {
        return (segments[item].end - segments[item].start).length();
    };
    const std::uint32_t longest =
        *std::ranges::max_element(cover.members, {}, [&](std::uint32_t item) { return length(item); });
    const AcGePoint3d origin = segments[longest].start;
    const Segment& first = segments[cover.members.front()];
    AcGeVector3d direction = (segments[longest].end - origin).normal();
    if (direction.dotProduct(first.end - first.start) < 0.0) {
        direction = -direction;
    }
    const auto along = [&](const AcGePoint3d& point) { return (point - origin).dotProduct(direction); };
    cover.start = first.start;
    cover.end = first.end;
    for (const std::uint32_t item : cover.members) {
        for (const AcGePoint3d& point : {segments[item].start, segments[item].end}) {
            cover.start = along(point) < along(cover.start) ? point : cover.start;
            cover.end = along(point) > along(cover.end) ? point : cover.end;
        }
    }
    const AcGeVector3d whole = (cover.end - cover.start).normal();
    return std::ranges::all_of(cover.members, [&](std::uint32_t item) {
        return distanceToLine(segments[item].start, cover.start, whole) <= tolerance &&
               distanceToLine(segments[item].end, cover.start, whole) <= tolerance;
    });
}

} // namespace

std::vector<SegmentCover> coverSegments(const std::vector<Segment>& segments, const CoverOptions& options) {
    std::vector<SegmentCover> covers;
    if (segments.empty()) {
        return covers;
    }
    std::vector<SegmentBin> bins;
    for (int bin = 0; bin < binCount; ++bin) {
        bins.emplace_back(bin);
    }
    const AcGePoint3d origin = segments.front().start;
    for (std::uint32_t item = 0; item < segments.size(); ++item) {
        const AcGeVector3d way = segments[item].end - segments[item].start;
        const double plan = std::hypot(way.x, way.y);
        if (!(plan > options.tolerance) || !std::isfinite(plan)) {
            continue;
        }
        // A line's direction is known as well as its ends are; at a bin's border it stands in both.
        const double spread = std::min(2.0 * options.tolerance / plan + 1e-9, binWidth);
        const double angle = std::atan2(way.y, way.x);
        const auto binOf = [](double direction) {
            const int bin = static_cast<int>(std::floor(direction / binWidth)) % binCount;
            return static_cast<std::size_t>(bin < 0 ? bin + binCount : bin);
        };
        const std::size_t low = binOf(angle - spread);
        const std::size_t high = binOf(angle + spread);
        bins[low].add(item, segments[item], origin, options.tolerance);
        if (high != low) {
            bins[high].add(item, segments[item], origin, options.tolerance);
        }
    }
    Unions unions(segments.size());
    for (const SegmentBin& bin : bins) {
        bin.joinTouching([&](std::uint32_t a, std::uint32_t b) {
            if (unions.rootOf(a) != unions.rootOf(b) && goTogether(segments[a], segments[b], options)) {
                unions.join(a, b);
            }
        });
    }
    for (std::vector<std::uint32_t>& set : unions.sets()) {
        SegmentCover cover{std::move(set), {}, {}};
        if (span(segments, cover, options.tolerance)) {
            covers.push_back(std::move(cover));
        }
    }
    return covers;
}

namespace {

bool isSameCircle(const CircleArc& a, const CircleArc& b, double tolerance) {
    return a.kind == b.kind && (a.center - b.center).length() <= tolerance &&
           std::fabs(a.radius - b.radius) <= tolerance && (a.normal - b.normal).length() <= 1e-9;
}

/// Merges the arcs of one circle, which are sorted by their start.
void coverCircle(const std::vector<CircleArc>& arcs, const std::vector<std::uint32_t>& sorted,
                 const CoverOptions& options, std::vector<ArcCover>& covers) {
    const double radius = std::max(arcs[sorted.front()].radius, options.tolerance);
    const double slack = (options.joinsEnds ? 1.0 : -1.0) * options.tolerance / radius;
    std::vector<ArcCover> runs;
    for (const std::uint32_t item : sorted) {
        const CircleArc& arc = arcs[item];
        const double start = arc.start;
        if (!runs.empty() && start <= runs.back().start + runs.back().sweep + slack) {
            ArcCover& run = runs.back();
            run.sweep = std::max(run.sweep, start + arc.sweep - run.start);
            run.members.push_back(item);
        } else {
            runs.push_back({{item}, start, arc.sweep});
        }
    }
    // What goes on over the zero direction meets what begins there.
    while (runs.size() > 1 &&
           runs.front().start + CircleArc::full <= runs.back().start + runs.back().sweep + slack) {
        ArcCover& last = runs.back();
        const ArcCover& first = runs.front();
        last.sweep = std::max(last.sweep, first.start + CircleArc::full + first.sweep - last.start);
        last.members.insert(last.members.end(), first.members.begin(), first.members.end());
        runs.erase(runs.begin());
    }
    for (ArcCover& run : runs) {
        if (run.members.size() < 2) {
            continue;
        }
        const bool closes = run.sweep + slack >= CircleArc::full;
        run.sweep = closes ? CircleArc::full : run.sweep;
        // A circle that is there stays; else the first one given stands for all.
        std::ranges::sort(run.members);
        const auto whole = std::ranges::find_if(
            run.members, [&](std::uint32_t item) { return arcs[item].sweep >= CircleArc::full; });
        if (whole != run.members.end()) {
            std::rotate(run.members.begin(), whole, whole + 1);
        }
        covers.push_back(std::move(run));
    }
}

} // namespace

std::vector<ArcCover> coverArcs(std::vector<CircleArc> arcs, const CoverOptions& options) {
    std::vector<ArcCover> covers;
    for (CircleArc& arc : arcs) {
        arc.start -= std::floor(arc.start / CircleArc::full) * CircleArc::full;
    }
    // Circles that are the same stand together: a box around each centre, and those of near radius among
    // them.
    std::vector<Box2d> boxes;
    for (const CircleArc& arc : arcs) {
        const AcGePoint2d place(arc.center.x + arc.radius, arc.center.y);
        boxes.push_back(Box2d{place, place}.grownBy(options.tolerance));
    }
    const BoxIndex index(boxes);
    Unions unions(arcs.size());
    for (std::uint32_t i = 0; i < arcs.size(); ++i) {
        index.search(boxes[i], [&](std::uint32_t other) {
            if (other > i && isSameCircle(arcs[i], arcs[other], options.tolerance)) {
                unions.join(i, other);
            }
            return true;
        });
    }
    for (std::vector<std::uint32_t>& set : unions.sets()) {
        std::ranges::sort(set, {}, [&](std::uint32_t item) { return std::pair(arcs[item].start, item); });
        coverCircle(arcs, set, options, covers);
    }
    return covers;
}

} // namespace host
