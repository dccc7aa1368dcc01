// A session with a drawing, its dialogue caught, for tests of LISP inside the editor.
#pragma once

#include "host/commands/commands.h"
#include "host/ed/ed.h"
#include "host/lisp/lisp.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

namespace host {

class CaughtConsole : public ConsoleSink {
public:
    void write(std::wstring_view text) override { shown += toUtf8(text); }
    void diagnostic(std::wstring_view line) override { diagnostics += toUtf8(line) + "\n"; }
    std::string shown;
    std::string diagnostics;
};

class LispSession : public testing::Test {
protected:
    LispSession() {
        setSettingsFolder(settings);
        console().setSink(&caught);
        static const bool commandsAreThere = (initializeCommands(), true);
        EXPECT_TRUE(commandsAreThere);
        initializeLisp();
        session.newDrawing();
    }
    ~LispSession() override {
        while (AcApDocument* document = curDoc()) {
            acDocManagerPtr()->closeDocument(document);
        }
        console().setSink(nullptr);
        setSettingsFolder({});
        std::filesystem::remove_all(settings);
    }

    /// The value as printed; for an error its line.
    std::string run(std::string_view source) {
        LispInterpreter& lisp = lispOf(*curDoc());
        const LispEvaluation result = lisp.evaluate(fromUtf8(source));
        return toUtf8(result.ok ? lisp.displayed(result.value) : result.line);
    }
    /// What a script shows.
    std::string script(const std::string& lines) {
        caught.shown.clear();
        std::istringstream stream(lines);
        lastScriptOk = session.runScript(stream);
        return caught.shown;
    }
    struct Case {
        const char* source;
        const char* expected;
    };
    void check(std::initializer_list<Case> cases) {
        for (const Case& c : cases) {
            EXPECT_EQ(run(c.source), c.expected) << c.source;
        }
    }

    const std::filesystem::path settings =
        std::filesystem::temp_directory_path() / ("lisp-settings-" + std::to_string(::getpid()));
    CaughtConsole caught;
    Session session;
    bool lastScriptOk = false;
};

} // namespace host
