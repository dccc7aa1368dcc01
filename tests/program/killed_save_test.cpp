// A program that is killed while it saves leaves a whole drawing: the one before or the one after. The rounds
// can be raised with QDV_KILL_ROUNDS.
#include "tests/temporaryfolder.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

class KilledSave : public testing::Test {
protected:
    fs::path file(const std::string& name) const { return mFolder.path() / name; }

    /// Starts the program in the folder, quiet; gives its process.
    pid_t start(const std::vector<std::string>& options) const {
        std::vector<std::string> words = {QDV_PROGRAM, "--module", "none", "--settings", "settings"};
        words.insert(words.end(), options.begin(), options.end());
        std::vector<char*> arguments;
        for (std::string& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        const std::string folder = mFolder.path().string();
        const pid_t process = fork();
        if (process == 0) {
            const bool ready = chdir(folder.c_str()) == 0 && std::freopen("output", "w", stdout) != nullptr &&
                               std::freopen("errors", "w", stderr) != nullptr;
            if (ready) {
                execv(QDV_PROGRAM, arguments.data());
            }
            _exit(127);
        }
        return process;
    }
    int run(const std::vector<std::string>& options) const {
        int status = -1;
        waitpid(start(options), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    /// The drawing of a file as text; empty when it is not whole.
    std::string dumpOf(const std::string& name) const {
        fs::remove(file("dump.txt"));
        return run({"--script", "/dev/null", "--dump", "dump.txt", name}) == 0 ? readFile(file("dump.txt"))
                                                                               : std::string();
    }
    /// Kills the program some time after it began to save again and again.
    void killWhileSaving(std::mt19937& random) const {
        fs::remove(file("a.bak"));
        const pid_t process = start({"--script", "saving.scr", "a.dxf"});
        int status = 0;
        while (!fs::exists(file("a.bak"))) {
            if (waitpid(process, &status, WNOHANG) != 0) {
                FAIL() << "ended by itself: " << readFile(file("errors"));
            }
            std::this_thread::sleep_for(1ms);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 30000));
        kill(process, SIGKILL);
        waitpid(process, &status, 0);
    }

private:
    TemporaryFolder mFolder;
};

} // namespace

TEST_F(KilledSave, TheFileIsTheDrawingBeforeOrAfter) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    std::vector<std::string> dumps;
    for (const std::string size : {"1.5", "2.5"}) {
        writeFile(file("set.scr"), "(setvar \"TEXTSIZE\" " + size + ")\n");
        ASSERT_EQ(run({"--script", "set.scr", "--save", size + ".dxf", QDV_SAMPLES "/route-map.dxf"}), 0);
        dumps.push_back(dumpOf(size + ".dxf"));
        ASSERT_FALSE(dumps.back().empty());
    }
    ASSERT_NE(dumps[0], dumps[1]);
    writeFile(file("saving.scr"),
              "(repeat 100000 (setvar \"TEXTSIZE\" 1.5) (command \"_SAVE\" \"a.dxf\" \"_Y\") "
              "(setvar \"TEXTSIZE\" 2.5) (command \"_SAVE\" \"a.dxf\" \"_Y\"))\n");
    fs::copy(file("1.5.dxf"), file("a.dxf"));
    const char* wanted = std::getenv("QDV_KILL_ROUNDS");
    const int rounds = wanted != nullptr ? std::atoi(wanted) : 5;
    std::mt19937 random(std::random_device{}());
    for (int round = 0; round < rounds; ++round) {
        killWhileSaving(random);
        fs::copy_file(file("a.bak"), file("bak.dxf"), fs::copy_options::overwrite_existing);
        for (const char* name : {"a.dxf", "bak.dxf"}) {
            const std::string dump = dumpOf(name);
            EXPECT_TRUE(dump == dumps[0] || dump == dumps[1]) << name << " after round " << round;
        }
    }
}
