// The program from outside: options, exit codes, what goes to which output, and the files it writes.
#include "tests/temporaryfolder.h"
#include "tests/transcripts/transcript.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/wait.h>

namespace fs = std::filesystem;

namespace {

struct Outcome {
    int code = -1;
    std::string output;
    std::string errors;
};

/// What the program itself said: a sanitizer notes that the program switches stacks.
std::string withoutSanitizerNotes(const std::string& errors) {
    std::istringstream lines(errors);
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("==") || line.find("swapcontext") == std::string::npos) {
            kept += line + '\n';
        }
    }
    return kept;
}

class Program : public testing::Test {
protected:
    fs::path file(const std::string& name) const { return mFolder.path() / name; }
    std::string contentOf(const std::string& name) const { return readFile(file(name)); }

    /// Runs the program with its settings in the test's folder; arguments are words of a shell.
    Outcome run(const std::string& arguments, const std::string& input = {}) const {
        writeFile(file("input"), input);
        const std::string command = "cd '" + mFolder.path().string() +
                                    "' && QT_QPA_PLATFORM=offscreen '" QDV_PROGRAM "' " + arguments +
                                    " <input >output 2>errors";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf("output"),
                withoutSanitizerNotes(contentOf("errors"))};
    }
    Outcome script(const std::string& answers, const std::string& options = {}) const {
        return run("--module none --settings settings --script - " + options, answers);
    }

private:
    TemporaryFolder mFolder;
};

std::size_t lineCount(const std::string& text) {
    return static_cast<std::size_t>(std::ranges::count(text, '\n'));
}

} // namespace

TEST_F(Program, UsageErrorsTellAndGiveTwo) {
    for (const char* arguments :
         {"--nonsense", "--script", "--save x.dxf", "--script a.scr one.dxf two.dxf"}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.code, 2) << arguments;
        EXPECT_TRUE(outcome.output.empty()) << arguments;
        EXPECT_FALSE(outcome.errors.empty()) << arguments;
    }
    const Outcome help = run("--help");
    EXPECT_EQ(help.code, 0);
    EXPECT_NE(help.output.find("--script"), std::string::npos);
}

TEST_F(Program, DialogueGoesToOutputAndFailuresToBoth) {
    const Outcome good = script("LINE\n0,0\n10,0\n\n");
    EXPECT_EQ(good.code, 0) << good.errors;
    EXPECT_NE(good.output.find("LINE"), std::string::npos);
    EXPECT_TRUE(good.errors.empty()) << good.errors;

    const Outcome bad = script("NOSUCHCOMMAND\nLINE\n0,0\n10,0\n\n", "--save after.dxf");
    EXPECT_EQ(bad.code, 1);
    EXPECT_NE(bad.errors.find("1"), std::string::npos) << "the script's line is named: " << bad.errors;
    EXPECT_TRUE(fs::exists(file("after.dxf"))) << "what follows a failed line still runs";
}

TEST_F(Program, WritesEveryFileAskedFor) {
    const Outcome outcome =
        script("", "--save a.dxf --save b.dxf --plot a.pdf --plot a.png --plot a.svg '" QDV_SAMPLES
                   "/route-map.dxf'");
    ASSERT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_EQ(contentOf("a.dxf"), contentOf("b.dxf"));
    EXPECT_TRUE(contentOf("a.pdf").starts_with("%PDF-"));
    EXPECT_TRUE(contentOf("a.png").starts_with("\x89PNG"));
    EXPECT_NE(contentOf("a.svg").find("<svg"), std::string::npos);
}

TEST_F(Program, PlotsWhereTheCommandSays) {
    const Outcome outcome = script("LINE\n0,0\n100,50\n\n-PLOT\nN\n\nPNG\n一 号\nN\nY\n"
                                   "-PLOT\nN\n布局1\nSVG\n\nN\nY\n");
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_TRUE(contentOf("一 号.png").starts_with("\x89PNG"));
    EXPECT_TRUE(fs::exists(file("Drawing1-布局1.svg")));
}

TEST_F(Program, SavedDrawingReadsBackTheSame) {
    for (const char* sample : {"route-map.dxf", "old-r12.dxf"}) {
        const std::string original = std::string("'" QDV_SAMPLES "/") + sample + "'";
        ASSERT_EQ(script("", "--save once.dxf --dump original.txt " + original).code, 0) << sample;
        ASSERT_EQ(script("", "--save twice.dxf --dump once.txt once.dxf").code, 0) << sample;
        EXPECT_EQ(firstDifference(contentOf("original.txt"), contentOf("once.txt")), "") << sample;
        EXPECT_EQ(firstDifference(contentOf("once.dxf"), contentOf("twice.dxf")), "") << sample;
    }
}

TEST_F(Program, SavingKeepsTheFileBefore) {
    ASSERT_EQ(script("LINE\n0,0\n10,0\n\n", "--save a.dxf").code, 0);
    const std::string before = contentOf("a.dxf");
    ASSERT_EQ(script("CIRCLE\n0,0\n5\n", "--save a.dxf a.dxf").code, 0);
    EXPECT_EQ(contentOf("a.bak"), before);
    EXPECT_NE(contentOf("a.dxf"), before);
}

TEST_F(Program, UnreadableDrawingIsOneLineWithItsPlace) {
    writeFile(file("broken.dxf"), "  0\nSECTION\n  2\nHEADER\nnot a code\nAC1032\n");
    const Outcome broken = script("", "--save out.dxf broken.dxf");
    EXPECT_EQ(broken.code, 1);
    EXPECT_EQ(lineCount(broken.errors), 1u) << broken.errors;
    EXPECT_NE(broken.errors.find("5"), std::string::npos) << "the line is named: " << broken.errors;
    EXPECT_FALSE(fs::exists(file("out.dxf")));

    const Outcome missing = script("", "missing.dxf");
    EXPECT_EQ(missing.code, 1);
    EXPECT_NE(missing.errors.find("missing.dxf"), std::string::npos) << missing.errors;
}

TEST_F(Program, SaveAsAsksForTheRelease) {
    const Outcome outcome = script("LINE\n0,0\n10,0\n\nSAVEAS\n2000\nold.dxf\nSAVEAS\nB\n2018\nnew.dxf\n"
                                   "SAVEAS\n\n^C\nQSAVE\n",
                                   "--save plain.dxf");
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_NE(outcome.output.find("输入文件格式 (文本) [2000/2004/2007/2010/2013/2018/二进制(B)] <2018>: "),
              std::string::npos)
        << outcome.output;
    EXPECT_NE(outcome.output.find("输入文件格式 (二进制) [2000/2004/2007/2010/2013/2018/文本(T)] <2018>: "),
              std::string::npos)
        << outcome.output;
    EXPECT_NE(contentOf("old.dxf").find("AC1015"), std::string::npos);
    EXPECT_TRUE(contentOf("new.dxf").starts_with("AutoCAD Binary DXF"));
    EXPECT_TRUE(contentOf("new.bak").starts_with("AutoCAD Binary DXF")) << "saved again in its format";
    EXPECT_NE(contentOf("plain.dxf").find("AC1032"), std::string::npos);
    ASSERT_EQ(script("", "--dump new.txt new.dxf").code, 0);
    ASSERT_EQ(script("", "--dump plain.txt plain.dxf").code, 0);
    EXPECT_EQ(firstDifference(contentOf("new.txt"), contentOf("plain.txt")), "");
}

TEST_F(Program, OpeningTellsWhatWasRepaired) {
    std::string drawing = "0\nSECTION\n2\nENTITIES\n";
    for (int index = 0; index < 30; ++index) {
        drawing += "0\nPOINT\n8\nLAYER" + std::to_string(index) + "\n10\n0\n20\n0\n";
    }
    writeFile(file("layers.dxf"), drawing + "0\nENDSEC\n0\nEOF\n");
    const Outcome outcome = script("", "layers.dxf");
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_NE(outcome.output.find("第 8 行: 图层 \"LAYER0\" 没有定义, 已新建, 已修复\n"), std::string::npos)
        << outcome.output;
    EXPECT_NE(outcome.output.find("还有 10 处\n"), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find("LAYER25"), std::string::npos);
}
