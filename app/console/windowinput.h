// The user at the window: answers come from what he types and from where he points. While an answer is
// awaited the event loop runs.
#pragma once

#include "app/canvas/canvas.h"
#include "app/console/commandline.h"
#include "app/console/picking.h"

#include <QEventLoop>
#include <deque>
#include <functional>
#include <variant>

namespace app {

class WindowInput final : public host::UserInput, public CanvasListener {
public:
    WindowInput(Canvas& canvas, CommandLine& commandLine);
    ~WindowInput() override;

    /// Called whenever a question begins to stand: the rest of the window follows.
    std::function<void(const host::InputRequest&)> asking;
    /// A key that neither the command line nor the drawing area has a use for.
    std::function<void(QKeyEvent&)> otherKey;
    std::function<void(const Aimed&)> cursorMoved;
    /// The menu of the right button is wanted, or that of object snaps.
    std::function<void(const QPoint& onScreen, bool snaps)> menu;

    /// Types a command for the user, ending what runs first. A transparent one does not.
    void run(const QString& command, bool transparently = false);
    /// Escape.
    void cancel();
    /// Whether Escape was hit while nothing was asked; what came before it is dropped with it.
    bool takeCancel();
    /// Types text as it is, or Enter for none.
    void enter(const QString& text);
    /// The documents changed: the question is put anew for the current one.
    void restart();
    /// No more answers: everything ends.
    void close() override;
    /// Nothing is asked but the next command.
    bool isIdle() const { return isAsking() && mRequest->atCommandPrompt; }
    /// A question stands and nothing that answers it is on its way.
    bool isAsking() const { return mRequest != nullptr && mComing.empty(); }
    const host::InputRequest* request() const { return mRequest; }
    Picking& picking() { return mPicking; }

    // UserInput.
    host::InputItem read(const host::InputRequest& request) override;
    bool atEnd() override { return mIsClosed; }
    bool worksDialogs() const override { return true; }
    void post(std::wstring_view text) override;
    std::wstring takePosted() override;

    // CanvasListener.
    void pressed(const Aimed& aimed, Qt::KeyboardModifiers modifiers, bool released) override;
    void moved(const Aimed& aimed) override;
    void doubleClicked(const Aimed& aimed) override;
    void confirmed() override;
    void menuWanted(const QPoint& onScreen, bool snaps) override;
    void failed(const std::wstring& fault) override;
    void keyPressed(QKeyEvent& event) override;

private:
    void answer(host::InputItem item);
    void typed(const QString& text);
    host::InputItem withDistance(host::InputItem item, const host::InputRequest& request) const;
    void ask(const host::InputRequest& request);
    void wake();

    Canvas& mCanvas;
    CommandLine& mCommandLine;
    Picking mPicking;
    host::TypedInput mTyped;
    std::deque<std::variant<host::InputItem, std::wstring>> mComing; ///< answers and typed text, as they came
    const host::InputRequest* mRequest = nullptr;
    QEventLoop* mLoop = nullptr;
    std::optional<AcGePoint3d> mLastMotion;
    std::optional<Aimed> mReleased; ///< the end of a drag whose press is being answered
    bool mIsClosed = false;
};

} // namespace app
