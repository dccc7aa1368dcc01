// Colours of the drawing: by layer, by block, an index of the standard colours (ACI), or red, green and blue.
// AcCmEntityColor is the packed value every entity carries; AcCmColor adds the names of colour books.
#pragma once

#include "host/ge/adesk.h"
#include "host/rx/rx.h"

#include <memory>
#include <string>

class AcCmEntityColor {
public:
    enum Color { kRed, kGreen, kBlue };
    enum ColorMethod {
        kByLayer = 0xC0,
        kByBlock,
        kByColor,
        kByACI,
        kByPen,
        kForeground,
        kLayerOff,
        kLayerFrozen,
        kNone,
        kByDgnIndex
    };
    enum ACIcolorMethod {
        kACIbyBlock = 0,
        kACIforeground = 7,
        kACIbyLayer = 256,
        kACIclear = 0,
        kACIRed = 1,
        kACIYellow = 2,
        kACIGreen = 3,
        kACICyan = 4,
        kACIBlue = 5,
        kACIMagenta = 6,
        kACIWhite = 7,
        kACIstandard = 7,
        kACImaximum = 255,
        kACInone = 257,
        kACIminimum = -255,
        kACIfarthest = -256
    };

    constexpr AcCmEntityColor() = default;
    constexpr AcCmEntityColor(ColorMethod method) { setColorMethod(method); }
    constexpr AcCmEntityColor(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
        setRGB(red, green, blue);
    }

    constexpr bool operator==(const AcCmEntityColor& other) const = default;

    // Changing the method keeps only what the new method can mean: by layer and by block have no value.
    constexpr void setColorMethod(ColorMethod method) {
        mPacked = static_cast<Adesk::UInt32>(method) << 24;
        if (method == kByACI)
            mPacked |= kACIforeground;
        else if (method == kNone)
            mPacked |= kACInone;
    }
    constexpr ColorMethod colorMethod() const { return static_cast<ColorMethod>(mPacked >> 24); }
    constexpr bool isByColor() const { return colorMethod() == kByColor; }
    constexpr bool isByLayer() const { return colorMethod() == kByLayer; }
    constexpr bool isByBlock() const { return colorMethod() == kByBlock; }
    constexpr bool isByACI() const { return colorMethod() == kByACI; }
    constexpr bool isByPen() const { return colorMethod() == kByPen; }
    bool isForeground() const {
        return colorMethod() == kForeground || (isByACI() && colorIndex() == kACIforeground);
    }
    constexpr bool isNone() const { return colorMethod() == kNone; }
    constexpr bool isLayerOff() const { return colorMethod() == kLayerOff; }
    constexpr bool isLayerFrozen() const { return colorMethod() == kLayerFrozen; }

    // The packed value: the method in the top byte, below it red, green and blue or the index.
    constexpr void setColor(Adesk::UInt32 packed) { mPacked = packed; }
    constexpr Adesk::UInt32 color() const { return mPacked; }

    // 0 is by block, 1 to 255 an index, 256 by layer, 257 none; other numbers are taken as by layer.
    constexpr void setColorIndex(Adesk::Int16 index) {
        if (index == kACIbyBlock)
            setColorMethod(kByBlock);
        else if (index > 0 && index <= kACImaximum)
            mPacked = (static_cast<Adesk::UInt32>(kByACI) << 24) | static_cast<Adesk::UInt32>(index);
        else
            setColorMethod(index == kACInone ? kNone : kByLayer);
    }
    // The index as above; a true colour gives the nearest standard colour.
    Adesk::Int16 colorIndex() const;
    constexpr Adesk::UInt16 penIndex() const { return static_cast<Adesk::UInt16>(mPacked & 0xFFFF); }

    constexpr void setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
        mPacked = (static_cast<Adesk::UInt32>(kByColor) << 24) | (static_cast<Adesk::UInt32>(red) << 16) |
                  (static_cast<Adesk::UInt32>(green) << 8) | blue;
    }
    constexpr Adesk::UInt8 red() const { return static_cast<Adesk::UInt8>(mPacked >> 16); }
    constexpr Adesk::UInt8 green() const { return static_cast<Adesk::UInt8>(mPacked >> 8); }
    constexpr Adesk::UInt8 blue() const { return static_cast<Adesk::UInt8>(mPacked); }

    // Red, green and blue as 0x00RRGGBB, looked up when the colour is an index; 0 where there is none.
    Adesk::UInt32 trueColor() const;

    // Packed 0x00RRGGBB of a standard colour; index 0 is black.
    static Adesk::UInt32 lookUpRGB(Adesk::UInt8 colorIndex);
    // The standard colour nearest to the given one.
    static Adesk::UInt8 lookUpACI(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);

private:
    Adesk::UInt32 mPacked = static_cast<Adesk::UInt32>(kByLayer) << 24;
};

class AcCmColor {
public:
    AcCmColor() { mColor.setColorMethod(AcCmEntityColor::kByLayer); }
    AcCmColor(const AcCmEntityColor& color) : mColor(color) {}
    AcCmColor(const AcCmColor& other);
    AcCmColor(AcCmColor&& other) noexcept = default;
    AcCmColor& operator=(const AcCmColor& other);
    AcCmColor& operator=(AcCmColor&& other) noexcept = default;
    bool operator==(const AcCmColor& other) const;

    AcCmEntityColor entityColor() const { return mColor; }
    AcCmEntityColor::ColorMethod colorMethod() const { return mColor.colorMethod(); }
    Acad::ErrorStatus setColorMethod(AcCmEntityColor::ColorMethod method);
    bool isByColor() const { return mColor.isByColor(); }
    bool isByLayer() const { return mColor.isByLayer(); }
    bool isByBlock() const { return mColor.isByBlock(); }
    bool isByACI() const { return mColor.isByACI(); }
    bool isByPen() const { return mColor.isByPen(); }
    bool isForeground() const { return mColor.isForeground(); }
    bool isNone() const { return mColor.isNone(); }

    Adesk::UInt32 color() const { return mColor.color(); }
    Acad::ErrorStatus setColor(Adesk::UInt32 packed);
    Acad::ErrorStatus setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);
    Adesk::UInt8 red() const { return mColor.red(); }
    Adesk::UInt8 green() const { return mColor.green(); }
    Adesk::UInt8 blue() const { return mColor.blue(); }
    Adesk::UInt16 colorIndex() const { return static_cast<Adesk::UInt16>(mColor.colorIndex()); }
    // Any number that is no index (0 by block, 1-255, 256 by layer, 257 none) is refused: eInvalidInput.
    Acad::ErrorStatus setColorIndex(Adesk::UInt16 index);
    Adesk::UInt16 penIndex() const { return mColor.penIndex(); }
    Acad::ErrorStatus setPenIndex(Adesk::UInt16 index);

    // Names of the colour and of the book it is from; both empty for a colour without name.
    Acad::ErrorStatus setNames(const ACHAR* colorName, const ACHAR* bookName = nullptr);
    const ACHAR* colorName() const;
    const ACHAR* bookName() const;
    bool hasColorName() const { return mNames && !mNames->color.empty(); }
    bool hasBookName() const { return mNames && !mNames->book.empty(); }
    // The name, or ByLayer, ByBlock, a standard colour's name in the user's language, an index, or "r,g,b".
    std::wstring displayName() const;

private:
    struct Names {
        std::wstring color, book;
        bool operator==(const Names&) const = default;
    };
    AcCmEntityColor mColor;
    std::unique_ptr<Names> mNames; // seldom there: a plain colour costs twelve bytes, not eighty
};
