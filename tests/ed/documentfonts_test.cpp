// Which fonts of a drawing are found, and how missing ones are told.
#include "host.h"

#include "host/ed/documentfonts.h"
#include "host/font/font.h"

#include <fstream>

namespace {

class DocumentFonts : public edtest::HostTest {
protected:
    ~DocumentFonts() override { host::FontEngine::instance().setSearchFolders({}); }

    void setFont(const wchar_t* file, const wchar_t* bigFont) {
        const host::Opened<AcDbTextStyleTableRecord> style(database().textstyle(), AcDb::kForWrite);
        style->setFileName(file);
        style->setBigFontFileName(bigFont);
    }
    std::wstring told() {
        transcript.shown.clear();
        host::tellMissingFonts(database());
        return transcript.shown;
    }
};

TEST_F(DocumentFonts, MissingOnesAreToldOnce) {
    setFont(L"romans.shx", L"gbcbig.shx");
    EXPECT_EQ(told(), L"");
    setFont(L"mason.shx", L"masonbig.shx");
    const std::wstring message = told();
    EXPECT_NE(message.find(L"未找到字体 \"mason.shx\"，用 \"txt.shx\" 代替。"), std::wstring::npos);
    EXPECT_NE(message.find(L"未找到字体 \"masonbig.shx\"，用 "), std::wstring::npos);
    EXPECT_EQ(told(), L"");
}

TEST_F(DocumentFonts, AreFoundBesideTheDrawing) {
    // A font of ten units with one letter, a stroke five units tall.
    const std::string info("F\0\x0A\x03\0\0", 6), letter("I\0\x54\0", 4);
    const std::string head = std::string("AutoCAD-86 shapes V1.0\r\n\x1A") + std::string("\0\0\xFF\0\2\0", 6);
    const std::string index("\0\0\6\0I\0\4\0", 8);
    std::ofstream(folder() / "Mason2.SHX", std::ios::binary) << head << index << info << letter << "EOF";
    host::useFontsBeside(folder());
    setFont(L"C:\\Fonts\\mason2.shx", L"");
    EXPECT_EQ(told(), L"");
    host::TextFormat format;
    format.font.file = L"mason2";
    EXPECT_NEAR(host::FontEngine::instance().extents(L"I", format).height, 0.5, 1e-6);
}

} // namespace
