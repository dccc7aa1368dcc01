#include "host/font/outlineface.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

#include <cmath>

namespace host {

namespace {

FT_Library library() {
    static const FT_Library instance = [] {
        FT_Library made = nullptr;
        FT_Init_FreeType(&made);
        return made;
    }();
    return instance;
}

struct FaceCloser {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using FacePointer = std::unique_ptr<FT_FaceRec_, FaceCloser>;

// A contour point in font units as a point in text heights.
struct Placement {
    double scale, lift;
    GlyphPoint operator()(const FT_Vector* point) const {
        return {static_cast<float>(static_cast<double>(point->x) * scale),
                static_cast<float>(static_cast<double>(point->y) * scale + lift)};
    }
};

struct Decomposition {
    Glyph& glyph;
    Placement placement;
};

int moveTo(const FT_Vector* to, void* user) {
    auto& target = *static_cast<Decomposition*>(user);
    target.glyph.moveTo(target.placement(to));
    return 0;
}
int lineTo(const FT_Vector* to, void* user) {
    auto& target = *static_cast<Decomposition*>(user);
    target.glyph.lineTo(target.placement(to));
    return 0;
}
int conicTo(const FT_Vector* control, const FT_Vector* to, void* user) {
    auto& target = *static_cast<Decomposition*>(user);
    target.glyph.quadraticTo(target.placement(control), target.placement(to));
    return 0;
}
int cubicTo(const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to, void* user) {
    auto& target = *static_cast<Decomposition*>(user);
    target.glyph.cubicTo(target.placement(control1), target.placement(control2), target.placement(to));
    return 0;
}

constexpr FT_Int32 loadFlags = FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP | FT_LOAD_NO_HINTING;

class OutlineFace final : public FontFace {
public:
    OutlineFace(FacePointer face, const FontFile& file, OutlineScale scale)
        : mFace(std::move(face)), mFile(file) {
        const double em = mFace->units_per_EM;
        if (scale == OutlineScale::ideographs) {
            constexpr double inkShare = 0.92,
                             inkBottom = 0.08; // of an ideograph's em box, below the base line
            mPlacement = {1 / (inkShare * em), inkBottom / inkShare};
        } else {
            mPlacement = {1 / capitalHeight(), 0};
        }
    }

    bool isStroke() const override { return false; }
    double ascent() const override { return mFace->ascender * mPlacement.scale; }
    double descent() const override { return -mFace->descender * mPlacement.scale; }

private:
    double capitalHeight() const {
        const double em = mFace->units_per_EM;
        const FT_UInt index = FT_Get_Char_Index(mFace.get(), 'H');
        if (index != 0 && FT_Load_Glyph(mFace.get(), index, loadFlags) == 0 &&
            mFace->glyph->format == FT_GLYPH_FORMAT_OUTLINE) {
            FT_BBox box;
            FT_Outline_Get_CBox(&mFace->glyph->outline, &box);
            if (const auto height = static_cast<double>(box.yMax); height > 0.2 * em && height < 2 * em)
                return height;
        }
        return 0.7 * em;
    }

    std::unique_ptr<Glyph> makeGlyph(char32_t character) override {
        const FT_UInt index = glyphIndex(character);
        if (index == 0 || FT_Load_Glyph(mFace.get(), index, loadFlags) != 0)
            return nullptr;
        const FT_GlyphSlot slot = mFace->glyph;
        auto glyph = std::make_unique<Glyph>();
        glyph->filled = true;
        glyph->advance = static_cast<double>(slot->metrics.horiAdvance) * mPlacement.scale;
        if (slot->format != FT_GLYPH_FORMAT_OUTLINE)
            return glyph;
        FT_Outline& outline = slot->outline;
        if (mFile.embolden)
            FT_Outline_Embolden(&outline, mFace->units_per_EM / 28);
        if (mFile.slant) {
            const FT_Matrix shear{0x10000, 0x3800, 0, 0x10000}; // tan 12.3 degrees
            FT_Outline_Transform(&outline, &shear);
        }
        if (mFile.isTurned && isIdeographic(character))
            turn(outline, *glyph);
        Decomposition target{*glyph, mPlacement};
        const FT_Outline_Funcs functions{moveTo, lineTo, conicTo, cubicTo, 0, 0};
        FT_Outline_Decompose(&outline, &functions, &target);
        return glyph;
    }

    // A quarter turn to the left within the em box; what was its height is then its width.
    void turn(FT_Outline& outline, Glyph& glyph) const {
        constexpr double topShare = 0.88; // of an ideograph's em box, above the base line
        const double em = mFace->units_per_EM;
        const FT_Matrix quarter{0, -0x10000, 0x10000, 0};
        FT_Outline_Transform(&outline, &quarter);
        FT_Outline_Translate(&outline, std::lround(topShare * em), -std::lround((1 - topShare) * em));
        glyph.advance = em * mPlacement.scale;
    }

    FT_UInt glyphIndex(char32_t character) const {
        FT_UInt index = FT_Get_Char_Index(mFace.get(), character);
        if (index == 0 && character == 0x2205) { // the diameter sign has several code points
            index = FT_Get_Char_Index(mFace.get(), 0x2300);
            if (index == 0)
                index = FT_Get_Char_Index(mFace.get(), 0xD8);
        }
        if (index == 0 && mFace->charmap && mFace->charmap->encoding == FT_ENCODING_MS_SYMBOL &&
            character < 0x100)
            index = FT_Get_Char_Index(mFace.get(), 0xF000 + character);
        return index;
    }

    FacePointer mFace;
    FontFile mFile;
    Placement mPlacement{1, 0};
};

} // namespace

std::unique_ptr<FontFace> openOutlineFace(const FontFile& file, OutlineScale scale) {
    FT_Face face = nullptr;
    if (!library() || FT_New_Face(library(), file.path.c_str(), file.index, &face) != 0)
        return nullptr;
    FacePointer owned(face);
    if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0)
        return nullptr;
    if (!face->charmap && face->num_charmaps > 0) // symbol fonts have no Unicode map to be chosen for us
        FT_Set_Charmap(face, face->charmaps[0]);
    return std::make_unique<OutlineFace>(std::move(owned), file, scale);
}

} // namespace host
