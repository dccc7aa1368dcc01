#include "host/plot/plot.h"

#include "host/gi/extentssink.h"
#include "host/plot/imagesink.h"
#include "host/plot/pdfsink.h"
#include "host/plot/pngfile.h"
#include "host/plot/svgsink.h"
#include "host/rx/text.h"
#include "host/win/fileio.h"

#include <QBuffer>
#include <QImageWriter>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace host {

namespace {

using Draw = std::function<void(Flattener&)>;

// What is drawn of an endless or empty drawing.
constexpr PlotWindow emptyWindow{0, 0, 420, 297};

// Finds what a picture has to hold: the extents and how tall its texts are.
class SurveySink final : public PrimitiveSink {
public:
    void polyline(std::span<const AcGePoint3d> points, const Pen& pen) override {
        mExtents.polyline(points, pen);
    }
    void area(const Area& area, const Pen& pen) override { mExtents.area(area, pen); }
    bool wantsCurves() const override { return true; }
    void path(const WorldPath& path, const Pen& pen) override { mExtents.path(path, pen); }
    void glyphs(const GlyphRun& run, const Pen& pen) override {
        mExtents.glyphs(run, pen);
        mTextHeights.push_back(static_cast<float>(run.yAxis.length() * std::abs(run.text.yy)));
    }

    PlotWindow window() const {
        if (mExtents.isEmpty())
            return emptyWindow;
        return {mExtents.min().x, mExtents.min().y, mExtents.max().x, mExtents.max().y};
    }
    double medianTextHeight() {
        if (mTextHeights.empty())
            return 0;
        const auto middle = mTextHeights.begin() + static_cast<std::ptrdiff_t>(mTextHeights.size() / 2);
        std::nth_element(mTextHeights.begin(), middle, mTextHeights.end());
        return *middle;
    }

private:
    ExtentsSink mExtents;
    std::vector<float> mTextHeights;
};

FlattenOptions optionsFor(const Sheet& sheet, const PlotWindow& window) {
    constexpr double deviation = 0.01, shortestPattern = 0.3; // millimetres on the sheet
    FlattenOptions options;
    options.isPlot = true;
    options.deviation = deviation / sheet.scale;
    options.curveDeviation = deviation / 2 / sheet.scale;
    options.dashResolution = shortestPattern / sheet.scale;
    options.view = {{window.left, window.bottom, 0}, {window.right, window.top, 0}};
    return options;
}

// Half a turn about the middle of the sheet.
AcGeMatrix3d upsideDown(const Sheet& sheet) {
    const AcGePoint3d middle(sheet.originX + sheet.width / 2 / sheet.scale,
                             sheet.originY + sheet.height / 2 / sheet.scale, 0);
    return AcGeMatrix3d::rotation(std::numbers::pi, AcGeVector3d::kZAxis, middle);
}

PlotWindow turned(const PlotWindow& window, const Sheet& sheet) {
    const AcGeMatrix3d turn = upsideDown(sheet);
    const AcGePoint3d low = turn * AcGePoint3d(window.right, window.top, 0),
                      high = turn * AcGePoint3d(window.left, window.bottom, 0);
    return {low.x, low.y, high.x, high.y};
}

// The drawing of one sheet; false when there was too much to draw.
bool drawSheet(DrawingSource& source, const Draw& draw, PrimitiveSink& sink, const Sheet& sheet,
               const PlotWindow& given, bool isCut, bool isUpsideDown) {
    const PlotWindow window = isUpsideDown ? turned(given, sheet) : given;
    Flattener flattener(source, sink, optionsFor(sheet, window));
    if (isUpsideDown)
        flattener.setTransform(upsideDown(sheet));
    if (isCut)
        sink.pushClip(std::array<AcGePoint3d, 4>{{{window.left, window.bottom, 0},
                                                  {window.right, window.bottom, 0},
                                                  {window.right, window.top, 0},
                                                  {window.left, window.top, 0}}});
    draw(flattener);
    if (isCut)
        sink.popClip();
    return !flattener.isAborted();
}

Sheet sheetFor(const PlotOptions& options, const DrawnContent& content, bool isFitted) {
    const PlotWindow& window = content.window;
    if (options.sheet)
        return *options.sheet;
    const double longSide = readableLongSide(window, options.margin, content.textHeight);
    if (!options.paper)
        return isFitted ? Sheet::fitted(window, options.margin, longSide)
                        : Sheet::standard(window, options.margin, longSide);
    const Paper& paper = *options.paper;
    return options.scale > 0 ? Sheet::scaled(window, paper.width, paper.height, options.scale)
                             : Sheet::filled(window, options.margin, paper.width, paper.height);
}

constexpr wchar_t tooMuch[] = L"图形过于复杂，未能全部绘出：";

std::wstring plotImage(DrawingSource& source, const Draw& draw, const std::filesystem::path& path,
                       const PlotWindow& window, const Sheet& sheet, const PlotOptions& options) {
    ImageSink sink(sheet, std::clamp(options.longSide, 16, 20000), options.look);
    const std::wstring noMemory = L"内存不足，无法生成图像：" + fromUtf8(path.string());
    if (sink.image().isNull())
        return noMemory;
    if (!drawSheet(source, draw, sink, sheet, window, options.window.has_value(), options.isUpsideDown))
        return tooMuch + fromUtf8(path.string());
    const std::string data = pngData(sink.image(), sink.pixelsPerMillimetre());
    if (data.empty())
        return noMemory;
    AtomicFile file(path, AtomicFile::Backup::none);
    file.write(std::string_view(data));
    return file.commit() ? std::wstring() : file.errorText();
}

template <class Sink>
std::wstring plotVectors(DrawingSource& source, const Draw& draw, const std::filesystem::path& path,
                         const PlotWindow& window, const Sheet& sheet, const PlotOptions& options) {
    Sink sink(path, sheet, options.look);
    if (!drawSheet(source, draw, sink, sheet, window, options.window.has_value(), options.isUpsideDown))
        return tooMuch + fromUtf8(path.string());
    return sink.finish() ? std::wstring() : sink.errorText();
}

} // namespace

DrawnContent drawnContent(DrawingSource& source, const Draw& draw) {
    SurveySink sink;
    FlattenOptions flattening;
    flattening.isPlot = true;
    flattening.regenType = kAcGiForExtents;
    flattening.dashResolution = HUGE_VAL; // linetypes do not change the extents
    Flattener flattener(source, sink, flattening);
    draw(flattener);
    return {sink.window(), sink.medianTextHeight(), !flattener.isAborted()};
}

std::wstring plotDrawing(DrawingSource& source, const Draw& draw, const std::filesystem::path& path,
                         const PlotOptions& options) {
    const std::wstring extension = fold(fromUtf8(path.extension().string()));
    if (extension != L".pdf" && extension != L".png" && extension != L".svg")
        return L"不支持的图形文件类型（可用 .pdf、.png、.svg）：" + fromUtf8(path.string());
    DrawnContent content;
    if (!options.window || !options.sheet) // else it changes nothing
        content = drawnContent(source, draw);
    if (!content.isWhole)
        return tooMuch + fromUtf8(path.string());
    if (options.window)
        content.window = *options.window;
    const PlotWindow& window = content.window;
    const Sheet sheet = sheetFor(options, content, extension != L".pdf");
    if (extension == L".pdf")
        return plotVectors<PdfSink>(source, draw, path, window, sheet, options);
    if (extension == L".svg")
        return plotVectors<SvgSink>(source, draw, path, window, sheet, options);
    return plotImage(source, draw, path, window, sheet, options);
}

} // namespace host
