// Slide files: a header with the size of the picture and a test number that tells the byte order, then
// records whose kind is the high byte of their first two bytes. Vectors leave their starting point as the
// last point, lines from the last point leave their end.
#include "host/formats/sld/slide.h"

#include "host/formats/definitiontext.h"
#include "host/formats/sld/trapezoids.h"
#include "host/rx/codepage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace host {
namespace {

constexpr std::string_view signature("AutoCAD Slide\r\n\x1a\0", 17);
constexpr std::string_view librarySignature("AutoCAD Slide Library 1.0\r\n\x1a\0\0\0\0", 32);
constexpr char typeIndicator = 86;
constexpr std::uint16_t testNumber = 0x1234;
constexpr double aspectScale = 1e7;
constexpr std::size_t nameSize = 32;  ///< of a library's directory entry
constexpr std::size_t entrySize = 36; ///< with the address

/// Kinds of records; below `lastVector` the byte is that of a coordinate.
enum Record : std::uint8_t {
    lastVector = 0x7F,
    offsetVector = 0xFB,
    endOfFile = 0xFC,
    solidFill = 0xFD,
    fromLastPoint = 0xFE,
    newColor = 0xFF
};

constexpr std::size_t mostFillVertices = 10;
/// Coordinates of a sound file stay within; sums of offsets could leave any range.
constexpr int farthest = 1 << 20;

struct Damage {
    std::size_t place; ///< byte
    const wchar_t* what;
};

/// Bytes with a place and a byte order; reading beyond the end throws.
class Bytes {
public:
    explicit Bytes(std::string_view bytes) : mBytes(bytes) {}

    void setOrder(std::endian order) { mOrder = order; }
    std::size_t place() const { return mPlace; }
    std::uint8_t byte() {
        if (mPlace >= mBytes.size()) {
            throw Damage{mPlace, L"文件意外结束"};
        }
        return static_cast<std::uint8_t>(mBytes[mPlace++]);
    }
    int offset() { return static_cast<std::int8_t>(byte()); }
    std::uint16_t word() {
        const std::uint8_t first = byte();
        const std::uint8_t second = byte();
        return static_cast<std::uint16_t>(mOrder == std::endian::little ? first | second << 8
                                                                        : first << 8 | second);
    }
    int coordinate() { return static_cast<std::int16_t>(word()); }
    /// Low byte first in any file.
    std::uint32_t longNumber() {
        std::uint32_t value = 0;
        for (int shift = 0; shift < 32; shift += 8) {
            value |= static_cast<std::uint32_t>(byte()) << shift;
        }
        return value;
    }
    double real() {
        std::uint64_t bits = longNumber();
        bits |= static_cast<std::uint64_t>(longNumber()) << 32;
        return std::bit_cast<double>(bits);
    }

private:
    std::string_view mBytes;
    std::size_t mPlace = 0;
    std::endian mOrder = std::endian::little;
};

class Reader {
public:
    explicit Reader(std::string_view bytes) : mBytes(bytes) {}

    Slide read() {
        readHeader();
        while (readRecord()) {
        }
        return std::move(mSlide);
    }

private:
    void readHeader();
    bool readRecord();
    void readFill(std::size_t place);
    void addVector(SlidePoint from, SlidePoint to);
    void addFromLast(SlidePoint to);
    void check(SlidePoint point) const {
        if (std::abs(point.x) > farthest || std::abs(point.y) > farthest) {
            throw Damage{mBytes.place(), L"坐标超出范围"};
        }
    }

    Bytes mBytes;
    Slide mSlide;
    SlidePoint mLast;
    std::uint8_t mColor = 7;
    bool mIsLineOpen = false; ///< the slide's last shape is a line that ends at the last point
};

void Reader::readHeader() {
    for (const char expected : signature) {
        if (mBytes.byte() != static_cast<std::uint8_t>(expected)) {
            throw Damage{0, L"不是幻灯片文件"};
        }
    }
    mBytes.byte(); // the type
    const std::uint8_t level = mBytes.byte();
    if (level != 1 && level != 2) {
        throw Damage{18, L"不认识的幻灯片版本"};
    }
    // The byte order of all numbers follows from the last one of the header.
    const std::uint16_t highX = mBytes.word();
    const std::uint16_t highY = mBytes.word();
    const auto swapped = [](std::uint16_t value) {
        return static_cast<std::uint16_t>(value << 8 | value >> 8);
    };
    bool isSwapped = false;
    if (level == 2) {
        mSlide.aspect = mBytes.longNumber() / aspectScale;
        mBytes.word();
        const std::uint16_t test = mBytes.word();
        if (test != testNumber && test != swapped(testNumber)) {
            throw Damage{29, L"字节次序标记不对"};
        }
        isSwapped = test != testNumber;
        mBytes.setOrder(isSwapped ? std::endian::big : std::endian::little);
    } else {
        mSlide.aspect = mBytes.real();
        mBytes.word();
        mBytes.byte();
    }
    mSlide.width = (isSwapped ? swapped(highX) : highX) + 1;
    mSlide.height = (isSwapped ? swapped(highY) : highY) + 1;
    if (!(mSlide.aspect > 1e-3 && mSlide.aspect < 1e3)) {
        mSlide.aspect = mSlide.width / static_cast<double>(mSlide.height);
    }
}

/// False at the end of the slide.
bool Reader::readRecord() {
    const std::size_t place = mBytes.place();
    const std::uint16_t start = mBytes.word();
    const auto kind = static_cast<std::uint8_t>(start >> 8);
    const int low = static_cast<std::int8_t>(start & 0xFF);
    if (kind <= lastVector) {
        SlidePoint from{start, mBytes.coordinate()};
        const int toX = mBytes.coordinate();
        addVector(from, {toX, mBytes.coordinate()});
        return true;
    }
    switch (kind) {
    case offsetVector: {
        const SlidePoint from{mLast.x + low, mLast.y + mBytes.offset()};
        const int toX = mLast.x + mBytes.offset();
        addVector(from, {toX, mLast.y + mBytes.offset()});
        return true;
    }
    case fromLastPoint:
        addFromLast({mLast.x + low, mLast.y + mBytes.offset()});
        return true;
    case solidFill:
        readFill(place);
        return true;
    case newColor:
        mColor = static_cast<std::uint8_t>(start & 0xFF);
        mIsLineOpen = false;
        return true;
    case endOfFile:
        return false;
    default:
        throw Damage{place, L"不认识的记录"};
    }
}

/// A start that gives the number of vertices, the vertices, and an end; start and end have a negative y.
void Reader::readFill(std::size_t place) {
    const int count = mBytes.coordinate();
    if (mBytes.coordinate() >= 0 || count < 0) {
        throw Damage{place, L"填充多边形没有开始"};
    }
    std::vector<SlidePoint> corners;
    for (;;) {
        const std::size_t at = mBytes.place();
        if (mBytes.word() >> 8 != solidFill) {
            throw Damage{at, L"填充多边形没有结束"};
        }
        const int x = mBytes.coordinate();
        const int y = mBytes.coordinate();
        if (y < 0) {
            break;
        }
        corners.push_back({x, y});
    }
    mIsLineOpen = false;
    if (corners.size() >= 3) {
        mSlide.add(SlideShape::Kind::area, mColor, corners);
    }
}

void Reader::addVector(SlidePoint from, SlidePoint to) {
    check(from);
    check(to);
    // A vector that ends where the line does goes on with it.
    if (mIsLineOpen && mLast == to && from != to) {
        mSlide.points.push_back(from);
        ++mSlide.shapes.back().count;
    } else {
        mSlide.add(SlideShape::Kind::line, mColor, std::array{to, from});
    }
    mLast = from;
    mIsLineOpen = true;
}

void Reader::addFromLast(SlidePoint to) {
    check(to);
    if (mIsLineOpen) {
        mSlide.points.push_back(to);
        ++mSlide.shapes.back().count;
    } else {
        mSlide.add(SlideShape::Kind::line, mColor, std::array{mLast, to});
    }
    mLast = to;
    mIsLineOpen = true;
}

class Writer {
public:
    explicit Writer(std::endian order) : mOrder(order) {}

    std::string write(const Slide& slide);

private:
    void byte(int value) { mBytes += static_cast<char>(value); }
    void word(int value) {
        const bool isLittle = mOrder == std::endian::little;
        byte(isLittle ? value : value >> 8);
        byte(isLittle ? value >> 8 : value);
    }
    void longNumber(std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8) {
            byte(static_cast<int>(value >> shift & 0xFF));
        }
    }
    void start(Record kind, int low) { word(kind << 8 | (low & 0xFF)); }
    void header(const Slide& slide);
    void vector(SlidePoint from, SlidePoint to);
    void line(std::span<const SlidePoint> points);
    void area(std::span<const SlidePoint> points);
    void corner(int x, int y) {
        start(solidFill, 0);
        word(x);
        word(y);
    }

    std::string mBytes;
    std::endian mOrder;
    SlidePoint mLast;
    bool mHasLast = false;
};

bool isByte(int value) {
    return value >= -128 && value <= 127;
}

SlidePoint storable(SlidePoint point) {
    constexpr int most = 0x7FFF;
    return {std::clamp(point.x, 0, most), std::clamp(point.y, 0, most)};
}

std::string Writer::write(const Slide& slide) {
    header(slide);
    std::optional<std::uint8_t> color;
    for (const SlideShape& shape : slide.shapes) {
        if (color != shape.color) {
            start(newColor, shape.color);
            color = shape.color;
        }
        const std::span<const SlidePoint> points = slide.pointsOf(shape);
        if (shape.kind == SlideShape::Kind::area) {
            area(points);
        } else {
            line(points);
        }
    }
    start(endOfFile, 0);
    return std::move(mBytes);
}

void Writer::header(const Slide& slide) {
    mBytes = signature;
    byte(typeIndicator);
    byte(2);
    word(std::clamp(slide.width - 1, 0, 0x7FFF));
    word(std::clamp(slide.height - 1, 0, 0x7FFF));
    longNumber(static_cast<std::uint32_t>(std::lround(std::clamp(slide.aspect, 0.0, 400.0) * aspectScale)));
    word(2); // filled by the device; any value serves
    word(testNumber);
}

void Writer::vector(SlidePoint from, SlidePoint to) {
    const std::array offsets{from.x - mLast.x, from.y - mLast.y, to.x - mLast.x, to.y - mLast.y};
    if (mHasLast && std::ranges::all_of(offsets, isByte)) {
        start(offsetVector, offsets[0]);
        byte(offsets[1]);
        byte(offsets[2]);
        byte(offsets[3]);
    } else {
        word(from.x);
        word(from.y);
        word(to.x);
        word(to.y);
    }
    mLast = from;
    mHasLast = true;
}

/// Each vector runs backwards, so that the next one can start where it ends.
void Writer::line(std::span<const SlidePoint> points) {
    for (std::size_t i = 1; i < points.size(); ++i) {
        const SlidePoint from = storable(points[i - 1]);
        const SlidePoint to = storable(points[i]);
        if (i > 1 && isByte(to.x - from.x) && isByte(to.y - from.y)) {
            start(fromLastPoint, to.x - from.x);
            byte(to.y - from.y);
            mLast = to;
        } else {
            vector(to, from);
        }
    }
}

void Writer::area(std::span<const SlidePoint> points) {
    if (points.size() > mostFillVertices) {
        const std::array ends{static_cast<std::uint32_t>(points.size())};
        cutIntoTrapezoids(points, ends, true, [this](std::span<const SlidePoint> piece) { area(piece); });
        return;
    }
    corner(static_cast<int>(points.size()), -1);
    for (const SlidePoint& point : points) {
        const SlidePoint stored = storable(point);
        corner(stored.x, stored.y);
    }
    corner(static_cast<int>(points.size()), -1);
}

std::wstring damageText(const Damage& damage) {
    return std::wstring(damage.what) + L"（第 " + std::to_wstring(damage.place) + L" 字节）";
}

} // namespace

void Slide::add(SlideShape::Kind kind, std::uint8_t color, std::span<const SlidePoint> shapePoints) {
    shapes.push_back({kind, color, static_cast<std::uint32_t>(points.size()),
                      static_cast<std::uint32_t>(shapePoints.size())});
    points.insert(points.end(), shapePoints.begin(), shapePoints.end());
}

std::optional<Slide> parseSlide(std::string_view bytes, std::wstring& message) {
    try {
        return Reader(bytes).read();
    } catch (const Damage& damage) {
        message = damageText(damage);
        return std::nullopt;
    }
}

std::string slideBytes(const Slide& slide, std::endian order) {
    return Writer(order).write(slide);
}

std::optional<std::vector<SlideLibraryEntry>> parseSlideLibrary(std::string_view bytes,
                                                                std::wstring& message) {
    try {
        if (!bytes.starts_with(librarySignature)) {
            throw Damage{0, L"不是幻灯片库"};
        }
        std::vector<SlideLibraryEntry> entries;
        for (std::size_t at = librarySignature.size();; at += entrySize) {
            if (at >= bytes.size()) {
                throw Damage{at, L"文件意外结束"};
            }
            if (bytes[at] == '\0') {
                return entries;
            }
            const std::string_view name = bytes.substr(at, nameSize);
            if (bytes.size() - at < entrySize) {
                throw Damage{at, L"文件意外结束"};
            }
            Bytes address(bytes.substr(at + nameSize, entrySize - nameSize));
            const std::uint32_t start = address.longNumber();
            if (start >= bytes.size()) {
                throw Damage{at + nameSize, L"幻灯片的位置超出文件"};
            }
            entries.push_back({definitionText(name.substr(0, name.find('\0'))), bytes.substr(start)});
        }
    } catch (const Damage& damage) {
        message = damageText(damage);
        return std::nullopt;
    }
}

std::string slideLibraryBytes(std::span<const NamedSlide> slides) {
    std::string directory(librarySignature);
    std::string contents;
    const std::size_t contentsStart = librarySignature.size() + (slides.size() + 1) * entrySize;
    for (const NamedSlide& slide : slides) {
        std::string name = encode(slide.name, CodePage::ansi936, Unmappable::question);
        name.resize(wholeCharacters(name, nameSize - 1, CodePage::ansi936));
        name.resize(nameSize);
        directory += name;
        const std::size_t address = contentsStart + contents.size();
        for (int shift = 0; shift < 32; shift += 8) {
            directory += static_cast<char>(address >> shift & 0xFF);
        }
        contents += slideBytes(slide.slide);
    }
    directory.append(entrySize, '\0');
    return directory + contents;
}

} // namespace host
