// Drawing and exploding of hatches: lines, solid and gradient fillings.
#include "host/db/dbents.h"
#include "host/db/entities/hatch.h"
#include "host/db/entities/transforms.h"

#include <algorithm>
#include <unordered_map>

namespace {

using Polygon = std::vector<AcGePoint2d>;

/// Polygons for drawing: each list is filled by the even-odd rule.
std::vector<std::vector<std::size_t>> fillings(const std::vector<int>& depths, host::HatchStyleKind style) {
    std::vector<std::vector<std::size_t>> lists;
    if (style == host::HatchStyleKind::ignore) {
        for (std::size_t index = 0; index < depths.size(); ++index) {
            if (depths[index] == 0) {
                lists.push_back({index});
            }
        }
        return lists;
    }
    std::vector<std::size_t>& all = lists.emplace_back();
    for (std::size_t index = 0; index < depths.size(); ++index) {
        if (style == host::HatchStyleKind::normal || depths[index] <= 1) {
            all.push_back(index);
        }
    }
    return lists;
}

/// The part of a polygon on which `offset` plus the scalar product with `normal` is not negative. For the
/// even-odd rule: what it adds along the cut lies twice there.
Polygon clipped(const Polygon& polygon, const AcGeVector2d& normal, double offset) {
    Polygon result;
    const auto side = [&](const AcGePoint2d& point) { return point.asVector().dotProduct(normal) + offset; };
    for (std::size_t index = 0; index < polygon.size(); ++index) {
        const AcGePoint2d& from = polygon[index];
        const AcGePoint2d& to = polygon[(index + 1) % polygon.size()];
        const double a = side(from);
        const double b = side(to);
        if (a >= 0.0) {
            result.push_back(from);
        }
        if ((a < 0.0) != (b < 0.0)) {
            result.push_back(from + (to - from) * (a / (a - b)));
        }
    }
    return result;
}

/// Fills the region of polygons with trapezoids between horizontal lines, by a sweep upwards. An edge that
/// goes on in the same pair makes one trapezoid however many corners lie beside it.
class Trapezoids {
public:
    struct Trapezoid {
        AcGePoint2d lowerLeft, lowerRight, upperLeft, upperRight;
    };

    explicit Trapezoids(host::HatchStyleKind style) : mStyle(style) {}

    void add(const Polygon& polygon) {
        for (std::size_t index = 0; index < polygon.size(); ++index) {
            const AcGePoint2d& from = polygon[index];
            const AcGePoint2d& to = polygon[(index + 1) % polygon.size()];
            if (from.y != to.y) {
                mEdges.push_back(from.y < to.y ? Edge{from, to, mLoops} : Edge{to, from, mLoops});
            }
        }
        ++mLoops;
    }

    std::vector<Trapezoid> run() {
        std::vector<double> levels;
        for (const Edge& edge : mEdges) {
            levels.push_back(edge.lower.y);
            levels.push_back(edge.upper.y);
        }
        std::sort(levels.begin(), levels.end());
        levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
        std::sort(mEdges.begin(), mEdges.end(),
                  [](const Edge& a, const Edge& b) { return a.lower.y < b.lower.y; });
        std::size_t next = 0;
        for (std::size_t index = 0; index + 1 < levels.size(); ++index) {
            std::erase_if(mActive, [&](std::size_t edge) { return mEdges[edge].upper.y <= levels[index]; });
            for (; next < mEdges.size() && mEdges[next].lower.y <= levels[index]; ++next) {
                mActive.push_back(next);
            }
            slab(levels[index], levels[index + 1]);
        }
        finish({}, levels.empty() ? 0.0 : levels.back());
        return std::move(mDone);
    }

private:
    struct Edge {
        AcGePoint2d lower, upper;
        std::size_t loop;
        double at(double y) const {
            return y >= upper.y ? upper.x
                                : lower.x + (y - lower.y) / (upper.y - lower.y) * (upper.x - lower.x);
        }
    };
    struct Open {
        std::size_t left, right;
        double from;
    };

    void slab(double low, double high) {
        const double middle = (low + high) / 2.0;
        std::sort(mActive.begin(), mActive.end(),
                  [&](std::size_t a, std::size_t b) { return mEdges[a].at(middle) < mEdges[b].at(middle); });
        std::vector<char> inside(mLoops, 0);
        std::vector<Open> now;
        int depth = 0;
        std::size_t left = 0;
        for (const std::size_t index : mActive) {
            char& within = inside[mEdges[index].loop];
            const bool before = host::isHatched(mStyle, depth);
            within = within == 0 ? 1 : 0;
            depth += within != 0 ? 1 : -1;
            const bool after = host::isHatched(mStyle, depth);
            if (!before && after) {
                left = index;
            } else if (before && !after) {
                now.push_back({left, index, low});
            }
        }
        finish(std::move(now), low);
    }

    /// Ends the trapezoids that do not go on.
    void finish(std::vector<Open> now, double level) {
        std::unordered_map<std::size_t, Open*> byLeft;
        for (Open& open : now) {
            byLeft.emplace(open.left, &open);
        }
        for (const Open& open : mOpen) {
            const auto same = byLeft.find(open.left);
            if (same != byLeft.end() && same->second->right == open.right) {
                same->second->from = open.from;
                continue;
            }
            const Edge& left = mEdges[open.left];
            const Edge& right = mEdges[open.right];
            mDone.push_back({{left.at(open.from), open.from},
                             {right.at(open.from), open.from},
                             {left.at(level), level},
                             {right.at(level), level}});
        }
        mOpen = std::move(now);
    }

    host::HatchStyleKind mStyle;
    std::vector<Edge> mEdges;
    std::vector<std::size_t> mActive;
    std::vector<Open> mOpen;
    std::vector<Trapezoid> mDone;
    std::size_t mLoops = 0;
};

std::vector<Polygon> polygonsOf(const std::vector<std::vector<host::BoundaryPiece>>& loops,
                                double deviation) {
    std::vector<Polygon> polygons;
    polygons.reserve(loops.size());
    for (const std::vector<host::BoundaryPiece>& loop : loops) {
        polygons.push_back(host::polygonOf(loop, deviation));
    }
    return polygons;
}

double between(double a, double b, double share) {
    return a + (b - a) * share;
}

AcCmEntityColor mixed(const AcCmEntityColor& a, const AcCmEntityColor& b, double share) {
    const auto part = [&](int from, int to) {
        return static_cast<Adesk::UInt8>(std::lround(between(from, to, std::clamp(share, 0.0, 1.0))));
    };
    return AcCmEntityColor(part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue()));
}

} // namespace

std::optional<host::HatchGradient> AcDbHatch::gradient() const {
    const host::GroupList* kept = m.solid ? keptGroups("AcDbHatch") : nullptr;
    if (kept == nullptr) {
        return std::nullopt;
    }
    host::HatchGradient found;
    bool is = false;
    for (const host::GroupList::Group group : *kept) {
        const std::string text(group.text);
        switch (group.code) {
        case 450:
            is = std::strtol(text.c_str(), nullptr, 10) != 0;
            break;
        case 460:
            found.angle = std::strtod(text.c_str(), nullptr);
            break;
        case 461:
            found.shift = std::strtod(text.c_str(), nullptr);
            break;
        case 421: {
            const long rgb = std::strtol(text.c_str(), nullptr, 10);
            found.colors.emplace_back(static_cast<Adesk::UInt8>(rgb >> 16),
                                      static_cast<Adesk::UInt8>(rgb >> 8), static_cast<Adesk::UInt8>(rgb));
            break;
        }
        case 470:
            found.name = host::fromUtf8(host::decodeDxfText(text)).c_str();
            break;
        default:
            break;
        }
    }
    if (!is || found.colors.size() < 2 || !std::isfinite(found.angle)) {
        return std::nullopt;
    }
    return found;
}

bool AcDbHatch::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    const Loops loops = loopPieces();
    if (m.solid) {
        if (const std::optional<host::HatchGradient> shading = gradient()) {
            drawGradient(draw, loops, *shading);
        } else {
            drawSolid(draw, loops);
        }
        return true;
    }
    std::vector<host::HatchLine> lines;
    if (!host::hatchLines(loops, static_cast<host::HatchStyleKind>(m.style), m.pattern, lines)) {
        drawSolid(draw, loops); // lines without number look like that
        return true;
    }
    for (const host::HatchLine& line : lines) {
        const AcGePoint3d points[] = {worldPoint(line.start), worldPoint(line.end)};
        if (line.start.x == line.end.x && line.start.y == line.end.y) {
            draw->geometry().polypoint(1, points);
        } else {
            draw->geometry().polyline(2, points);
        }
    }
    return true;
}

namespace {

void fill(AcGiWorldDraw* draw, const std::vector<const Polygon*>& polygons,
          const std::function<AcGePoint3d(const AcGePoint2d&)>& toWorld) {
    std::vector<Adesk::UInt32> counts;
    std::vector<AcGePoint3d> points;
    for (const Polygon* polygon : polygons) {
        if (polygon->size() >= 3) {
            counts.push_back(static_cast<Adesk::UInt32>(polygon->size()));
            std::transform(polygon->begin(), polygon->end(), std::back_inserter(points), toWorld);
        }
    }
    if (!counts.empty()) {
        draw->geometry().polyPolygon(static_cast<Adesk::UInt32>(counts.size()), counts.data(), points.data());
    }
}

} // namespace

void AcDbHatch::drawSolid(AcGiWorldDraw* draw, const Loops& loops) const {
    if (loops.empty()) {
        return;
    }
    const double deviation = draw->deviation(kAcGiMaxDevForCircle, worldPoint(middle()));
    const std::vector<Polygon> polygons = polygonsOf(loops, deviation);
    const auto world = [this](const AcGePoint2d& point) { return worldPoint(point); };
    for (const std::vector<std::size_t>& list :
         fillings(host::nestingDepths(loops), static_cast<host::HatchStyleKind>(m.style))) {
        std::vector<const Polygon*> parts;
        for (const std::size_t index : list) {
            parts.push_back(&polygons[index]);
        }
        fill(draw, parts, world);
    }
}

void AcDbHatch::drawGradient(AcGiWorldDraw* draw, const Loops& loops,
                             const host::HatchGradient& gradient) const {
    if (loops.empty()) {
        return;
    }
    // Bands along the gradient; the round kinds come as bands too.
    constexpr int bands = 48;
    const AcGeVector2d along = host::direction(gradient.angle);
    const double deviation = draw->deviation(kAcGiMaxDevForCircle, worldPoint(middle()));
    const std::vector<Polygon> polygons = polygonsOf(loops, deviation);
    double first = HUGE_VAL;
    double last = -HUGE_VAL;
    for (const Polygon& polygon : polygons) {
        for (const AcGePoint2d& point : polygon) {
            first = std::min(first, point.asVector().dotProduct(along));
            last = std::max(last, point.asVector().dotProduct(along));
        }
    }
    const bool mirrored = gradient.name.view().find(L"CYLINDER") != std::wstring_view::npos;
    const auto world = [this](const AcGePoint2d& point) { return worldPoint(point); };
    const auto lists = fillings(host::nestingDepths(loops), static_cast<host::HatchStyleKind>(m.style));
    for (int band = 0; band < bands; ++band) {
        const double from = between(first, last, static_cast<double>(band) / bands);
        const double to = between(first, last, static_cast<double>(band + 1) / bands);
        const double share = (band + 0.5) / bands;
        draw->subEntityTraits().setTrueColor(mixed(gradient.colors.front(), gradient.colors.back(),
                                                   mirrored ? 1.0 - std::fabs(2.0 * share - 1.0) : share));
        for (const std::vector<std::size_t>& list : lists) {
            std::vector<Polygon> parts;
            std::vector<const Polygon*> shown;
            parts.reserve(list.size());
            for (const std::size_t index : list) {
                shown.push_back(
                    &parts.emplace_back(clipped(clipped(polygons[index], along, -from), -along, to)));
            }
            fill(draw, shown, world);
        }
    }
}

Acad::ErrorStatus AcDbHatch::subExplode(AcDbVoidPtrArray& parts) const {
    assertReadEnabled();
    const Loops loops = loopPieces();
    const auto style = static_cast<host::HatchStyleKind>(m.style);
    if (!m.solid) {
        std::vector<host::HatchLine> lines;
        if (!host::hatchLines(loops, style, m.pattern, lines)) {
            return Acad::eHatchTooDense;
        }
        for (const host::HatchLine& line : lines) {
            const AcGePoint3d start = worldPoint(line.start);
            if (line.start.x == line.end.x && line.start.y == line.end.y) {
                auto point = host::newLike<AcDbPoint>(*this);
                point->setPosition(start);
                parts.append(point.release());
                continue;
            }
            auto made = host::newLike<AcDbLine>(*this);
            made->setStartPoint(start);
            made->setEndPoint(worldPoint(line.end));
            made->setNormal(m.normal);
            parts.append(made.release());
        }
        return Acad::eOk;
    }
    host::Box2d box;
    for (const std::vector<host::BoundaryPiece>& loop : loops) {
        box.add(host::extents(loop));
    }
    Trapezoids trapezoids(style);
    const double deviation = loops.empty() ? 0.0 : 1e-4 * (box.maximum - box.minimum).length();
    for (const Polygon& polygon : polygonsOf(loops, deviation)) {
        trapezoids.add(polygon);
    }
    for (const Trapezoids::Trapezoid& one : trapezoids.run()) {
        auto solid = host::newLike<AcDbSolid>(*this);
        solid->setNormal(m.normal);
        solid->setPointAt(0, worldPoint(one.lowerLeft));
        solid->setPointAt(1, worldPoint(one.lowerRight));
        solid->setPointAt(2, worldPoint(one.upperLeft));
        solid->setPointAt(3, worldPoint(one.upperRight));
        parts.append(solid.release());
    }
    return Acad::eOk;
}
