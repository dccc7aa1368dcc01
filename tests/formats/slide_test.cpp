// Slides: every kind of record in both byte orders, damaged files, libraries, areas cut into pieces, and
// pictures of drawings.
#include "drawings.h"

#include "host/formats/sld/slidedrawing.h"
#include "host/formats/sld/trapezoids.h"

#include <array>
#include <bit>
#include <cmath>
#include <fstream>
#include <random>

using namespace formats_test;
using host::Slide;
using host::SlidePoint;
using host::SlideShape;
using Kind = host::SlideShape::Kind;

namespace {

std::string bytesOf(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values) {
        bytes += static_cast<char>(value);
    }
    return bytes;
}

/// Level 2, 600 by 300 dots, seen twice as wide as high.
std::string header() {
    return std::string("AutoCAD Slide\r\n\x1a\0\x56\x02", 19) +
           bytesOf({0x57, 0x02, 0x2B, 0x01, 0x00, 0x2D, 0x31, 0x01, 2, 0, 0x34, 0x12});
}

Slide parsed(const std::string& bytes) {
    std::wstring message;
    const std::optional<Slide> slide = host::parseSlide(bytes, message);
    EXPECT_TRUE(slide.has_value()) << host::toUtf8(message);
    return slide.value_or(Slide());
}

std::string faultOf(const std::string& bytes) {
    std::wstring message;
    EXPECT_FALSE(host::parseSlide(bytes, message).has_value());
    EXPECT_EQ(message.find(L'\n'), std::wstring::npos);
    return host::toUtf8(message);
}

/// Shapes as text: kind, colour, corners.
std::string text(const Slide& slide) {
    std::string all;
    for (const SlideShape& shape : slide.shapes) {
        all += (shape.kind == Kind::line ? "L" : "A") + std::to_string(shape.color);
        for (const SlidePoint& point : slide.pointsOf(shape)) {
            all += " " + std::to_string(point.x) + "," + std::to_string(point.y);
        }
        all += "\n";
    }
    return all;
}

Slide randomSlide(std::mt19937& random) {
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    Slide slide{below(2000) + 100, below(1000) + 100, 1.25, {}, {}};
    for (int shapes = below(40); shapes >= 0; --shapes) {
        std::vector<SlidePoint> points(static_cast<std::size_t>(below(7) + 3));
        const int step = below(2) == 0 ? 60 : 2000;
        SlidePoint at{below(2000), below(1000)};
        for (SlidePoint& point : points) {
            at = {std::abs(at.x + below(step) - step / 2), std::abs(at.y + below(step) - step / 2)};
            point = at;
        }
        slide.add(below(3) == 0 ? Kind::area : Kind::line, static_cast<std::uint8_t>(below(256)), points);
    }
    return slide;
}

double twiceArea(std::span<const SlidePoint> points) {
    double sum = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const SlidePoint& next = points[(i + 1) % points.size()];
        sum += points[i].x * static_cast<double>(next.y) - next.x * static_cast<double>(points[i].y);
    }
    return std::fabs(sum);
}

} // namespace

TEST(Slide, everyKindOfRecord) {
    const std::string records =
        bytesOf({0x03, 0xFF,                                     // colour 3
                 0x64, 0x00, 0x32, 0x00, 0x0A, 0x00, 0x14, 0x00, // vector from 100,50 to 10,20
                 0x02, 0xFB, 0xFE, 0x04, 0x00,                   // from 100+2,50-2 to 100+4,50
                 0xF6, 0xFE, 0x05,                               // on from 102,48 to 92,53
                 0x01, 0xFF,                                     // colour 1
                 0x01, 0xFE, 0x01,                               // from 92,53 to 93,54
                 0x00, 0xFD, 0x03, 0x00, 0xFF, 0xFF,             // three corners follow
                 0x00, 0xFD, 0x00, 0x00, 0x00, 0x00,             //
                 0x00, 0xFD, 0x00, 0x01, 0x00, 0x00,             //
                 0x00, 0xFD, 0x00, 0x01, 0x10, 0x00,             //
                 0x00, 0xFD, 0x03, 0x00, 0xFE, 0xFF,             //
                 0x00, 0xFC});
    const Slide slide = parsed(header() + records + "what follows does not count");
    EXPECT_EQ(slide.width, 600);
    EXPECT_EQ(slide.height, 300);
    EXPECT_DOUBLE_EQ(slide.aspect, 2.0);
    EXPECT_EQ(text(slide), "L3 10,20 100,50\nL3 104,50 102,48 92,53\nL1 92,53 93,54\nA1 0,0 256,0 256,16\n");
}

TEST(Slide, filesOfTheOldLevel) {
    std::string bytes =
        std::string("AutoCAD Slide\r\n\x1a\0\x56\x01", 19) + bytesOf({0x3F, 0x01, 0xC7, 0x00});
    const auto aspect = std::bit_cast<std::array<char, 8>>(1.6);
    bytes.append(aspect.data(), aspect.size());
    bytes += bytesOf({2, 0, 0, 0x05, 0xFF, 1, 0, 2, 0, 3, 0, 4, 0, 0, 0xFC});
    const Slide slide = parsed(bytes);
    EXPECT_EQ(slide.width, 320);
    EXPECT_EQ(slide.height, 200);
    EXPECT_DOUBLE_EQ(slide.aspect, 1.6);
    EXPECT_EQ(text(slide), "L5 3,4 1,2\n");
}

TEST(Slide, writtenSlidesReadBackInBothByteOrders) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        const Slide slide = randomSlide(random);
        const std::string little = host::slideBytes(slide, std::endian::little);
        const std::string big = host::slideBytes(slide, std::endian::big);
        const Slide read = parsed(little);
        EXPECT_EQ(text(read), text(parsed(big)));
        EXPECT_EQ(read.width, slide.width);
        EXPECT_EQ(read.height, slide.height);
        EXPECT_EQ(read.aspect, slide.aspect);
        EXPECT_EQ(text(read), text(slide)) << "lines in random places do not join";
        EXPECT_EQ(host::slideBytes(read), little);
    }
}

TEST(Slide, shortStepsAreShortRecords) {
    Slide slide{100, 100, 1, {}, {}};
    const std::array<SlidePoint, 4> line{{{10, 10}, {20, 10}, {20, 90}, {19, 0}}};
    slide.add(Kind::line, 7, line);
    EXPECT_EQ(host::slideBytes(slide).size(), header().size() + 2 + 8 + 3 + 3 + 2);
    EXPECT_EQ(text(parsed(host::slideBytes(slide))), "L7 10,10 20,10 20,90 19,0\n");
}

TEST(Slide, damageIsToldWithItsPlace) {
    EXPECT_EQ(faultOf(""), "文件意外结束（第 0 字节）");
    EXPECT_EQ(faultOf("AutoCAD-86 1.0"), "不是幻灯片文件（第 0 字节）");
    EXPECT_EQ(faultOf(header() + bytesOf({0, 0x90})), "不认识的记录（第 31 字节）");
    EXPECT_EQ(faultOf(header() + bytesOf({0, 0xFD, 3, 0, 3, 0})), "填充多边形没有开始（第 31 字节）");
    EXPECT_EQ(faultOf(header() + bytesOf({0, 0xFD, 3, 0, 0xFF, 0xFF, 0, 0xFC})),
              "填充多边形没有结束（第 37 字节）");
    std::string level = header();
    level[18] = 9;
    EXPECT_EQ(faultOf(level), "不认识的幻灯片版本（第 18 字节）");
    std::string order = header();
    order[29] = 0;
    EXPECT_EQ(faultOf(order), "字节次序标记不对（第 29 字节）");
}

TEST(Slide, damagedFilesNeverDoMoreThanFail) {
    std::mt19937 random(11);
    for (int round = 0; round < 30; ++round) {
        const std::string whole = host::slideBytes(randomSlide(random));
        for (std::size_t size = 0; size < whole.size(); ++size) {
            faultOf(whole.substr(0, size));
        }
        for (int change = 0; change < 200; ++change) {
            std::string changed = whole;
            changed[random() % changed.size()] = static_cast<char>(random());
            std::wstring message;
            const bool isRead = host::parseSlide(changed, message).has_value();
            EXPECT_NE(isRead, !message.empty());
        }
    }
}

TEST(SlideLibrary, slidesByName) {
    std::mt19937 random(3);
    const std::array<host::NamedSlide, 2> slides{
        {{L"ROAD", randomSlide(random)}, {L"河流一二三四五六七八九十一二三四五六", randomSlide(random)}}};
    const std::string bytes = host::slideLibraryBytes(slides);
    std::wstring message;
    const auto entries = host::parseSlideLibrary(bytes, message);
    ASSERT_TRUE(entries.has_value()) << host::toUtf8(message);
    ASSERT_EQ(entries->size(), 2u);
    EXPECT_EQ(text(parsed(std::string((*entries)[0].bytes))), text(slides[0].slide));
    EXPECT_EQ((*entries)[1].name, L"河流一二三四五六七八九十一二三") << "names end between characters";

    const TemporaryFolder folder;
    std::ofstream(folder / "lib.slb", std::ios::binary) << bytes;
    const std::wstring library = (folder / "lib").wstring();
    EXPECT_EQ(text(host::readSlide(library + L"(road)", message).value_or(Slide())), text(slides[0].slide));
    EXPECT_FALSE(host::readSlide(library + L"(none)", message).has_value());
    EXPECT_NE(message.find(L"库中没有幻灯片 \"none\""), std::wstring::npos) << host::toUtf8(message);
    for (std::size_t size = 0; size < 32 + 3 * 36; ++size) {
        message.clear();
        EXPECT_FALSE(host::parseSlideLibrary(std::string_view(bytes).substr(0, size), message).has_value());
        EXPECT_FALSE(message.empty());
    }
}

TEST(Trapezoids, coverTheAreaOnce) {
    const std::vector<SlidePoint> ring{{0, 0},   {100, 0}, {100, 100}, {0, 100},
                                       {20, 20}, {20, 60}, {80, 60},   {80, 20}};
    const std::array<std::uint32_t, 2> ends{4, 8};
    double sum = 0;
    int pieces = 0;
    host::cutIntoTrapezoids(ring, ends, true, [&](std::span<const SlidePoint> piece) {
        sum += twiceArea(piece);
        ++pieces;
    });
    EXPECT_EQ(sum, 2 * (100 * 100 - 60 * 40));
    EXPECT_EQ(pieces, 4);

    // A star through its own middle: even-odd leaves the middle out, non-zero does not.
    const std::vector<SlidePoint> star{{50, 0}, {80, 95}, {2, 36}, {98, 36}, {20, 95}};
    const std::array<std::uint32_t, 1> end{5};
    const auto areaOf = [&](bool evenOdd) {
        double area = 0;
        host::cutIntoTrapezoids(star, end, evenOdd,
                                [&](std::span<const SlidePoint> piece) { area += twiceArea(piece) / 2; });
        return area;
    };
    EXPECT_GT(areaOf(false), areaOf(true) + 300);

    std::mt19937 random(5);
    for (int round = 0; round < 50; ++round) {
        std::vector<SlidePoint> polygon; // about a centre, so that it does not cross itself
        const int count = 5 + round;
        for (int i = 0; i < count; ++i) {
            const double radius = 200.0 + static_cast<double>(random() % 700);
            const double angle = 6.283185307 * i / count;
            polygon.push_back({1000 + static_cast<int>(radius * std::cos(angle)),
                               1000 + static_cast<int>(radius * std::sin(angle))});
        }
        const std::array<std::uint32_t, 1> whole{static_cast<std::uint32_t>(count)};
        double area = 0;
        host::cutIntoTrapezoids(polygon, whole, round % 2 == 0, [&](std::span<const SlidePoint> piece) {
            area += twiceArea(piece);
            EXPECT_LE(piece.size(), 4u);
        });
        EXPECT_NEAR(area, twiceArea(polygon), 0.01 * twiceArea(polygon));
    }
}

TEST(Slide, polygonsOfManyCornersAreCut) {
    Slide slide{400, 400, 1, {}, {}};
    std::vector<SlidePoint> gear;
    for (int i = 0; i < 30; ++i) {
        const double angle = 6.283185307 * i / 30;
        const double radius = i % 2 == 0 ? 190 : 120;
        gear.push_back({200 + static_cast<int>(radius * std::cos(angle)),
                        200 + static_cast<int>(radius * std::sin(angle))});
    }
    slide.add(Kind::area, 4, gear);
    const Slide read = parsed(host::slideBytes(slide));
    double area = 0;
    for (const SlideShape& shape : read.shapes) {
        EXPECT_EQ(shape.kind, Kind::area);
        EXPECT_LE(shape.count, 10u);
        area += twiceArea(read.pointsOf(shape));
    }
    EXPECT_NEAR(area, twiceArea(gear), 0.02 * twiceArea(gear));
}

TEST(SlideOfDrawing, linesAreCutAtTheBorderAndColoured) {
    const Drawing drawing(
        header("AC1015") +
        entities(groups({{0, "LINE"}, {8, "0"}, {62, "1"}, {10, "-100"}, {20, "0"}, {11, "100"}, {21, "0"}}) +
                 groups({{0, "LINE"}, {8, "0"}, {10, "0"}, {20, "500"}, {11, "9"}, {21, "500"}}) +
                 groups({{0, "SOLID"},
                         {8, "0"},
                         {62, "3"},
                         {10, "0"},
                         {20, "0"},
                         {11, "5"},
                         {21, "0"},
                         {12, "0"},
                         {22, "5"},
                         {13, "5"},
                         {23, "5"}})) +
        eof);
    const Slide view = host::slideOfView(*drawing.database, {{0, 0}, 20, 400, 200});
    EXPECT_EQ(view.aspect, 2.0);
    EXPECT_EQ(text(view), "L1 0,100 399,100\nA3 200,100 250,100 250,150 200,150\n");
    // The extents, which are wider than the picture, with some free space around.
    const Slide all = host::slideOfExtents(*drawing.database, 100, 100);
    ASSERT_EQ(all.shapes.size(), 3u);
    EXPECT_EQ(all.pointsOf(all.shapes[1])[0].y, 98);

    const TemporaryFolder folder;
    std::ofstream(folder / "a.dxf", std::ios::binary) << drawing.written();
    std::wstring message;
    const auto preview = host::previewOf((folder / "a.dxf").wstring(), 100, 100, message);
    ASSERT_TRUE(preview.has_value()) << host::toUtf8(message);
    EXPECT_EQ(text(*preview), text(all));
    EXPECT_EQ(host::writeSlide(*preview, folder / "a.sld"), L"");
    EXPECT_EQ(text(host::previewOf((folder / "a.sld").wstring(), 1, 1, message).value_or(Slide())),
              text(all));
    EXPECT_FALSE(host::previewOf((folder / "none.dxf").wstring(), 100, 100, message).has_value());
    EXPECT_FALSE(message.empty());
}
