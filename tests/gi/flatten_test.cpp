// Flattening: transforms, nesting, looks, linetypes, widths, and input that is no number.
#include "drawing_fixture.h"

#include "host/gi/curves.h"
#include "host/gi/extentssink.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace host {
namespace {

constexpr double pi = std::numbers::pi;

void line(AcGiWorldDraw& draw, AcGePoint3d from, AcGePoint3d to) {
    const AcGePoint3d points[] = {from, to};
    draw.geometry().polyline(2, points);
}

double lengthOf(const std::vector<AcGePoint3d>& points) {
    double sum = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        sum += points[i].distanceTo(points[i - 1]);
    return sum;
}

AcDbPolyline lightPolyline(std::vector<LightPolyline::Vertex> vertices, bool isClosed = false) {
    AcDbPolyline polyline;
    polyline.geometry.vertices = std::move(vertices);
    polyline.geometry.isClosed = isClosed;
    return polyline;
}

TEST(Transforms, NestAndAreUndoneWhenADrawableForgets) {
    TestSource source;
    TestDrawable careless([](AcGiWorldDraw& draw) {
        draw.geometry().pushModelTransform(AcGeMatrix3d::scaling(2));
        draw.geometry().pushModelTransform(AcGeMatrix3d::translation({10, 0, 0}));
        line(draw, {0, 0, 0}, {1, 0, 0});
    });
    TestDrawable outer([&](AcGiWorldDraw& draw) {
        draw.geometry().pushModelTransform(AcGeMatrix3d::translation({0, 5, 0}));
        draw.geometry().draw(&careless);
        line(draw, {0, 0, 0}, {1, 0, 0});
        draw.geometry().popModelTransform();
        EXPECT_FALSE(draw.geometry().popModelTransform());
        const AcGePoint3d world[] = {{7, 7, 7}, {8, 8, 8}};
        draw.geometry().pushModelTransform(AcGeMatrix3d::scaling(100));
        draw.geometry().worldLine(world);
    });
    const KeepingSink sink = flattened(source, outer);
    ASSERT_EQ(sink.lines.size(), 3u);
    EXPECT_EQ(sink.lines[0].points[1], AcGePoint3d(22, 5, 0));
    EXPECT_EQ(sink.lines[1].points[1], AcGePoint3d(1, 5, 0));
    EXPECT_EQ(sink.lines[2].points[1], AcGePoint3d(8, 8, 8));
}

TEST(Curves, StayWithinTheDeviationUnderAnyTransform) {
    TestSource source;
    FlattenOptions options;
    options.deviation = 0.001;
    for (const double scale : {0.01, 1.0, 500.0}) {
        const KeepingSink sink = flattened(
            source,
            [&](AcGiWorldDraw& draw) {
                draw.geometry().pushModelTransform(AcGeMatrix3d::scaling(scale));
                draw.geometry().circle({3, 4, 0}, 2, AcGeVector3d::kZAxis);
            },
            options);
        ASSERT_EQ(sink.lines.size(), 1u);
        const auto& points = sink.lines[0].points;
        EXPECT_EQ(points.front(), points.back());
        for (std::size_t i = 1; i < points.size(); ++i) {
            const AcGePoint3d middle = points[i - 1] + (points[i] - points[i - 1]) / 2;
            const AcGePoint3d center(3 * scale, 4 * scale, 0);
            EXPECT_NEAR(points[i].distanceTo(center), 2 * scale, 1e-9 * scale);
            EXPECT_LT(2 * scale - middle.distanceTo(center), 0.00101);
        }
    }
}

TEST(Curves, ArcFormsAgree) {
    TestSource source;
    const KeepingSink sink = flattened(source, [](AcGiWorldDraw& draw) {
        const double h = std::sqrt(0.5);
        draw.geometry().circularArc({0, 0, 0}, 1, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, pi / 2);
        draw.geometry().circularArc({1, 0, 0}, {h, h, 0}, {0, 1, 0});
        draw.geometry().ellipticalArc({0, 0, 0}, AcGeVector3d::kZAxis, 1, 1, 0, pi / 2, 0);
        draw.geometry().circularArc({0, 0, 0}, 1, -AcGeVector3d::kZAxis, AcGeVector3d::kYAxis, pi / 2);
    });
    ASSERT_EQ(sink.lines.size(), 4u);
    for (const auto& drawn : sink.lines) {
        EXPECT_NEAR(lengthOf(drawn.points), pi / 2, 0.02);
        for (const AcGePoint3d& point : drawn.points)
            EXPECT_TRUE(point.x > -1e-9 && point.y > -1e-9);
    }
    EXPECT_TRUE(sink.lines[3].points.front().isEqualTo({0, 1, 0}, AcGeTol()));
}

TEST(Curves, SectorsAndChordsClose) {
    TestSource source;
    const auto draw = [](AcGiArcType type, AcGiFillType fill) {
        return [=](AcGiWorldDraw& world) {
            world.subEntityTraits().setFillType(fill);
            world.geometry().circularArc({0, 0, 0}, 2, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, pi, type);
        };
    };
    const KeepingSink sector = flattened(source, draw(kAcGiArcSector, kAcGiFillNever));
    EXPECT_NEAR(lengthOf(sector.lines[0].points), 2 * pi + 4, 0.05);
    const KeepingSink chord = flattened(source, draw(kAcGiArcChord, kAcGiFillAlways));
    ASSERT_EQ(chord.areas.size(), 1u);
    EXPECT_NEAR(enclosed(chord.areas[0]), 2 * pi, 0.05);
}

TEST(Curves, BulgesGiveTheArcBetweenTheirPoints) {
    for (const double bulge : {1.0, -1.0, 0.3, -2.5, 1e-4}) {
        const Arc arc = arcOfBulge(1, 2, 4, 6, 0, bulge);
        EXPECT_TRUE(arc.startPoint().isEqualTo({1, 2, 0}, AcGeTol()));
        EXPECT_LT(arc.endPoint().distanceTo({4, 6, 0}), 1e-9 * arc.u.length());
        // The sagitta is half the chord times the bulge, to the right of the direction for a positive one.
        const AcGePoint3d top = arc.at(arc.sweep / 2);
        const AcGeVector3d right = AcGeVector3d(4, -3, 0) / 5;
        EXPECT_NEAR((top - AcGePoint3d(2.5, 4, 0)).dotProduct(right), 2.5 * bulge, 1e-7);
    }
}

TEST(Curves, BezierCurvesFollowTheirArc) {
    WorldPath path;
    const Arc arc{{10, 0, 0}, {5, 0, 0}, {0, 3, 0}, 0.3, 5};
    path.move(arc.startPoint());
    appendCurves(arc, path);
    for (std::size_t i = 0; i + 3 < path.points.size(); i += 3)
        for (const double t : {0.25, 0.5, 0.75}) {
            const double s = 1 - t;
            const AcGeVector3d point =
                path.points[i].asVector() * (s * s * s) + path.points[i + 1].asVector() * (3 * s * s * t) +
                path.points[i + 2].asVector() * (3 * s * t * t) + path.points[i + 3].asVector() * (t * t * t);
            EXPECT_NEAR(std::hypot((point.x - 10) / 5, point.y / 3), 1, 1e-5);
        }
    EXPECT_TRUE(path.points.back().isEqualTo(arc.endPoint(), AcGeTol()));
}

TEST(Curves, SmallArcsHaveFewCurvesWithinTheDeviation) {
    constexpr double deviation = 0.005;
    std::size_t fewest = 100, most = 0;
    for (const double radius : {0.01, 0.2, 1.0, 3.0, 20.0, 500.0}) {
        for (const double sweep : {0.2, 1.5, 2.0, -3.5, 2 * pi}) {
            const Arc arc{{10, 0, 0}, {radius, 0, 0}, {0, radius, 0}, 0.3, sweep};
            WorldPath path;
            path.move(arc.startPoint());
            appendCurves(arc, path, deviation);
            for (std::size_t i = 0; i + 3 < path.points.size(); i += 3)
                for (double t = 0.05; t < 1; t += 0.05) {
                    const double s = 1 - t;
                    const AcGePoint3d point = AcGePoint3d(path.points[i] * (s * s * s)) +
                                              path.points[i + 1].asVector() * (3 * s * s * t) +
                                              path.points[i + 2].asVector() * (3 * s * t * t) +
                                              path.points[i + 3].asVector() * (t * t * t);
                    ASSERT_NEAR(point.distanceTo(arc.center), radius, deviation) << radius << ' ' << sweep;
                }
            EXPECT_LT(path.points.back().distanceTo(arc.endPoint()), 1e-9 * radius);
            if (sweep == 2 * pi) {
                fewest = std::min(fewest, path.verbs.size() - 1);
                most = std::max(most, path.verbs.size() - 1);
            }
        }
    }
    EXPECT_EQ(fewest, 3U);
    EXPECT_GT(most, 6U);
}

TEST(Looks, AreResolvedByLayerAndByBlock) {
    TestSource source;
    source.layers[0]->color = LayerLook::colorOf(2);
    LayerLook& road = source.addLayer(3);
    road.lineWeight = AcDb::kLnWt050;
    LayerLook& house = source.addLayer(5);
    house.lineWeight = AcDb::kLnWt013;
    // A block on layer 1 that draws lines with various looks.
    const struct {
        int layer, color;
        AcDb::LineWeight weight;
        int expectedColor;
        AcDb::LineWeight expectedWeight;
    } cases[] = {
        {0, 256, AcDb::kLnWtByLayer, 3, AcDb::kLnWt050}, // layer 0 takes the reference's layer
        {2, 256, AcDb::kLnWtByLayer, 5, AcDb::kLnWt013},
        {2, 0, AcDb::kLnWtByBlock, 1, AcDb::kLnWt200}, // by block takes the reference's own
        {2, 6, AcDb::kLnWt070, 6, AcDb::kLnWt070},
        {2, 256, AcDb::kLnWtByLwDefault, 5, AcDb::kLnWt025},
    };
    std::vector<std::unique_ptr<TestDrawable>> parts;
    for (const auto& row : cases)
        parts.push_back(std::make_unique<TestDrawable>(
            [&row](AcGiDrawableTraits& traits) {
                traits.setLayer({row.layer});
                traits.setColor(static_cast<Adesk::UInt16>(row.color));
                traits.setLineWeight(row.weight);
                return static_cast<Adesk::UInt32>(AcGiDrawable::kDrawableIsAnEntity);
            },
            [](AcGiWorldDraw& draw) {
                line(draw, {0, 0, 0}, {1, 0, 0});
            }));
    TestDrawable definition(
        [](AcGiDrawableTraits&) {
            return static_cast<Adesk::UInt32>(AcGiDrawable::kDrawableIsBlockDefinition);
        },
        [&](AcGiWorldDraw& draw) {
            for (const auto& part : parts)
                draw.geometry().draw(part.get());
        });
    TestDrawable reference(
        [](AcGiDrawableTraits& traits) {
            traits.setLayer({1});
            traits.setColor(1);
            traits.setLineWeight(AcDb::kLnWt200);
            return static_cast<Adesk::UInt32>(AcGiDrawable::kDrawableIsCompoundObject);
        },
        [&](AcGiWorldDraw& draw) { draw.geometry().draw(&definition); });
    const KeepingSink sink = flattened(source, reference);
    ASSERT_EQ(sink.lines.size(), std::size(cases));
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(sink.lines[i].pen.color.colorIndex(), cases[i].expectedColor) << "case " << i;
        EXPECT_EQ(sink.lines[i].pen.lineWeight, cases[i].expectedWeight) << "case " << i;
    }
    // Outside a block layer 0 is itself and by block is the foreground.
    KeepingSink alone = flattened(source, *parts[0]);
    EXPECT_EQ(alone.lines[0].pen.color.colorIndex(), 2);
    alone = flattened(source, *parts[2]);
    EXPECT_TRUE(alone.lines[0].pen.color.isForeground());
}

TEST(Looks, HiddenLayersAreLeftOut) {
    TestSource source;
    source.addLayer(1).isOff = true;
    source.addLayer(1).isFrozen = true;
    source.addLayer(1).isPlottable = false;
    const auto onLayer = [](int layer, Adesk::UInt32 flags, std::function<void(AcGiWorldDraw&)> draw) {
        return TestDrawable(
            [=](AcGiDrawableTraits& traits) {
                traits.setLayer({layer});
                return flags;
            },
            std::move(draw));
    };
    const auto drawLine = [](AcGiWorldDraw& draw) { line(draw, {0, 0, 0}, {1, 0, 0}); };
    TestDrawable visible = onLayer(0, 0, drawLine);
    FlattenOptions plot;
    plot.isPlot = true;
    for (const int layer : {1, 2, 3}) {
        TestDrawable hidden = onLayer(layer, 0, drawLine);
        EXPECT_TRUE(flattened(source, hidden, plot).isEmpty()) << layer;
        EXPECT_EQ(flattened(source, hidden).isEmpty(), layer != 3) << layer;
        // Of a reference on a layer that is off, parts on other layers stay; on a frozen one nothing does.
        TestDrawable reference =
            onLayer(layer, AcGiDrawable::kDrawableIsCompoundObject, [&](AcGiWorldDraw& draw) {
                draw.geometry().draw(&visible);
                line(draw, {5, 5, 0}, {6, 6, 0});
            });
        const KeepingSink sink = flattened(source, reference, plot);
        EXPECT_EQ(sink.lines.size(), layer == 2 ? 0u : 1u) << layer;
    }
    TestDrawable invisible = onLayer(0, AcGiDrawable::kDrawableIsInvisible, drawLine);
    EXPECT_TRUE(flattened(source, invisible).isEmpty());
}

TEST(Looks, OfADrawableEndWithIt) {
    TestSource source;
    TestDrawable red([](AcGiWorldDraw& draw) {
        draw.subEntityTraits().setColor(1);
        line(draw, {0, 0, 0}, {1, 0, 0});
        draw.subEntityTraits().setTrueColor(AcCmEntityColor(10, 20, 30));
        line(draw, {0, 0, 0}, {1, 0, 0});
    });
    const KeepingSink sink = flattened(source, [&](AcGiWorldDraw& draw) {
        draw.subEntityTraits().setColor(4);
        draw.geometry().draw(&red);
        line(draw, {0, 0, 0}, {1, 0, 0});
    });
    ASSERT_EQ(sink.lines.size(), 3u);
    EXPECT_EQ(sink.lines[0].pen.color.colorIndex(), 1);
    EXPECT_EQ(sink.lines[1].pen.color.trueColor(), 0x0A141Eu);
    EXPECT_EQ(sink.lines[2].pen.color.colorIndex(), 4);
}

TEST(Linetypes, SetTextsAndShapesIntoTheLine) {
    TestSource source;
    LinetypeLook& gas = source.addLinetype({10, -4, 2});
    LinetypeLook::Element& text = gas.elements[1]; // stands where the gap ends
    text.inset = LinetypeLook::Element::Inset::text;
    text.text = L"GAS";
    text.format.height = 1;
    text.offsetX = -3;
    text.offsetY = -0.5;
    LinetypeLook& fence = source.addLinetype({10, -4, 2});
    fence.elements[1].inset = LinetypeLook::Element::Inset::shape;
    fence.elements[1].shapeNumber = 132;
    fence.elements[1].format.font.file = L"ltypeshp.shx";
    for (const int linetype : {1, 2}) {
        source.scale = 2;
        const KeepingSink sink = flattened(source, [&](AcGiWorldDraw& draw) {
            draw.subEntityTraits().setLineType({linetype});
            line(draw, {0, 0, 0}, {0, 96, 0}); // three patterns of 32 upwards
        });
        ASSERT_EQ(sink.texts.size(), 3u);
        const double place = 10 + 8; // the first dash lies half before the line; then the gap
        const AcGePoint3d expected(linetype == 1 ? 1 : 0, place - (linetype == 1 ? 6 : 0), 0);
        EXPECT_LT(sink.textOrigins[0].distanceTo(expected), 1e-9);
        EXPECT_EQ(sink.textAxes[0], AcGeVector3d::kYAxis);
        EXPECT_LT((sink.textOrigins[1] - sink.textOrigins[0] - AcGeVector3d(0, 32, 0)).length(), 1e-9);
    }
}

TEST(Linetypes, TurnTextsAsTheirRotationSays) {
    TestSource source;
    LinetypeLook::Element& text = source.addLinetype({4, -3, -3}).elements[1];
    text.inset = LinetypeLook::Element::Inset::text;
    text.text = L"HH";
    text.format.height = 1;
    text.offsetX = -1;
    text.offsetY = -0.5;
    const auto drawn = [&](AcGePoint3d end) {
        const KeepingSink sink = flattened(source, [&](AcGiWorldDraw& draw) {
            draw.subEntityTraits().setLineType({1});
            line(draw, {0, 0, 0}, end);
        });
        EXPECT_EQ(sink.texts.size(), 1u);
        return std::pair(sink.textOrigins.at(0), sink.textAxes.at(0));
    };
    // To the left a text stands on its head: two half dashes of 2, a gap to 5, from it one back.
    EXPECT_LT(drawn({-10, 0, 0}).first.distanceTo({-4, 0.5, 0}), 1e-9);
    EXPECT_EQ(drawn({-10, 0, 0}).second, -AcGeVector3d::kXAxis);
    // Upright it is turned about its middle; H is 2/3 wide and stands 1 apart.
    text.isUpright = true;
    EXPECT_LT(drawn({-10, 0, 0}).first.distanceTo({-4 - 5.0 / 3, -0.5, 0}), 1e-6);
    EXPECT_EQ(drawn({-10, 0, 0}).second, AcGeVector3d::kXAxis);
    EXPECT_LT(drawn({10, 0, 0}).first.distanceTo({4, -0.5, 0}), 1e-9);
    text.isUpright = false;
    text.isAbsolute = true;
    text.rotation = pi / 2;
    EXPECT_TRUE(drawn({10, 0, 0}).second.isEqualTo(AcGeVector3d::kYAxis, AcGeTol()));
    EXPECT_TRUE(drawn({0, 10, 0}).second.isEqualTo(AcGeVector3d::kYAxis, AcGeTol()));
    text.isAbsolute = false;
    EXPECT_TRUE(drawn({0, 10, 0}).second.isEqualTo(-AcGeVector3d::kXAxis, AcGeTol()));
}

// On arcs the pattern follows the curve: a quarter of radius 8 has 12.566 units, two patterns of 5 fit.
TEST(Linetypes, FollowArcs) {
    TestSource source;
    source.addLinetype({3, -2});
    const KeepingSink sink = flattened(source, [](AcGiWorldDraw& draw) {
        draw.subEntityTraits().setLineType({1});
        draw.geometry().circularArc({0, 0, 0}, 8, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, pi / 2);
    });
    const double end = (4 * pi - 10 + 3) / 2;
    const std::pair<double, double> expected[] = {{0, end}, {end + 2, end + 5}, {4 * pi - end, 4 * pi}};
    ASSERT_EQ(sink.lines.size(), std::size(expected));
    const auto distance = [](const AcGePoint3d& point) { return 8 * std::atan2(point.y, point.x); };
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_NEAR(distance(sink.lines[i].points.front()), expected[i].first, 0.02) << i;
        EXPECT_NEAR(distance(sink.lines[i].points.back()), expected[i].second, 0.02) << i;
    }
}

struct DashCase {
    std::vector<double> pattern;
    double length, scale;
    std::vector<std::pair<double, double>> expected;
};

TEST(Linetypes, AreAlignedToBothEnds) {
    const DashCase cases[] = {
        // One pattern of 3 fits into 4: the ends take (4 - 3 + 2) / 2 each.
        {{2, -1}, 4, 1, {{0, 1.5}, {2.5, 4}}},
        {{2, -1}, 3, 1, {{0, 1}, {2, 3}}},
        {{2, -1}, 2.9, 1, {{0, 2.9}}}, // too short for one pattern
        {{2, -1}, 8, 2, {{0, 3}, {5, 8}}},
        {{3, -1, 0, -1}, 10, 1, {{0, 1.5}, {2.5, 2.5}, {3.5, 6.5}, {7.5, 7.5}, {8.5, 10}}},
        {{0, -2}, 5, 1, {{0, 0}, {2.5, 2.5}, {5, 5}}}, // dots are spread out to both ends
        {{-1, 1}, 3, 1, {{1, 2}}},                     // starts with a gap: as it comes
    };
    for (const DashCase& row : cases) {
        TestSource source;
        source.scale = row.scale;
        source.addLinetype(row.pattern);
        const KeepingSink sink = flattened(source, [&](AcGiWorldDraw& draw) {
            draw.subEntityTraits().setLineType({1});
            line(draw, {0, 0, 0}, {row.length, 0, 0});
        });
        std::vector<std::pair<double, double>> drawn;
        for (const auto& piece : sink.lines)
            drawn.emplace_back(piece.points.front().x, piece.points.back().x);
        for (const AcGePoint3d& dot : sink.dots)
            drawn.emplace_back(dot.x, dot.x);
        std::ranges::sort(drawn);
        ASSERT_EQ(drawn.size(), row.expected.size()) << "length " << row.length;
        for (std::size_t i = 0; i < drawn.size(); ++i) {
            EXPECT_NEAR(drawn[i].first, row.expected[i].first, 1e-9);
            EXPECT_NEAR(drawn[i].second, row.expected[i].second, 1e-9);
        }
    }
}

TEST(Linetypes, KeepTheirInkShareAndEndsForAnyLength) {
    TestSource source;
    source.addLinetype({12.7, -6.35, 3, -2});
    for (double length = 1; length < 2000; length *= 1.37) {
        const KeepingSink sink = flattened(source, [&](AcGiWorldDraw& draw) {
            draw.subEntityTraits().setLineType({1});
            line(draw, {0, 0, 0}, {0.6 * length, 0.8 * length, 0});
        });
        EXPECT_TRUE(sink.lines.front().points.front().isEqualTo({0, 0, 0}, AcGeTol()));
        EXPECT_LT(sink.lines.back().points.back().distanceTo({0.6 * length, 0.8 * length, 0}), 1e-6);
        double ink = 0;
        for (const auto& piece : sink.lines)
            ink += lengthOf(piece.points);
        const double patterns = std::floor(length / 24.05 + 1e-9);
        EXPECT_NEAR(ink, length - patterns * 8.35, 1e-6);
    }
}

TEST(Linetypes, RunOverVerticesOnlyWhereGenerated) {
    TestSource source;
    source.addLinetype({2, -1});
    // Three segments of 2.9, each too short for a pattern of 3, the whole of it not.
    AcDbPolyline polyline =
        lightPolyline({{0, 0, 0, 0, 0}, {2.9, 0, 0, 0, 0}, {5.8, 0, 0, 0, 0}, {8.7, 0, 0, 0, 0}});
    for (const bool generated : {false, true}) {
        polyline.geometry.generatesLinetype = generated;
        const KeepingSink sink = flattened(source, [&](AcGiWorldDraw& draw) {
            draw.subEntityTraits().setLineType({1});
            draw.geometry().pline(polyline);
        });
        double ink = 0;
        for (const auto& piece : sink.lines)
            ink += lengthOf(piece.points);
        EXPECT_NEAR(ink, generated ? 6.7 : 8.7, 1e-9);
    }
}

TEST(Linetypes, BelowTheResolutionOrTooManyAreContinuous) {
    TestSource source;
    source.addLinetype({2, -1});
    FlattenOptions options;
    options.dashResolution = 3.1;
    const auto draw = [](double length) {
        return [=](AcGiWorldDraw& world) {
            world.subEntityTraits().setLineType({1});
            line(world, {0, 0, 0}, {length, 0, 0});
        };
    };
    EXPECT_EQ(flattened(source, draw(100), options).lines.size(), 1u);
    EXPECT_EQ(flattened(source, draw(100)).lines.size(), 34u);
    EXPECT_EQ(flattened(source, draw(1e12)).lines.size(), 1u);
}

TEST(Widths, FillTheAreaOfTheirSegments) {
    TestSource source;
    FlattenOptions options;
    options.deviation = 1e-4;
    const struct {
        AcDbPolyline polyline;
        double area;
    } cases[] = {
        {lightPolyline({{0, 0, 0, 2, 2}, {10, 0, 0, 2, 2}}), 20},
        {lightPolyline({{0, 0, 0, 2, 2}, {10, 0, 0, 2, 2}, {10, 10, 0, 2, 2}}), 40}, // a mitred corner
        {lightPolyline({{0, 0, 0, 0, 4}, {10, 0, 0, 0, 0}}), 20},                    // an arrow
        {lightPolyline({{0, 0, 0, 1, 1}, {10, 0, 0, 1, 1}, {10, 10, 0, 1, 1}, {0, 10, 0, 1, 1}}, true),
         40},                                                                                     // a frame
        {lightPolyline({{-5, 0, 1, 1, 1}, {5, 0, 1, 1, 1}}, true), pi * (5.5 * 5.5 - 4.5 * 4.5)}, // a ring
        {lightPolyline({{0, 0, 0, 2, 2}, {0, 0, 0, 2, 2}, {10, 0, 0, 2, 2}}), 20}, // a repeated point
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const KeepingSink sink = flattened(
            source, [&](AcGiWorldDraw& draw) { draw.geometry().pline(cases[i].polyline); }, options);
        double sum = 0;
        for (const auto& area : sink.areas)
            sum += enclosed(area);
        EXPECT_NEAR(sum, cases[i].area, 0.02) << "case " << i;
        EXPECT_TRUE(sink.lines.empty()) << "case " << i;
    }
}

TEST(Widths, SharpCornersAndJumpsAreNotMitred) {
    TestSource source;
    const KeepingSink sharp = flattened(source, [&](AcGiWorldDraw& draw) {
        draw.geometry().pline(lightPolyline({{0, 0, 0, 1, 1}, {10, 0, 0, 1, 1}, {0, 0.5, 0, 1, 1}}));
    });
    double farthest = 0;
    for (const auto& area : sharp.areas)
        for (const AcGePoint3d& point : area.points)
            farthest = std::max(farthest, point.x);
    EXPECT_LT(farthest, 10.6);
    const KeepingSink jump = flattened(source, [&](AcGiWorldDraw& draw) {
        draw.geometry().pline(lightPolyline({{0, 0, 0, 1, 1}, {10, 0, 0, 4, 4}, {20, 0, 0, 1, 1}}));
    });
    ASSERT_EQ(jump.areas.size(), 1u);
    EXPECT_NEAR(enclosed(jump.areas[0]), 50, 1e-9);
}

TEST(Widths, NarrowStretchesStayLinesAndFillModeDrawsOutlines) {
    TestSource source;
    const AcDbPolyline polyline =
        lightPolyline({{0, 0, 0, 0, 0}, {10, 0, 0, 2, 2}, {20, 0, 0, 0, 0}, {30, 0, 0, 0, 0}});
    const auto draw = [&](AcGiWorldDraw& world) { world.geometry().pline(polyline); };
    KeepingSink sink = flattened(source, draw);
    EXPECT_EQ(sink.lines.size(), 2u);
    EXPECT_EQ(sink.areas.size(), 1u);
    source.fills = false;
    sink = flattened(source, draw);
    EXPECT_EQ(sink.lines.size(), 3u);
    EXPECT_TRUE(sink.areas.empty());
    // A part of the segments can be asked for.
    sink = flattened(source, [&](AcGiWorldDraw& world) { world.geometry().pline(polyline, 2, 1); });
    ASSERT_EQ(sink.lines.size(), 1u);
    EXPECT_EQ(sink.lines[0].points.front(), AcGePoint3d(20, 0, 0));
    sink = flattened(source, [&](AcGiWorldDraw& world) { world.geometry().pline(polyline, 7, 9); });
    EXPECT_TRUE(sink.isEmpty());
}

TEST(Shapes, FacesShowEdgesOrFill) {
    TestSource source;
    const AcGePoint3d corners[] = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
    const Adesk::Int32 faces[] = {4, 0, 1, 2, 3, 3, 0, 1, 99, -3, 0, 1};
    const Adesk::UInt8 visibility[] = {kAcGiVisible, kAcGiInvisible, kAcGiVisible, kAcGiVisible,
                                       kAcGiVisible, kAcGiVisible,   kAcGiVisible};
    AcGiEdgeData edges;
    edges.setVisibility(visibility);
    KeepingSink sink = flattened(source, [&](AcGiWorldDraw& draw) {
        draw.geometry().shell(4, corners, std::size(faces), faces, &edges);
    });
    EXPECT_EQ(sink.lines.size(), 5u); // three of the square; of the damaged faces only what is whole
    sink = flattened(source, [&](AcGiWorldDraw& draw) {
        draw.subEntityTraits().setFillType(kAcGiFillAlways);
        draw.geometry().mesh(2, 2, corners);
        draw.geometry().polygon(4, corners);
        const Adesk::UInt32 counts[] = {4, 4};
        const AcGePoint3d both[] = {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0},
                                    {1, 1, 0}, {1, 2, 0}, {2, 2, 0}, {2, 1, 0}};
        draw.geometry().polyPolygon(2, counts, both);
    });
    ASSERT_EQ(sink.areas.size(), 3u);
    EXPECT_NEAR(enclosed(sink.areas[2]), 80, 1e-9);
    EXPECT_EQ(sink.areas[2].rule, FillRule::evenOdd);
}

TEST(Shapes, AreasHaveHolesAndAreLeftOutWhereFillingIsOff) {
    const auto draw = [](AcGiWorldDraw& world) {
        world.subEntityTraits().setFillType(kAcGiFillAlways);
        const AcGePoint3d points[] = {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0},
                                      {2, 2, 0}, {2, 5, 0}, {5, 2, 0}};
        const Adesk::UInt32 counts[] = {4, 3};
        world.geometry().polyPolygon(2, counts, points);
    };
    TestSource source;
    KeepingSink sink = flattened(source, draw);
    ASSERT_EQ(sink.areas.size(), 1u);
    EXPECT_EQ(sink.areas[0].rule, FillRule::evenOdd);
    EXPECT_EQ(sink.areas[0].ends, (std::vector<std::uint32_t>{4, 7}));
    source.fills = false;
    EXPECT_TRUE(flattened(source, draw).isEmpty());
}

TEST(Shapes, InfiniteLinesReachTheBordersOfTheView) {
    TestSource source;
    FlattenOptions options;
    options.view = {{-10, -10, 0}, {10, 10, 0}};
    const auto draw = [](AcGiWorldDraw& world) {
        world.geometry().xline({0, 0, 0}, {1, 1, 0});
        world.geometry().ray({0, 5, 0}, {-1, 5, 0});
        world.geometry().xline({0, 50, 0}, {1, 50, 0}); // passes outside
        world.geometry().ray({20, 0, 0}, {21, 0, 0});   // leads away
        world.geometry().xline({1, 1, 0}, {1, 1, 0});   // no direction
    };
    const KeepingSink sink = flattened(source, draw, options);
    ASSERT_EQ(sink.lines.size(), 2u);
    EXPECT_EQ(sink.lines[0].points, (std::vector<AcGePoint3d>{{-10, -10, 0}, {10, 10, 0}}));
    EXPECT_EQ(sink.lines[1].points, (std::vector<AcGePoint3d>{{0, 5, 0}, {-10, 5, 0}}));
    EXPECT_TRUE(flattened(source, draw).isEmpty());
}

TEST(Shapes, TextLiesInItsPlane) {
    TestSource source;
    const KeepingSink sink = flattened(source, [](AcGiWorldDraw& draw) {
        draw.geometry().pushModelTransform(AcGeMatrix3d::translation({100, 0, 0}));
        draw.geometry().text({1, 2, 3}, AcGeVector3d::kZAxis, {0, 5, 0}, 2, 1, 0, L"A%%dB");
        AcGiTextStyle style;
        style.setTextSize(2);
        draw.geometry().text({1, 2, 3}, -AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, L"raw%%d!", 5, true,
                             style);
        draw.geometry().text({1, 2, 3}, {}, {}, 2, 1, 0, L"C"); // no directions: the world's
    });
    ASSERT_EQ(sink.texts.size(), 3u);
    EXPECT_EQ(sink.texts[0], L"A\xB0"
                             L"B");
    EXPECT_EQ(sink.texts[1], L"raw%%");
    EXPECT_EQ(sink.textOrigins[0], AcGePoint3d(101, 2, 3));
    EXPECT_EQ(sink.textAxes[0], AcGeVector3d::kYAxis);
}

TEST(Shapes, ViewportDrawingIsUsedWhereWorldDrawingAsksForIt) {
    TestSource source;
    TestDrawable drawable([](AcGiWorldDraw&) {});
    drawable.viewportDrawing = [](AcGiViewportDraw& draw) {
        const AcGePoint3d points[] = {{0, 0, 0}, {1, 1, 0}};
        draw.geometry().polylineEye(2, points);
        EXPECT_EQ(draw.viewport().viewDir(), AcGeVector3d::kZAxis);
    };
    EXPECT_EQ(flattened(source, drawable).lines.size(), 1u);
}

TEST(Hostile, NumbersThatAreNoneAreLeftOut) {
    TestSource source;
    source.addLinetype({2, -1});
    const double values[] = {std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity(), -1e308, 1e308};
    for (const double bad : values)
        for (const int linetype : {0, 1}) {
            const KeepingSink sink = flattened(source, [&](AcGiWorldDraw& draw) {
                draw.subEntityTraits().setLineType({linetype});
                line(draw, {bad, 0, 0}, {1, 0, 0});
                draw.geometry().circle({0, 0, 0}, bad, AcGeVector3d::kZAxis);
                draw.geometry().circle({bad, 0, 0}, 1, {bad, 0, 1});
                draw.geometry().circle({bad, 0, 0}, {1, 0, 0}, {0, 1, 0});
                draw.geometry().circularArc({0, 0, 0}, 1, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, bad);
                draw.geometry().ellipticalArc({0, 0, 0}, AcGeVector3d::kZAxis, bad, bad, bad, bad, bad);
                draw.geometry().text({0, 0, 0}, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, bad, bad, bad,
                                     L"A");
                draw.geometry().pline(
                    lightPolyline({{0, 0, bad, bad, bad}, {bad, 1, 1, 1, 1}, {2, 2, 0, 0, 0}}, true));
                draw.geometry().pushModelTransform(AcGeMatrix3d::scaling(bad));
                line(draw, {0, 0, 0}, {1, 1, 1});
                draw.geometry().xline({0, 0, 0}, {1, 1, 1});
            });
            for (const auto& drawn : sink.lines)
                for (const AcGePoint3d& point : drawn.points)
                    EXPECT_TRUE(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z));
        }
}

TEST(Hostile, CyclesAndFloodsEnd) {
    TestSource source;
    TestDrawable cycle(nullptr);
    int visits = 0;
    cycle.drawing = [&](AcGiWorldDraw& draw) {
        ++visits;
        draw.geometry().draw(&cycle);
    };
    flattened(source, cycle);
    EXPECT_LT(visits, 1000);

    FlattenOptions options;
    options.primitiveLimit = 1000;
    TestDrawable flood(nullptr);
    flood.drawing = [&](AcGiWorldDraw& draw) {
        line(draw, {0, 0, 0}, {1, 0, 0});
        if (!draw.geometry().draw(&flood))
            draw.geometry().draw(&flood);
    };
    KeepingSink sink;
    Flattener flattener(source, sink, options);
    flattener.draw(flood);
    EXPECT_TRUE(flattener.isAborted());
    EXPECT_EQ(sink.lines.size(), 1000u);
}

TEST(Extents, OfCurvesAreExact) {
    TestSource source;
    ExtentsSink extents;
    Flattener flattener(source, extents, {});
    TestDrawable drawable([](AcGiWorldDraw& draw) {
        draw.geometry().circularArc({0, 0, 0}, 10, AcGeVector3d::kZAxis, {1, 1, 0}, pi / 2); // over the top
    });
    flattener.draw(drawable);
    EXPECT_NEAR(extents.max().y, 10, 1e-4);
    EXPECT_NEAR(extents.min().x, -std::sqrt(50), 1e-9);
    EXPECT_NEAR(extents.max().x, std::sqrt(50), 1e-9);
    EXPECT_NEAR(extents.min().y, std::sqrt(50), 1e-9);
}

} // namespace
} // namespace host
