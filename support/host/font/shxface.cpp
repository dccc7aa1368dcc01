#include "host/font/shxface.h"

#include "host/font/shxfile.h"
#include "host/rx/codepage.h"
#include "host/rx/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <numbers>
#include <tuple>
#include <utility>
#include <vector>

namespace host {

namespace {

constexpr double pi = std::numbers::pi;

// Draws by the bytes of a shape definition. Bounded: hostile definitions end at a limit of steps.
class ShapePen {
public:
    ShapePen(const ShxFile& file, Glyph& glyph, double scale, bool isVertical)
        : mFile(file), mGlyph(glyph), mUnit(scale), mIsVertical(isVertical) {}

    void draw(std::string_view drawing) { run(drawing, 0); }
    double x() const { return mX; }
    double y() const { return mY; }

private:
    static constexpr int deepestCalls = 8, mostSteps = 50000;

    // Bytes of one definition.
    struct Reader {
        std::string_view bytes;
        std::size_t at = 0;

        bool isAtEnd() const { return at >= bytes.size(); }
        int byte() { return isAtEnd() ? 0 : static_cast<unsigned char>(bytes[at++]); }
        int signedByte() {
            const int value = byte();
            return value > 127 ? value - 256 : value;
        }
    };

    void run(std::string_view drawing, int depth) {
        if (depth > deepestCalls)
            return;
        Reader reader{drawing};
        while (!reader.isAtEnd() && ++mSteps < mostSteps) {
            const int code = reader.byte();
            if (code == 0)
                return;
            step(code, reader, depth);
        }
    }

    void step(int code, Reader& reader, int depth) {
        switch (code) {
        case 1:
        case 2:
            if (!mIsSkipping) {
                mIsDown = code == 1;
                mIsDrawing = false;
            }
            break;
        case 3:
            if (const int divisor = reader.byte(); divisor != 0 && !mIsSkipping)
                mUnit /= divisor;
            break;
        case 4:
            if (const int factor = reader.byte(); factor != 0 && !mIsSkipping)
                mUnit *= factor;
            break;
        case 5:
            if (mStack.size() < 16 && !mIsSkipping)
                mStack.emplace_back(mX, mY);
            break;
        case 6:
            if (!mStack.empty() && !mIsSkipping) {
                std::tie(mX, mY) = mStack.back();
                mStack.pop_back();
                mIsDrawing = false;
            }
            break;
        case 7:
            call(reader, depth);
            break;
        case 8:
            move(reader);
            break;
        case 9:
            while (move(reader)) {
            }
            break;
        case 10:
            octantArc(reader);
            break;
        case 11:
            fractionalArc(reader);
            break;
        case 12:
            bulge(reader);
            break;
        case 13:
            while (bulge(reader)) {
            }
            break;
        case 14:
            skip(reader, depth);
            break;
        default:
            if (code > 15)
                vector(code >> 4, code & 15);
            break;
        }
    }

    // What follows a 14 is for vertical text only.
    void skip(Reader& reader, int depth) {
        int code = reader.byte();
        while (code == 14)
            code = reader.byte();
        mIsSkipping = !mIsVertical;
        step(code, reader, depth);
        mIsSkipping = false;
    }

    void call(Reader& reader, int depth) {
        std::uint32_t code = static_cast<std::uint32_t>(reader.byte());
        if (mFile.kind() == ShxFile::Kind::unicodeFont)
            code = code << 8 | static_cast<std::uint32_t>(reader.byte());
        if (mFile.kind() == ShxFile::Kind::bigFont && code == 0) {
            placedCall(reader, depth);
            return;
        }
        if (!mIsSkipping)
            run(mFile.drawing(code), depth + 1);
    }

    // A part of a big font's character: its code, its place, and the height it is drawn with, in a font of
    // the extended kind after its width.
    void placedCall(Reader& reader, int depth) {
        const auto code =
            static_cast<std::uint32_t>(reader.byte() << 8) | static_cast<std::uint32_t>(reader.byte());
        const int x = reader.signedByte(), y = reader.signedByte();
        const int width = reader.byte();
        const int height = mFile.isExtended() ? reader.byte() : width;
        if (mIsSkipping)
            return;
        const double unit = mUnit, stretchX = mStretchX, stretchY = mStretchY, startX = mX, startY = mY;
        const int fontHeight = std::max(mFile.above(), 1);
        mX += x * mUnit * mStretchX;
        mY += y * mUnit * mStretchY;
        mStretchX *= static_cast<double>(width) / fontHeight;
        mStretchY *= static_cast<double>(height) / fontHeight;
        mIsDrawing = false;
        run(mFile.drawing(code), depth + 1);
        mUnit = unit;
        mStretchX = stretchX;
        mStretchY = stretchY;
        mX = startX;
        mY = startY;
        mIsDrawing = false;
    }

    bool move(Reader& reader) {
        const int dx = reader.signedByte(), dy = reader.signedByte();
        if (dx == 0 && dy == 0)
            return false;
        go(dx * mUnit, dy * mUnit);
        return mayGoOn(reader);
    }

    // Sixteen directions; every second one is half as steep as its neighbour on one axis.
    void vector(int length, int direction) {
        static constexpr double steps[16] = {1, 1, 1, 0.5, 0, -0.5, -1, -1, -1, -1, -1, -0.5, 0, 0.5, 1, 1};
        go(length * mUnit * steps[direction], length * mUnit * steps[(direction + 12) % 16]);
    }

    // The byte that says which octants an arc runs through: the sign, the first octant (three bits), a free
    // bit and the count, 0 for all eight. Compilers that store a negative number as a complement set the free
    // bit.
    struct Octants {
        int first, count, direction;
    };
    static Octants readOctants(Reader& reader) {
        int code = reader.byte();
        const bool isNegative = code > 127;
        if (isNegative && (code & 8) != 0)
            code = 256 - code;
        const int count = code & 7;
        return {code >> 4 & 7, count == 0 ? 8 : count, isNegative ? -1 : 1};
    }

    void octantArc(Reader& reader) {
        const int radius = reader.byte();
        const Octants octants = readOctants(reader);
        arc(radius * mUnit, octants.first * pi / 4, octants.direction * octants.count * pi / 4);
    }

    void fractionalArc(Reader& reader) {
        const int startOffset = reader.byte(), endOffset = reader.byte();
        const int high = reader.byte(), low = reader.byte();
        const Octants octants = readOctants(reader);
        // Offsets are 256ths of an octant from the start of the first and of the last octant.
        const double first = startOffset / 256.0,
                     last = octants.count - (endOffset != 0 ? 1 : 0) + endOffset / 256.0;
        const double start = (octants.first + octants.direction * first) * pi / 4;
        arc((high * 256 + low) * mUnit, start, octants.direction * (last - first) * pi / 4);
    }

    // From the current point, which lies at the start angle of the circle.
    void arc(double radius, double start, double sweep) {
        if (mIsSkipping)
            return;
        const double centerX = -radius * std::cos(start), centerY = -radius * std::sin(start);
        const int count = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / (pi / 12))));
        double lastX = 0, lastY = 0;
        for (int i = 1; i <= count; ++i) {
            const double angle = start + sweep * i / count;
            const double x = centerX + radius * std::cos(angle), y = centerY + radius * std::sin(angle);
            go(x - lastX, y - lastY);
            lastX = x;
            lastY = y;
        }
    }

    bool bulge(Reader& reader) {
        const int dx = reader.signedByte(), dy = reader.signedByte();
        if (dx == 0 && dy == 0)
            return false;
        const double bulge = reader.signedByte() / 127.0;
        if (bulge == 0) {
            go(dx * mUnit, dy * mUnit);
            return mayGoOn(reader);
        }
        const double lift = (1 - bulge * bulge) / (4 * bulge);
        const double centerX = dx / 2.0 - dy * lift, centerY = dy / 2.0 + dx * lift;
        arc(std::hypot(centerX, centerY) * mUnit, std::atan2(-centerY, -centerX), 4 * std::atan(bulge));
        return mayGoOn(reader);
    }

    bool mayGoOn(const Reader& reader) const { return !reader.isAtEnd() && mSteps < mostSteps; }

    void go(double dx, double dy) {
        ++mSteps;
        if (mIsSkipping)
            return;
        if (mIsDown && !mIsDrawing) {
            mGlyph.moveTo({static_cast<float>(mX), static_cast<float>(mY)});
            mIsDrawing = true;
        }
        mX += dx * mStretchX;
        mY += dy * mStretchY;
        if (mIsDown)
            mGlyph.lineTo({static_cast<float>(mX), static_cast<float>(mY)});
        mIsDrawing = mIsDown;
    }

    const ShxFile& mFile;
    Glyph& mGlyph;
    double mUnit;
    double mStretchX = 1, mStretchY = 1;
    double mX = 0, mY = 0;
    bool mIsVertical;
    bool mIsDown = true, mIsDrawing = false, mIsSkipping = false;
    int mSteps = 0;
    std::vector<std::pair<double, double>> mStack;
};

class ShxFace final : public FontFace {
public:
    ShxFace(ShxFile file, CodePage page) : mFile(std::move(file)), mPage(page) {}
    bool isStroke() const override { return true; }
    double descent() const override {
        return mFile.isFont() ? static_cast<double>(mFile.below()) / mFile.above() : 0;
    }

private:
    std::unique_ptr<Glyph> makeGlyph(char32_t character) override { return draw(character, false); }
    std::unique_ptr<Glyph> makeVerticalGlyph(char32_t character) override {
        return mFile.isDual() ? draw(character, true) : nullptr;
    }

    std::unique_ptr<Glyph> draw(char32_t character, bool isVertical) const {
        const std::uint32_t code = codeOf(character);
        if (!mFile.has(code) || (code == 0 && mFile.isFont()))
            return nullptr;
        auto glyph = std::make_unique<Glyph>();
        const double scale = mFile.isFont() ? 1.0 / mFile.above() : 1.0;
        ShapePen pen(mFile, *glyph, scale, isVertical);
        pen.draw(mFile.drawing(code));
        glyph->advance = isVertical ? -pen.y() : pen.x();
        if (mFile.isExtended() && glyph->advance == 0 && !isVertical)
            glyph->advance = 1; // the parts leave the pen where it was: the next character stands one cell on
        constexpr double farthest = 1e6; // text heights: a damaged definition
        const auto isNear = [](const GlyphPoint& point) {
            return std::abs(point.x) < farthest && std::abs(point.y) < farthest;
        };
        const bool isGood =
            std::abs(glyph->advance) < farthest && std::ranges::all_of(glyph->points(), isNear);
        return isGood ? std::move(glyph) : nullptr;
    }

    static constexpr std::uint32_t none = 0xFFFFFFFF;

    // The entry's number: a big font's is the double byte of its code page; shape fonts of old have the
    // degree, plus-minus and diameter signs at 127 to 129 or at 256 to 258.
    std::uint32_t codeOf(char32_t character) const {
        if (mFile.kind() == ShxFile::Kind::unicodeFont || character < 0x80)
            return character;
        if (mFile.kind() == ShxFile::Kind::bigFont)
            return doubleByteOf(character);
        constexpr std::array<char32_t, 3> signs{0xB0, 0xB1, 0x2205};
        const auto* sign = std::ranges::find(signs, character);
        if (sign != signs.end() && mFile.isFont()) {
            const auto place = static_cast<std::uint32_t>(sign - signs.begin());
            return mFile.has(256 + place) ? 256 + place : 127 + place;
        }
        return character < 0x100 || !mFile.isFont() ? character : none;
    }

    std::uint32_t doubleByteOf(char32_t character) const {
        const std::wstring text(1, static_cast<wchar_t>(character));
        const std::string bytes = canEncode(text, mPage) ? encode(text, mPage) : std::string();
        if (bytes.size() != 2)
            return none;
        const auto high = static_cast<unsigned char>(bytes[0]), low = static_cast<unsigned char>(bytes[1]);
        // Files hold the double byte in either order.
        const std::uint32_t code = static_cast<std::uint32_t>(high << 8 | low);
        return mFile.has(code) ? code : static_cast<std::uint32_t>(low << 8 | high);
    }

    ShxFile mFile;
    CodePage mPage;
};

// Big fonts do not say which code page they are for; the usual ones of Taiwan, Japan and Korea are known by
// name.
CodePage pageOf(const std::filesystem::path& path) {
    const std::wstring name = fold(fromUtf8(path.stem().string()));
    const auto startsWithAny = [&](std::initializer_list<std::wstring_view> prefixes) {
        return std::ranges::any_of(prefixes,
                                   [&](std::wstring_view prefix) { return name.starts_with(prefix); });
    };
    if (startsWithAny({L"chineset", L"ming", L"big5"}))
        return CodePage::ansi950;
    if (startsWithAny({L"extfont", L"@extfont", L"bigfont"}))
        return CodePage::ansi932;
    if (startsWithAny({L"whg", L"whtg", L"whtm"}))
        return CodePage::ansi949;
    return CodePage::ansi936;
}

// The shapes of the standard complex linetypes, drawn about their origin.
class LinetypeShapes final : public FontFace {
public:
    bool isStroke() const override { return true; }

private:
    enum Number : char32_t { track = 130, zigzag = 131, box = 132, circle = 133, batting = 134 };

    std::unique_ptr<Glyph> makeGlyph(char32_t number) override {
        auto glyph = std::make_unique<Glyph>();
        switch (number) {
        case track:
            draw(*glyph, {{0, -1}, {0, 1}});
            break;
        case zigzag:
            draw(*glyph, {{0, 0}, {0.5f, 1}, {1.5f, -1}, {2, 0}});
            break;
        case box:
            draw(*glyph, {{0, 0}, {0, 1}, {2, 1}, {2, -1}, {0, -1}, {0, 0}});
            break;
        case circle:
            drawArc(*glyph, 1, 0, 1, pi, -2 * pi);
            break;
        case batting: // one loop of a serpentine; turned round it makes the next one
            drawArc(*glyph, 1, 1, 1, pi, -pi);
            draw(*glyph, {{0, 0}, {0, 1}});
            draw(*glyph, {{2, 1}, {2, 0}});
            break;
        default:
            return nullptr;
        }
        return glyph;
    }

    static void draw(Glyph& glyph, std::initializer_list<GlyphPoint> points) {
        glyph.moveTo(*points.begin());
        for (const GlyphPoint* point = points.begin() + 1; point != points.end(); ++point)
            glyph.lineTo(*point);
    }

    static void drawArc(Glyph& glyph, double x, double y, double radius, double start, double sweep) {
        constexpr int chords = 24;
        for (int i = 0; i <= chords; ++i) {
            const double angle = start + sweep * i / chords;
            const GlyphPoint point{static_cast<float>(x + radius * std::cos(angle)),
                                   static_cast<float>(y + radius * std::sin(angle))};
            i == 0 ? glyph.moveTo(point) : glyph.lineTo(point);
        }
    }
};

} // namespace

std::unique_ptr<FontFace> openShapeFace(const std::filesystem::path& path) {
    constexpr std::uintmax_t largest = 64 * 1024 * 1024;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error || size > largest)
        return nullptr;
    std::ifstream stream(path, std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(stream), {});
    return shapeFace(std::move(bytes), pageOf(path));
}

std::unique_ptr<FontFace> shapeFace(std::string bytes, CodePage page) {
    std::optional<ShxFile> file = ShxFile::parse(std::move(bytes));
    return file ? std::make_unique<ShxFace>(std::move(*file), page) : nullptr;
}

std::unique_ptr<FontFace> makeStandardShapeFace(std::wstring_view name) {
    const std::wstring folded = fold(name);
    return folded == L"ltypeshp" || folded == L"ltypeshp.shx" ? std::make_unique<LinetypeShapes>() : nullptr;
}

} // namespace host
