#include "app/canvas/displaytree.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace app {
namespace {

/// The place of a cell of a 65536 x 65536 grid on the Hilbert curve.
std::uint32_t hilbert(std::uint32_t x, std::uint32_t y) {
    std::uint32_t place = 0;
    for (std::uint32_t side = 1U << 15; side > 0; side >>= 1) {
        const std::uint32_t right = (x & side) != 0 ? 1 : 0;
        const std::uint32_t upper = (y & side) != 0 ? 1 : 0;
        place = (place << 2) | ((3 * right) ^ upper);
        if (upper == 0) {
            if (right == 1) {
                x = ~x;
                y = ~y;
            }
            std::swap(x, y);
        }
    }
    return place;
}

void add(FloatBox& to, const FloatBox& box) {
    if (to.isEmpty()) {
        to = box;
        return;
    }
    to.left = std::min(to.left, box.left);
    to.bottom = std::min(to.bottom, box.bottom);
    to.right = std::max(to.right, box.right);
    to.top = std::max(to.top, box.top);
}

} // namespace

DisplayTree::DisplayTree(std::span<const FloatBox> boxes) {
    FloatBox whole;
    for (const FloatBox& box : boxes) {
        if (!box.isEmpty()) {
            add(whole, box);
        }
    }
    if (whole.isEmpty()) {
        return;
    }
    // One scale for both axes: stretched cells would group what lies far apart on a long narrow map.
    const float size = std::max(whole.width(), whole.height());
    const auto cell = [size](float from, float to, float low) {
        constexpr float cells = 65535.0F;
        const float share = size > 0 ? ((from + to) * 0.5F - low) / size : 0.0F;
        return static_cast<std::uint32_t>(std::clamp(share, 0.0F, 1.0F) * cells);
    };
    std::vector<std::pair<std::uint32_t, std::uint32_t>> order; // place on the curve, item
    order.reserve(boxes.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const FloatBox& box = boxes[i];
        if (!box.isEmpty()) {
            order.emplace_back(
                hilbert(cell(box.left, box.right, whole.left), cell(box.bottom, box.top, whole.bottom)),
                static_cast<std::uint32_t>(i));
        }
    }
    std::sort(order.begin(), order.end());
    mItems.reserve(order.size());
    for (const auto& [place, item] : order) {
        mItems.push_back(item);
    }
    std::vector<FloatBox> leaves((mItems.size() + leafSize - 1) / leafSize);
    for (std::size_t i = 0; i < mItems.size(); ++i) {
        add(leaves[i / leafSize], boxes[mItems[i]]);
    }
    mLevels.push_back(std::move(leaves));
    while (mLevels.back().size() > fanOut) {
        const std::vector<FloatBox>& below = mLevels.back();
        std::vector<FloatBox> level((below.size() + fanOut - 1) / fanOut);
        for (std::size_t i = 0; i < below.size(); ++i) {
            add(level[i / fanOut], below[i]);
        }
        mLevels.push_back(std::move(level));
    }
}

std::size_t DisplayTree::bytes() const {
    std::size_t sum = mItems.capacity() * sizeof(std::uint32_t);
    for (const std::vector<FloatBox>& level : mLevels) {
        sum += level.capacity() * sizeof(FloatBox);
    }
    return sum;
}

} // namespace app
