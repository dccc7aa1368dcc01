// Roots are isolated by halving: the coefficients enclose the values, and their changes of sign bound the
// number of roots.
#include "host/ge/bernstein.h"

#include "host/ge/rootsearch.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace host {

namespace {

// A part of [0, 1] that holds a root; a single place where both bounds are the same.
struct Stretch {
    double low, high;
};

std::vector<double> binomials(int n) {
    std::vector<double> row(static_cast<std::size_t>(n) + 1, 1.0);
    for (int i = 1; i <= n; ++i)
        row[static_cast<std::size_t>(i)] = row[static_cast<std::size_t>(i - 1)] * (n - i + 1) / i;
    return row;
}

int signChanges(std::span<const double> coefficients) {
    int changes = 0;
    double before = 0.0;
    for (const double c : coefficients) {
        if (c == 0.0)
            continue;
        changes += before != 0.0 && (c < 0.0) != (before < 0.0);
        before = c;
    }
    return changes;
}

class Isolation {
public:
    Isolation(const BernsteinPolynomial& polynomial, double tolerance)
        : m_polynomial(polynomial), m_slope(polynomial.derivative()), m_tolerance(tolerance) {}

    void search(std::vector<double> c, double low, double high, int depth) {
        const auto [least, most] = std::minmax_element(c.begin(), c.end());
        if (*least > m_tolerance || *most < -m_tolerance || m_visits++ > mostVisits)
            return;
        if (std::max(-*least, *most) <= m_tolerance || depth >= deepest) {
            found.push_back({low, high});
            return;
        }
        if (signChanges(c) == 1 && (c.front() < 0.0) != (c.back() < 0.0) && c.front() != 0.0 &&
            c.back() != 0.0) {
            const double root = rootBetween(low, high);
            found.push_back({root, root});
            return;
        }
        // De Casteljau's halving: c turns into the left half, the right one is collected from its end.
        std::vector<double> right(c.size());
        for (std::size_t level = 0; level < c.size(); ++level) {
            right[c.size() - 1 - level] = c.back();
            for (std::size_t i = c.size() - 1; i > level; --i)
                c[i] = 0.5 * (c[i - 1] + c[i]);
        }
        const double middle = 0.5 * (low + high);
        search(std::move(c), low, middle, depth + 1);
        search(std::move(right), middle, high, depth + 1);
    }

    double rootBetween(double low, double high) const {
        return bracketedRoot([&](double t) { return m_polynomial.value(t); },
                             [&](double t) { return m_slope.value(t); }, low, high);
    }

    // Stretches that belong together, as one root each.
    std::vector<double> merged() const {
        std::vector<Stretch> joined;
        for (const Stretch& stretch : found) {
            if (!joined.empty() && isWithin(joined.back().high, stretch.low))
                joined.back().high = stretch.high;
            else
                joined.push_back(stretch);
        }
        std::vector<double> roots;
        for (const Stretch& stretch : joined) {
            const double atLow = m_polynomial.value(stretch.low), atHigh = m_polynomial.value(stretch.high);
            const bool crosses = stretch.low < stretch.high && (atLow < 0.0) != (atHigh < 0.0);
            roots.push_back(crosses ? rootBetween(stretch.low, stretch.high)
                                    : 0.5 * (stretch.low + stretch.high));
        }
        return roots;
    }

    std::vector<Stretch> found;

private:
    static constexpr int deepest = 46;
    static constexpr int mostVisits = 20'000; // only what is hardly a polynomial needs more

    bool isWithin(double low, double high) const {
        if (high - low <= 1e-13)
            return true;
        for (const double part : {0.25, 0.5, 0.75})
            if (std::fabs(m_polynomial.value(low + part * (high - low))) > m_tolerance)
                return false;
        return true;
    }

    const BernsteinPolynomial& m_polynomial;
    BernsteinPolynomial m_slope;
    double m_tolerance;
    int m_visits = 0;
};

} // namespace

double BernsteinPolynomial::value(double t) const {
    // As Horner's scheme in t / (1 - t), or in its inverse beyond the middle.
    const int n = degree();
    if (n < 0)
        return 0.0;
    const bool isBeyond = t > 0.5;
    const double s = 1.0 - t, ratio = isBeyond ? s / t : t / s;
    double binomial = 1.0, power = 1.0, sum = 0.0;
    for (int i = 0; i <= n; ++i) {
        sum += m_coefficients[static_cast<std::size_t>(isBeyond ? n - i : i)] * binomial * power;
        binomial *= static_cast<double>(n - i) / (i + 1);
        power *= ratio;
    }
    return sum * std::pow(isBeyond ? t : s, n);
}

BernsteinPolynomial BernsteinPolynomial::derivative() const {
    const int n = degree();
    if (n < 1)
        return BernsteinPolynomial({0.0});
    std::vector<double> result(m_coefficients.size() - 1);
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = n * (m_coefficients[i + 1] - m_coefficients[i]);
    return BernsteinPolynomial(std::move(result));
}

double BernsteinPolynomial::bound() const {
    double largest = 0.0;
    for (const double c : m_coefficients)
        largest = std::max(largest, std::fabs(c));
    return largest;
}

BernsteinPolynomial BernsteinPolynomial::operator*(const BernsteinPolynomial& other) const {
    const int m = degree(), n = other.degree();
    const std::vector<double> own = binomials(m), others = binomials(n), both = binomials(m + n);
    std::vector<double> result(both.size(), 0.0);
    for (std::size_t i = 0; i < own.size(); ++i)
        for (std::size_t j = 0; j < others.size(); ++j)
            result[i + j] += own[i] * m_coefficients[i] * others[j] * other.m_coefficients[j];
    for (std::size_t k = 0; k < result.size(); ++k)
        result[k] /= both[k];
    return BernsteinPolynomial(std::move(result));
}

BernsteinPolynomial& BernsteinPolynomial::operator+=(const BernsteinPolynomial& other) {
    for (std::size_t i = 0; i < m_coefficients.size(); ++i)
        m_coefficients[i] += other.m_coefficients[i];
    return *this;
}

BernsteinPolynomial& BernsteinPolynomial::operator-=(const BernsteinPolynomial& other) {
    for (std::size_t i = 0; i < m_coefficients.size(); ++i)
        m_coefficients[i] -= other.m_coefficients[i];
    return *this;
}

std::vector<double> BernsteinPolynomial::roots(double tolerance) const {
    const double size = bound();
    const double slack = std::max(tolerance, 1e-15 * size);
    const bool isFinite =
        std::all_of(m_coefficients.begin(), m_coefficients.end(), [](double c) { return std::isfinite(c); });
    if (!isFinite || !(size > slack))
        return {};
    Isolation isolation(*this, slack);
    isolation.search(m_coefficients, 0.0, 1.0, 0);
    return isolation.merged();
}

} // namespace host
