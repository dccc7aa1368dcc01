// The two lower floors of the DXF reader: bytes to groups. A group is a code and a value, in text as two
// lines, in a binary file as a number and the value's bytes. Nothing is copied: texts are views of the file.
#pragma once

#include "host/rx/ads.h"

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace host::dxf {

/// Ends the reading of a file. The message is the one line for the user.
class FormatError : public std::runtime_error {
public:
    explicit FormatError(std::wstring text) : std::runtime_error("DXF"), message(std::move(text)) {}
    std::wstring message;
};

/// Thrown when whoever waits for the drawing has had enough.
class ReadingStopped {};

/// What a binary file begins with.
inline constexpr std::string_view binarySentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

/// The largest group code there is.
inline constexpr int lastGroupCode = 1071;

/// How the value of each group code is held.
const std::array<ResbufKind, lastGroupCode + 1>& groupKinds();

/// A group as the file has it. The value is not looked at yet in a text file: `text` is the line without its
/// end. In a binary file numbers are in `real` or `integer` and `binary` is set; chunks are hexadecimal text.
struct Token {
    short code = 0;
    ResbufKind kind = ResbufKind::none;
    bool binary = false;
    std::string_view text;
    double real = 0.0;
    std::int64_t integer = 0;
};

/// Reads a text number with blanks around it; false when it is none or not finite.
bool parseReal(std::string_view text, double& value);
/// A whole number; one written as a real without a fraction is taken too.
bool parseInteger(std::string_view text, std::int64_t& value);
/// Up to sixteen hexadecimal digits with blanks around them.
bool parseHandle(std::string_view text, std::uint64_t& value);
/// Without the blanks around it.
std::string_view trimmed(std::string_view text);

class GroupScanner {
public:
    /// The bytes must outlive the scanner. Recognises a binary file by its first bytes. Throws FormatError
    /// for what can be no DXF file.
    explicit GroupScanner(std::string_view bytes);

    /// The next group; false at the end of the file. Throws FormatError for a group that is none.
    bool next(Token& token) { return mBinary ? nextBinary(token) : nextText(token); }

    /// Where the next group begins; can be returned to.
    struct Position {
        std::size_t offset = 0;
        std::size_t group = 0;
    };
    Position position() const { return {static_cast<std::size_t>(mAt - mBegin), mGroup}; }
    /// Bytes of the file.
    std::size_t size() const { return static_cast<std::size_t>(mEnd - mBegin); }
    void seek(Position position) {
        mAt = mBegin + position.offset;
        mGroup = position.group;
    }
    bool isBinary() const { return mBinary; }
    /// Line of the code of the group read last; of a binary file the byte it begins with.
    std::size_t line() const { return mBinary ? mStart : mGroup * 2 - 1; }
    /// Line of the value of a group whose code is in the line; bytes stay as they are.
    std::size_t valueLine(std::size_t line) const { return mBinary ? line : line + 1; }
    /// "第 12 行" or "第 0x1F 字节", for what line() gave.
    std::wstring place(std::size_t line) const;
    std::wstring place() const { return place(line()); }

private:
    bool nextText(Token& token);
    bool nextBinary(Token& token);
    bool slowCode(const char* lineEnd, int& code);
    template <class T>
    T take();

    const char* mBegin;
    const char* mAt;
    const char* mEnd;
    std::size_t mGroup = 0;
    std::size_t mStart = 0; ///< in a binary file, byte of the group read last
    bool mBinary = false;
    bool mShortCodes = false; ///< binary files before release 13: codes of one byte
    std::string mConverted;   ///< a file whose lines end with CR alone, with LF
    std::array<std::string, 2> mHex;
    int mHexTurn = 0;
};

} // namespace host::dxf
