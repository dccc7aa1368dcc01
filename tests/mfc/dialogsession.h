// A user whose lines drive the dialogs of a test, and what was shown to him meanwhile.
#pragma once

#include "host/ed/ed.h"
#include "host/mfc/mfc.h"
#include "host/mfc/widgets/application.h"
#include "host/win/win.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>

extern "C" {
extern const std::byte qdvResourcesBegin[], qdvResourcesEnd[];
}

class DialogSession : public testing::Test, private host::ConsoleSink {
protected:
    void SetUp() override {
        host::setProgramResources({qdvResourcesBegin, qdvResourcesEnd});
        host::console().setSink(this);
    }
    void TearDown() override {
        host::inputStream().setUser(nullptr);
        host::console().setSink(nullptr);
    }

    /// The lines that the user has ready from now on.
    void lines(const std::string& text) {
        host::inputStream().setUser(nullptr);
        mStream = std::make_unique<std::istringstream>(text);
        mUser = std::make_unique<host::TypedInput>(*mStream);
        host::inputStream().setUser(mUser.get());
    }
    bool allRead() { return mUser->atEnd(); }
    /// What was shown, and told as failures, since the last call.
    std::wstring shown() { return std::exchange(mShown, {}); }
    std::wstring failures() { return std::exchange(mFailures, {}); }

private:
    void write(std::wstring_view text) override { mShown += text; }
    void diagnostic(std::wstring_view line) override { mFailures += std::wstring(line) + L"\n"; }

    std::unique_ptr<std::istringstream> mStream;
    std::unique_ptr<host::TypedInput> mUser;
    std::wstring mShown, mFailures;
};

/// The same with template 100 open beside the work.
template <class Dialog>
class OpenDialogSession : public DialogSession {
protected:
    void SetUp() override {
        DialogSession::SetUp();
        ASSERT_TRUE(dialog.Create(100));
        dialog.ShowWindow(SW_SHOW);
        host::processEvents();
    }
    void TearDown() override {
        dialog.DestroyWindow();
        host::processEvents();
        DialogSession::TearDown();
    }

    Dialog dialog;
};
