// Lays lines of text out.
#include "host/font/controlcodes.h"
#include "host/font/face.h"
#include "host/font/font.h"
#include "host/font/fontstore.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <numbers>

namespace host {

struct FontEngine::Implementation {
    std::mutex mutex;
    FontStore store;
};

namespace {

// Lays out in text coordinates; the glyph matrix is fixed for the whole line.
class Layout {
public:
    enum class Purpose {
        drawing,
        measuring // no glyphs are kept, and the text is not mirrored
    };

    Layout(const TextFormat& format, Purpose purpose, ShapedText& result)
        : mFormat(format), mResult(result), mKeepsGlyphs(purpose == Purpose::drawing) {
        constexpr double limit = 85 * std::numbers::pi / 180;
        const double slant = format.oblique == 0 ? 0 : std::tan(std::clamp(format.oblique, -limit, limit));
        const double mirrorX = format.backward && mKeepsGlyphs ? -1 : 1;
        const double mirrorY = format.upsideDown && mKeepsGlyphs ? -1 : 1;
        const double width = format.height * format.widthFactor;
        mResult.xx = width * mirrorX;
        mResult.xy = format.height * slant * mirrorX;
        mResult.yy = format.height * mirrorY;
    }

    void place(const Glyph& glyph, const DecodedCharacter& character) {
        const double step = glyph.advance * mFormat.tracking;
        put(glyph, mPen, 0);
        mRules[0].follow(character.underlined || mFormat.underlined, mPen, step, *this);
        mRules[1].follow(character.overlined || mFormat.overlined, mPen, step, *this);
        mRules[2].follow(character.struckThrough || mFormat.struckThrough, mPen, step, *this);
        mPen += step;
    }

    // Hangs a character below the pen, its ink centred.
    void hang(const Glyph& glyph) {
        put(glyph, -(glyph.box().left + glyph.box().right) / 2, -mDrop - 1);
        mDrop += verticalStep * mFormat.tracking;
    }
    // The same with a font's own drawing for vertical text.
    void hangOwn(const Glyph& glyph) {
        put(glyph, 0, -mDrop);
        mDrop += glyph.advance * mFormat.tracking;
    }

    void finish() {
        for (Rule& rule : mRules)
            rule.follow(false, mPen, 0, *this);
        mResult.advanceX = mFormat.vertical ? 0 : mResult.xx * mPen;
        mResult.advanceY = mFormat.vertical ? -mResult.yy * mDrop : 0;
    }

private:
    static constexpr double verticalStep = 1.5; // text heights from one character to the one below

    // One kind of line along the text, kept while its switch is on.
    struct Rule {
        double level; // above the base line, text heights
        double start = 0, end = 0;
        bool on = false;

        void follow(bool wanted, double pen, double step, Layout& layout) {
            if (on && !wanted)
                layout.addRule(*this);
            if (wanted && !on)
                start = pen;
            if (wanted)
                end = pen + step;
            on = wanted;
        }
    };

    void put(const Glyph& glyph, double u, double v) {
        const PlacedGlyph placed{&glyph, mResult.xx * u, mResult.yy * v};
        if (mKeepsGlyphs)
            mResult.glyphs.push_back(placed);
        addInk(placed);
    }

    void addInk(const PlacedGlyph& placed) {
        const GlyphBox& box = placed.glyph->box();
        if (box.empty)
            return;
        for (const double v : {box.bottom, box.top})
            for (const double u : {box.left, box.right})
                mResult.ink.add(placed.x + mResult.xx * u + mResult.xy * v, placed.y + mResult.yy * v);
    }

    void addRule(const Rule& rule) {
        const double y = mResult.yy * rule.level, shift = mResult.xy * rule.level;
        const TextRule line{mResult.xx * rule.start + shift, y, mResult.xx * rule.end + shift, y};
        mResult.rules.push_back(line);
        mResult.ink.add(line.startX, line.startY);
        mResult.ink.add(line.endX, line.endY);
    }

    const TextFormat& mFormat;
    ShapedText& mResult;
    bool mKeepsGlyphs;
    double mPen = 0, mDrop = 0;
    Rule mRules[3] = {{-0.2}, {1.2}, {0.5}};
};

void layOut(std::wstring_view text, bool isRaw, const TextFormat& format, FontStore& store, Layout& layout) {
    FontStack& fonts = store.stack(format.font);
    for (ControlCodeReader reader(text, isRaw); !reader.isAtEnd();) {
        const auto character = reader.next();
        if (!character || character->character < U' ')
            continue;
        if (!format.vertical)
            layout.place(*store.glyph(fonts, character->character), *character);
        else if (const Glyph* own = store.verticalGlyph(fonts, character->character))
            layout.hangOwn(*own);
        else
            layout.hang(*store.glyph(fonts, character->character));
    }
    layout.finish();
}

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
    // Never destroyed: taking the faces apart is most of a short run's end.
    static FontEngine& engine = *new FontEngine;
    return engine;
}

FontEngine::FontEngine() : mImplementation(std::make_unique<Implementation>()) {}
FontEngine::~FontEngine() = default;

ShapedText FontEngine::shape(std::wstring_view text, const TextFormat& format, bool raw) {
    ShapedText result;
    if (!isDrawable(format))
        return result;
    Layout layout(format, Layout::Purpose::drawing, result);
    result.glyphs.reserve(text.size());
    const std::lock_guard lock(mImplementation->mutex);
    layOut(text, raw, format, mImplementation->store, layout);
    return result;
}

// The text's ink and advance unmirrored, without glyphs.
ShapedText FontEngine::measured(std::wstring_view text, const TextFormat& format, bool raw) {
    ShapedText result;
    if (!isDrawable(format))
        return result;
    Layout layout(format, Layout::Purpose::measuring, result);
    const std::lock_guard lock(mImplementation->mutex);
    layOut(text, raw, format, mImplementation->store, layout);
    return result;
}

GlyphBox FontEngine::inkBox(std::wstring_view text, const TextFormat& format, bool raw) {
    return measured(text, format, raw).ink;
}

FontEngine::Extents FontEngine::extents(std::wstring_view text, const TextFormat& format, bool raw,
                                        bool penups) {
    const ShapedText box = measured(text, format, raw);
    if (format.vertical)
        return {box.ink.right - box.ink.left, std::abs(box.ink.bottom)};
    Extents result;
    if (!box.ink.empty) {
        result.width = std::max(std::abs(box.ink.left), std::abs(box.ink.right));
        result.height = std::abs(box.ink.top);
    }
    if (penups)
        result.width = std::max(result.width, std::abs(box.advanceX));
    return result;
}

bool FontEngine::isAvailable(const FontSpec& font) {
    const std::lock_guard lock(mImplementation->mutex);
    return mImplementation->store.stack(font).isAvailable;
}

std::vector<FontSubstitution> FontEngine::takeSubstitutions() {
    const std::lock_guard lock(mImplementation->mutex);
    return mImplementation->store.takeSubstitutions();
}

const Glyph* FontEngine::shapeGlyph(std::wstring_view file, int number) {
    const std::lock_guard lock(mImplementation->mutex);
    FontFace* face = number > 0 ? mImplementation->store.shapeFace(file) : nullptr;
    return face ? face->glyph(static_cast<char32_t>(number)) : nullptr;
}

FontEngine::Metrics FontEngine::metrics(const FontSpec& font) {
    const std::lock_guard lock(mImplementation->mutex);
    const FontFace& face = *mImplementation->store.stack(font).primary;
    return {face.ascent(), face.descent()};
}

std::vector<std::filesystem::path> FontEngine::searchFolders() {
    const std::lock_guard lock(mImplementation->mutex);
    return mImplementation->store.searchFolders();
}

void FontEngine::setSearchFolders(std::vector<std::filesystem::path> folders) {
    const std::lock_guard lock(mImplementation->mutex);
    mImplementation->store.setSearchFolders(std::move(folders));
}

} // namespace host
