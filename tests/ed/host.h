// A running host for tests: scripts go in, the dialogue comes out.
#pragma once

#include "host/commands/commands.h"
#include "host/db/dbents.h"
#include "host/ed/ed.h"
#include "host/rx/format.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace edtest {

/// Keeps what the host shows.
class Transcript : public host::ConsoleSink {
public:
    void write(std::wstring_view text) override { shown += text; }
    void diagnostic(std::wstring_view text) override { diagnostics += std::wstring(text) + L"\n"; }
    std::wstring shown;
    std::wstring diagnostics;
};

/// A session with one new drawing and settings of its own.
class HostTest : public ::testing::Test {
protected:
    HostTest() {
        const std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        mFolder =
            std::filesystem::temp_directory_path() / ("edtest-" + std::to_string(getpid()) + "-" + name);
        std::filesystem::create_directories(mFolder);
        host::setSettingsFolder(mFolder);
        host::console().setSink(&transcript);
        session = std::make_unique<host::Session>();
        session->newDrawing();
    }
    ~HostTest() override {
        session.reset();
        host::console().setSink(nullptr);
        host::setSettingsFolder({});
        std::filesystem::remove_all(mFolder);
    }

    /// Runs a script (UTF-8); true when no line failed. The dialogue of this run is in `transcript`.
    bool run(const std::string& script) {
        transcript.shown.clear();
        transcript.diagnostics.clear();
        std::istringstream stream(script);
        return session->runScript(stream);
    }

    AcDbDatabase& database() { return *curDoc()->database(); }

    /// Adds an entity to model space and closes it.
    AcDbObjectId add(AcDbEntity* entity, const wchar_t* layer = nullptr) {
        entity->setDatabaseDefaults(&database());
        AcDbObjectId id;
        {
            const host::Opened<AcDbBlockTableRecord> space(database().modelSpaceId(), AcDb::kForWrite);
            space->appendAcDbEntity(id, entity);
        }
        if (layer != nullptr) {
            EXPECT_EQ(entity->setLayer(layer), Acad::eOk);
        }
        entity->close();
        return id;
    }
    AcDbObjectId addLine(double x1, double y1, double x2, double y2, const wchar_t* layer = nullptr) {
        return add(new AcDbLine(AcGePoint3d(x1, y1, 0), AcGePoint3d(x2, y2, 0)), layer);
    }
    AcDbObjectId addLayer(const wchar_t* name) {
        AcDbLayerTable* table = nullptr;
        EXPECT_EQ(database().getSymbolTable(table, AcDb::kForWrite), Acad::eOk);
        auto* record = new AcDbLayerTableRecord;
        record->setName(name);
        AcDbObjectId id;
        table->add(id, record);
        record->close();
        table->close();
        return id;
    }

    const std::filesystem::path& folder() const { return mFolder; }

    Transcript transcript;
    std::unique_ptr<host::Session> session;

private:
    std::filesystem::path mFolder;
};

/// The host's own commands, for tests that run them.
inline void registerCommands() {
    static const bool done = (host::initializeCommands(), true);
    static_cast<void>(done);
}

/// A command for the scope of a test.
class TestCommand {
public:
    TestCommand(const wchar_t* global, const wchar_t* local, AcRxFunctionPtr function,
                int flags = ACRX_CMD_MODAL) {
        EXPECT_EQ(acedRegCmds->addCommand(L"EDTEST", global, local, flags, function), Acad::eOk);
    }
    ~TestCommand() { acedRegCmds->removeGroup(L"EDTEST"); }
};

} // namespace edtest
