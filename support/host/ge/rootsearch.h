// The search for the zero of a function between two places where its sign differs.
#pragma once

#include <cmath>

namespace host {

// Newton's method, kept within the bracket by halving it.
template <class Function, class Slope>
double bracketedRoot(Function&& value, Slope&& slope, double low, double high) {
    const bool lowIsNegative = value(low) < 0.0;
    double t = 0.5 * (low + high);
    for (int step = 0; step < 100 && high - low > 1e-16 * (1.0 + std::fabs(low)); ++step) {
        const double f = value(t);
        ((f < 0.0) == lowIsNegative ? low : high) = t;
        const double d = slope(t), next = d != 0.0 ? t - f / d : low;
        const double middle = 0.5 * (low + high);
        const double candidate = next > low && next < high ? next : middle;
        if (std::fabs(candidate - t) <= 1e-16 * (1.0 + std::fabs(t)))
            return candidate;
        t = step % 4 == 3 ? middle : candidate;
    }
    return t;
}

} // namespace host
