// What a program that was killed leaves behind, and how the next one finds it.
#include "app/chrome/autosave.h"
#include "app/chrome/files.h"
#include "tests/temporaryfolder.h"

#include "host/db/dbents.h"
#include "host/ed/documentstate.h"
#include "host/ed/ed.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void script(host::Session& session, const std::string& text) {
    std::istringstream lines(text);
    session.runScript(lines);
}

std::size_t entityCount() {
    return host::peek<AcDbBlockTableRecord>(acdbCurDwg()->currentSpaceId())->entities().size();
}

} // namespace

TEST(Autosave, AKilledProgramLeavesItsDrawingToTheNext) {
    const TemporaryFolder folder;
    // The child draws, copies, draws on and is killed without a chance to clean up.
    const pid_t child = fork();
    if (child == 0) {
        host::Session session;
        session.newDrawing();
        script(session, "LINE 0,0 10,0 10,10\n\n");
        app::Autosave autosave(folder.path());
        autosave.save();
        autosave.finish();
        script(session, "CIRCLE 0,0 5\n");
        kill(getpid(), SIGKILL);
    }
    ASSERT_GT(child, 0);
    waitpid(child, nullptr, 0);

    host::Session session;
    app::Autosave autosave(folder.path());
    const std::vector<app::Recoverable> found = autosave.found();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_FALSE(found[0].title.isEmpty());
    ASSERT_TRUE(app::Autosave::recover(found[0]));
    EXPECT_EQ(entityCount(), 2u);
    EXPECT_TRUE(app::isChanged(*curDoc())) << "nobody has saved it";
    app::Autosave::drop(found[0]);
    EXPECT_TRUE(autosave.found().empty());
}

TEST(Autosave, OnlyChangesAreCopiedAndNothingStaysBehind) {
    const TemporaryFolder folder;
    const auto files = [&] { return std::distance(std::filesystem::directory_iterator(folder.path()), {}); };
    host::Session session;
    session.newDrawing();
    {
        app::Autosave autosave(folder.path());
        autosave.save();
        EXPECT_EQ(files(), 0) << "an untouched drawing needs no copy";
        script(session, "LINE 0,0 10,0\n\n");
        autosave.save();
        autosave.finish();
        EXPECT_EQ(files(), 2);
        EXPECT_TRUE(autosave.found().empty()) << "its own are no remains";
        autosave.forget(*curDoc());
        EXPECT_EQ(files(), 0);
        script(session, "LINE 0,5 10,5\n\n");
        autosave.save();
    }
    EXPECT_EQ(files(), 0);
}
