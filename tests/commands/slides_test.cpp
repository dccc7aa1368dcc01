// MSLIDE and VSLIDE.
#include "commandtest.h"

#include "host/ed/documentstate.h"
#include "host/formats/sld/slide.h"

namespace {

class SlideCommands : public commandtest::CommandTest {
protected:
    std::string file(const char* name) { return (folder() / name).string(); }
    const host::Slide* shown() { return curDoc()->state().shownSlide.get(); }
};

TEST_F(SlideCommands, TheViewIsWrittenAndShownUntilTheNextRedraw) {
    EXPECT_TRUE(run("LINE 0,0 30,10\n\nZOOM C\n15,5\n40\nMSLIDE " + file("view") + "\n"));
    std::wstring message;
    const auto slide = host::readSlide(host::fromUtf8(file("view.sld")), message);
    ASSERT_TRUE(slide.has_value()) << host::toUtf8(message);
    ASSERT_EQ(slide->shapes.size(), 1u);
    const auto line = slide->pointsOf(slide->shapes[0]);
    const double dots = slide->height / 40.0; // to a drawing unit
    EXPECT_NEAR(line.back().x - line.front().x, 30 * dots, 1);
    EXPECT_NEAR(line.back().y - line.front().y, 10 * dots, 1);
    EXPECT_NEAR(line.front().x, slide->width / 2.0 - 15 * dots, 1);

    EXPECT_TRUE(run("VSLIDE " + file("view") + "\n"));
    ASSERT_NE(shown(), nullptr);
    EXPECT_EQ(*shown(), *slide);
    EXPECT_TRUE(run("REDRAW\n"));
    EXPECT_EQ(shown(), nullptr);
}

TEST_F(SlideCommands, AFileThatIsThereIsReplacedOnlyWhenTheUserAgrees) {
    EXPECT_TRUE(
        run("MSLIDE " + file("a.sld") + "\nLINE 200,100 220,150\n\nMSLIDE " + file("a.sld") + "\nN\n"));
    std::wstring message;
    EXPECT_TRUE(host::readSlide(host::fromUtf8(file("a.sld")), message)
                    .value_or(host::Slide{1, 1, 1, {}, {{}}})
                    .shapes.empty());
    EXPECT_TRUE(run("MSLIDE " + file("a.sld") + "\nY\n"));
    EXPECT_EQ(host::readSlide(host::fromUtf8(file("a.sld")), message).value_or(host::Slide()).shapes.size(),
              1u);
}

TEST_F(SlideCommands, ABadFileIsTold) {
    EXPECT_FALSE(run("VSLIDE " + file("none.sld") + "\n"));
    EXPECT_EQ(shown(), nullptr);
}

} // namespace
