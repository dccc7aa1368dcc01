// A sweep from the lowest to the highest corner over the edges, sorted by x in each band between corners.
#include "host/formats/sld/trapezoids.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace host {
namespace {

struct Edge {
    SlidePoint low;
    SlidePoint high;
    int winding = 1;

    double at(double y) const {
        return low.x + (y - low.y) * (high.x - low.x) / static_cast<double>(high.y - low.y);
    }
    SlidePoint dotAt(int y) const { return {static_cast<int>(std::lround(at(y))), y}; }
};

std::vector<Edge> edgesOf(std::span<const SlidePoint> points, std::span<const std::uint32_t> ends) {
    std::vector<Edge> edges;
    std::uint32_t begin = 0;
    for (const std::uint32_t end : ends) {
        for (std::uint32_t i = begin; i < end; ++i) {
            const SlidePoint& from = points[i];
            const SlidePoint& to = points[i + 1 < end ? i + 1 : begin];
            if (from.y < to.y) {
                edges.push_back({from, to, 1});
            } else if (from.y > to.y) {
                edges.push_back({to, from, -1});
            }
        }
        begin = end;
    }
    std::ranges::sort(edges, {}, [](const Edge& edge) { return edge.low.y; });
    return edges;
}

/// Pieces that are still growing upwards, by their edges.
using Growing = std::map<std::pair<const Edge*, const Edge*>, int>;

void emit(const Edge& left, const Edge& right, int low, int high,
          const std::function<void(std::span<const SlidePoint>)>& piece) {
    const std::array corners{left.dotAt(low), right.dotAt(low), right.dotAt(high), left.dotAt(high)};
    std::array<SlidePoint, 4> kept{};
    std::size_t count = 0;
    for (const SlidePoint& corner : corners) {
        if (count == 0 || (corner != kept[count - 1] && (count < 3 || corner != kept[0]))) {
            kept[count++] = corner;
        }
    }
    if (count >= 3) {
        piece({kept.data(), count});
    }
}

/// The pairs of edges that the area lies between in the band, by what was in the band below.
Growing pairsIn(std::vector<const Edge*>& active, double middle, int low, bool evenOdd,
                const Growing& below) {
    std::ranges::sort(active, {}, [middle](const Edge* edge) { return edge->at(middle); });
    Growing pairs;
    const Edge* left = nullptr;
    int winding = 0;
    for (const Edge* edge : active) {
        winding = evenOdd ? 1 - winding : winding + edge->winding;
        if (left == nullptr) {
            left = edge;
        } else if (winding == 0) {
            const auto same = below.find({left, edge});
            pairs[{left, edge}] = same != below.end() ? same->second : low;
            left = nullptr;
        }
    }
    return pairs;
}

} // namespace

void cutIntoTrapezoids(std::span<const SlidePoint> points, std::span<const std::uint32_t> ends, bool evenOdd,
                       const std::function<void(std::span<const SlidePoint>)>& piece) {
    const std::vector<Edge> edges = edgesOf(points, ends);
    std::vector<int> levels;
    for (const Edge& edge : edges) {
        levels.push_back(edge.low.y);
        levels.push_back(edge.high.y);
    }
    std::ranges::sort(levels);
    levels.erase(std::unique(levels.begin(), levels.end()), levels.end());

    Growing growing;
    std::vector<const Edge*> active;
    auto next = edges.begin();
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const int low = levels[i];
        std::erase_if(active, [low](const Edge* edge) { return edge->high.y <= low; });
        for (; next != edges.end() && next->low.y <= low; ++next) {
            active.push_back(&*next);
        }
        const double middle = i + 1 < levels.size() ? (low + levels[i + 1]) / 2.0 : low;
        Growing pairs = pairsIn(active, middle, low, evenOdd, growing);
        for (const auto& [pair, start] : growing) {
            const auto kept = pairs.find(pair);
            if (kept == pairs.end() || kept->second != start) {
                emit(*pair.first, *pair.second, start, low, piece);
            }
        }
        growing = std::move(pairs);
    }
}

} // namespace host
