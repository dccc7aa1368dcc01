// Building the packed box tree.
#include "host/ge/box_index.h"

#include <cmath>

namespace host {

namespace {

// Position along a Hilbert curve of order 16: neighbours on the curve are neighbours in the plane.
std::uint32_t hilbertPosition(std::uint32_t x, std::uint32_t y) {
    std::uint32_t position = 0;
    for (std::uint32_t s = 1u << 15; s > 0; s >>= 1) {
        const std::uint32_t rx = (x & s) ? 1 : 0, ry = (y & s) ? 1 : 0;
        position += s * s * ((3 * rx) ^ ry);
        if (ry == 0) {
            if (rx == 1) {
                x = 65535u - x;
                y = 65535u - y;
            }
            std::swap(x, y);
        }
    }
    return position;
}

std::uint32_t cell(double value, double low, double extent) {
    const double fraction = (value - low) / extent; // not a number without an extent, or with an endless one
    return std::isfinite(fraction) ? static_cast<std::uint32_t>(std::clamp(fraction, 0.0, 1.0) * 65535.0) : 0;
}

} // namespace

BoxIndex::BoxIndex(std::span<const Box2d> boxes) {
    Box2d whole;
    for (const Box2d& box : boxes)
        if (!box.isEmpty())
            whole.add(box);
    // One scale for both directions, so that the boxes of a long narrow drawing's nodes are no longer than
    // wide.
    const double extent = std::max(whole.width(), whole.height());
    std::vector<std::pair<std::uint32_t, std::uint32_t>> order;
    order.reserve(boxes.size());
    for (std::uint32_t i = 0; i < boxes.size(); ++i) {
        if (boxes[i].isEmpty())
            continue;
        const AcGePoint2d center = boxes[i].center();
        order.emplace_back(
            hilbertPosition(cell(center.x, whole.minimum.x, extent), cell(center.y, whole.minimum.y, extent)),
            i);
    }
    if (order.empty())
        return;
    std::sort(order.begin(), order.end());
    m_items.reserve(order.size());
    m_boxes.reserve(order.size());
    for (const auto& [position, item] : order) {
        m_items.push_back(item);
        m_boxes.push_back(boxes[item]);
    }

    std::uint32_t begin = 0, end = static_cast<std::uint32_t>(m_items.size());
    bool leaf = true;
    do {
        const std::uint32_t levelBegin = static_cast<std::uint32_t>(m_nodes.size());
        for (std::uint32_t first = begin; first < end; first += fanOut) {
            Node node;
            node.first = first;
            node.count = std::min(fanOut, end - first);
            node.isLeaf = leaf;
            for (std::uint32_t i = first; i < first + node.count; ++i)
                node.box.add(leaf ? m_boxes[i] : m_nodes[i].box);
            m_nodes.push_back(node);
        }
        begin = levelBegin;
        end = static_cast<std::uint32_t>(m_nodes.size());
        leaf = false;
    } while (end - begin > 1);
}

} // namespace host
