// Random polylines with bulges, of several characters: what people draw, and what they should not.
#pragma once

#include "host/ge/ge.h"

#include <random>

namespace test {

class RandomPaths {
public:
    explicit RandomPaths(unsigned seed) : m_engine(seed) {}

    double number(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(m_engine);
    }
    int below(int limit) { return static_cast<int>(m_engine() % static_cast<unsigned>(limit)); }
    double bulge() { return below(2) ? 0.0 : below(20) == 0 ? number(-8.0, 8.0) : number(-1.2, 1.2); }

    // Vertices anywhere: crosses itself everywhere.
    host::BulgePath tangle() {
        host::BulgePath path = start();
        for (int i = 2 + below(12); i > 0; --i)
            path.add({number(-10.0, 10.0), number(-10.0, 10.0)}, bulge());
        return path;
    }
    // A line that wanders with moderate turns.
    host::BulgePath walk() {
        host::BulgePath path = start();
        AcGePoint2d at(number(-10.0, 10.0), number(-10.0, 10.0));
        double angle = number(0.0, host::twoPi);
        for (int i = 2 + below(12); i > 0; --i) {
            path.add(at, 0.4 * bulge());
            angle += number(-1.0, 1.0);
            at += host::direction(angle) * number(0.5, 4.0);
        }
        return path;
    }
    // Around a centre: mostly without crossings.
    host::BulgePath ring() {
        host::BulgePath path = start();
        const int count = 3 + below(11);
        for (int i = 0; i < count; ++i)
            path.add(host::polar(AcGePoint2d(), host::twoPi * i / count, number(4.0, 10.0)), 0.3 * bulge());
        return path;
    }
    // Small whole coordinates and half circles: repeated vertices, overlaps, tangency, exact distances.
    host::BulgePath grid() {
        host::BulgePath path = start();
        for (int i = 2 + below(12); i > 0; --i)
            path.add({static_cast<double>(below(9)), static_cast<double>(below(9))}, below(4)   ? 0.0
                                                                                     : below(2) ? 1.0
                                                                                                : -1.0);
        return path;
    }

private:
    host::BulgePath start() {
        host::BulgePath path;
        path.closed = below(2) == 0;
        return path;
    }

    std::mt19937 m_engine;
};

} // namespace test
