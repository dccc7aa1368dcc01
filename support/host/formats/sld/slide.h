// Slides: pictures made of lines and filled polygons in the standard colours, as slide files (.sld) and slide
// libraries (.slb) hold them. Older files (level 1) are read as well.
#pragma once

#include <bit>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// In dots, from the lower left corner of the picture; x to the right, y upwards.
struct SlidePoint {
    int x = 0;
    int y = 0;
    bool operator==(const SlidePoint&) const = default;
};

struct SlideShape {
    enum class Kind : std::uint8_t { line, area };

    Kind kind = Kind::line;  ///< an open line through two or more points, or a closed polygon
    std::uint8_t color = 7;  ///< standard colour; 0 that of the background, 7 shows against any background
    std::uint32_t first = 0; ///< of the slide's points
    std::uint32_t count = 0;
    bool operator==(const SlideShape&) const = default;
};

struct Slide {
    int width = 0;       ///< dots
    int height = 0;      ///< dots
    double aspect = 0.0; ///< width to height as the picture is to be seen
    std::vector<SlidePoint> points;
    std::vector<SlideShape> shapes; ///< in drawing order

    std::span<const SlidePoint> pointsOf(const SlideShape& shape) const {
        return std::span(points).subspan(shape.first, shape.count);
    }
    void add(SlideShape::Kind kind, std::uint8_t color, std::span<const SlidePoint> shapePoints);
    bool operator==(const Slide&) const = default;
};

/// The slide of a file's bytes; without one, `message` is one line that says what is wrong and where.
std::optional<Slide> parseSlide(std::string_view bytes, std::wstring& message);
/// A slide file of level 2. Polygons of many vertices are cut into such as the format can hold.
std::string slideBytes(const Slide& slide, std::endian order = std::endian::little);

/// Reads FILE.sld, or FILE.slb(NAME) for a slide of a library, or FILE without an extension as .sld.
std::optional<Slide> readSlide(const std::wstring& path, std::wstring& message);
/// Empty, or one line that says what went wrong; an existing file is replaced only by a whole one.
std::wstring writeSlide(const Slide& slide, const std::filesystem::path& path);

struct SlideLibraryEntry {
    std::wstring name;      ///< without regard to case
    std::string_view bytes; ///< of the slide file, within those of the library
};
/// The directory of a slide library, in its order.
std::optional<std::vector<SlideLibraryEntry>> parseSlideLibrary(std::string_view bytes,
                                                                std::wstring& message);
struct NamedSlide {
    std::wstring name; ///< at most 31 bytes in the Chinese code page
    Slide slide;
};
std::string slideLibraryBytes(std::span<const NamedSlide> slides);

} // namespace host
