// A session of the host with a new drawing and the module loaded; what is shown is kept.
#pragma once

#include "app/startup.h"
#include "restools/drawing.h"
#include "tests/temporaryfolder.h"

#include "host/arx.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>

class SessionTest : public ::testing::Test, private host::ConsoleSink {
protected:
    static void SetUpTestSuite() {
        static const TemporaryFolder settings;
        static const bool started = (app::initializeHost(settings.path()), true);
        ASSERT_TRUE(started);
    }
    void SetUp() override {
        host::console().setSink(this);
        mSession = std::make_unique<host::Session>();
        ASSERT_NE(mSession->newDrawing(), nullptr);
        ASSERT_TRUE(loadModule());
    }
    void TearDown() override {
        host::unloadAllModules();
        mSession.reset();
        host::console().setSink(nullptr);
    }

    static bool loadModule() { return host::loadModule(app::programFolder() / "QDVCommonTools.arx"); }
    static AcDbDatabase& database() { return *curDoc()->database(); }

    /// Types lines and gives what was shown meanwhile.
    std::wstring type(const std::string& lines) {
        std::istringstream script(lines);
        mShown.clear();
        mSession->runScript(script);
        return mShown;
    }
    /// What was shown since the last lines were typed.
    std::wstring takeShown() { return std::exchange(mShown, {}); }

private:
    void write(std::wstring_view text) override { mShown += text; }
    void diagnostic(std::wstring_view) override {}

    std::unique_ptr<host::Session> mSession;
    std::wstring mShown;
};
