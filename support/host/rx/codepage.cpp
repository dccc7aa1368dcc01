// Each page is asked from iconv once and kept as two tables, so that decoding and encoding cost an array
// look-up a character and need no shared conversion state.
#include "host/rx/codepage.h"

#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iconv.h>
#include <memory>
#include <mutex>
#include <span>

namespace host {
namespace {

struct PageInfo {
    CodePage page;
    std::string_view name; // as in $DWGCODEPAGE
    const char* converter; // iconv's name; null: handled here
    int windowsNumber;     // 0: none of its own
    bool doubleByte = false;
    char escapeDigit = 0; // n of \M+n
};

constexpr std::array pages = {
    PageInfo{CodePage::undefined, "UNDEFINED", "CP1252", 0},
    PageInfo{CodePage::ascii, "US_ASCII", "CP1252", 20127},
    PageInfo{CodePage::iso8859_1, "ISO8859-1", "ISO-8859-1", 28591},
    PageInfo{CodePage::iso8859_2, "ISO8859-2", "ISO-8859-2", 28592},
    PageInfo{CodePage::iso8859_3, "ISO8859-3", "ISO-8859-3", 28593},
    PageInfo{CodePage::iso8859_4, "ISO8859-4", "ISO-8859-4", 28594},
    PageInfo{CodePage::iso8859_5, "ISO8859-5", "ISO-8859-5", 28595},
    PageInfo{CodePage::iso8859_6, "ISO8859-6", "ISO-8859-6", 28596},
    PageInfo{CodePage::iso8859_7, "ISO8859-7", "ISO-8859-7", 28597},
    PageInfo{CodePage::iso8859_8, "ISO8859-8", "ISO-8859-8", 28598},
    PageInfo{CodePage::iso8859_9, "ISO8859-9", "ISO-8859-9", 28599},
    PageInfo{CodePage::dos437, "DOS437", "CP437", 437},
    PageInfo{CodePage::dos850, "DOS850", "CP850", 850},
    PageInfo{CodePage::dos852, "DOS852", "CP852", 852},
    PageInfo{CodePage::dos855, "DOS855", "CP855", 855},
    PageInfo{CodePage::dos857, "DOS857", "CP857", 857},
    PageInfo{CodePage::dos860, "DOS860", "CP860", 860},
    PageInfo{CodePage::dos861, "DOS861", "CP861", 861},
    PageInfo{CodePage::dos863, "DOS863", "CP863", 863},
    PageInfo{CodePage::dos864, "DOS864", "CP864", 864},
    PageInfo{CodePage::dos865, "DOS865", "CP865", 865},
    PageInfo{CodePage::dos869, "DOS869", "CP869", 869},
    PageInfo{CodePage::dos932, "DOS932", "CP932", 0, true, '1'},
    PageInfo{CodePage::macRoman, "MACINTOSH", "MACINTOSH", 10000},
    PageInfo{CodePage::big5, "BIG5", "CP950", 0, true, '2'},
    PageInfo{CodePage::ksc5601, "KSC5601", "CP949", 0, true, '3'},
    PageInfo{CodePage::johab, "JOHAB", "JOHAB", 0, true, '4'},
    PageInfo{CodePage::dos866, "DOS866", "CP866", 866},
    PageInfo{CodePage::ansi1250, "ANSI_1250", "CP1250", 1250},
    PageInfo{CodePage::ansi1251, "ANSI_1251", "CP1251", 1251},
    PageInfo{CodePage::ansi1252, "ANSI_1252", "CP1252", 1252},
    PageInfo{CodePage::gb2312, "GB2312", "CP936", 0, true, '5'},
    PageInfo{CodePage::ansi1253, "ANSI_1253", "CP1253", 1253},
    PageInfo{CodePage::ansi1254, "ANSI_1254", "CP1254", 1254},
    PageInfo{CodePage::ansi1255, "ANSI_1255", "CP1255", 1255},
    PageInfo{CodePage::ansi1256, "ANSI_1256", "CP1256", 1256},
    PageInfo{CodePage::ansi1257, "ANSI_1257", "CP1257", 1257},
    PageInfo{CodePage::ansi874, "ANSI_874", "CP874", 874},
    PageInfo{CodePage::ansi932, "ANSI_932", "CP932", 932, true, '1'},
    PageInfo{CodePage::ansi936, "ANSI_936", "CP936", 936, true, '5'},
    PageInfo{CodePage::ansi949, "ANSI_949", "CP949", 949, true, '3'},
    PageInfo{CodePage::ansi950, "ANSI_950", "CP950", 950, true, '2'},
    PageInfo{CodePage::ansi1361, "ANSI_1361", "JOHAB", 1361, true, '4'},
    PageInfo{CodePage::utf16, "UTF-16", nullptr, 1200},
    PageInfo{CodePage::ansi1258, "ANSI_1258", "CP1258", 1258},
    PageInfo{CodePage::utf8, "UTF-8", nullptr, 65001},
};

struct Alias {
    std::string_view name;
    CodePage page;
};

constexpr std::array aliases = {
    Alias{"ASCII", CodePage::ascii},        Alias{"ISO-8859-1", CodePage::iso8859_1},
    Alias{"UTF8", CodePage::utf8},          Alias{"UTF16", CodePage::utf16},
    Alias{"KOREAN", CodePage::ksc5601},     Alias{"KSC-5601", CodePage::ksc5601},
    Alias{"MAC-ROMAN", CodePage::macRoman}, Alias{"MAC_ROMAN", CodePage::macRoman},
    Alias{"SHIFT_JIS", CodePage::ansi932},  Alias{"GBK", CodePage::ansi936},
    Alias{"GB18030", CodePage::ansi936},    Alias{"DOS936", CodePage::ansi936},
    Alias{"DOS949", CodePage::ansi949},     Alias{"DOS950", CodePage::ansi950},
};

const PageInfo& infoOf(CodePage page) {
    const auto found = std::ranges::find(pages, page, &PageInfo::page);
    return found == pages.end() ? pages.front() : *found;
}

constexpr char16_t noCharacter = 0xFFFF;
constexpr std::uint16_t noBytes = 0xFFFF; // no page has it: a lead byte FF stands for nothing

class Converter {
public:
    Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
    ~Converter() {
        if (isOpen())
            iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool isOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    // Converts one whole character on its own; the number of bytes written, 0 when it can not be.
    std::size_t convert(std::span<char> in, std::span<char> out) {
        char* from = in.data();
        char* to = out.data();
        std::size_t left = in.size(), room = out.size();
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        const std::size_t result = iconv(handle_, &from, &left, &to, &room);
        if (result != 0 || left != 0 || iconv(handle_, nullptr, nullptr, &to, &room) != 0)
            return 0;
        return out.size() - room;
    }

private:
    iconv_t handle_;
};

// Both directions of one page. Bytes below 80 are ASCII in all of them.
struct PageTables {
    explicit PageTables(const PageInfo& info);

    std::array<char16_t, 128> single; // by byte - 80
    std::unique_ptr<std::array<char16_t, 32768>>
        pairs; // by (lead - 80) * 256 + trail; only double-byte pages
    std::array<bool, 128> lead{};
    std::array<std::uint16_t, 65536> bytes; // by character: one byte, or lead * 256 + trail
};

PageTables::PageTables(const PageInfo& info) {
    single.fill(noCharacter);
    bytes.fill(noBytes);
    if (info.doubleByte) {
        pairs = std::make_unique<std::array<char16_t, 32768>>();
        pairs->fill(noCharacter);
    }
    Converter decoder("UTF-16LE", info.converter), encoder(info.converter, "UTF-16LE");
    if (!decoder.isOpen() || !encoder.isOpen())
        return;
    const auto decodeOne = [&](std::span<char> in) {
        std::array<char, 8> out{};
        return decoder.convert(in, out) != 2 ? noCharacter
                                             : static_cast<char16_t>(static_cast<unsigned char>(out[0]) |
                                                                     static_cast<unsigned char>(out[1]) << 8);
    };
    // Of several bytes that mean one character, those count that iconv writes for it.
    const auto isPreferred = [&](char16_t c, std::span<const char> in) {
        char units[2] = {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
        std::array<char, 8> out{};
        const std::size_t length = encoder.convert(units, out);
        return length == in.size() && std::equal(in.begin(), in.end(), out.begin());
    };
    const auto enter = [&](char16_t c, std::span<const char> in, unsigned code) {
        if (c != noCharacter && (bytes[c] == noBytes || isPreferred(c, in)))
            bytes[c] = static_cast<std::uint16_t>(code);
    };
    for (unsigned row = 0; row < 0x80; ++row) {
        char in[2] = {static_cast<char>(row + 0x80), 0};
        single[row] = decodeOne({in, 1});
        enter(single[row], {in, 1}, row + 0x80);
        if (!info.doubleByte || single[row] != noCharacter)
            continue;
        for (unsigned trail = 0x30; trail <= 0xFF; ++trail) {
            in[1] = static_cast<char>(trail);
            const char16_t c = decodeOne({in, 2});
            (*pairs)[row * 256 + trail] = c;
            lead[row] = lead[row] || c != noCharacter;
            enter(c, {in, 2}, (row + 0x80) << 8 | trail);
        }
    }
}

// The tables of a page, made at its first use. Pages without a converter of their own have none.
const PageTables* tablesOf(CodePage page) {
    static std::array<std::unique_ptr<PageTables>, pages.size()> tables;
    static std::array<std::once_flag, pages.size()> made;
    const PageInfo& info = infoOf(page);
    if (info.converter == nullptr)
        return nullptr;
    // Pages that share a converter share its tables.
    const auto first = std::ranges::find_if(pages, [&](const PageInfo& other) {
        return other.converter != nullptr && std::string_view(other.converter) == info.converter;
    });
    const auto index = static_cast<std::size_t>(first - pages.begin());
    std::call_once(made[index], [&] { tables[index] = std::make_unique<PageTables>(*first); });
    return tables[index].get();
}

void appendUnicodeEscape(std::wstring& out, wchar_t c) {
    for (const char16_t unit : toUtf16(std::wstring_view(&c, 1)))
        out += formatted(L"\\U+%04X", static_cast<unsigned>(unit));
}

// Four hexadecimal digits, or nothing.
std::optional<unsigned> hexadecimal(std::wstring_view digits) {
    if (digits.size() < 4)
        return {};
    unsigned value = 0;
    for (const wchar_t c : digits.substr(0, 4)) {
        const wchar_t l = toLower(c);
        if (!(l >= L'0' && l <= L'9') && !(l >= L'a' && l <= L'f'))
            return {};
        value = value * 16 + static_cast<unsigned>(l <= L'9' ? l - L'0' : l - L'a' + 10);
    }
    return value;
}

struct Escape {
    wchar_t character;
    std::size_t length; // of the escape in the text
};

std::optional<Escape> unicodeEscape(std::wstring_view text) {
    constexpr std::size_t length = 7;
    const auto at = [&](std::size_t i) -> std::optional<unsigned> {
        const std::wstring_view rest = text.substr(std::min(i, text.size()));
        return rest.size() >= length && rest[0] == L'\\' && toUpper(rest[1]) == L'U' && rest[2] == L'+'
                   ? hexadecimal(rest.substr(3))
                   : std::nullopt;
    };
    const auto unit = at(0);
    if (!unit || *unit == 0)
        return {};
    if (*unit < 0xD800 || *unit > 0xDFFF)
        return Escape{static_cast<wchar_t>(*unit), length};
    const auto low = at(length);
    if (*unit > 0xDBFF || !low || *low < 0xDC00 || *low > 0xDFFF)
        return {};
    return Escape{static_cast<wchar_t>(0x10000 + ((*unit - 0xD800) << 10) + (*low - 0xDC00)), 2 * length};
}

std::optional<Escape> multibyteEscape(std::wstring_view text) {
    if (text.size() < 8 || toUpper(text[1]) != L'M' || text[2] != L'+')
        return {};
    constexpr std::array escapePages = {CodePage::ansi932, CodePage::ansi950, CodePage::ansi949,
                                        CodePage::ansi1361, CodePage::ansi936};
    const auto digits = hexadecimal(text.substr(4));
    if (text[3] < L'1' || text[3] > L'5' || !digits)
        return {};
    const char bytes[2] = {static_cast<char>(*digits >> 8), static_cast<char>(*digits & 0xFF)};
    const std::wstring decoded = decode({bytes, 2}, escapePages[static_cast<std::size_t>(text[3] - L'1')]);
    if (decoded.size() != 1 || decoded[0] == replacementCharacter)
        return {};
    return Escape{decoded[0], 8};
}

} // namespace

std::optional<CodePage> codePageByName(std::string_view name) {
    name = trim(name);
    for (const PageInfo& info : pages)
        if (equalNoCase(info.name, name))
            return info.page;
    for (const Alias& alias : aliases)
        if (equalNoCase(alias.name, name))
            return alias.page;
    return {};
}

std::optional<CodePage> codePageByNumber(int number) {
    if (number <= 0 || number > static_cast<int>(CodePage::ansi1258))
        return {};
    return static_cast<CodePage>(number);
}

std::optional<CodePage> codePageByWindowsNumber(int number) {
    const auto found = std::ranges::find(pages, number, &PageInfo::windowsNumber);
    return number == 0 || found == pages.end() ? std::nullopt : std::optional(found->page);
}

std::string_view codePageName(CodePage page) {
    return infoOf(page).name;
}

std::wstring decode(std::string_view bytes, CodePage page) {
    if (page == CodePage::utf8 || isAscii(bytes))
        return page == CodePage::utf16 ? fromUtf16Le(bytes) : fromUtf8(bytes);
    const PageTables* const tables = tablesOf(page);
    if (tables == nullptr)
        return fromUtf16Le(bytes);
    std::wstring out;
    out.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte < 0x80) {
            out.push_back(static_cast<wchar_t>(byte));
            continue;
        }
        const std::size_t row = byte - 0x80u;
        char16_t c = tables->single[row];
        if (tables->lead[row] && i + 1 < bytes.size()) {
            c = (*tables->pairs)[row * 256 + static_cast<unsigned char>(bytes[i + 1])];
            if (c != noCharacter || static_cast<unsigned char>(bytes[i + 1]) >= 0x80)
                ++i; // an ASCII byte after a broken lead byte stands for itself
        }
        out.push_back(c == noCharacter ? replacementCharacter : static_cast<wchar_t>(c));
    }
    return out;
}

std::string encode(std::wstring_view text, CodePage page, Unmappable unmappable) {
    if (page == CodePage::utf16)
        return toUtf16Le(text);
    if (page == CodePage::utf8 || isAscii(text))
        return toUtf8(text);
    const PageTables* const tables = tablesOf(page);
    std::string out;
    out.reserve(text.size() * 2);
    for (const wchar_t c : text) {
        const auto code = static_cast<std::uint32_t>(c);
        const std::uint16_t bytes = code < 0x10000 ? tables->bytes[code] : noBytes;
        if (code < 0x80) {
            out.push_back(static_cast<char>(code));
        } else if (bytes == noBytes || page == CodePage::ascii) {
            std::wstring escape;
            appendUnicodeEscape(escape, c);
            out += unmappable == Unmappable::escape ? toUtf8(escape) : "?";
        } else {
            if (bytes > 0xFF)
                out.push_back(static_cast<char>(bytes >> 8));
            out.push_back(static_cast<char>(bytes & 0xFF));
        }
    }
    return out;
}

bool canEncode(std::wstring_view text, CodePage page) {
    const PageTables* const tables = tablesOf(page);
    return tables == nullptr || std::ranges::all_of(text, [&](wchar_t c) {
               const auto code = static_cast<std::uint32_t>(c);
               return code < 0x80 ||
                      (page != CodePage::ascii && code < 0x10000 && tables->bytes[code] != noBytes);
           });
}

std::wstring resolveEscapes(std::wstring_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t backslash = std::min(text.find(L'\\', i), text.size());
        out.append(text, i, backslash - i);
        i = backslash;
        if (i == text.size())
            break;
        auto escape = unicodeEscape(text.substr(i));
        if (!escape)
            escape = multibyteEscape(text.substr(i));
        out.push_back(escape ? escape->character : text[i]);
        i += escape ? escape->length : 1;
    }
    return out;
}

std::wstring decodeText(std::string_view bytes, CodePage page) {
    std::wstring text = decode(bytes, page);
    return text.find(L"\\") == std::wstring::npos ? text : resolveEscapes(text);
}

std::wstring escapeUnicode(std::wstring_view text) {
    std::wstring out;
    for (const wchar_t c : text) {
        if (static_cast<std::uint32_t>(c) < 0x80)
            out.push_back(c);
        else
            appendUnicodeEscape(out, c);
    }
    return out;
}

std::wstring escapeMultibyte(std::wstring_view text, CodePage page) {
    const PageInfo& info = infoOf(page);
    const PageTables* const tables = tablesOf(page);
    std::wstring out;
    for (const wchar_t c : text) {
        const auto code = static_cast<std::uint32_t>(c);
        const std::uint16_t bytes = tables != nullptr && code < 0x10000 ? tables->bytes[code] : noBytes;
        if (code < 0x80)
            out.push_back(c);
        else if (info.escapeDigit != 0 && bytes != noBytes && bytes > 0xFF)
            out += formatted(L"\\M+%c%04X", info.escapeDigit, static_cast<unsigned>(bytes));
        else
            appendUnicodeEscape(out, c);
    }
    return out;
}

std::size_t wholeCharacters(std::string_view bytes, std::size_t most, CodePage page) {
    if (bytes.size() <= most)
        return bytes.size();
    if (page == CodePage::utf16)
        return most & ~std::size_t{1};
    if (page == CodePage::utf8) {
        while (most > 0 && (static_cast<unsigned char>(bytes[most]) & 0xC0) == 0x80)
            --most;
        return most;
    }
    const PageTables* const tables = tablesOf(page);
    std::size_t end = 0;
    while (end < most) {
        const auto byte = static_cast<unsigned char>(bytes[end]);
        const std::size_t length = byte >= 0x80 && tables->lead[byte - 0x80u] ? 2 : 1;
        if (end + length > most)
            break;
        end += length;
    }
    return end;
}

} // namespace host
