// Cutting the raw pieces of a parallel curve at every meeting, keeping the parts that are far enough from the
// path, and stringing them together.
#include "host/ge/path_offset.h"

#include "host/ge/offset_elements.h"

#include <cmath>
#include <cstdint>
#include <numeric>
#include <unordered_map>

namespace host {

namespace {

using offset::Element;
using offset::Node;
using offset::RawOffset;
using offset::Tolerances;

// Remains of a parallel behind an inner corner are shorter than this many distances: longer ones would come
// nearer to the path than the margin allows.
constexpr double longestRemain = 1e-3;

// Node numbers that stand for one place.
class NodeSets {
public:
    int add() {
        m_parent.push_back(static_cast<int>(m_parent.size()));
        return m_parent.back();
    }
    int root(int node) {
        while (m_parent[static_cast<std::size_t>(node)] != node) {
            int& parent = m_parent[static_cast<std::size_t>(node)];
            parent = m_parent[static_cast<std::size_t>(parent)];
            node = parent;
        }
        return node;
    }
    // The smaller number stays, so that corners keep their exact place.
    void unite(int first, int second) {
        first = root(first);
        second = root(second);
        if (first != second)
            m_parent[static_cast<std::size_t>(std::max(first, second))] = std::min(first, second);
    }

private:
    std::vector<int> m_parent;
};

// A part of an element between two neighbouring cuts.
struct Slice {
    int element;
    double from, to; // fractions of the element
    int startNode, endNode;
    PathSegment geometry;
    bool isDropped = false;
    int next = -1;
    bool hasPrevious = false;
};

struct Cut {
    double fraction;
    int node;
};

class Assembler {
public:
    Assembler(RawOffset raw, const PathIndex& source, double distance, const Tolerances& tolerances)
        : m_raw(std::move(raw)), m_source(source), m_distance(std::fabs(distance)),
          m_turnsRight(distance > 0.0), m_tolerances(tolerances) {
        std::vector<Box2d> boxes;
        for (const BulgePath& mitre : m_raw.mitres)
            boxes.push_back(extents(mitre));
        m_mitreIndex = BoxIndex(boxes);
    }

    std::vector<BulgePath> assemble() {
        cutElements();
        uniteCloseNodes();
        makeSlices();
        dropCoincidentSlices();
        dropDeadEnds();
        linkSlices();
        return collectPaths();
    }

private:
    const AcGePoint2d& place(int node) const { return m_raw.nodes[static_cast<std::size_t>(node)].point; }

    int addNode(const AcGePoint2d& point) {
        m_raw.nodes.push_back({point, false});
        return m_nodeSets.add();
    }

    void cutElements() {
        for (std::size_t i = 0; i < m_raw.nodes.size(); ++i)
            m_nodeSets.add();
        const std::vector<Element>& elements = m_raw.elements;
        std::vector<Box2d> boxes;
        boxes.reserve(elements.size());
        for (const Element& element : elements)
            boxes.push_back(element.geometry.extents());
        const BoxIndex index(boxes);
        m_cuts.resize(elements.size());
        for (std::size_t i = 0; i < elements.size(); ++i) {
            const Element& element = elements[i];
            if (!element.isResult())
                continue;
            m_cuts[i].push_back({0.0, element.startNode});
            m_cuts[i].push_back({1.0, element.endNode});
            index.search(boxes[i].grownBy(m_tolerances.point), [&](std::uint32_t j) {
                if (j == i || (elements[j].isResult() && j < i))
                    return;
                for (const SegmentIntersection& common :
                     intersect(element.geometry, elements[j].geometry, m_tolerances.point)) {
                    // What is kept changes only where the distance is exact; most meetings are far inside.
                    if (m_source.isNearerThan(common.point, m_distance - 2.0 * m_tolerances.margin))
                        continue;
                    const int node = addNode(common.point);
                    addCut(i, common.firstFraction, node);
                    if (elements[j].isResult())
                        addCut(j, common.secondFraction, node);
                }
            });
        }
    }

    void addCut(std::size_t element, double fraction, int node) {
        if (fraction == 0.0 || fraction == 1.0) {
            const Element& whole = m_raw.elements[element];
            m_nodeSets.unite(node, fraction == 0.0 ? whole.startNode : whole.endNode);
        } else {
            m_cuts[element].push_back({fraction, node});
        }
    }

    // Several pieces through one place give several nodes there.
    void uniteCloseNodes() {
        const double size = 2.0 * m_tolerances.node;
        std::unordered_map<std::uint64_t, std::vector<int>> cells;
        cells.reserve(m_raw.nodes.size());
        const auto key = [](std::int64_t x, std::int64_t y) {
            return static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15ull ^ static_cast<std::uint64_t>(y);
        };
        for (int node = 0; node < static_cast<int>(m_raw.nodes.size()); ++node) {
            const AcGePoint2d& point = place(node);
            const auto x = static_cast<std::int64_t>(std::floor(point.x / size));
            const auto y = static_cast<std::int64_t>(std::floor(point.y / size));
            for (std::int64_t dx = -1; dx <= 1; ++dx)
                for (std::int64_t dy = -1; dy <= 1; ++dy)
                    if (const auto cell = cells.find(key(x + dx, y + dy)); cell != cells.end())
                        for (const int other : cell->second)
                            if (place(other).distanceTo(point) <= m_tolerances.node)
                                m_nodeSets.unite(node, other);
            // One node stands for its like, so that a crowded place stays cheap.
            if (m_nodeSets.root(node) == node)
                cells[key(x, y)].push_back(node);
        }
    }

    bool isValid(const AcGePoint2d& point) const {
        if (m_source.isNearerThan(point, m_distance - m_tolerances.margin))
            return false;
        bool valid = true;
        m_mitreIndex.search(Box2d{point, point}, [&](std::uint32_t i) {
            const BulgePath& mitre = m_raw.mitres[i];
            valid = windingNumber(mitre, point) == 0 ||
                    mitre.segment(1).distanceTo(point) <= m_tolerances.margin ||
                    mitre.segment(2).distanceTo(point) <= m_tolerances.margin;
            return valid;
        });
        return valid;
    }

    void makeSlices() {
        for (std::size_t i = 0; i < m_raw.elements.size(); ++i) {
            std::vector<Cut>& cuts = m_cuts[i];
            if (cuts.empty())
                continue;
            for (Cut& cut : cuts)
                cut.node = m_nodeSets.root(cut.node);
            std::sort(cuts.begin(), cuts.end(),
                      [](const Cut& a, const Cut& b) { return a.fraction < b.fraction; });
            const PathSegment& whole = m_raw.elements[i].geometry;
            for (std::size_t k = 0; k + 1 < cuts.size(); ++k) {
                const double from = cuts[k].fraction, to = cuts[k + 1].fraction;
                if (cuts[k].node == cuts[k + 1].node &&
                    whole.length() * (to - from) <= 4.0 * m_tolerances.node)
                    continue;
                if (!isValid(whole.pointAt(0.5 * (from + to))))
                    continue;
                Slice slice{static_cast<int>(i), from, to, cuts[k].node, cuts[k + 1].node,
                            whole.part(from, to)};
                m_slices.push_back(slice);
            }
        }
    }

    // Pieces that run along each other to and fro enclose nothing; those that run the same way are one.
    void dropCoincidentSlices() {
        std::vector<int> order(m_slices.size());
        std::iota(order.begin(), order.end(), 0);
        const auto pair = [&](int i) {
            const Slice& slice = m_slices[static_cast<std::size_t>(i)];
            return std::pair(std::min(slice.startNode, slice.endNode),
                             std::max(slice.startNode, slice.endNode));
        };
        std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return pair(a) < pair(b); });
        for (std::size_t i = 0; i < order.size(); ++i) {
            Slice& slice = m_slices[static_cast<std::size_t>(order[i])];
            for (std::size_t j = i + 1; j < order.size() && pair(order[j]) == pair(order[i]); ++j) {
                Slice& other = m_slices[static_cast<std::size_t>(order[j])];
                if (slice.isDropped || other.isDropped || slice.startNode == slice.endNode ||
                    slice.geometry.pointAt(0.5).distanceTo(other.geometry.pointAt(0.5)) > m_tolerances.node)
                    continue;
                other.isDropped = true;
                slice.isDropped = slice.startNode == other.endNode;
            }
        }
        std::erase_if(m_slices, [](const Slice& slice) { return slice.isDropped; });
    }

    void collectEnds() {
        m_in.assign(m_raw.nodes.size(), {});
        m_out.assign(m_raw.nodes.size(), {});
        for (int i = 0; i < static_cast<int>(m_slices.size()); ++i) {
            m_out[static_cast<std::size_t>(m_slices[static_cast<std::size_t>(i)].startNode)].push_back(i);
            m_in[static_cast<std::size_t>(m_slices[static_cast<std::size_t>(i)].endNode)].push_back(i);
        }
    }

    // Remains of the parallels behind an inner corner survive when they are nearer than the distance by less
    // than the margin. They end in the open; no result of a simple closed path does.
    void dropDeadEnds() {
        collectEnds();
        std::vector<char> loose(m_raw.nodes.size(), m_raw.isSimpleClosed ? 1 : 0);
        for (int node = 0; node < static_cast<int>(m_raw.nodes.size()); ++node)
            if (m_raw.nodes[static_cast<std::size_t>(node)].isLoose)
                loose[static_cast<std::size_t>(m_nodeSets.root(node))] = 1;
        std::vector<int> waiting;
        for (int node = 0; node < static_cast<int>(loose.size()); ++node)
            if (loose[static_cast<std::size_t>(node)])
                waiting.push_back(node);
        const auto dropAll = [&](std::vector<int>& slices) {
            for (const int i : slices) {
                Slice& slice = m_slices[static_cast<std::size_t>(i)];
                slice.isDropped = true;
                std::erase(m_out[static_cast<std::size_t>(slice.startNode)], i);
                waiting.push_back(slice.startNode);
                if (slice.endNode != slice.startNode) {
                    std::erase(m_in[static_cast<std::size_t>(slice.endNode)], i);
                    waiting.push_back(slice.endNode);
                }
            }
        };
        while (!waiting.empty()) {
            const auto node = static_cast<std::size_t>(waiting.back());
            waiting.pop_back();
            if (m_in[node].empty() == m_out[node].empty())
                continue;
            std::vector<int> dead = m_in[node].empty() ? m_out[node] : m_in[node];
            std::erase_if(dead, [&](int i) {
                return m_slices[static_cast<std::size_t>(i)].geometry.length() > longestRemain * m_distance;
            });
            dropAll(dead);
        }
        std::erase_if(m_slices, [](const Slice& slice) { return slice.isDropped; });
    }

    // At a place where several pieces meet, each goes on with the one furthest to the right of a right offset
    // (the open side), so that results touch there and do not cross.
    void linkSlices() {
        collectEnds();
        for (std::size_t node = 0; node < m_in.size(); ++node) {
            std::vector<int> free = m_out[node];
            for (const int i : m_in[node]) {
                if (free.empty())
                    break;
                Slice& slice = m_slices[static_cast<std::size_t>(i)];
                auto best = free.begin();
                if (free.size() > 1)
                    best = std::min_element(free.begin(), free.end(),
                                            [&](int a, int b) { return turn(slice, a) < turn(slice, b); });
                slice.next = *best;
                m_slices[static_cast<std::size_t>(*best)].hasPrevious = true;
                free.erase(best);
            }
        }
    }

    double turn(const Slice& in, int outIndex) const {
        const Slice& out = m_slices[static_cast<std::size_t>(outIndex)];
        const double reach =
            std::min({0.5 * in.geometry.length(), 0.5 * out.geometry.length(), 0.05 * m_distance});
        const AcGePoint2d& node = place(in.endNode);
        const AcGeVector2d before = node - in.geometry.pointAt(1.0 - reach / in.geometry.length());
        const AcGeVector2d after = out.geometry.pointAt(reach / out.geometry.length()) - node;
        const double angle = std::atan2(before.crossProduct(after), before.dotProduct(after));
        return m_turnsRight ? angle : -angle;
    }

    // Cuts that turned out to bound nothing are undone.
    bool continues(const Slice& slice, const Slice& next) const {
        const double length = m_raw.elements[static_cast<std::size_t>(slice.element)].geometry.length();
        return next.element == slice.element && next.from >= slice.to &&
               (next.from - slice.to) * length <= 8.0 * m_tolerances.node;
    }

    BulgePath pathOf(std::vector<int> chain, bool closed) const {
        const auto at = [&](std::size_t i) -> const Slice& {
            return m_slices[static_cast<std::size_t>(chain[i])];
        };
        BulgePath path;
        path.closed = closed;
        std::size_t first = 0;
        if (closed) {
            // Begin with the first piece along the source that does not just continue the one before.
            first = static_cast<std::size_t>(std::min_element(chain.begin(), chain.end()) - chain.begin());
            for (std::size_t steps = 0; steps < chain.size(); ++steps) {
                const std::size_t before = (first + chain.size() - 1) % chain.size();
                if (!continues(at(before), at(first)))
                    break;
                first = before;
            }
            std::rotate(chain.begin(), chain.begin() + static_cast<std::ptrdiff_t>(first), chain.end());
        }
        for (std::size_t i = 0; i < chain.size();) {
            const Slice& begin = at(i);
            std::size_t last = i;
            while (last + 1 < chain.size() && continues(at(last), at(last + 1)))
                ++last;
            const PathSegment& whole = m_raw.elements[static_cast<std::size_t>(begin.element)].geometry;
            const double part = at(last).to - begin.from;
            path.add(place(begin.startNode), whole.isArc() ? bulgeOfSweep(whole.sweep() * part) : 0.0);
            i = last + 1;
        }
        if (!closed)
            path.add(place(at(chain.size() - 1).endNode));
        return path;
    }

    std::vector<BulgePath> collectPaths() {
        std::vector<std::pair<int, BulgePath>> found;
        std::vector<char> used(m_slices.size(), 0);
        const auto walk = [&](int start, bool closed) {
            std::vector<int> chain;
            for (int i = start; i >= 0 && !used[static_cast<std::size_t>(i)];
                 i = m_slices[static_cast<std::size_t>(i)].next) {
                used[static_cast<std::size_t>(i)] = 1;
                chain.push_back(i);
            }
            const int order = *std::min_element(chain.begin(), chain.end());
            BulgePath path = pathOf(std::move(chain), closed);
            if (length(path) > 100.0 * m_tolerances.node && path.segmentCount() > 0)
                found.emplace_back(order, std::move(path));
        };
        for (int i = 0; i < static_cast<int>(m_slices.size()); ++i)
            if (!m_slices[static_cast<std::size_t>(i)].hasPrevious)
                walk(i, false);
        for (int i = 0; i < static_cast<int>(m_slices.size()); ++i)
            if (!used[static_cast<std::size_t>(i)])
                walk(i, true);
        std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
        std::vector<BulgePath> result;
        for (auto& [order, path] : found)
            result.push_back(std::move(path));
        return result;
    }

    RawOffset m_raw;
    const PathIndex& m_source;
    double m_distance;
    bool m_turnsRight;
    Tolerances m_tolerances;
    BoxIndex m_mitreIndex;
    NodeSets m_nodeSets;
    std::vector<std::vector<Cut>> m_cuts;
    std::vector<Slice> m_slices;
    std::vector<std::vector<int>> m_in, m_out;
};

bool isFinite(const BulgePath& path) {
    return std::all_of(path.vertices.begin(), path.vertices.end(), [](const BulgeVertex& vertex) {
        return std::isfinite(vertex.point.x) && std::isfinite(vertex.point.y) && std::isfinite(vertex.bulge);
    });
}

} // namespace

std::vector<BulgePath> offsetPath(const BulgePath& path, double distance) {
    if (!std::isfinite(distance) || !isFinite(path))
        return {};
    const Box2d box = extents(path);
    const double extent = box.isEmpty() ? 0.0 : std::max(box.width(), box.height());
    if (std::fabs(distance) <= 1e-11 * extent)
        return {path};
    const Tolerances tolerances(distance, extent);
    // Near the origin coordinates have the most digits.
    const AcGeVector2d shift = box.isEmpty() ? AcGeVector2d() : box.center().asVector();
    BulgePath local = path;
    for (BulgeVertex& vertex : local.vertices)
        vertex.point -= shift;
    local = withoutRepeatedVertices(local, tolerances.point);
    if (local.segmentCount() == 0)
        return {};
    const PathIndex index(local);
    Assembler assembler(offset::rawOffset(local, index, distance, tolerances), index, distance, tolerances);
    std::vector<BulgePath> result = assembler.assemble();
    for (BulgePath& part : result)
        for (BulgeVertex& vertex : part.vertices)
            vertex.point += shift;
    return result;
}

} // namespace host
