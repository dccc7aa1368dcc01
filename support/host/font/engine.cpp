// Finds the faces of a font, lays lines of text out and keeps everything that was found.
#include "host/font/catalog.h"
#include "host/font/font.h"
#include "host/font/outlineface.h"
#include "host/font/shxface.h"
#include "host/font/strokeface.h"
#include "host/rx/text.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <numbers>
#include <optional>
#include <tuple>
#include <unordered_map>

namespace host {

namespace {

constexpr char32_t firstIdeographic = 0x2E80; // radicals, kana, ideographs, full-width forms

bool isOutlineFileName(std::wstring_view name) {
    const std::wstring folded = fold(name);
    return folded.ends_with(L".ttf") || folded.ends_with(L".ttc") || folded.ends_with(L".otf");
}

std::wstring_view baseName(std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    return slash == path.npos ? path : path.substr(slash + 1);
}

// An open square, for a character that no font has.
std::unique_ptr<Glyph> missingGlyph() {
    auto glyph = std::make_unique<Glyph>();
    glyph->moveTo({0.1f, 0});
    for (const GlyphPoint point : {GlyphPoint{0.1f, 1}, {0.7f, 1}, {0.7f, 0}, {0.1f, 0}})
        glyph->lineTo(point);
    glyph->advance = 0.8;
    glyph->finish();
    return glyph;
}

} // namespace

// The faces that serve one FontSpec: the font itself, its big font, and what is looked up for characters that
// neither has. The faces belong to the engine.
struct FontStack {
    FontFace* primary = nullptr;
    FontFace* ideographs = nullptr; // the big font, asked first for what is not ASCII; may be null
    bool isAvailable = false;
    std::unordered_map<char32_t, const Glyph*> glyphs;
};

struct FontEngine::Implementation {
    using FaceKey = std::tuple<std::filesystem::path, int, bool, bool, OutlineScale>;

    std::mutex mutex;
    std::vector<std::filesystem::path> searchFolders;
    std::map<FaceKey, std::unique_ptr<FontFace>> outlineFaces;
    std::map<std::wstring, std::unique_ptr<FontFace>> strokeFaces; // by folded name
    std::vector<std::unique_ptr<FontFace>> retiredFaces;
    std::map<std::tuple<std::wstring, std::wstring, std::wstring, bool, bool>, FontStack> stacks;
    std::unique_ptr<Glyph> missing = missingGlyph();

    FontFace* outlineFace(const FontFile& file, OutlineScale scale) {
        const FaceKey key{file.path, file.index, file.embolden, file.slant, scale};
        const auto [entry, isNew] = outlineFaces.try_emplace(key);
        if (isNew)
            entry->second = openOutlineFace(file, scale);
        return entry->second.get();
    }

    // The face of a shape font's name: its file where there is one, else what stands for a standard name,
    // else null.
    FontFace* shapeFace(std::wstring_view name) {
        const std::wstring key = fold(baseName(name));
        const auto [entry, isNew] = strokeFaces.try_emplace(key);
        if (isNew) {
            if (const auto path = inSearchFolders(key.ends_with(L".shx") ? key : key + L".shx"))
                entry->second = openShapeFace(*path);
            if (!entry->second)
                entry->second = makeStandardShapeFace(key);
            if (!entry->second)
                entry->second = makeStandardStrokeFace(key);
        }
        return entry->second.get();
    }

    FontFace* plainFace() {
        std::unique_ptr<FontFace>& plain = strokeFaces[L"txt"];
        if (!plain)
            plain = makePlainStrokeFace();
        return plain.get();
    }

    std::optional<std::filesystem::path> inSearchFolders(std::wstring_view name) const {
        for (const std::filesystem::path& folder : searchFolders) {
            std::error_code error;
            for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
                 entry.increment(error))
                if (equalNoCase(fromUtf8(entry->path().filename().string()), baseName(name)))
                    return entry->path();
        }
        return std::nullopt;
    }

    std::optional<FontFile> outlineFile(const FontSpec& font) const {
        if (!font.typeface.empty())
            return findTypeface(font.typeface, font.bold, font.italic);
        if (auto path = inSearchFolders(font.file))
            return FontFile{*path};
        return findFontFile(font.file);
    }

    FontStack makeStack(const FontSpec& font) {
        FontStack stack;
        if (!font.typeface.empty() || isOutlineFileName(font.file)) {
            if (const auto file = outlineFile(font)) {
                stack.primary = outlineFace(*file, OutlineScale::capitals);
                stack.isAvailable = stack.primary && !file->isSubstitute;
            }
        }
        if (stack.primary)
            return stack;
        stack.primary = shapeFace(font.file.empty() ? L"txt" : std::wstring_view(font.file));
        stack.isAvailable = stack.primary != nullptr;
        if (!stack.primary)
            stack.primary = plainFace();
        if (!font.bigFontFile.empty())
            stack.ideographs = shapeFace(font.bigFontFile);
        return stack;
    }

    FontStack& stack(const FontSpec& font) {
        const auto key = std::tuple(font.typeface, font.file, font.bigFontFile, font.bold, font.italic);
        const auto found = stacks.find(key);
        return found != stacks.end() ? found->second : stacks.emplace(key, makeStack(font)).first->second;
    }

    const Glyph* lookUp(FontStack& fonts, char32_t character) {
        if (fonts.ideographs && character >= 0x80)
            if (const Glyph* glyph = fonts.ideographs->glyph(character))
                return glyph;
        if (const Glyph* glyph = fonts.primary->glyph(character))
            return glyph;
        const bool asStroke = fonts.primary->isStroke() && character >= firstIdeographic;
        if (const auto file = findFontWith(character))
            if (FontFace* face =
                    outlineFace(*file, asStroke ? OutlineScale::ideographs : OutlineScale::capitals))
                if (const Glyph* glyph = face->glyph(character))
                    return glyph;
        return missing.get();
    }

    const Glyph* glyph(FontStack& fonts, char32_t character) {
        const auto [entry, isNew] = fonts.glyphs.try_emplace(character);
        if (isNew)
            entry->second = lookUp(fonts, character);
        return entry->second;
    }
};

namespace {

// Lays out in text coordinates; the glyph matrix is fixed for the whole line.
class Layout {
public:
    Layout(const TextFormat& format, ShapedText& result) : m_format(format), m_result(result) {
        const double limit = 85 * std::numbers::pi / 180;
        const double slant = std::tan(std::clamp(format.oblique, -limit, limit));
        const double mirrorX = format.backward ? -1 : 1, mirrorY = format.upsideDown ? -1 : 1;
        const double width = format.height * format.widthFactor;
        m_result.xx = width * mirrorX;
        m_result.xy = format.height * slant * mirrorX;
        m_result.yy = format.height * mirrorY;
    }

    void place(const Glyph& glyph, const DecodedCharacter& character) {
        const double step = glyph.advance * m_format.tracking;
        // Vertical writing hangs each character below the pen, its ink centred.
        const double u = m_format.vertical ? -(glyph.box().left + glyph.box().right) / 2 : m_pen;
        const double v = m_format.vertical ? -m_drop - 1 : 0;
        const PlacedGlyph placed{&glyph, m_result.xx * u, m_result.yy * v};
        m_result.glyphs.push_back(placed);
        addInk(placed);
        m_rules[0].follow(character.underlined, m_pen, step);
        m_rules[1].follow(character.overlined, m_pen, step);
        m_rules[2].follow(character.struckThrough, m_pen, step);
        for (Rule& rule : m_rules)
            rule.collect(*this);
        m_pen += step;
        m_drop += verticalStep * m_format.tracking;
    }

    void finish() {
        for (Rule& rule : m_rules) {
            rule.follow(false, m_pen, 0);
            rule.collect(*this);
        }
        m_result.advanceX = m_format.vertical ? 0 : m_result.xx * m_pen;
        m_result.advanceY = m_format.vertical ? -m_result.yy * m_drop : 0;
    }

private:
    static constexpr double verticalStep = 1.5; // text heights from one character to the one below

    // One kind of line along the text, kept while its switch is on.
    struct Rule {
        double level; // above the base line, text heights
        double start = 0, end = 0;
        bool on = false;
        bool ended = false;

        void follow(bool wanted, double pen, double step) {
            ended = on && !wanted;
            if (wanted && !on)
                start = pen;
            if (wanted)
                end = pen + step;
            on = wanted;
        }
        void collect(Layout& layout) {
            if (ended)
                layout.addRule(*this);
            ended = false;
        }
    };

    void addInk(const PlacedGlyph& placed) {
        const GlyphBox& box = placed.glyph->box();
        if (box.empty)
            return;
        for (const double v : {box.bottom, box.top})
            for (const double u : {box.left, box.right})
                m_result.ink.add(placed.x + m_result.xx * u + m_result.xy * v, placed.y + m_result.yy * v);
    }

    void addRule(const Rule& rule) {
        if (m_format.vertical)
            return;
        const double y = m_result.yy * rule.level, shift = m_result.xy * rule.level;
        const TextRule line{m_result.xx * rule.start + shift, y, m_result.xx * rule.end + shift, y};
        m_result.rules.push_back(line);
        m_result.ink.add(line.startX, line.startY);
        m_result.ink.add(line.endX, line.endY);
    }

    const TextFormat& m_format;
    ShapedText& m_result;
    double m_pen = 0, m_drop = 0;
    Rule m_rules[3] = {{-0.2}, {1.2}, {0.5}};
};

bool isDrawable(const TextFormat& format) {
    return format.height > 0 && std::isfinite(format.height) && std::isfinite(format.widthFactor) &&
           std::isfinite(format.oblique) && std::isfinite(format.tracking);
}

} // namespace

ShapedText ShapedText::single(const Glyph& glyph, double scale) {
    ShapedText text;
    text.xx = text.yy = scale;
    text.glyphs.push_back({&glyph, 0, 0});
    const GlyphBox& box = glyph.box();
    if (!box.empty) {
        text.ink.add(box.left * scale, box.bottom * scale);
        text.ink.add(box.right * scale, box.top * scale);
    }
    text.advanceX = glyph.advance * scale;
    return text;
}

FontEngine& FontEngine::instance() {
    static FontEngine engine;
    return engine;
}

FontEngine::FontEngine() : m_implementation(std::make_unique<Implementation>()) {}
FontEngine::~FontEngine() = default;

ShapedText FontEngine::shape(std::wstring_view text, const TextFormat& format, bool raw) {
    ShapedText result;
    if (!isDrawable(format))
        return result;
    TextFormat whole = format;
    std::vector<DecodedCharacter> characters = decodeControlCodes(text, raw);
    for (DecodedCharacter& character : characters) {
        character.underlined |= format.underlined;
        character.overlined |= format.overlined;
        character.struckThrough |= format.struckThrough;
    }
    Layout layout(whole, result);
    result.glyphs.reserve(characters.size());
    const std::lock_guard lock(m_implementation->mutex);
    FontStack& fonts = m_implementation->stack(format.font);
    for (const DecodedCharacter& character : characters)
        if (character.character >= U' ')
            layout.place(*m_implementation->glyph(fonts, character.character), character);
    layout.finish();
    return result;
}

FontEngine::Extents FontEngine::extents(std::wstring_view text, const TextFormat& format, bool raw,
                                        bool penups) {
    const ShapedText shaped = shape(text, format, raw);
    if (shaped.glyphs.empty())
        return {};
    Extents result;
    const auto reach = [](double low, double high) { return std::max(std::abs(low), std::abs(high)); };
    if (!shaped.ink.empty) {
        result.width = reach(shaped.ink.left, shaped.ink.right);
        result.height = reach(shaped.ink.top, std::min(shaped.ink.top, 0.0));
    }
    if (penups)
        result.width = std::max(result.width, std::abs(shaped.advanceX));
    return result;
}

bool FontEngine::isAvailable(const FontSpec& font) {
    const std::lock_guard lock(m_implementation->mutex);
    return m_implementation->stack(font).isAvailable;
}

const Glyph* FontEngine::shapeGlyph(std::wstring_view file, int number) {
    const std::lock_guard lock(m_implementation->mutex);
    FontFace* face = number > 0 ? m_implementation->shapeFace(file) : nullptr;
    return face ? face->glyph(static_cast<char32_t>(number)) : nullptr;
}

FontEngine::Metrics FontEngine::metrics(const FontSpec& font) {
    const std::lock_guard lock(m_implementation->mutex);
    const FontFace& face = *m_implementation->stack(font).primary;
    return {face.ascent(), face.descent()};
}

void FontEngine::setSearchFolders(std::vector<std::filesystem::path> folders) {
    const std::lock_guard lock(m_implementation->mutex);
    m_implementation->searchFolders = std::move(folders);
    m_implementation->stacks.clear();
    // Faces already handed out stay: texts already shaped point to their glyphs.
    for (auto& [name, face] : m_implementation->strokeFaces)
        m_implementation->retiredFaces.push_back(std::move(face));
    m_implementation->strokeFaces.clear();
}

} // namespace host
