// What an entity draws, kept in as few bytes as it takes: coordinates are floats relative to the entity's own
// origin, pens are numbers in the scene's table, glyphs refer to the fonts' own drawings.
#pragma once

#include "host/gi/primitives.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace app {

/// How a pen shows on the screen.
struct ScreenPen {
    std::uint32_t color = 0;     ///< 0x00RRGGBB
    bool isForeground = false;   ///< white on dark, black on light
    bool isBackground = false;   ///< hides what lies below
    std::int16_t lineWeight = 0; ///< hundredths of a millimetre
    bool operator==(const ScreenPen&) const = default;
};

/// The pens of a scene; equal ones have one number.
class PenTable {
public:
    std::uint32_t numberOf(const host::Pen& pen);
    const ScreenPen& operator[](std::uint32_t number) const { return mPens[number]; }

private:
    std::vector<ScreenPen> mPens;
    std::unordered_map<std::uint64_t, std::uint32_t> mNumbers;
    std::uint32_t mLast = 0;
};

enum class Primitive : std::uint32_t { polyline, path, dot, area, glyph, clip, unclip };

/// A primitive as it is kept: `words` are coordinates (pairs of floats) unless told otherwise.
struct KeptPrimitive {
    Primitive kind;
    std::uint32_t count; ///< polyline: points; path: verbs; area: contours; clip: corners
    std::uint32_t pen;
    /// path: verbs, sixteen a word, then points; area: contour ends with the rule in the first bit of the
    /// first word, then points; glyph: the glyph's address, place, and the matrix of its axes.
    std::span<const std::uint32_t> words;
};

inline float floatOf(std::uint32_t word) {
    return std::bit_cast<float>(word);
}

/// The primitives of one entity in one block of memory.
class Geometry {
public:
    Geometry() = default;
    bool isBuilt() const { return mWords != nullptr; }
    AcGePoint2d origin() const;
    /// Right at any scale.
    bool isScaleFree() const { return (mWords[flagsAt] & 1) != 0; }
    /// Power of two of the units a pixel that it was made for.
    int level() const { return static_cast<std::int8_t>(mWords[flagsAt] >> 8 & 0xFF); }
    std::size_t bytes() const;
    void clear() { mWords.reset(); }
    /// Asks the memory for what forEach() begins with.
    void prefetch() const {
        constexpr std::size_t line = 16; // words of a line of the processor's cache
        if (isBuilt()) {
            __builtin_prefetch(mWords.get());
            __builtin_prefetch(mWords.get() + line);
        }
    }

    /// Calls visit(KeptPrimitive) for all in drawing order.
    template <class Visit>
    void forEach(Visit visit) const {
        const std::uint32_t* at = mWords.get() + headSize;
        const std::uint32_t* const end = at + mWords[sizeAt];
        while (at < end) {
            constexpr std::uint32_t kindBits = 4;
            const KeptPrimitive primitive{
                static_cast<Primitive>(at[0] & 0xF), at[0] >> kindBits, at[1], {at + 3, at[2]}};
            at += 3 + at[2];
            visit(primitive);
        }
    }

private:
    friend class GeometrySink;
    static constexpr std::size_t flagsAt = 4, sizeAt = 5, headSize = 6;
    std::unique_ptr<std::uint32_t[]> mWords; ///< origin (two doubles), flags, size, primitives
};

/// Collects what an entity draws.
class GeometrySink final : public host::PrimitiveSink {
public:
    explicit GeometrySink(PenTable& pens) : mPens(pens) {}
    void start(const AcGePoint2d& origin);
    /// Forgets what was drawn since.
    void abandon() { mWords.clear(); }
    /// What was drawn since start(); `isScaled` when it depends on the scale.
    Geometry finish(int level, bool isScaled);

    void polyline(std::span<const AcGePoint3d> points, const host::Pen& pen) override;
    void area(const host::Area& area, const host::Pen& pen) override;
    void dot(const AcGePoint3d& point, const host::Pen& pen) override;
    void glyphs(const host::GlyphRun& run, const host::Pen& pen) override;
    bool wantsCurves() const override { return mWantsCurves; }
    /// Curves far larger than what is seen of them are better given by chords: those near are small numbers.
    void setWantsCurves(bool wants) { mWantsCurves = wants; }
    void path(const host::WorldPath& path, const host::Pen& pen) override;
    void pushClip(std::span<const AcGePoint3d> polygon) override;
    void popClip() override;

private:
    void head(Primitive kind, std::size_t count, const host::Pen& pen);
    void close();
    void put(double value) { mWords.push_back(std::bit_cast<std::uint32_t>(static_cast<float>(value))); }
    void put(const AcGePoint3d& point) {
        put(point.x - mOrigin.x);
        put(point.y - mOrigin.y);
    }

    PenTable& mPens;
    AcGePoint2d mOrigin;
    std::vector<std::uint32_t> mWords;
    bool mWantsCurves = true;
    std::size_t mHead = 0; ///< of the primitive that is being written
};

} // namespace app
