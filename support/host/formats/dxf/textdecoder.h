// Texts of a DXF file as UTF-8: from the drawing's code page before release 2007, with the escapes for
// characters outside of it. Text that is plain already is not copied.
#pragma once

#include "host/rx/codepage.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace host::dxf {

/// Line ends as ^J and ^M, which stand for them in a text file. They come from binary files and escapes.
void encodeLineEnds(std::string& text);

class TextDecoder {
public:
    /// Before a version is known: UTF-8 where it is well formed, else the default page (Chinese).
    void setUtf8() { mMode = Mode::utf8; }
    void setCodePage(CodePage page);

    /// The text as UTF-8: a view of the file, or of a buffer that lives until the next call.
    std::string_view text(std::string_view raw) { return isPlain(raw) ? raw : decoded(raw); }
    /// For names that come again and again: what was decoded is remembered.
    std::string_view name(std::string_view raw) { return isPlain(raw) ? raw : remembered(raw); }
    /// Some text was not in the encoding the file claims; it was read in the other one.
    bool wrongEncoding() const { return mWrongEncoding; }

private:
    enum class Mode { guess, utf8, codePage };

    static bool isPlain(std::string_view raw);
    std::string_view decoded(std::string_view raw);
    std::string_view remembered(std::string_view raw);

    Mode mMode = Mode::guess;
    CodePage mPage = CodePage::ansi936;
    bool mWrongEncoding = false;
    std::string mBuffer;
    std::unordered_map<std::string_view, std::string> mNames; ///< keys are views of the file
};

} // namespace host::dxf
