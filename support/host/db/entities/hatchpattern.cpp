// Hatch patterns: their maps, and the sweep that lays their lines into a boundary.
#include "host/db/entities/hatchpattern.h"

#include <algorithm>
#include <cstdint>

namespace host {

void transformPattern(std::vector<HatchPatternLine>& pattern, double angle, double scale,
                      const AcGePoint2d& center) {
    const AcGeMatrix2d turn = AcGeMatrix2d::rotation(angle);
    for (HatchPatternLine& line : pattern) {
        line.angle += angle;
        line.base = center + (turn * (line.base - center)) * scale;
        line.offset = (turn * line.offset) * scale;
        for (double& dash : line.dashes) {
            dash *= scale;
        }
    }
}

void transformPattern(std::vector<HatchPatternLine>& pattern, const AcGeMatrix2d& transform) {
    for (HatchPatternLine& line : pattern) {
        const AcGeVector2d along = transform * direction(line.angle);
        const double scale = along.length();
        if (transform.entry[0][0] != 1.0 || transform.entry[0][1] != 0.0 || transform.entry[1][0] != 0.0 ||
            transform.entry[1][1] != 1.0) {
            line.angle = along.angle();
            line.offset = transform * line.offset;
            for (double& dash : line.dashes) {
                dash *= scale;
            }
        }
        line.base = transform * line.base;
    }
}

std::vector<HatchPatternLine> userPattern(double angle, double spacing, bool crossed) {
    std::vector<HatchPatternLine> pattern;
    for (const double own : {angle, angle + halfPi}) {
        pattern.push_back({own, {}, direction(own).perpVector() * spacing, {}});
        if (!crossed) {
            break;
        }
    }
    return pattern;
}

namespace {

struct Crossing {
    std::int64_t level;
    double along;
    std::uint32_t loop;
};

/// Levels beyond this cannot be told apart any more.
constexpr double farthestLevel = 4e15;

/// One family of lines in the boundary.
class FamilySweep {
public:
    FamilySweep(std::span<const std::vector<BoundaryPiece>> loops, HatchStyleKind style,
                const HatchPatternLine& pattern)
        : mLoops(loops), mStyle(style), mPattern(pattern) {
        mFamily.base = pattern.base;
        mFamily.along = direction(pattern.angle);
        mNormal = mFamily.along.perpVector();
        mSpacing = pattern.offset.dotProduct(mNormal);
        mShift = pattern.offset.dotProduct(mFamily.along);
        // Lines that do not step aside are one line.
        mIsSingle = std::fabs(mSpacing) <= 1e-12 * (1.0 + pattern.offset.length());
        if (mIsSingle) {
            mSpacing = 1.0;
            mShift = 0.0;
        }
        mFamily.across = mNormal / mSpacing;
        for (const double dash : pattern.dashes) {
            mPeriod += std::fabs(dash);
        }
    }

    bool run(std::vector<HatchLine>& lines, std::size_t most) {
        if (!collect(most)) {
            return false;
        }
        std::sort(mCrossings.begin(), mCrossings.end(), [](const Crossing& a, const Crossing& b) {
            return a.level != b.level ? a.level < b.level : a.along < b.along;
        });
        std::vector<char> inside(mLoops.size(), 0);
        for (std::size_t at = 0; at < mCrossings.size();) {
            const std::int64_t level = mCrossings[at].level;
            int depth = 0;
            double begin = 0.0;
            std::size_t end = at;
            for (; end < mCrossings.size() && mCrossings[end].level == level; ++end) {
                const Crossing& crossing = mCrossings[end];
                const bool before = isHatched(mStyle, depth);
                char& within = inside[crossing.loop];
                within = within == 0 ? 1 : 0;
                depth += within != 0 ? 1 : -1;
                const bool after = isHatched(mStyle, depth);
                if (!before && after) {
                    begin = crossing.along;
                } else if (before && !after && !lay(level, begin, crossing.along, lines, most)) {
                    return false;
                }
            }
            for (; at < end; ++at) {
                inside[mCrossings[at].loop] = 0;
            }
        }
        return true;
    }

private:
    bool collect(std::size_t most) {
        const double limit = 4.0 * static_cast<double>(most);
        double count = 0.0;
        const auto forLevels = [&](auto&& take) {
            for (std::uint32_t loop = 0; loop < mLoops.size(); ++loop) {
                for (const BoundaryPiece& piece : mLoops[loop]) {
                    forMonotone(piece, mFamily, [&](double begin, double end, auto&& alongAt) {
                        // A stretch holds its lower end, not its upper one.
                        const double first = std::ceil(std::min(begin, end));
                        const double last = std::ceil(std::max(begin, end)) - 1.0;
                        if (mIsSingle ? first <= 0.0 && last >= 0.0 : first <= last) {
                            take(mIsSingle ? 0.0 : first, mIsSingle ? 0.0 : last, alongAt, loop);
                        }
                    });
                }
            }
        };
        bool far = false;
        forLevels([&](double first, double last, auto&&, std::uint32_t) {
            count += last - first + 1.0;
            far = far || std::max(std::fabs(first), std::fabs(last)) > farthestLevel;
        });
        if (far || !(count <= limit)) {
            return false;
        }
        mCrossings.reserve(static_cast<std::size_t>(count));
        forLevels([&](double first, double last, auto&& alongAt, std::uint32_t loop) {
            for (double level = first; level <= last; ++level) {
                mCrossings.push_back({static_cast<std::int64_t>(level), alongAt(level), loop});
            }
        });
        return true;
    }

    AcGePoint2d pointOf(std::int64_t level, double along) const {
        return mPattern.base + mFamily.along * along + mNormal * (mSpacing * static_cast<double>(level));
    }

    /// The stretch of a line between two places, in its dashes.
    bool lay(std::int64_t level, double begin, double end, std::vector<HatchLine>& lines,
             std::size_t most) const {
        const double smallest = 1e-12 * (std::fabs(begin) + std::fabs(end));
        if (!(end - begin > smallest)) {
            return true;
        }
        if (!(mPeriod > 0.0)) {
            lines.push_back({pointOf(level, begin), pointOf(level, end)});
            return lines.size() <= most;
        }
        const double perPeriod = static_cast<double>(mPattern.dashes.size());
        if ((end - begin) / mPeriod * perPeriod > 4.0 * static_cast<double>(most)) {
            return false;
        }
        const double origin = mShift * static_cast<double>(level);
        const double firstPeriod = std::floor((begin - origin) / mPeriod);
        const double periods = std::ceil((end - origin) / mPeriod) - firstPeriod;
        for (double period = 0.0; period < periods; ++period) {
            double at = origin + (firstPeriod + period) * mPeriod;
            for (const double dash : mPattern.dashes) {
                const double from = std::max(at, begin);
                const double to = std::min(at + dash, end);
                if (dash == 0.0 ? at >= begin && at <= end : to - from > smallest) {
                    lines.push_back(
                        {pointOf(level, dash == 0.0 ? at : from), pointOf(level, dash == 0.0 ? at : to)});
                }
                at += std::fabs(dash);
            }
            if (lines.size() > most) {
                return false;
            }
        }
        return true;
    }

    std::span<const std::vector<BoundaryPiece>> mLoops;
    HatchStyleKind mStyle;
    const HatchPatternLine& mPattern;
    LineFamily mFamily;
    AcGeVector2d mNormal;
    double mSpacing = 0.0;
    double mShift = 0.0; ///< of the dashes from one line to the next
    double mPeriod = 0.0;
    bool mIsSingle = false;
    std::vector<Crossing> mCrossings;
};

} // namespace

bool hatchLines(std::span<const std::vector<BoundaryPiece>> loops, HatchStyleKind style,
                std::span<const HatchPatternLine> pattern, std::vector<HatchLine>& lines, std::size_t most) {
    lines.clear();
    for (const HatchPatternLine& line : pattern) {
        if (!FamilySweep(loops, style, line).run(lines, most)) {
            lines.clear();
            return false;
        }
    }
    return true;
}

HatchPatternLoader& hatchPatternLoader() {
    static HatchPatternLoader loader;
    return loader;
}

} // namespace host
