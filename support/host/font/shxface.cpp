#include "host/font/shxface.h"

#include "host/font/shxfile.h"
#include "host/rx/codepage.h"
#include "host/rx/text.h"

#include <algorithm>
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
    ShapePen(const ShxFile& file, Glyph& glyph, double scale) : m_file(file), m_glyph(glyph), m_unit(scale) {}

    void draw(std::string_view drawing) { run(drawing, 0); }
    double x() const { return m_x; }

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
        while (!reader.isAtEnd() && ++m_steps < mostSteps) {
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
            if (!m_isSkipping) {
                m_isDown = code == 1;
                m_isDrawing = false;
            }
            break;
        case 3:
            if (const int divisor = reader.byte(); divisor != 0 && !m_isSkipping)
                m_unit /= divisor;
            break;
        case 4:
            if (const int factor = reader.byte(); factor != 0 && !m_isSkipping)
                m_unit *= factor;
            break;
        case 5:
            if (m_stack.size() < 16 && !m_isSkipping)
                m_stack.emplace_back(m_x, m_y);
            break;
        case 6:
            if (!m_stack.empty() && !m_isSkipping) {
                std::tie(m_x, m_y) = m_stack.back();
                m_stack.pop_back();
                m_isDrawing = false;
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
        m_isSkipping = true;
        step(code, reader, depth);
        m_isSkipping = false;
    }

    void call(Reader& reader, int depth) {
        std::uint32_t code = static_cast<std::uint32_t>(reader.byte());
        if (m_file.kind() == ShxFile::Kind::unicodeFont)
            code = code << 8 | static_cast<std::uint32_t>(reader.byte());
        if (m_file.kind() == ShxFile::Kind::bigFont && code == 0) {
            placedCall(reader, depth);
            return;
        }
        if (!m_isSkipping)
            run(m_file.drawing(code), depth + 1);
    }

    // A part of a big font's character: its code, its place, and the width and height it is drawn with.
    void placedCall(Reader& reader, int depth) {
        const auto code =
            static_cast<std::uint32_t>(reader.byte() << 8) | static_cast<std::uint32_t>(reader.byte());
        const int x = reader.signedByte(), y = reader.signedByte();
        const int width = reader.byte(), height = reader.byte();
        if (m_isSkipping)
            return;
        const double unit = m_unit, stretchX = m_stretchX, stretchY = m_stretchY, startX = m_x, startY = m_y;
        const int fontHeight = std::max(m_file.above(), 1);
        m_x += x * m_unit * m_stretchX;
        m_y += y * m_unit * m_stretchY;
        m_stretchX *= static_cast<double>(width) / fontHeight;
        m_stretchY *= static_cast<double>(height) / fontHeight;
        m_isDrawing = false;
        run(m_file.drawing(code), depth + 1);
        m_unit = unit;
        m_stretchX = stretchX;
        m_stretchY = stretchY;
        m_x = startX;
        m_y = startY;
        m_isDrawing = false;
    }

    bool move(Reader& reader) {
        const int dx = reader.signedByte(), dy = reader.signedByte();
        if (dx == 0 && dy == 0)
            return false;
        go(dx * m_unit, dy * m_unit);
        return mayGoOn(reader);
    }

    // Sixteen directions; every second one is half as steep as its neighbour on one axis.
    void vector(int length, int direction) {
        static constexpr double steps[16] = {1, 1, 1, 0.5, 0, -0.5, -1, -1, -1, -1, -1, -0.5, 0, 0.5, 1, 1};
        go(length * m_unit * steps[direction], length * m_unit * steps[(direction + 12) % 16]);
    }

    void octantArc(Reader& reader) {
        const int radius = reader.byte(), octants = reader.signedByte();
        const int code = std::abs(octants), count = (code & 7) == 0 ? 8 : code & 7;
        const double start = (code >> 4 & 7) * pi / 4;
        arc(radius * m_unit, start, (octants < 0 ? -1 : 1) * count * pi / 4);
    }

    void fractionalArc(Reader& reader) {
        const int startOffset = reader.byte(), endOffset = reader.byte();
        const int high = reader.byte(), low = reader.byte(), octants = reader.signedByte();
        const int code = std::abs(octants), count = (code & 7) == 0 ? 8 : code & 7;
        const double direction = octants < 0 ? -1 : 1;
        // Offsets are 256ths of an octant from the start of the first and of the last octant.
        const double first = startOffset / 256.0, last = count - (endOffset != 0 ? 1 : 0) + endOffset / 256.0;
        const double start = ((code >> 4 & 7) + direction * first) * pi / 4;
        arc((high * 256 + low) * m_unit, start, direction * (last - first) * pi / 4);
    }

    // From the current point, which lies at the start angle of the circle.
    void arc(double radius, double start, double sweep) {
        if (m_isSkipping)
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
            go(dx * m_unit, dy * m_unit);
            return mayGoOn(reader);
        }
        const double lift = (1 - bulge * bulge) / (4 * bulge);
        const double centerX = dx / 2.0 - dy * lift, centerY = dy / 2.0 + dx * lift;
        arc(std::hypot(centerX, centerY) * m_unit, std::atan2(-centerY, -centerX), 4 * std::atan(bulge));
        return mayGoOn(reader);
    }

    bool mayGoOn(const Reader& reader) const { return !reader.isAtEnd() && m_steps < mostSteps; }

    void go(double dx, double dy) {
        ++m_steps;
        if (m_isSkipping)
            return;
        if (m_isDown && !m_isDrawing) {
            m_glyph.moveTo({static_cast<float>(m_x), static_cast<float>(m_y)});
            m_isDrawing = true;
        }
        m_x += dx * m_stretchX;
        m_y += dy * m_stretchY;
        if (m_isDown)
            m_glyph.lineTo({static_cast<float>(m_x), static_cast<float>(m_y)});
        m_isDrawing = m_isDown;
    }

    const ShxFile& m_file;
    Glyph& m_glyph;
    double m_unit;
    double m_stretchX = 1, m_stretchY = 1;
    double m_x = 0, m_y = 0;
    bool m_isDown = true, m_isDrawing = false, m_isSkipping = false;
    int m_steps = 0;
    std::vector<std::pair<double, double>> m_stack;
};

class ShxFace final : public FontFace {
public:
    ShxFace(ShxFile file, CodePage page) : m_file(std::move(file)), m_page(page) {}
    bool isStroke() const override { return true; }
    double descent() const override {
        return m_file.isFont() ? static_cast<double>(m_file.below()) / m_file.above() : 0;
    }

private:
    std::unique_ptr<Glyph> makeGlyph(char32_t character) override {
        const std::uint32_t code = codeOf(character);
        if (!m_file.has(code) || (code == 0 && m_file.isFont()))
            return nullptr;
        auto glyph = std::make_unique<Glyph>();
        const double scale = m_file.isFont() ? 1.0 / m_file.above() : 1.0;
        ShapePen pen(m_file, *glyph, scale);
        pen.draw(m_file.drawing(code));
        glyph->advance = pen.x();
        constexpr double farthest = 1e6; // text heights: a damaged definition
        const auto isNear = [](const GlyphPoint& point) {
            return std::abs(point.x) < farthest && std::abs(point.y) < farthest;
        };
        return std::abs(pen.x()) < farthest && std::ranges::all_of(glyph->points(), isNear) ? std::move(glyph)
                                                                                            : nullptr;
    }

    // The entry's number: a big font's is the double byte of its code page; shape fonts of old have the
    // degree, plus-minus and diameter signs at 127 to 129.
    std::uint32_t codeOf(char32_t character) const {
        constexpr std::uint32_t none = 0xFFFFFFFF;
        if (m_file.kind() == ShxFile::Kind::unicodeFont || character < 0x80)
            return character;
        if (m_file.kind() == ShxFile::Kind::bigFont) {
            const std::wstring text(1, static_cast<wchar_t>(character));
            const std::string bytes = canEncode(text, m_page) ? encode(text, m_page) : std::string();
            if (bytes.size() != 2)
                return none;
            const auto high = static_cast<unsigned char>(bytes[0]),
                       low = static_cast<unsigned char>(bytes[1]);
            // Files hold the double byte in either order.
            const std::uint32_t code = static_cast<std::uint32_t>(high << 8 | low);
            return m_file.has(code) ? code : static_cast<std::uint32_t>(low << 8 | high);
        }
        switch (character) {
        case 0xB0:
            return 127;
        case 0xB1:
            return 128;
        case 0x2205:
            return 129;
        default:
            return character < 0x100 || !m_file.isFont() ? character : none;
        }
    }

    ShxFile m_file;
    CodePage m_page;
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
        case batting:
            drawArc(*glyph, 0, 1, 1, -pi / 2, pi);
            drawArc(*glyph, 0, 1, 1, pi / 2, pi);
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
    std::optional<ShxFile> file = ShxFile::parse(std::move(bytes));
    return file ? std::make_unique<ShxFace>(std::move(*file), pageOf(path)) : nullptr;
}

std::unique_ptr<FontFace> makeStandardShapeFace(std::wstring_view name) {
    const std::wstring folded = fold(name);
    return folded == L"ltypeshp" || folded == L"ltypeshp.shx" ? std::make_unique<LinetypeShapes>() : nullptr;
}

} // namespace host
