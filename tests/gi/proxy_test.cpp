// Proxy graphics: what is recorded plays back as the same picture; damaged data ends quietly.
#include "drawing_fixture.h"

#include "host/gi/proxychunks.h"
#include "host/gi/proxygraphics.h"

#include <gtest/gtest.h>
#include <numbers>
#include <random>

namespace host {
namespace {

constexpr double pi = std::numbers::pi;

KeepingSink played(TestSource& source, std::string_view data, bool* isWhole = nullptr) {
    KeepingSink sink;
    Flattener flattener(source, sink, {});
    ProxyGraphicsOptions options;
    options.source = &source;
    const bool whole = playProxyGraphics(data, flattener.worldDraw(), options);
    if (isWhole)
        *isWhole = whole;
    return sink;
}

// A drawable that uses everything.
void drawAll(AcGiWorldDraw& draw) {
    AcGiWorldGeometry& geometry = draw.geometry();
    AcGiSubEntityTraits& traits = draw.subEntityTraits();
    const AcGePoint3d points[] = {{0, 0, 0}, {10, 0, 0}, {10, 5, 0}, {0, 5, 0}};
    geometry.polyline(4, points);
    traits.setColor(3);
    traits.setLineWeight(AcDb::kLnWt050);
    traits.setLineType({1});
    traits.setLineTypeScale(0.5);
    geometry.circle({20, 0, 0}, 3, AcGeVector3d::kZAxis);
    traits.setTrueColor(AcCmEntityColor(1, 2, 3));
    traits.setLineType({0});
    geometry.circularArc({30, 0, 0}, 3, -AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 2, kAcGiArcSector);
    geometry.ellipticalArc({40, 0, 0}, AcGeVector3d::kZAxis, 4, 2, 0, pi, 0.3);
    traits.setFillType(kAcGiFillAlways);
    geometry.polygon(3, points);
    const Adesk::UInt32 counts[] = {4, 3};
    const AcGePoint3d holed[] = {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0}, {1, 1, 0}, {2, 2, 0}, {2, 1, 0}};
    geometry.polyPolygon(2, counts, holed);
    traits.setFillType(kAcGiFillNever);
    traits.setLayer({1});
    geometry.pushModelTransform(AcGeMatrix3d::translation({0, 100, 0}));
    geometry.mesh(2, 2, points);
    const Adesk::Int32 faces[] = {3, 0, 1, 2};
    geometry.shell(4, points, 4, faces);
    geometry.popModelTransform();
    geometry.text({1, 2, 0}, AcGeVector3d::kZAxis, AcGeVector3d::kYAxis, 2, 0.8, 0.1, L"线路 %%d A");
    AcGiTextStyle style;
    style.setTextSize(3);
    style.setFont(L"宋体", true, false, 134, 2);
    style.setBigFontFileName(L"gbcbig.shx");
    style.setVertical(true);
    geometry.text({5, 2, 0}, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, L"竖排 text", 3, true, style);
    AcDbPolyline polyline;
    polyline.geometry.vertices = {{0, 0, 0.5, 0, 0}, {10, 0, 0, 0, 0}, {10, 10, 0, 0.5, 1}, {0, 10, 0, 0, 0}};
    polyline.geometry.isClosed = true;
    geometry.pline(polyline);
}

double inkOf(const KeepingSink& sink) {
    double sum = 0;
    for (const auto& line : sink.lines)
        for (std::size_t i = 1; i < line.points.size(); ++i)
            sum += line.points[i].distanceTo(line.points[i - 1]);
    return sum;
}

double filledOf(const KeepingSink& sink) {
    double sum = 0;
    for (const auto& area : sink.areas)
        sum += enclosed(area);
    return sum;
}

TEST(ProxyGraphics, PlaysBackTheSamePicture) {
    TestSource source;
    source.addLayer(6);
    source.addLinetype({2, -1});
    TestDrawable drawable(drawAll);
    FlattenOptions options;
    options.regenType = kAcGiSaveWorldDrawForProxy;
    const KeepingSink direct = flattened(source, drawable, options);
    const std::string data = recordProxyGraphics(drawable, source);
    bool isWhole = false;
    const KeepingSink again = played(source, data, &isWhole);
    EXPECT_TRUE(isWhole);
    EXPECT_EQ(again.texts, direct.texts);
    EXPECT_NEAR(inkOf(again), inkOf(direct), 0.02);
    EXPECT_NEAR(filledOf(again), filledOf(direct), 1e-6);
    ASSERT_FALSE(again.lines.empty());
    EXPECT_EQ(again.lines.front().pen, direct.lines.front().pen);
    EXPECT_EQ(again.lines.back().pen.color, direct.lines.back().pen.color);
    const auto countOf = [](const KeepingSink& sink, int color, AcDb::LineWeight weight) {
        return std::ranges::count_if(sink.lines, [&](const KeepingSink::Line& line) {
            return line.pen.color.colorIndex() == color && line.pen.lineWeight == weight;
        });
    };
    EXPECT_GT(countOf(direct, 3, AcDb::kLnWt050), 10); // the dashes of the circle
    EXPECT_EQ(countOf(again, 3, AcDb::kLnWt050), countOf(direct, 3, AcDb::kLnWt050));
}

TEST(ProxyGraphics, HasTheHeadAndChunksOtherProgramsExpect) {
    TestSource source;
    TestDrawable drawable([](AcGiWorldDraw& draw) {
        draw.subEntityTraits().setColor(1);
        draw.geometry().circle({1, 2, 3}, 4, AcGeVector3d::kZAxis);
    });
    const std::string data = recordProxyGraphics(drawable, source);
    ProxyReader reader(data);
    EXPECT_EQ(static_cast<std::size_t>(reader.integer()), data.size());
    EXPECT_EQ(reader.integer(), 3);
    const auto head = [&](ProxyChunk type, int size) {
        EXPECT_EQ(reader.integer(), size);
        EXPECT_EQ(reader.integer(), static_cast<int>(type));
    };
    head(ProxyChunk::extents, 8 + 48);
    EXPECT_LT(reader.point().distanceTo({-3, -2, 3}), 1e-4);
    EXPECT_LT(reader.point().distanceTo({5, 6, 3}), 1e-4);
    head(ProxyChunk::color, 12);
    EXPECT_EQ(reader.integer(), 1);
    head(ProxyChunk::circle, 8 + 56);
    EXPECT_EQ(reader.point(), AcGePoint3d(1, 2, 3));
    EXPECT_EQ(reader.number(), 4);
    EXPECT_EQ(reader.vector(), AcGeVector3d::kZAxis);
    EXPECT_TRUE(reader.isGood());
    EXPECT_EQ(reader.remaining(), 0u);
    TestDrawable nothing([](AcGiWorldDraw&) {});
    EXPECT_TRUE(recordProxyGraphics(nothing, source).empty());
}

TEST(ProxyGraphics, ReadsTheTextsOfOlderFiles) {
    ProxyWriter writer;
    writer.begin(ProxyChunk::text);
    for (const AcGePoint3d& point : {AcGePoint3d(1, 1, 0), AcGePoint3d(0, 0, 1), AcGePoint3d(1, 0, 0)})
        writer.point(point);
    for (const double number : {2.0, 1.0, 0.0})
        writer.number(number);
    writer.integer(0x00C4D6CE); // two bytes of a Chinese code page, a letter's code, zero
    writer.end();
    TestSource source;
    KeepingSink sink;
    Flattener flattener(source, sink, {});
    ProxyGraphicsOptions options;
    const std::string data = std::string(8, '\0') + writer.bytes();
    EXPECT_TRUE(playProxyGraphics(data, flattener.worldDraw(), options));
    options.decodeText = [](std::string_view bytes) { return std::wstring(bytes.size(), L'x'); };
    EXPECT_TRUE(playProxyGraphics(data, flattener.worldDraw(), options));
    EXPECT_EQ(sink.texts, (std::vector<std::wstring>{L"\xCE\xD6\xC4", L"xxx"}));
}

TEST(ProxyGraphics, NestedDrawablesTakeTheirParentsLooks) {
    TestSource source;
    TestDrawable child(
        [](AcGiDrawableTraits& traits) {
            traits.setColor(0);
            return 0u;
        },
        [](AcGiWorldDraw& draw) {
            const AcGePoint3d points[] = {{0, 0, 0}, {1, 0, 0}};
            draw.geometry().pushModelTransform(AcGeMatrix3d::scaling(7));
            draw.geometry().polyline(2, points);
        });
    TestDrawable parent(
        [](AcGiDrawableTraits& traits) {
            traits.setColor(5);
            return 0u;
        },
        [&](AcGiWorldDraw& draw) {
            draw.subEntityTraits().setColor(2);
            draw.geometry().draw(&child);
            draw.subEntityTraits().setColor(4);
            draw.geometry().circle({0, 0, 0}, 1, AcGeVector3d::kZAxis);
        });
    const KeepingSink sink = played(source, recordProxyGraphics(parent, source));
    ASSERT_EQ(sink.lines.size(), 2u);
    EXPECT_EQ(sink.lines[0].pen.color.colorIndex(), 2);
    EXPECT_EQ(sink.lines[0].points[1], AcGePoint3d(7, 0, 0));
    EXPECT_EQ(sink.lines[1].pen.color.colorIndex(), 4);
    EXPECT_LE(sink.lines[1].points[0].distanceTo({0, 0, 0}), 1.001);
}

TEST(ProxyGraphics, DamageEndsQuietly) {
    TestSource source;
    source.addLayer(6);
    source.addLinetype({2, -1});
    TestDrawable drawable(drawAll);
    const std::string data = recordProxyGraphics(drawable, source);
    for (std::size_t length = 0; length < data.size(); length += 3)
        played(source, data.substr(0, length));
    bool isWhole = true;
    played(source, data.substr(0, data.size() - 1), &isWhole);
    EXPECT_FALSE(isWhole);
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string damaged = data;
        for (int i = 0; i < 4; ++i)
            damaged[8 + random() % (damaged.size() - 8)] = static_cast<char>(random());
        played(source, damaged);
    }
}

TEST(ProxyGraphics, HugeCountsAreRefusedBeforeMemoryIsTaken) {
    TestSource source;
    for (const ProxyChunk type :
         {ProxyChunk::polyline, ProxyChunk::polygon, ProxyChunk::shell, ProxyChunk::mesh}) {
        ProxyWriter writer;
        writer.begin(type);
        writer.integer(0x7FFFFFFF);
        writer.integer(0x7FFFFFFF);
        writer.end();
        EXPECT_TRUE(played(source, std::string(8, '\0') + writer.bytes()).isEmpty());
    }
    ProxyWriter writer;
    for (int i = 0; i < 100000; ++i) { // never popped
        writer.begin(ProxyChunk::pushTransform);
        writer.matrix(AcGeMatrix3d::scaling(2));
        writer.end();
    }
    EXPECT_TRUE(played(source, std::string(8, '\0') + writer.bytes()).isEmpty());
}

} // namespace
} // namespace host
