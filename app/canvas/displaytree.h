// A packed tree over the boxes of a drawing's entities for culling: about six bytes an entity. Searches tell
// of whole branches too small to be seen, so that they are passed over with one of their entities drawn.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace app {

/// Relative to the scene's origin; empty when left is greater than right.
struct FloatBox {
    float left = 1, bottom = 1, right = -1, top = -1;

    bool isEmpty() const { return !(left <= right); }
    bool touches(const FloatBox& other) const {
        return left <= other.right && other.left <= right && bottom <= other.top && other.bottom <= top;
    }
    bool contains(const FloatBox& other) const {
        return left <= other.left && other.right <= right && bottom <= other.bottom && other.top <= top;
    }
    float width() const { return right - left; }
    float height() const { return top - bottom; }
};

class DisplayTree {
public:
    DisplayTree() = default;
    /// Item i has box i; empty boxes are not found.
    explicit DisplayTree(std::span<const FloatBox> boxes);

    /// Calls visit(item, whole) for the items of all leaves that touch the box, which may be a few more than
    /// touch it themselves unless `whole`: all of the leaf lies inside. Of a leaf smaller than `smallest` in
    /// both directions only for the first.
    template <class Visit>
    void search(const FloatBox& box, float smallest, Visit visit) const {
        if (mLevels.empty()) {
            return;
        }
        search(box, smallest, visit, mLevels.size() - 1, 0, mLevels.back().size(), false);
    }
    std::size_t bytes() const;

private:
    static constexpr std::size_t leafSize = 16;
    static constexpr std::size_t fanOut = 8;

    template <class Visit>
    void search(const FloatBox& box, float smallest, Visit& visit, std::size_t level, std::size_t first,
                std::size_t end, bool isInside) const {
        for (std::size_t node = first; node < end; ++node) {
            const FloatBox& own = mLevels[level][node];
            if (!isInside && !own.touches(box)) {
                continue;
            }
            const bool whole = isInside || box.contains(own);
            if (level > 0) {
                const std::size_t below = mLevels[level - 1].size();
                search(box, smallest, visit, level - 1, node * fanOut, std::min(below, (node + 1) * fanOut),
                       whole);
                continue;
            }
            const std::size_t last = std::min(mItems.size(), (node + 1) * leafSize);
            const bool tiny = own.width() < smallest && own.height() < smallest;
            for (std::size_t i = node * leafSize; i < (tiny ? node * leafSize + 1 : last); ++i) {
                visit(mItems[i], whole);
            }
        }
    }

    std::vector<std::uint32_t> mItems;          ///< along a space-filling curve
    std::vector<std::vector<FloatBox>> mLevels; ///< the leaves first
};

} // namespace app
