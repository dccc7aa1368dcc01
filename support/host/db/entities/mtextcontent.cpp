// Reading of the inline codes of multi-line texts.
#include "host/db/entities/mtextcontent.h"

#include "host/db/entities/fields.h"
#include "host/rx/codepage.h"
#include "host/rx/text.h"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <optional>

namespace host {
namespace {

constexpr wchar_t noBreakSpace = L'\xA0';
constexpr std::size_t deepestBraces = 64; ///< of groups; deeper ones keep the look of the last

std::optional<double> numberOf(std::wstring_view text) {
    const std::wstring digits(trim(text));
    wchar_t* end = nullptr;
    const double value = std::wcstod(digits.c_str(), &end);
    return end != digits.c_str() && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// A value that a code sets: "2.5" or, as a factor of the one before, "0.7x".
void setValue(double& value, std::wstring_view argument, double least, double most) {
    const std::optional<double> given = numberOf(argument);
    if (!given) {
        return;
    }
    const bool relative = argument.find_first_of(L"xX") != std::wstring_view::npos;
    const double result = relative ? value * *given : *given;
    if (result >= least && result <= most) {
        value = result;
    }
}

class Parser {
public:
    Parser(std::wstring_view contents, const MTextLook& start)
        : mText(contents), mLastSemicolon(contents.rfind(L';')), mLook(start), mUnit(start.format.height) {}

    std::vector<MTextParagraph> run() {
        while (mAt < mText.size()) {
            const wchar_t character = mText[mAt++];
            if (character == L'\\' && mAt < mText.size()) {
                readCode();
            } else if (character == L'{') {
                flush();
                if (mSaved.size() < deepestBraces) {
                    mSaved.push_back(mLook);
                }
            } else if (character == L'}') {
                flush();
                if (!mSaved.empty()) {
                    mLook = mSaved.back();
                    mSaved.pop_back();
                }
            } else if (character == L'%' && readPercent()) {
                continue;
            } else if (character == L'\n') {
                endParagraph(MTextParagraph::End::paragraph);
            } else if (character == L'\t') {
                addTab();
            } else if (character != L'\r') {
                mPending += character;
            }
        }
        endParagraph(MTextParagraph::End::paragraph);
        return std::move(mParagraphs);
    }

private:
    std::wstring_view rest() const { return mText.substr(std::min(mAt, mText.size())); }

    void flush() {
        if (!mPending.empty()) {
            MTextPiece piece;
            piece.text = std::exchange(mPending, {});
            piece.look = mLook;
            mParagraph.pieces.push_back(std::move(piece));
        }
    }
    void addTab() {
        flush();
        MTextPiece piece;
        piece.kind = MTextPiece::Kind::tab;
        piece.look = mLook;
        mParagraph.pieces.push_back(std::move(piece));
    }
    void endParagraph(MTextParagraph::End end) {
        flush();
        mParagraph.format = mFormat;
        mParagraph.look = mLook;
        mParagraph.end = end;
        mParagraphs.push_back(std::exchange(mParagraph, {}));
    }
    /// The argument of a code up to its semicolon; a code without one has none.
    std::wstring_view argument() {
        if (mLastSemicolon == std::wstring_view::npos || mAt > mLastSemicolon) {
            return {}; // known without a search: there may be very many codes
        }
        const std::size_t end = mText.find(L';', mAt);
        const std::wstring_view found = mText.substr(mAt, end - mAt);
        mAt = end + 1;
        return found;
    }

    void readCode() {
        const wchar_t code = mText[mAt++];
        switch (code) {
        case L'P':
            return endParagraph(MTextParagraph::End::paragraph);
        case L'N':
            return endParagraph(MTextParagraph::End::column);
        case L'X':
            return endParagraph(MTextParagraph::End::belowDimensionLine);
        case L'~':
            mPending += noBreakSpace;
            return;
        case L'\\':
        case L'{':
        case L'}':
            mPending += code;
            return;
        case L'S':
            flush();
            return readStack();
        case L'U':
        case L'M':
            return readCharacter();
        case L'L':
        case L'l':
        case L'O':
        case L'o':
        case L'K':
        case L'k':
            flush();
            return switchLine(code);
        default:
            break;
        }
        if (std::wstring_view(L"fFHWQTACcp").find(code) == std::wstring_view::npos) {
            mPending += code; // as typed, without the backslash
            return;
        }
        if (code == L'p') {
            return readParagraphFormat(argument());
        }
        flush();
        readLook(code);
    }

    void switchLine(wchar_t code) {
        TextFormat& format = mLook.format;
        bool& line = code == L'L' || code == L'l'   ? format.underlined
                     : code == L'O' || code == L'o' ? format.overlined
                                                    : format.struckThrough;
        line = code == L'L' || code == L'O' || code == L'K';
    }

    void readLook(wchar_t code) {
        const bool isDigitCode = code == L'A';
        // \A is written without a semicolon by some programs.
        if (isDigitCode && mAt < mText.size() && mText[mAt] >= L'0' && mText[mAt] <= L'2') {
            mLook.stackAlignment = mText[mAt] - L'0';
            mAt += mAt + 1 < mText.size() && mText[mAt + 1] == L';' ? 2 : 1;
            return;
        }
        const std::wstring_view given = argument();
        TextFormat& format = mLook.format;
        double degrees = format.oblique * 180.0 / pi;
        switch (code) {
        case L'H':
            return setValue(format.height, given, 1e-12, 1e12);
        case L'W':
            return setValue(format.widthFactor, given, 1e-3, 1e3);
        case L'T':
            return setValue(format.tracking, given, 0.1, 10.0);
        case L'Q':
            setValue(degrees, given, -85.0, 85.0);
            format.oblique = degrees * pi / 180.0;
            return;
        case L'C':
        case L'c':
            if (const std::optional<double> number = numberOf(given); number && std::fabs(*number) < 1e9) {
                setColor(static_cast<Adesk::Int64>(*number), code == L'c');
            }
            return;
        case L'f':
        case L'F':
            return readFont(given, code == L'F');
        default:
            return;
        }
    }

    void setColor(Adesk::Int64 value, bool isTrueColor) {
        mLook.hasColor = true;
        if (isTrueColor) { // blue, green, red from the top
            mLook.color.setRGB(static_cast<Adesk::UInt8>(value), static_cast<Adesk::UInt8>(value >> 8),
                               static_cast<Adesk::UInt8>(value >> 16));
        } else if (value >= 0 && value <= 256) {
            mLook.color.setColorIndex(static_cast<Adesk::Int16>(value));
        }
    }

    /// "Typeface|b1|i0|c134|p2", or for shape fonts "txt.shx,gbcbig.shx|c0".
    void readFont(std::wstring_view given, bool isShapeFont) {
        FontSpec font;
        std::size_t at = given.find(L'|');
        const std::wstring_view name = trim(given.substr(0, at));
        if (name.empty()) {
            return;
        }
        while (at != std::wstring_view::npos) {
            const std::size_t next = given.find(L'|', at + 1);
            const std::wstring_view part = given.substr(
                at + 1, next == std::wstring_view::npos ? std::wstring_view::npos : next - at - 1);
            if (part.starts_with(L'b') || part.starts_with(L'B')) {
                font.bold = part.substr(1) == L"1";
            } else if (part.starts_with(L'i') || part.starts_with(L'I')) {
                font.italic = part.substr(1) == L"1";
            }
            at = next;
        }
        const bool isFile =
            isShapeFont || equalNoCase(name.substr(name.size() - std::min<std::size_t>(4, name.size())),
                                       std::wstring_view(L".shx"));
        if (isFile) {
            const std::size_t comma = name.find(L',');
            font.file = std::wstring(name.substr(0, comma));
            if (comma != std::wstring_view::npos) {
                font.bigFontFile = std::wstring(name.substr(comma + 1));
            }
        } else {
            font.typeface = std::wstring(name);
        }
        mLook.format.font = std::move(font);
    }

    void readStack() {
        MTextPiece piece;
        piece.kind = MTextPiece::Kind::stack;
        piece.look = mLook;
        std::wstring* part = &piece.text;
        while (mAt < mText.size() && mText[mAt] != L';') {
            wchar_t character = mText[mAt++];
            if (character == L'\\' && mAt < mText.size()) {
                character = mText[mAt++];
                *part += character;
            } else if (piece.divider == 0 && (character == L'^' || character == L'/' || character == L'#')) {
                piece.divider = character;
                part = &piece.below;
                // A blank after the caret belongs to the caret as files write it.
                mAt += character == L'^' && mAt < mText.size() && mText[mAt] == L' ' ? 1 : 0;
            } else if (character == L'%' && readPercent()) {
                *part += std::exchange(mPending, {});
            } else {
                *part += character;
            }
        }
        mAt = std::min(mAt + 1, mText.size());
        if (piece.divider == 0) {
            piece.kind = MTextPiece::Kind::text;
        }
        if (!piece.text.empty() || !piece.below.empty()) {
            mParagraph.pieces.push_back(std::move(piece));
        }
    }

    /// \U+XXXX and \M+nXXXX.
    void readCharacter() {
        const std::size_t length = mText[mAt - 1] == L'U' ? 7 : 8;
        const std::wstring_view code = mText.substr(mAt - 2, length);
        const std::wstring resolved = code.size() == length ? resolveEscapes(code) : std::wstring();
        if (resolved.size() == 1) {
            mPending += resolved;
            mAt += length - 2;
        } else {
            mPending += mText[mAt - 1];
        }
    }

    /// %%d %%p %%c %%% and %%nnn, after the first percent sign; the other codes are characters here.
    bool readPercent() {
        const std::wstring_view code = mText.substr(mAt - 1, 5);
        if (code.size() < 3 || code[1] != L'%') {
            return false;
        }
        const auto isDigit = [](wchar_t c) { return c >= L'0' && c <= L'9'; };
        const bool number = code.size() == 5 && std::all_of(code.begin() + 2, code.end(), isDigit);
        if (!number && std::wstring_view(L"dDpPcC%").find(code[2]) == std::wstring_view::npos) {
            return false;
        }
        const std::size_t length = number ? 5 : 3;
        for (const DecodedCharacter& decoded : decodeControlCodes(code.substr(0, length), false)) {
            mPending += static_cast<wchar_t>(decoded.character);
        }
        mAt += length - 1;
        return true;
    }

    void readParagraphFormat(std::wstring_view given) {
        flush();
        if (given.starts_with(L'*')) {
            mFormat = {};
        }
        std::size_t at = given.find_first_not_of(L"*x");
        while (at != std::wstring_view::npos && at < given.size()) {
            std::size_t end = given.find(L',', at);
            end = end == std::wstring_view::npos ? given.size() : end;
            const std::wstring_view part = given.substr(at, end - at);
            if (part.starts_with(L't')) {
                return readTabs(given.substr(at + 1)); // tabs are last and have commas of their own
            }
            readParagraphValue(part);
            at = end + 1;
        }
    }

    void readParagraphValue(std::wstring_view part) {
        if (part.size() < 2) {
            return;
        }
        const std::wstring_view value = part.substr(1);
        if (part[0] == L'q') {
            constexpr std::pair<wchar_t, MTextJustification> kinds[] = {
                {L'l', MTextJustification::left},        {L'c', MTextJustification::center},
                {L'r', MTextJustification::right},       {L'j', MTextJustification::justified},
                {L'd', MTextJustification::distributed}, {L'*', MTextJustification::byAttachment}};
            for (const auto& [letter, kind] : kinds) {
                mFormat.justification = value[0] == letter ? kind : mFormat.justification;
            }
            return;
        }
        if (part[0] == L's') {
            mFormat.exactSpacing = value[0] == L'e';
            mFormat.spacingFactor =
                value[0] == L'*' ? 0.0 : std::clamp(numberOf(value.substr(1)).value_or(0.0), 0.0, 100.0);
            return;
        }
        const double length = value == L"*" ? 0.0 : numberOf(value).value_or(0.0) * mUnit;
        switch (part[0]) {
        case L'i':
            mFormat.firstIndent = length;
            break;
        case L'l':
            mFormat.left = length;
            break;
        case L'r':
            mFormat.right = length;
            break;
        case L'b':
            mFormat.before = length;
            break;
        case L'a':
            mFormat.after = length;
            break;
        default:
            break;
        }
    }

    void readTabs(std::wstring_view given) {
        mFormat.tabs.clear();
        while (!given.empty()) {
            const std::size_t comma = given.find(L',');
            std::wstring_view part = given.substr(0, comma);
            given.remove_prefix(comma == std::wstring_view::npos ? given.size() : comma + 1);
            MTextTab tab;
            if (!part.empty() && std::wstring_view(L"crd").find(part[0]) != std::wstring_view::npos) {
                tab.kind = part[0] == L'c'   ? MTextTab::Kind::center
                           : part[0] == L'r' ? MTextTab::Kind::right
                                             : MTextTab::Kind::decimal;
                part.remove_prefix(1);
            }
            if (const std::optional<double> position = numberOf(part)) {
                tab.position = *position * mUnit;
                mFormat.tabs.push_back(tab);
            }
        }
        std::stable_sort(mFormat.tabs.begin(), mFormat.tabs.end(),
                         [](const MTextTab& a, const MTextTab& b) { return a.position < b.position; });
    }

    std::wstring_view mText;
    std::size_t mLastSemicolon;
    std::size_t mAt = 0;
    MTextLook mLook;
    double mUnit; ///< of paragraph lengths: the text's own height
    std::vector<MTextLook> mSaved;
    MTextParagraphFormat mFormat;
    MTextParagraph mParagraph;
    std::vector<MTextParagraph> mParagraphs;
    std::wstring mPending;
};

} // namespace

bool MTextLook::operator==(const MTextLook& other) const {
    const TextFormat& a = format;
    const TextFormat& b = other.format;
    return a.font == b.font && a.height == b.height && a.widthFactor == b.widthFactor &&
           a.oblique == b.oblique && a.tracking == b.tracking && a.underlined == b.underlined &&
           a.overlined == b.overlined && a.struckThrough == b.struckThrough &&
           stackAlignment == other.stackAlignment && hasColor == other.hasColor && color == other.color;
}

std::vector<MTextParagraph> parseMText(std::wstring_view contents, const MTextLook& start) {
    return Parser(contents, start).run();
}

std::wstring plainMText(std::wstring_view contents) {
    std::wstring text;
    for (const MTextParagraph& paragraph : parseMText(contents, MTextLook())) {
        for (const MTextPiece& piece : paragraph.pieces) {
            switch (piece.kind) {
            case MTextPiece::Kind::tab:
                text += L'\t';
                break;
            case MTextPiece::Kind::stack:
                text += piece.text + (piece.divider == L'^' ? L' ' : L'/') + piece.below;
                break;
            case MTextPiece::Kind::text:
                text += piece.text;
                break;
            }
        }
        text += L'\n';
    }
    text.pop_back();
    return text;
}

std::wstring scaledMText(std::wstring_view contents, double factor) {
    std::wstring result;
    const std::size_t last = contents.rfind(L';');
    for (std::size_t at = 0; at < contents.size(); ++at) {
        result += contents[at];
        if (contents[at] != L'\\' || at + 1 >= contents.size()) {
            continue;
        }
        result += contents[++at];
        const bool isHeight = contents[at] == L'H' && last != std::wstring_view::npos && at < last;
        const std::size_t end = isHeight ? contents.find(L';', at) : std::wstring_view::npos;
        if (end == std::wstring_view::npos) {
            continue;
        }
        const std::wstring_view argument = contents.substr(at + 1, end - at - 1);
        const std::optional<double> height = numberOf(argument);
        if (height && argument.find_first_of(L"xX") == std::wstring_view::npos) {
            char digits[40];
            std::string text(formatReal(*height * factor, digits));
            text = text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
            result += fromUtf8(text) + L';';
            at = end;
        }
    }
    return result;
}

} // namespace host
