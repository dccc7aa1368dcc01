// Polynomials over [0, 1] in Bernstein form: products, derivatives and all of their roots. Questions about
// Bezier curves (where is a coordinate at its extreme, where does a perpendicular stand, where is a line
// met) become the roots of such a polynomial.
#pragma once

#include <vector>

namespace host {

class BernsteinPolynomial {
public:
    BernsteinPolynomial() = default;
    // The sum of coefficients[i] * binomial(n, i) t^i (1 - t)^(n - i).
    explicit BernsteinPolynomial(std::vector<double> coefficients)
        : m_coefficients(std::move(coefficients)) {}

    int degree() const { return static_cast<int>(m_coefficients.size()) - 1; }
    const std::vector<double>& coefficients() const { return m_coefficients; }
    double value(double t) const;
    BernsteinPolynomial derivative() const;
    // The largest size of a coefficient; no value is larger.
    double bound() const;

    BernsteinPolynomial operator*(const BernsteinPolynomial& other) const;
    // Both of one degree.
    BernsteinPolynomial& operator+=(const BernsteinPolynomial& other);
    BernsteinPolynomial& operator-=(const BernsteinPolynomial& other);

    // The roots in [0, 1], ascending. Neighbouring ones between which the values stay within the tolerance
    // are one, and so is a stretch that comes that near to zero without reaching it. None when the polynomial
    // is within the tolerance everywhere.
    std::vector<double> roots(double tolerance = 0.0) const;

private:
    std::vector<double> m_coefficients;
};

} // namespace host
