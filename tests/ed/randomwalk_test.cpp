// Some hundred commands at random over a small drawing; taking all of them back gives the drawing from
// before, and repeating them the one from after. Everything the commands say is read by nobody but must not
// fail.
#include "host.h"

#include "host/formats/formats.h"

#include <random>

namespace {

using edtest::HostTest;

class RandomWalk : public HostTest, public ::testing::WithParamInterface<unsigned> {
protected:
    RandomWalk() : mRandom(GetParam()) {
        edtest::registerCommands();
        host::setSystemVariable(L"OSMODE", 0);
    }

    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(mRandom); }
    std::string real(int low, int high) {
        return std::to_string(number(low * 10, high * 10) / 10) + "." + std::to_string(number(0, 9));
    }
    std::string point() { return real(0, 99) + "," + real(0, 99); }
    std::string offset() {
        return "@" + std::to_string(number(-20, 20)) + "," + std::to_string(number(-20, 20));
    }
    /// Answers for "select objects".
    std::string selection() {
        switch (number(0, 4)) {
        case 0:
            return "ALL\n\n";
        case 1:
            return "L\n\n";
        case 2:
            return "C\n" + point() + "\n" + point() + "\n\n";
        case 3:
            return "W\n0,0\n" + point() + "\nR\n" + point() + "\n\n";
        default:
            return "F\n" + point() + "\n" + point() + "\n\n\n";
        }
    }

    std::string command() {
        switch (number(0, 17)) {
        case 0:
            return "LINE\n" + point() + "\n" + point() + "\nU\n" + offset() + "\n\n";
        case 1:
            return "CIRCLE\n" + point() + "\n" + real(1, 20) + "\n";
        case 2:
            return "ARC\n" + point() + "\n" + point() + "\n" + point() + "\n";
        case 3:
            return "PLINE\n" + point() + "\n" + offset() + "\nA\n" + offset() + "\nL\nW\n1\n2\n" + offset() +
                   "\n" + (number(0, 1) == 0 ? "C" : "") + "\n";
        case 4:
            return "TEXT\n" + point() + "\n" + real(1, 9) + "\n" + real(0, 90) + "\n文字\n\n";
        case 5:
            return "POINT\n" + point() + "\n";
        case 6:
        case 7:
            return "MOVE\n" + selection() + point() + "\n" + point() + "\n";
        case 8:
            return "COPY\n" + selection() + point() + "\n" + point() + "\n\n";
        case 9:
            return "ERASE\n" + selection();
        case 10: {
            const std::string name = "层" + std::to_string(number(1, 4));
            return "-LAYER\nM\n" + name + "\nC\n" + std::to_string(number(1, 7)) + "\n\n\n";
        }
        case 11:
            return "UCS\n" + point() + "\n\n";
        case 12:
            return "UCS\nZ\n" + std::to_string(number(-90, 90)) + "\n";
        case 13:
            return "UCS\nW\n";
        case 14:
            return "CECOLOR\n" + std::to_string(number(1, 255)) + "\nLTSCALE\n" +
                   std::to_string(number(1, 9)) + "\n";
        case 15:
            return "U\n";
        case 16:
            return "REDO\n";
        default:
            return "LINE\n" + point() + "\n^C\n";
        }
    }

    std::string dump() { return host::dumpDrawing(database()); }

    std::mt19937 mRandom;
};

TEST_P(RandomWalk, UndoGivesBackWhatWasAndRedoWhatCame) {
    addLine(0, 0, 50, 50);
    addLine(10, 90, 60, 20);
    host::UndoLog& log = database().undoLog();
    log.clear();
    const std::string before = dump();
    std::string script;
    for (int i = 0; i < 200; ++i) {
        script = command();
        run(script);
        // Where nothing was selected the answers after it are no commands; nothing else may be told.
        ASSERT_EQ(transcript.diagnostics.find(L"出错"), std::wstring::npos)
            << script << host::toUtf8(transcript.diagnostics);
        if (i % 40 == 39) {
            // The index of places has to follow all of it.
            const host::SelectionShape shape{host::SelectionShape::Kind::crossing,
                                             {{20, 20}, {80, 20}, {80, 80}, {20, 80}}};
            const std::vector<AcDbObjectId> indexed = host::entitiesIn(shape);
            host::setSpatialQuery(host::makeBlockWalk());
            EXPECT_EQ(indexed, host::entitiesIn(shape));
            host::setSpatialQuery(nullptr);
        }
    }
    run("UCS\nW\n");
    const std::string after = dump();
    const int steps = log.undo(100000);
    EXPECT_GT(steps, 50);
    EXPECT_EQ(dump(), before);
    EXPECT_EQ(log.redo(100000), steps);
    EXPECT_EQ(dump(), after);
    log.undo(100000);
    EXPECT_EQ(dump(), before);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomWalk, ::testing::Values(1U, 2U, 3U, 4U, 5U));

} // namespace
