// Least squares with the ends held, over the distances along the chords; knots are spread so that every span
// has points (L. Piegl and W. Tiller, The NURBS Book, 9.4.1). The normal equations have a band of seven.
#include "host/db/entities/splineapproximation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace host {
namespace {

constexpr std::size_t degree = 3;
using Basis = std::array<double, degree + 1>;

/// Symmetric equations with a band of `degree` on either side of the diagonal.
class BandedSystem {
public:
    explicit BandedSystem(std::size_t size) : mRows(size), mRight(size) {}

    /// For column <= row <= column + degree.
    void add(std::size_t row, std::size_t column, double value) { mRows[row][row - column] += value; }
    void addRight(std::size_t row, const AcGeVector3d& value) { mRight[row] += value; }

    /// By the factors L D Lt; false when the equations do not say enough.
    bool solve(std::vector<AcGeVector3d>& solution) {
        const std::size_t size = mRows.size();
        std::vector<double> diagonal(size);
        for (std::size_t i = 0; i < size; ++i) {
            const std::size_t first = i > degree ? i - degree : 0;
            double pivot = mRows[i][0];
            const double whole = pivot;
            for (std::size_t j = first; j < i; ++j) {
                double sum = mRows[i][i - j];
                for (std::size_t k = first; k < j; ++k) {
                    sum -= j - k <= degree ? mRows[i][i - k] * diagonal[k] * mRows[j][j - k] : 0.0;
                }
                mRows[i][i - j] = sum / diagonal[j];
                pivot -= sum * mRows[i][i - j];
            }
            if (!(pivot > 1e-12 * whole)) {
                return false;
            }
            diagonal[i] = pivot;
        }
        solution = mRight;
        for (std::size_t i = 0; i < size; ++i) {
            for (std::size_t d = 1; d <= std::min(i, degree); ++d) {
                solution[i] -= solution[i - d] * mRows[i][d];
            }
        }
        for (std::size_t i = size; i-- > 0;) {
            solution[i] /= diagonal[i];
            for (std::size_t d = 1; d <= degree && i + d < size; ++d) {
                solution[i] -= solution[i + d] * mRows[i + d][d];
            }
        }
        return true;
    }

private:
    std::vector<Basis> mRows; ///< of the lower half, from the diagonal to the left
    std::vector<AcGeVector3d> mRight;
};

class Approximation {
public:
    explicit Approximation(const AcGePoint3dArray& points) {
        for (const AcGePoint3d& point : points) {
            const double step = mPoints.empty() ? 0.0 : mPoints.back().distanceTo(point);
            if (mPoints.empty() || step > 0.0) {
                mParameters.push_back(mPoints.empty() ? 0.0 : mParameters.back() + step);
                mPoints.push_back(point);
            }
        }
    }

    std::size_t pointCount() const { return mPoints.size(); }
    void setTangents(const AcGeVector3d& start, const AcGeVector3d& end) {
        mStart = start.normal();
        mEnd = end.normal();
        if (mStart.isZeroLength() && mEnd.isZeroLength() && mPoints.front().isEqualTo(mPoints.back())) {
            mStart = mEnd = (mPoints[1] - mPoints[mPoints.size() - 2]).normal();
        }
    }

    /// The curve with so many control points; nothing when it is farther from a point than the tolerance.
    std::optional<AcGeNurbCurve3d> withControlPoints(std::size_t count, double tolerance) {
        spreadKnots(count);
        std::vector<AcGePoint3d> controls(count);
        controls.front() = mPoints.front();
        controls.back() = mPoints.back();
        // The first derivative at a clamped end; along chords its length is about 1.
        std::size_t first = 1;
        std::size_t last = count - 1; // behind the last unknown
        if (!mStart.isZeroLength()) {
            controls[first++] = mPoints.front() + mStart * ((mKnots[degree + 1] - mKnots[0]) / degree);
        }
        if (!mEnd.isZeroLength()) {
            controls[--last] = mPoints.back() - mEnd * ((mKnots[count] - mKnots[count - 1]) / degree);
        }
        if (first < last && !solve(first, last, controls)) {
            return std::nullopt;
        }
        AcGePoint3dArray points;
        for (const AcGePoint3d& control : controls) {
            points.append(control);
        }
        AcGeKnotVector knots;
        for (const double knot : mKnots) {
            knots.append(knot);
        }
        AcGeNurbCurve3d curve(degree, knots, points);
        for (std::size_t k = 0; k < mPoints.size(); ++k) {
            if (!(curve.evalPoint(mParameters[k]).distanceTo(mPoints[k]) <= tolerance)) {
                return std::nullopt;
            }
        }
        return curve;
    }

private:
    void spreadKnots(std::size_t count) {
        mKnots.assign(degree + 1, mParameters.front());
        const std::size_t inner = count - degree - 1;
        const double step = static_cast<double>(mPoints.size()) / static_cast<double>(inner + 1);
        for (std::size_t j = 1; j <= inner; ++j) {
            const double at = static_cast<double>(j) * step;
            const auto i = static_cast<std::size_t>(at);
            const double share = at - static_cast<double>(i);
            mKnots.push_back((1.0 - share) * mParameters[i - 1] + share * mParameters[i]);
        }
        mKnots.insert(mKnots.end(), degree + 1, mParameters.back());
    }

    /// The values of the functions that are not zero at the parameter; `span` is the number of the first one.
    Basis basisAt(double parameter, std::size_t& span) const {
        const auto above = std::upper_bound(
            mKnots.begin() + degree + 1, mKnots.end() - static_cast<std::ptrdiff_t>(degree) - 1, parameter);
        const auto knot = static_cast<std::size_t>(above - mKnots.begin()) - 1;
        span = knot - degree;
        Basis values{1.0};
        for (std::size_t j = 1; j <= degree; ++j) {
            double saved = 0.0;
            for (std::size_t r = 0; r < j; ++r) {
                const double right = mKnots[knot + r + 1] - parameter;
                const double left = parameter - mKnots[knot + 1 + r - j];
                const double part = values[r] / (right + left);
                values[r] = saved + right * part;
                saved = left * part;
            }
            values[j] = saved;
        }
        return values;
    }

    /// The control points from first to before last, the others being known.
    bool solve(std::size_t first, std::size_t last, std::vector<AcGePoint3d>& controls) const {
        BandedSystem system(last - first);
        for (std::size_t k = 1; k + 1 < mPoints.size(); ++k) {
            std::size_t span = 0;
            const Basis values = basisAt(mParameters[k], span);
            AcGeVector3d rest = mPoints[k].asVector();
            const auto isUnknown = [&](std::size_t i) { return span + i >= first && span + i < last; };
            for (std::size_t i = 0; i <= degree; ++i) {
                rest -= isUnknown(i) ? AcGeVector3d() : controls[span + i].asVector() * values[i];
            }
            for (std::size_t i = 0; i <= degree; ++i) {
                if (!isUnknown(i)) {
                    continue;
                }
                system.addRight(span + i - first, rest * values[i]);
                for (std::size_t j = 0; j <= i; ++j) {
                    if (isUnknown(j)) {
                        system.add(span + i - first, span + j - first, values[i] * values[j]);
                    }
                }
            }
        }
        std::vector<AcGeVector3d> solution;
        if (!system.solve(solution)) {
            return false;
        }
        for (std::size_t i = 0; i < solution.size(); ++i) {
            controls[first + i] = AcGePoint3d::kOrigin + solution[i];
        }
        return true;
    }

    std::vector<AcGePoint3d> mPoints;
    std::vector<double> mParameters;
    std::vector<double> mKnots;
    AcGeVector3d mStart;
    AcGeVector3d mEnd;
};

} // namespace

std::optional<AcGeNurbCurve3d> approximatingCurve(const AcGePoint3dArray& points,
                                                  const AcGeVector3d& startTangent,
                                                  const AcGeVector3d& endTangent, double tolerance) {
    Approximation approximation(points);
    const std::size_t most = approximation.pointCount();
    if (most <= degree + 1) {
        return std::nullopt;
    }
    approximation.setTangents(startTangent, endTangent);
    std::optional<AcGeNurbCurve3d> best;
    std::size_t tooFew = degree;
    std::size_t enough = degree + 1;
    for (; enough < most; enough += enough / 2) {
        best = approximation.withControlPoints(enough, tolerance);
        if (best) {
            break;
        }
        tooFew = enough;
    }
    while (best && enough - tooFew > 1) {
        const std::size_t middle = (tooFew + enough) / 2;
        if (auto curve = approximation.withControlPoints(middle, tolerance)) {
            best = std::move(curve);
            enough = middle;
        } else {
            tooFew = middle;
        }
    }
    return best;
}

} // namespace host
