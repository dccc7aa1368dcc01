// Plots of drawings: sheets, and PDF, SVG and PNG files looked into from outside.
#include "tests/temporaryfolder.h"

#include "host/db/db.h"
#include "host/db/dbents.h"
#include "host/db/drawingsource.h"
#include "host/plot/lineraster.h"
#include "host/plot/plot.h"
#include "host/plot/textbuffer.h"
#include "host/rx/text.h"

#include <QColor>
#include <QImage>
#include <QXmlStreamReader>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <set>
#include <zlib.h>

namespace host {
namespace {

std::string unpacked(const std::string& packed) {
    std::string data(packed.size() * 100 + 1000, '\0');
    uLongf size = data.size();
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(data.data()), &size,
                         reinterpret_cast<const Bytef*>(packed.data()), packed.size()),
              Z_OK);
    data.resize(size);
    return data;
}

// A PDF file taken apart by its cross-reference table; fails the test where the table is wrong.
class PdfParts {
public:
    explicit PdfParts(const std::string& file) {
        const std::size_t start = std::stoul(file.substr(file.rfind("startxref") + 9));
        EXPECT_EQ(file.substr(start, 4), "xref");
        const std::size_t count = std::stoul(file.substr(file.find(' ', start) + 1));
        const std::size_t rows = file.find('\n', file.find('\n', start) + 1) + 1;
        for (std::size_t i = 1; i < count; ++i) {
            const std::size_t offset = std::stoul(file.substr(rows + 20 * i, 10));
            const std::string head = std::to_string(i) + " 0 obj\n";
            EXPECT_EQ(file.substr(offset, head.size()), head);
            addObject(file, offset + head.size());
        }
    }

    std::string all; // every dictionary and every stream unpacked, in order

private:
    void addObject(const std::string& file, std::size_t at) {
        const std::size_t end = file.find("endobj", at), stream = file.find(">>stream\n", at);
        if (stream == file.npos || stream > end) {
            all += file.substr(at, end - at);
            return;
        }
        const std::size_t length = std::stoul(file.substr(file.find("/Length ", at) + 8));
        EXPECT_EQ(file.substr(stream + 9 + length, 10), "\nendstream");
        all += file.substr(at, stream - at) + "\n" + unpacked(file.substr(stream + 9, length));
    }
};

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

class PlotTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        initializeRuntime();
        initializeDatabaseClasses();
    }

    template <class Entity>
    AcDbObjectId add(Entity* entity, int color = 7, const wchar_t* layer = L"0") {
        AcDbObjectId id;
        const Opened<AcDbBlockTableRecord> space(mDatabase.modelSpaceId(), AcDb::kForWrite);
        space->appendAcDbEntity(id, entity);
        entity->setColorIndex(static_cast<Adesk::UInt16>(color));
        entity->setLayer(layer);
        entity->close();
        return id;
    }
    void line(double x1, double y1, double x2, double y2, int color = 7, const wchar_t* layer = L"0") {
        add(new AcDbLine(AcGePoint3d(x1, y1, 0), AcGePoint3d(x2, y2, 0)), color, layer);
    }
    template <class Change>
    void addLayer(const wchar_t* name, Change change) {
        auto* record = new AcDbLayerTableRecord;
        record->setName(name);
        change(*record);
        const Opened<AcDbLayerTable> layers(mDatabase.layerTableId(), AcDb::kForWrite);
        layers->add(record);
        record->close();
    }

    std::filesystem::path plot(const char* name, const PlotOptions& options = {}) {
        const std::filesystem::path path = mFolder.path() / name;
        EXPECT_EQ(toUtf8(plotExtents(&mDatabase, path, options)), "");
        return path;
    }
    QImage image(const PlotOptions& options = {}) {
        QImage result(QString::fromStdString(plot("picture.png", options).string()));
        EXPECT_FALSE(result.isNull());
        return result;
    }

    AcDbDatabase mDatabase;
    TemporaryFolder mFolder;
};

// The sheet of a picture of the window 0,0 to 100,50 with this long side.
PlotOptions window100x50(int longSide) {
    PlotOptions options;
    options.window = PlotWindow{0, 0, 100, 50};
    options.longSide = longSide;
    return options;
}

// The colour at a drawing point in such a picture.
QColor colorAt(const QImage& image, double x, double y) {
    const Sheet sheet = Sheet::fitted({0, 0, 100, 50}, 10, 420);
    const double pixels = image.width() / sheet.width;
    return image.pixelColor(static_cast<int>((x - sheet.originX) * sheet.scale * pixels),
                            static_cast<int>((sheet.height - (y - sheet.originY) * sheet.scale) * pixels));
}

TEST(Sheets, HoldTheWindowCentredInsideTheirMargins) {
    const PlotWindow windows[] = {
        {0, 0, 100, 50}, {-5e6, 4e6, -5e6 + 1, 4e6 + 30}, {7, 7, 7, 7}, {0, 0, 1000, 0}};
    for (const PlotWindow& window : windows)
        for (const Sheet& sheet : {Sheet::standard(window, 10, 420), Sheet::fitted(window, 10, 594)}) {
            const double left = (window.left - sheet.originX) * sheet.scale;
            const double right = (window.right - sheet.originX) * sheet.scale;
            const double bottom = (window.bottom - sheet.originY) * sheet.scale;
            const double top = (window.top - sheet.originY) * sheet.scale;
            EXPECT_GE(left, 10 - 1e-6);
            EXPECT_GE(bottom, 10 - 1e-6);
            EXPECT_NEAR(left, sheet.width - right, 1e-6);
            EXPECT_NEAR(bottom, sheet.height - top, 1e-6);
            EXPECT_EQ(sheet.height > sheet.width, window.top - window.bottom > window.right - window.left);
        }
}

TEST(Sheets, AreLargeEnoughToReadTheTexts) {
    const PlotWindow window{0, 0, 1000, 700};
    const std::pair<double, double> cases[] = {{0, 420},   {10, 420}, {4, 594},
                                               {3.2, 594}, {3, 841},  {1, 1189}};
    for (const auto& [textHeight, longSide] : cases)
        EXPECT_EQ(readableLongSide(window, 10, textHeight), longSide) << textHeight;
}

TEST(Lines, CoverAsMuchAsTheyAreWide) {
    constexpr int side = 60;
    std::vector<std::uint32_t> pixels;
    const auto ink = [&](double x0, double y0, double x1, double y1, double width) {
        pixels.assign(side * side, 0xFFFFFFFF);
        LineRaster raster(pixels.data(), side, {5, 5, 55, 55});
        raster.setPen(0x000000, width);
        raster.line(x0, y0, x1, y1);
        double sum = 0;
        for (const std::uint32_t pixel : pixels)
            sum += 1 - (pixel & 0xFF) / 255.0;
        return sum;
    };
    const double pi = std::acos(-1.0);
    for (const double width : {1.0, 2.5, 6.0})
        for (const double angle : {0.0, 0.3, pi / 4, 1.2, pi / 2, 2.5, 4.0}) {
            const double dx = 15 * std::cos(angle), dy = 15 * std::sin(angle);
            const double area = 30 * width + pi * width * width / 4; // with its round ends
            EXPECT_NEAR(ink(30 - dx, 30 - dy, 30 + dx, 30 + dy, width), area, 0.14 * area + 0.3) << angle;
        }
    EXPECT_NEAR(ink(30, 30, 30, 30, 8), pi * 16, 2); // a dot
    // Lines that come from far away keep their direction, and nothing leaves the bounds.
    EXPECT_NEAR(ink(-1e9, -1e9, 1e9, 1e9, 1), 50 * std::sqrt(2), 10);
    EXPECT_EQ(pixels[30 * side + 30] & 0xFF, 0u);
    EXPECT_EQ(ink(0, 2, 60, 2, 1), 0);
    EXPECT_NEAR(ink(-HUGE_VAL, 30, HUGE_VAL, 30, 1), 50, 1);
    EXPECT_NEAR(ink(0, 30, 60, 30, 1), 50, 1e-9 + 1);
    EXPECT_EQ(pixels[30 * side + 4], 0xFFFFFFFF);
}

TEST(Numbers, AreShortAndExact) {
    const std::pair<double, const char*> cases[] = {{0, "0"},
                                                    {-0.0, "0"},
                                                    {1.5, "1.5"},
                                                    {-1e-9, "0"},
                                                    {100, "100"},
                                                    {0.000001, "0.000001"},
                                                    {1e20, "100000000000000000000"}};
    for (const auto& [number, text] : cases) {
        TextBuffer buffer;
        buffer << number;
        EXPECT_EQ(buffer.text(), text);
    }
}

TEST_F(PlotTest, PicturesShowColoursAndWhatIsVisible) {
    addLayer(L"off", [](AcDbLayerTableRecord& layer) { layer.setIsOff(true); });
    addLayer(L"frozen", [](AcDbLayerTableRecord& layer) { layer.setIsFrozen(true); });
    addLayer(L"help", [](AcDbLayerTableRecord& layer) { layer.setIsPlottable(false); });
    line(0, 10, 100, 10, 1);
    line(0, 20, 100, 20, 7);
    line(0, 30, 100, 30, 1, L"off");
    line(0, 35, 100, 35, 1, L"frozen");
    line(0, 40, 100, 40, 1, L"help");
    const AcDbObjectId erased = add(new AcDbLine(AcGePoint3d(0, 45, 0), AcGePoint3d(100, 45, 0)));
    Opened<AcDbLine>(erased, AcDb::kForWrite)->erase();
    const QImage picture = image(window100x50(2000));
    EXPECT_EQ(picture.width(), 2000);
    EXPECT_EQ(colorAt(picture, 50, 10), QColor(255, 0, 0));
    EXPECT_LT(colorAt(picture, 50, 20).lightness(), 128); // the foreground is black on white paper
    for (const double y : {5.0, 30.0, 35.0, 40.0, 45.0})
        EXPECT_EQ(colorAt(picture, 50, y), QColor(255, 255, 255)) << y;
}

TEST_F(PlotTest, WideLinesAndAreasAreFilled) {
    auto* polyline = new AcDbPolyline;
    polyline->addVertexAt(0, AcGePoint2d(10, 10), 0, 6, 6);
    polyline->addVertexAt(1, AcGePoint2d(90, 10), 1, 6, 6);
    polyline->addVertexAt(2, AcGePoint2d(90, 40), 0, 6, 6);
    add(polyline, 3);
    auto* solid = new AcDbSolid;
    const AcGePoint3d corners[] = {{20, 25, 0}, {40, 25, 0}, {20, 45, 0}, {40, 45, 0}};
    for (Adesk::UInt16 i = 0; i < 4; ++i)
        solid->setPointAt(i, corners[i]);
    add(solid, 5);
    PlotOptions options = window100x50(2000);
    const QImage picture = image(options);
    EXPECT_EQ(colorAt(picture, 50, 12.5), QColor(0, 255, 0));
    EXPECT_EQ(colorAt(picture, 50, 14), QColor(255, 255, 255));
    EXPECT_EQ(colorAt(picture, 30, 35), QColor(0, 0, 255));
}

TEST_F(PlotTest, PaperAndScaleAreAsAsked) {
    line(0, 0, 100, 50, 1);
    line(-500, 25, 500, 25, 5); // is cut at the window
    PlotOptions options = window100x50(1000);
    options.paper = {500, 300};
    options.scale = 2;
    options.look.isMonochrome = true;
    const QImage picture = image(options); // two pixels a millimetre
    EXPECT_EQ(picture.size(), QSize(1000, 600));
    const auto isDrawn = [&](double x, double y) { // of the paper
        return picture.pixelColor(static_cast<int>(x * 2), static_cast<int>((300 - y) * 2)).lightness() < 200;
    };
    EXPECT_TRUE(isDrawn(250, 150)); // the window's middle is the paper's
    EXPECT_TRUE(isDrawn(152, 150));
    EXPECT_FALSE(isDrawn(148, 150));
    EXPECT_TRUE(isDrawn(348, 199));
    for (int x = 0; x < picture.width(); ++x)
        EXPECT_EQ(picture.pixelColor(x, 300).saturation(), 0);
    options.scale = 0;
    EXPECT_EQ(image(options).size(), QSize(1000, 600));
}

TEST_F(PlotTest, ExtentsAreThoseOfWhatIsDrawn) {
    addLayer(L"off", [](AcDbLayerTableRecord& layer) { layer.setIsOff(true); });
    line(0, 0, 100, 50, 1);
    line(-1000, -1000, 5000, 5000, 1, L"off");
    PlotOptions options;
    options.longSide = 2000;
    const QImage picture = image(options);
    EXPECT_NEAR(static_cast<double>(picture.height()) / picture.width(), (200 + 20) / 420.0, 0.01);
    EXPECT_NE(colorAt(picture, 50, 25), QColor(255, 255, 255));
}

TEST_F(PlotTest, PdfIsSoundAndItsTextCanBeSearched) {
    line(0, 0, 100, 50, 1);
    add(new AcDbCircle(AcGePoint3d(50, 25, 0), AcGeVector3d::kZAxis, 10), 2);
    Opened<AcDbTextStyleTableRecord>(mDatabase.textstyle(), AcDb::kForWrite)
        ->setFont(L"宋体", false, false, 134, 2);
    auto* text = new AcDbText;
    text->setPosition(AcGePoint3d(10, 10, 0));
    text->setHeight(5);
    text->setTextString(L"线路 A线");
    text->setTextStyle(mDatabase.textstyle());
    add(text);
    const PdfParts parts(readFile(plot("picture.pdf")));
    EXPECT_EQ(countOf(parts.all, "/Type/Page/"), 1u);
    EXPECT_NE(parts.all.find("/MediaBox[0 0 1190.55"), std::string::npos);
    EXPECT_NE(parts.all.find("<7EBF>"), std::string::npos); // the map back to Unicode
    EXPECT_NE(parts.all.find("<0041>"), std::string::npos);
    EXPECT_EQ(countOf(parts.all, "/Subtype/Type3"), 1u);
    EXPECT_EQ(countOf(parts.all, " d1\n"), 3u); // each outline once
    EXPECT_NE(parts.all.find("1 0 0 RG"), std::string::npos);
}

// Widths in the content are 100 steps a millimetre.
TEST_F(PlotTest, PdfHasTheLineweightsInMillimetres) {
    addLayer(L"wide", [](AcDbLayerTableRecord& layer) { layer.setLineWeight(AcDb::kLnWt070); });
    line(0, 0, 100, 0, 1);
    line(0, 10, 100, 10, 2, L"wide");
    for (const auto& [y, weight] : {std::pair(20, AcDb::kLnWt200), {30, AcDb::kLnWt000}}) {
        auto* const made = new AcDbLine(AcGePoint3d(0, y, 0), AcGePoint3d(100, y, 0));
        made->setLineWeight(weight);
        add(made, 3);
    }
    PlotOptions options = window100x50(100);
    std::string content = PdfParts(readFile(plot("weights.pdf", options))).all;
    std::size_t last = 0;
    for (const char* width : {"\n25 w\n", "\n70 w\n", "\n200 w\n", "\n5 w\n"}) { // zero is the thinnest
        EXPECT_GT(content.find(width), last) << width;
        last = content.find(width);
    }
    options.look.hasLineWeights = false;
    content = PdfParts(readFile(plot("weights.pdf", options))).all;
    EXPECT_EQ(countOf(content, " w\n"), 1u);
}

// Long strokes of texts are told from the text's place, short ones with the other lines.
TEST_F(PlotTest, PdfStrokesOfTextsStandAtTheirPlace) {
    PlotOptions options = window100x50(100);
    options.paper = {120, 70};
    options.scale = 1; // the window's lower left corner lies at 10,10 millimetres
    const auto content = [&](const wchar_t* string, double y) {
        auto* text = new AcDbText;
        text->setPosition(AcGePoint3d(20, y, 0));
        text->setHeight(6);
        text->setTextString(string);
        text->setTextStyle(mDatabase.textstyle());
        add(text);
        return PdfParts(readFile(plot("strokes.pdf", options))).all;
    };
    EXPECT_NE(content(L"L", 30).find("\n3000 4600 m\n3000 4000 l\n3400 4000 l\nS\n"), std::string::npos);
    const std::string moved = content(L"LLLLL", 10);
    EXPECT_NE(moved.find("\nq 1 0 0 1 3000 2000 cm\n0 600 m\n0 0 l\n400 0 l\n600 600 m\n"),
              std::string::npos);
    EXPECT_EQ(countOf(moved, "\nQ\n"), 2u); // and the window's border
}

TEST_F(PlotTest, PdfLayersCanBeSwitched) {
    addLayer(L"线路", [](AcDbLayerTableRecord&) {});
    addLayer(L"hidden", [](AcDbLayerTableRecord& layer) { layer.setIsOff(true); });
    line(0, 0, 100, 0, 1);
    line(0, 10, 100, 10, 1, L"线路");
    line(0, 20, 100, 20, 1, L"线路");
    line(0, 30, 100, 30, 1, L"hidden");
    const std::string all = PdfParts(readFile(plot("layers.pdf"))).all;
    EXPECT_EQ(countOf(all, "/Type/OCG"), 2u);
    EXPECT_EQ(countOf(all, "/Name<FEFF7EBF8DEF>"), 1u);
    EXPECT_EQ(countOf(all, "/Name<FEFF0030>"), 1u);
    EXPECT_EQ(countOf(all, " BDC\n"), 2u); // neighbours on one layer stay together
    EXPECT_EQ(countOf(all, "EMC\n"), 2u);
    EXPECT_EQ(countOf(all, "/OCProperties<</OCGs["), 1u);
}

// What a text says of its box is where its ink is.
TEST_F(PlotTest, TextsAreMeasuredAsTheyAreDrawn) {
    for (const wchar_t* font : {L"txt.shx", L"gbeitc.shx", L"arial.ttf"}) {
        Opened<AcDbTextStyleTableRecord>(mDatabase.textstyle(), AcDb::kForWrite)->setFileName(font);
        for (const double rotation : {0.0, 0.5, 3.0})
            for (const int mirrored : {0, 1, 2}) {
                auto* text = new AcDbText;
                text->setTextString(L"N12线路 gy%%d");
                text->setHeight(3);
                text->setWidthFactor(0.8);
                text->setOblique(0.2);
                text->setRotation(rotation);
                text->mirrorInX(mirrored == 1);
                text->mirrorInY(mirrored == 2);
                text->setHorizontalMode(AcDb::kTextRight);
                text->setVerticalMode(AcDb::kTextTop);
                text->setAlignmentPoint(AcGePoint3d(50, 20, 0));
                text->setTextStyle(mDatabase.textstyle());
                const AcDbObjectId id = add(text);
                auto* const opened = peek<AcDbText>(id);
                const ReadAccess access(*opened);
                AcDbExtents told, drawn;
                EXPECT_EQ(opened->getGeomExtents(told), Acad::eOk);
                EXPECT_EQ(drawnExtents(*opened, drawn), Acad::eOk);
                EXPECT_TRUE(told.minPoint().isEqualTo(drawn.minPoint(), AcGeTol())) << rotation << mirrored;
                EXPECT_TRUE(told.maxPoint().isEqualTo(drawn.maxPoint(), AcGeTol())) << rotation << mirrored;
            }
    }
}

TEST_F(PlotTest, PdfSplitsLongContentAtWholeOperators) {
    for (int i = 0; i < 60000; ++i)
        line(i % 300, i / 300, i % 300 + 0.7, i / 300 + 0.3, 1 + i % 3);
    const std::string file = readFile(plot("long.pdf"));
    const PdfParts parts(file);
    const std::size_t contents = parts.all.find("/Contents[");
    EXPECT_GT(countOf(parts.all.substr(contents, parts.all.find(']', contents) - contents), " 0 R"), 2u);
    EXPECT_EQ(countOf(parts.all, " m\n"), 60000u);
    EXPECT_EQ(countOf(parts.all, " l\n"), 60000u);
}

TEST_F(PlotTest, SvgIsWellFormedAndDefinesWhatItUses) {
    line(0, 0, 100, 50, 1);
    Opened<AcDbTextStyleTableRecord>(mDatabase.textstyle(), AcDb::kForWrite)
        ->setFont(L"宋体", false, false, 134, 2);
    auto* text = new AcDbText;
    text->setPosition(AcGePoint3d(10, 10, 0));
    text->setHeight(5);
    text->setTextString(L"线路<&>线");
    text->setTextStyle(mDatabase.textstyle());
    add(text);
    const std::string content = readFile(plot("picture.svg"));
    QXmlStreamReader reader(QByteArray::fromStdString(content));
    std::set<QString> defined, used;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QString id = reader.attributes().value(QString("id")).toString();
        EXPECT_TRUE(id.isEmpty() || defined.insert("#" + id).second);
        if (reader.name() == QString("use"))
            used.insert(reader.attributes().value(QString("href")).toString());
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    EXPECT_EQ(used.size(), 5u);
    EXPECT_EQ(used, defined);
}

TEST_F(PlotTest, SvgHasAGroupForEachRunOfALayer) {
    addLayer(L"线路 & 架空", [](AcDbLayerTableRecord&) {});
    line(0, 0, 100, 0);
    line(0, 10, 100, 10, 1, L"线路 & 架空");
    line(0, 20, 100, 20, 2, L"线路 & 架空");
    line(0, 30, 100, 30);
    QXmlStreamReader reader(QByteArray::fromStdString(readFile(plot("layers.svg", window100x50(300)))));
    QStringList layers;
    int depth = 0, paths = 0;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        depth += token == QXmlStreamReader::StartElement ? 1 : token == QXmlStreamReader::EndElement ? -1 : 0;
        if (token != QXmlStreamReader::StartElement)
            continue;
        paths += reader.attributes().hasAttribute("stroke-width");
        const auto label = reader.attributes().value("http://www.inkscape.org/namespaces/inkscape", "label");
        if (!label.isEmpty()) {
            layers.append(label.toString());
            EXPECT_EQ(depth, 2) << "layers stand in the picture itself, the window cuts within them";
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    EXPECT_EQ(layers, QStringList({"0", "线路 & 架空", "0"}));
    EXPECT_EQ(paths, 4);
}

TEST_F(PlotTest, EmptyAndHostileDrawingsGiveAWholeFile) {
    for (const char* name : {"empty.pdf", "empty.svg", "empty.png"})
        EXPECT_GT(readFile(plot(name)).size(), 100u);
    const double infinite = std::numeric_limits<double>::infinity(),
                 none = std::numeric_limits<double>::quiet_NaN();
    line(0, 0, infinite, 1);
    line(none, 0, 1, 1);
    line(0, 0, 1e300, -1e300);
    line(0, 0, 1, 1);
    add(new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 1e200));
    for (const char* name : {"hostile.pdf", "hostile.svg", "hostile.png"}) {
        EXPECT_GT(readFile(plot(name)).size(), 100u);
        EXPECT_GT(readFile(plot(name, window100x50(300))).size(), 100u);
    }
}

TEST_F(PlotTest, FailuresAreToldInOneLineAndLeaveNoFile) {
    line(0, 0, 1, 1);
    for (const char* name :
         {"picture.bmp", "picture", "nowhere/picture.pdf", "nowhere/picture.svg", "nowhere/picture.png"}) {
        const std::wstring message = plotExtents(&mDatabase, mFolder.path() / name);
        EXPECT_FALSE(message.empty()) << name;
        EXPECT_EQ(message.find(L'\n'), std::wstring::npos);
        EXPECT_FALSE(std::filesystem::exists(mFolder.path() / name));
    }
}

} // namespace
} // namespace host
