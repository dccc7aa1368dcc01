#include "host/gi/color.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

// A channel's share (0 to 1) at a hue; the two other channels are the same profile 120 degrees on.
double channelShare(double hue) {
    const double turned = std::fmod(hue + 360.0, 360.0);
    const double distance = std::min(turned, 360.0 - turned); // from the hue at which the channel is full
    return std::clamp(2.0 - distance / 60.0, 0.0, 1.0);
}

constexpr Adesk::UInt32 pack(Adesk::UInt32 red, Adesk::UInt32 green, Adesk::UInt32 blue) {
    return red << 16 | green << 8 | blue;
}

// Colours 10 to 249: 24 hues of ten colours, five levels of brightness, each full and half saturated.
Adesk::UInt32 hueColor(int index) {
    constexpr std::array levels{1.0, 0.65, 0.5, 0.3, 0.15};
    const double hue = (index / 10 - 1) * 15.0;
    const double value = levels[static_cast<std::size_t>(index % 10 / 2)];
    const auto channel = [&](double shift) {
        const double share = channelShare(hue - shift);
        return static_cast<Adesk::UInt32>(255.0 * value * (index % 2 == 0 ? share : (1 + share) / 2));
    };
    return pack(channel(0), channel(120), channel(240));
}

std::array<Adesk::UInt32, 256> makePalette() {
    constexpr std::array<Adesk::UInt32, 10> first{0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                                  0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
    std::array<Adesk::UInt32, 256> palette{};
    std::ranges::copy(first, palette.begin());
    for (int i = 10; i < 250; ++i)
        palette[static_cast<std::size_t>(i)] = hueColor(i);
    for (Adesk::UInt32 i = 250; i < 256; ++i) { // greys
        const Adesk::UInt32 level = 51 + (i - 250) * 204 / 5;
        palette[i] = pack(level, level, level);
    }
    return palette;
}

const std::array<Adesk::UInt32, 256>& palette() {
    static const std::array<Adesk::UInt32, 256> colors = makePalette();
    return colors;
}

} // namespace

Adesk::UInt32 AcCmEntityColor::lookUpRGB(Adesk::UInt8 colorIndex) {
    return palette()[colorIndex];
}

Adesk::UInt8 AcCmEntityColor::lookUpACI(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
    const auto squared = [](int difference) { return difference * difference; };
    int best = std::numeric_limits<int>::max();
    Adesk::UInt8 nearest = kACIforeground;
    for (int i = 1; i < 256; ++i) {
        const Adesk::UInt32 candidate = palette()[static_cast<std::size_t>(i)];
        const int distance = squared(static_cast<int>(candidate >> 16 & 0xFF) - red) +
                             squared(static_cast<int>(candidate >> 8 & 0xFF) - green) +
                             squared(static_cast<int>(candidate & 0xFF) - blue);
        if (distance < best) {
            best = distance;
            nearest = static_cast<Adesk::UInt8>(i);
        }
    }
    return nearest;
}

Adesk::UInt32 AcCmEntityColor::trueColor() const {
    switch (colorMethod()) {
    case kByColor:
        return mPacked & 0xFFFFFF;
    case kByACI:
        return lookUpRGB(static_cast<Adesk::UInt8>(mPacked));
    case kForeground:
        return lookUpRGB(kACIforeground);
    default:
        return 0;
    }
}

Adesk::Int16 AcCmEntityColor::colorIndex() const {
    switch (colorMethod()) {
    case kByLayer:
        return kACIbyLayer;
    case kByBlock:
        return kACIbyBlock;
    case kByColor:
        return lookUpACI(red(), green(), blue());
    case kForeground:
        return kACIforeground;
    case kNone:
        return kACInone;
    default:
        return static_cast<Adesk::Int16>(mPacked & 0x1FF);
    }
}

AcCmColor::AcCmColor(const AcCmColor& other)
    : mColor(other.mColor), mNames(other.mNames ? std::make_unique<Names>(*other.mNames) : nullptr) {}

AcCmColor& AcCmColor::operator=(const AcCmColor& other) {
    return *this = AcCmColor(other);
}

bool AcCmColor::operator==(const AcCmColor& other) const {
    const Names none;
    return mColor == other.mColor && (mNames ? *mNames : none) == (other.mNames ? *other.mNames : none);
}

Acad::ErrorStatus AcCmColor::setColorMethod(AcCmEntityColor::ColorMethod method) {
    mColor.setColorMethod(method);
    mNames.reset();
    return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setColor(Adesk::UInt32 packed) {
    mColor.setColor(packed);
    mNames.reset();
    return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
    mColor.setRGB(red, green, blue);
    mNames.reset();
    return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setColorIndex(Adesk::UInt16 index) {
    if (index > AcCmEntityColor::kACInone)
        return Acad::eInvalidInput;
    mColor.setColorIndex(static_cast<Adesk::Int16>(index));
    mNames.reset();
    return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setPenIndex(Adesk::UInt16 index) {
    mColor.setColor(static_cast<Adesk::UInt32>(AcCmEntityColor::kByPen) << 24 | index);
    mNames.reset();
    return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setNames(const ACHAR* colorName, const ACHAR* bookName) {
    Names names{colorName ? colorName : L"", bookName ? bookName : L""};
    if (names == Names())
        mNames.reset();
    else
        mNames = std::make_unique<Names>(std::move(names));
    return Acad::eOk;
}

const ACHAR* AcCmColor::colorName() const {
    return mNames ? mNames->color.c_str() : L"";
}
const ACHAR* AcCmColor::bookName() const {
    return mNames ? mNames->book.c_str() : L"";
}

std::wstring AcCmColor::displayName() const {
    static constexpr std::array standardNames{L"红", L"黄", L"绿", L"青", L"蓝", L"洋红", L"白"};
    if (hasColorName())
        return hasBookName() ? mNames->book + L"$" + mNames->color : mNames->color;
    switch (mColor.colorMethod()) {
    case AcCmEntityColor::kByLayer:
        return L"ByLayer";
    case AcCmEntityColor::kByBlock:
        return L"ByBlock";
    case AcCmEntityColor::kByColor:
        return std::to_wstring(red()) + L"," + std::to_wstring(green()) + L"," + std::to_wstring(blue());
    case AcCmEntityColor::kNone:
        return L"None";
    default:
        break;
    }
    const auto index = static_cast<std::size_t>(mColor.colorIndex());
    return index >= 1 && index <= standardNames.size() ? standardNames[index - 1] : std::to_wstring(index);
}
