// A static spatial index of boxes: a packed tree built once in O(n log n), searched in O(log n + hits).
#pragma once

#include "host/ge/box2d.h"

#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

namespace host {

class BoxIndex {
public:
    BoxIndex() = default;
    // Item i is boxes[i]; empty boxes are never found.
    explicit BoxIndex(std::span<const Box2d> boxes);

    // Calls visit(item) for every item whose box touches the given one; visit may return false to stop.
    template <class Visitor>
    void search(const Box2d& box, Visitor&& visit) const {
        if (m_nodes.empty())
            return;
        std::uint32_t stack[stackSize];
        int depth = 0;
        stack[depth++] = root();
        while (depth > 0) {
            const Node& node = m_nodes[stack[--depth]];
            for (std::uint32_t child = node.first; child < node.first + node.count; ++child) {
                if (node.isLeaf ? !m_boxes[child].touches(box) : !m_nodes[child].box.touches(box))
                    continue;
                if (!node.isLeaf)
                    stack[depth++] = child;
                else if (!proceed(visit, m_items[child]))
                    return;
            }
        }
    }

    // The item for which distance(item) is smallest and below `limit`, and that distance; -1 when there is
    // none. distance(item) must not be less than the distance to the item's box. The search ends early once a
    // distance at or below `enough` is found.
    template <class Distance>
    std::pair<std::int64_t, double> nearest(const AcGePoint2d& point, Distance&& distance,
                                            double limit = std::numeric_limits<double>::infinity(),
                                            double enough = -1.0) const {
        std::pair<std::int64_t, double> best{-1, limit};
        if (m_nodes.empty())
            return best;
        Entry stack[stackSize];
        int depth = 0;
        stack[depth++] = {m_nodes[root()].box.distanceSqrdTo(point), root()};
        while (depth > 0) {
            const Entry entry = stack[--depth];
            if (entry.distanceSqrd >= best.second * best.second)
                continue;
            const Node& node = m_nodes[entry.node];
            if (node.isLeaf) {
                for (std::uint32_t i = node.first; i < node.first + node.count; ++i) {
                    if (m_boxes[i].distanceSqrdTo(point) >= best.second * best.second)
                        continue;
                    const double value = distance(m_items[i]);
                    if (value < best.second) {
                        best = {m_items[i], value};
                        if (value <= enough)
                            return best;
                    }
                }
                continue;
            }
            const int bottom = depth;
            for (std::uint32_t child = node.first; child < node.first + node.count; ++child) {
                const double value = m_nodes[child].box.distanceSqrdTo(point);
                if (value < best.second * best.second)
                    stack[depth++] = {value, child};
            }
            std::sort(stack + bottom, stack + depth,
                      [](const Entry& a, const Entry& b) { return a.distanceSqrd > b.distanceSqrd; });
        }
        return best;
    }

private:
    static constexpr std::uint32_t fanOut = 8;
    static constexpr int stackSize = 128; // fan-out times the depth of 2^32 items, with room

    struct Node {
        Box2d box;
        std::uint32_t first = 0; // of the children: nodes, or positions in m_items for a leaf
        std::uint32_t count = 0;
        bool isLeaf = false;
    };
    struct Entry {
        double distanceSqrd;
        std::uint32_t node;
    };

    template <class Visitor>
    static bool proceed(Visitor& visit, std::uint32_t item) {
        if constexpr (std::is_same_v<decltype(visit(item)), bool>) {
            return visit(item);
        } else {
            visit(item);
            return true;
        }
    }
    std::uint32_t root() const { return static_cast<std::uint32_t>(m_nodes.size() - 1); }

    std::vector<std::uint32_t> m_items; // in tree order
    std::vector<Box2d> m_boxes;         // of m_items
    std::vector<Node> m_nodes;          // level by level, the root last
};

} // namespace host
