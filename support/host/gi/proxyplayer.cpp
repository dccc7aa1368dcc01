// Draws proxy graphics.
#include "host/gi/proxychunks.h"
#include "host/gi/proxygraphics.h"
#include "host/gi/textstyle.h"

#include <cmath>

namespace host {

namespace {

constexpr int deepestTransforms = 256;

class Player {
public:
    Player(AcGiWorldDraw& draw, const ProxyGraphicsOptions& options)
        : mDraw(draw), mGeometry(draw.geometry()), mTraits(draw.subEntityTraits()), mOptions(options) {}

    ~Player() {
        for (; mTransforms > 0; --mTransforms)
            mGeometry.popModelTransform();
    }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    // False when the chunk is damaged.
    bool play(ProxyChunk type, ProxyReader reader) {
        return playTraits(type, reader) || playText(type, reader) || playGeometry(type, reader) ||
               reader.isGood();
    }

private:
    bool playTraits(ProxyChunk type, ProxyReader& reader) {
        switch (type) {
        case ProxyChunk::color:
            if (const std::int32_t index = reader.integer(); reader.isGood() && index >= 0 && index <= 256)
                mTraits.setColor(static_cast<Adesk::UInt16>(index));
            break;
        case ProxyChunk::trueColor:
            if (const std::int32_t packed = reader.integer(); reader.isGood())
                setTrueColor(static_cast<Adesk::UInt32>(packed));
            break;
        case ProxyChunk::layer:
            if (const std::int32_t index = reader.integer();
                reader.isGood() && hostTraits() && mOptions.source)
                hostTraits()->state().layer = &mOptions.source->layerAt(index);
            break;
        case ProxyChunk::linetype:
            if (const std::int32_t index = reader.integer(); reader.isGood() && hostTraits())
                setLinetype(index);
            break;
        case ProxyChunk::marker:
            mTraits.setSelectionMarker(reader.integer());
            break;
        case ProxyChunk::fill:
            mTraits.setFillType(reader.integer() == kAcGiFillAlways ? kAcGiFillAlways : kAcGiFillNever);
            break;
        case ProxyChunk::lineWeight:
            if (const std::int32_t weight = reader.integer(); reader.isGood())
                mTraits.setLineWeight(nearestLineWeight(weight));
            break;
        case ProxyChunk::linetypeScale:
            if (const double scale = reader.number(); scale > 0 && std::isfinite(scale))
                mTraits.setLineTypeScale(scale);
            break;
        case ProxyChunk::thickness:
            if (const double thickness = reader.number(); std::isfinite(thickness))
                mTraits.setThickness(thickness);
            break;
        default:
            return false;
        }
        return reader.isGood();
    }

    // Null when somebody else's world draw is drawn to: it has no way to take a position in a table.
    DrawTraits* hostTraits() const { return dynamic_cast<DrawTraits*>(&mTraits); }

    void setTrueColor(Adesk::UInt32 packed) {
        AcCmEntityColor color;
        color.setColor(packed);
        switch (color.colorMethod()) {
        case AcCmEntityColor::kByLayer:
        case AcCmEntityColor::kByBlock:
        case AcCmEntityColor::kByColor:
            mTraits.setTrueColor(color);
            break;
        case AcCmEntityColor::kByACI:
            mTraits.setColor(static_cast<Adesk::UInt16>(packed & 0xFF));
            break;
        default:
            break;
        }
    }

    void setLinetype(std::int32_t index) {
        TraitsState& state = hostTraits()->state();
        if (index == proxyLinetypeByLayer)
            state.linetype = &LinetypeLook::byLayer();
        else if (index == proxyLinetypeByBlock)
            state.linetype = &LinetypeLook::byBlock();
        else if (mOptions.source)
            state.linetype = &mOptions.source->linetypeAt(index);
    }

    bool playText(ProxyChunk type, ProxyReader& reader) {
        const bool isUnicode = type == ProxyChunk::unicodeText || type == ProxyChunk::unicodeStyledText;
        const bool isStyled = type == ProxyChunk::styledText || type == ProxyChunk::unicodeStyledText;
        if (!isUnicode && !isStyled && type != ProxyChunk::text)
            return false;
        const AcGePoint3d position = reader.point();
        const AcGeVector3d normal = reader.vector(), direction = reader.vector();
        if (isStyled)
            return playStyledText(position, normal, direction, isUnicode, reader);
        const double height = reader.number(), width = reader.number(), oblique = reader.number();
        const std::wstring text = readText(isUnicode, reader);
        if (reader.isGood())
            mGeometry.text(position, normal, direction, height, width, oblique, text.c_str());
        return reader.isGood();
    }

    bool playStyledText(const AcGePoint3d& position, const AcGeVector3d& normal,
                        const AcGeVector3d& direction, bool isUnicode, ProxyReader& reader) {
        const std::wstring text = readText(isUnicode, reader);
        reader.integer(); // the length, which the terminating zero tells as well
        const bool raw = reader.flag();
        AcGiTextStyle style;
        style.setTextSize(reader.number());
        style.setXScale(reader.number());
        style.setObliquingAngle(reader.number());
        style.setTrackingPercent(reader.number());
        style.setBackward(reader.flag());
        style.setUpsideDown(reader.flag());
        style.setVertical(reader.flag());
        style.setUnderlined(reader.flag());
        style.setOverlined(reader.flag());
        if (!reader.isGood())
            return false;
        if (isUnicode) {
            const bool bold = reader.flag(), italic = reader.flag();
            const std::int32_t charset = reader.integer(), pitchAndFamily = reader.integer();
            const std::wstring typeface = reader.wideText();
            if (reader.isGood())
                style.setFont(typeface.c_str(), bold, italic, charset, pitchAndFamily);
        }
        style.setFileName(readText(isUnicode, reader).c_str());
        style.setBigFontFileName(readText(isUnicode, reader).c_str());
        // A text whose font's name is damaged is drawn in the default font.
        mGeometry.text(position, normal, direction, text.c_str(), static_cast<Adesk::Int32>(text.size()), raw,
                       style);
        return reader.isGood();
    }

    std::wstring readText(bool isUnicode, ProxyReader& reader) const {
        if (isUnicode)
            return reader.wideText();
        const std::string_view bytes = reader.narrowText();
        if (mOptions.decodeText)
            return mOptions.decodeText(bytes);
        if (isValidUtf8(bytes))
            return fromUtf8(bytes);
        std::wstring text;
        for (const char byte : bytes)
            text += static_cast<wchar_t>(static_cast<unsigned char>(byte));
        return text;
    }

    bool playGeometry(ProxyChunk type, ProxyReader& reader) {
        switch (type) {
        case ProxyChunk::circle:
        case ProxyChunk::circularArc:
            playCircle(type == ProxyChunk::circularArc, reader);
            break;
        case ProxyChunk::circleThroughPoints:
        case ProxyChunk::circularArcThroughPoints:
            playCircleThroughPoints(type == ProxyChunk::circularArcThroughPoints, reader);
            break;
        case ProxyChunk::polyline:
        case ProxyChunk::polylineWithNormal:
            playPolyline(type == ProxyChunk::polylineWithNormal, reader);
            break;
        case ProxyChunk::polygon: {
            const std::vector<AcGePoint3d> points = readPoints(reader);
            if (reader.isGood() && !points.empty())
                mGeometry.polygon(static_cast<Adesk::UInt32>(points.size()), points.data());
            break;
        }
        case ProxyChunk::mesh:
            playMesh(reader);
            break;
        case ProxyChunk::shell:
            playShell(reader);
            break;
        case ProxyChunk::xline:
        case ProxyChunk::ray: {
            const AcGePoint3d first = reader.point(), second = reader.point();
            if (reader.isGood())
                type == ProxyChunk::xline ? mGeometry.xline(first, second) : mGeometry.ray(first, second);
            break;
        }
        case ProxyChunk::pushTransform:
        case ProxyChunk::pushTransform2:
            if (const AcGeMatrix3d matrix = reader.matrix();
                reader.isGood() && mTransforms < deepestTransforms) {
                mGeometry.pushModelTransform(matrix);
                ++mTransforms;
            }
            break;
        case ProxyChunk::popTransform:
            if (mTransforms > 0) {
                mGeometry.popModelTransform();
                --mTransforms;
            }
            break;
        default:
            return false;
        }
        return reader.isGood();
    }

    static std::vector<AcGePoint3d> readPoints(ProxyReader& reader) {
        return reader.points(reader.count(24));
    }

    static AcGiArcType readArcType(ProxyReader& reader) {
        const std::int32_t type = reader.remaining() >= 4 ? reader.integer() : 0;
        return type == kAcGiArcSector || type == kAcGiArcChord ? static_cast<AcGiArcType>(type)
                                                               : kAcGiArcSimple;
    }

    void playCircle(bool isArc, ProxyReader& reader) {
        const AcGePoint3d center = reader.point();
        const double radius = reader.number();
        const AcGeVector3d normal = reader.vector();
        if (!isArc) {
            if (reader.isGood())
                mGeometry.circle(center, radius, normal);
            return;
        }
        const AcGeVector3d start = reader.vector();
        const double sweep = reader.number();
        const AcGiArcType type = readArcType(reader);
        if (reader.isGood())
            mGeometry.circularArc(center, radius, normal, start, sweep, type);
    }

    void playCircleThroughPoints(bool isArc, ProxyReader& reader) {
        const AcGePoint3d first = reader.point(), second = reader.point(), third = reader.point();
        const AcGiArcType type = isArc ? readArcType(reader) : kAcGiArcSimple;
        if (!reader.isGood())
            return;
        if (isArc)
            mGeometry.circularArc(first, second, third, type);
        else
            mGeometry.circle(first, second, third);
    }

    void playPolyline(bool hasNormal, ProxyReader& reader) {
        const std::vector<AcGePoint3d> points = readPoints(reader);
        const AcGeVector3d normal = hasNormal ? reader.vector() : AcGeVector3d::kZAxis;
        if (reader.isGood() && !points.empty())
            mGeometry.polyline(static_cast<Adesk::UInt32>(points.size()), points.data(),
                               hasNormal ? &normal : nullptr);
    }

    void playMesh(ProxyReader& reader) {
        const std::int32_t rows = reader.integer(), columns = reader.integer();
        const auto count = static_cast<std::int64_t>(rows) * columns;
        if (rows < 2 || columns < 2 || count > static_cast<std::int64_t>(reader.remaining() / 24))
            return;
        const std::vector<AcGePoint3d> points = reader.points(static_cast<std::size_t>(count));
        mGeometry.mesh(static_cast<Adesk::UInt32>(rows), static_cast<Adesk::UInt32>(columns), points.data());
    }

    void playShell(ProxyReader& reader) {
        const std::vector<AcGePoint3d> points = readPoints(reader);
        std::vector<Adesk::Int32> faces(reader.count(4));
        for (Adesk::Int32& entry : faces)
            entry = reader.integer();
        if (reader.isGood() && !points.empty() && !faces.empty())
            mGeometry.shell(static_cast<Adesk::UInt32>(points.size()), points.data(),
                            static_cast<Adesk::UInt32>(faces.size()), faces.data());
    }

    AcGiWorldDraw& mDraw;
    AcGiWorldGeometry& mGeometry;
    AcGiSubEntityTraits& mTraits;
    const ProxyGraphicsOptions& mOptions;
    int mTransforms = 0;
};

} // namespace

bool playProxyGraphics(std::string_view data, AcGiWorldDraw& draw, const ProxyGraphicsOptions& options) {
    constexpr std::size_t head = 8;
    if (data.size() < head)
        return data.empty();
    data.remove_prefix(head);
    Player player(draw, options);
    bool isWhole = true;
    while (data.size() >= proxyChunkHead && !draw.regenAbort()) {
        ProxyReader reader(data);
        const std::int32_t size = reader.integer();
        const auto type = static_cast<ProxyChunk>(reader.integer());
        if (size < static_cast<std::int32_t>(proxyChunkHead) || static_cast<std::size_t>(size) > data.size())
            return false;
        const auto length = static_cast<std::size_t>(size);
        isWhole &= player.play(type, ProxyReader(data.substr(proxyChunkHead, length - proxyChunkHead)));
        data.remove_prefix(length);
    }
    return isWhole && data.empty();
}

} // namespace host
