#include "app/console/windowinput.h"

#include "host/ed/aced.h"
#include "host/ed/question.h"
#include "host/mfc/appwindow.h"
#include "host/rx/text.h"

#include <QKeyEvent>
#include <QScopeGuard>
#include <QTimer>

namespace app {
namespace {

constexpr wchar_t escapeCharacter = 27;

host::InputItem pointItem(host::InputItem::Kind kind, const AcGePoint3d& world) {
    const AcGePoint3d ucs = host::worldToUcs(world);
    host::ResbufBuilder builder;
    builder.point(RT3DPOINT, ucs.x, ucs.y, ucs.z);
    host::InputItem item = host::InputItem::ofValue(builder.release());
    item.kind = kind;
    item.fromCursor = true;
    return item;
}

/// Who asked finds the snap point again from where the cursor stood.
host::InputItem pickedItem(const Aimed& aimed) {
    const bool isSnapped = aimed.snapKind != 0;
    host::InputItem item = pointItem(host::InputItem::Kind::value, isSnapped ? aimed.place : aimed.point);
    item.isAimed = !isSnapped;
    return item;
}

bool asksForCorner(const host::InputRequest& request) {
    return request.base &&
           (request.band == host::Aim::Band::rectangle || request.band == host::Aim::Band::selection);
}

} // namespace

WindowInput::WindowInput(Canvas& canvas, CommandLine& commandLine)
    : mCanvas(canvas), mCommandLine(commandLine), mPicking(canvas) {
    mCanvas.setListener(this);
    mCommandLine.submitted = [this](const QString& text) { typed(text); };
    mCommandLine.cancelled = [this] { cancel(); };
    mCommandLine.edited = [this](const QString& text) { mCanvas.setTyped(text); };
}

WindowInput::~WindowInput() {
    mCanvas.setListener(nullptr);
}

void WindowInput::wake() {
    if (mLoop != nullptr) {
        mLoop->quit();
    }
}

void WindowInput::post(std::wstring_view text) {
    mComing.emplace_back(std::wstring(text));
    wake();
}

std::wstring WindowInput::takePosted() {
    std::wstring rest = mTyped.takePosted();
    for (const auto& coming : mComing) {
        if (const auto* text = std::get_if<std::wstring>(&coming)) {
            rest += *text;
        }
    }
    mComing.clear();
    return rest;
}

void WindowInput::typed(const QString& text) {
    mPicking.cancel(); // a rectangle begun at the prompt ends where a command begins
    post(text.toStdWString());
}

void WindowInput::cancel() {
    mPicking.cancel();
    post(std::wstring(1, escapeCharacter));
}

bool WindowInput::takeCancel() {
    const bool isCancelled = std::ranges::any_of(mComing, [](const auto& coming) {
        const auto* text = std::get_if<std::wstring>(&coming);
        return text != nullptr && text->find(escapeCharacter) != std::wstring::npos;
    });
    if (isCancelled) {
        mComing.clear();
    }
    return isCancelled;
}

void WindowInput::run(const QString& command, bool transparently) {
    mCommandLine.clearText();
    mPicking.cancel();
    std::wstring text = command.toStdWString();
    if (!isIdle()) {
        text = transparently ? L"'" + text : std::wstring(2, escapeCharacter) + text;
    }
    post(text);
}

void WindowInput::restart() {
    answer(host::InputItem::of(host::InputItem::Kind::motion));
}

void WindowInput::close() {
    mIsClosed = true;
    wake();
}

void WindowInput::answer(host::InputItem item) {
    mComing.emplace_back(std::move(item));
    wake();
}

host::InputItem WindowInput::read(const host::InputRequest& request) {
    if (request.wantsMotion == false) {
        mLastMotion.reset();
    }
    for (;;) {
        if (mIsClosed) {
            return host::InputItem::of(host::InputItem::Kind::end);
        }
        if (!mTyped.atEnd()) {
            return withDistance(mTyped.read(request), request);
        }
        if (!mComing.empty()) {
            auto coming = std::move(mComing.front());
            mComing.pop_front();
            if (auto* item = std::get_if<host::InputItem>(&coming)) {
                return std::move(*item);
            }
            mTyped.post(std::get<std::wstring>(coming));
            continue;
        }
        if (const auto released = std::exchange(mReleased, std::nullopt);
            released && asksForCorner(request)) {
            return pickedItem(*released);
        }
        try {
            ask(request);
            host::throwKept();
        } catch (const host::InputEnded&) {
            throw;
        } catch (const std::exception& error) {
            // A command hears of it; at the prompt there is none that it could end.
            if (!request.atCommandPrompt) {
                throw;
            }
            failed(host::fromUtf8(error.what()));
        }
    }
}

/// Lets events run until there is an answer, with the question standing everywhere.
void WindowInput::ask(const host::InputRequest& request) {
    QEventLoop loop;
    const auto ended = qScopeGuard([&] {
        mLoop = nullptr;
        mRequest = nullptr;
        mCommandLine.setRequest(nullptr);
        mCanvas.setRequest(nullptr, {});
    });
    mLoop = &loop;
    mRequest = &request;
    mCommandLine.setRequest(&request);
    mCanvas.followDrawing();
    mPicking.follow(request.atCommandPrompt);
    mCanvas.setRequest(&request, mCommandLine.prompt());
    if (asking) {
        asking(request);
    }
    if (request.wantsMotion && mCanvas.underMouse() && !mLastMotion) {
        QTimer::singleShot(0, &mCanvas, [this] { moved(mCanvas.aimed()); });
    }
    loop.exec();
}

/// A number typed for a point is the distance from the base towards the cursor.
host::InputItem WindowInput::withDistance(host::InputItem item, const host::InputRequest& request) const {
    if (item.kind != host::InputItem::Kind::text || !request.takesDistance || !request.base) {
        return item;
    }
    const std::optional<double> distance = host::numberIn(item);
    const AcGeVector3d direction = mCanvas.aimed().point - *request.base;
    if (!distance || direction.isZeroLength()) {
        return item;
    }
    host::InputItem point =
        pointItem(host::InputItem::Kind::value, *request.base + direction.normal() * *distance);
    point.fromCursor = false;
    return point;
}

// From the drawing area.

void WindowInput::pressed(const Aimed& aimed, Qt::KeyboardModifiers modifiers, bool released) {
    if (mRequest == nullptr) {
        return;
    }
    if (isIdle()) {
        if (const std::wstring command = mPicking.pressed(aimed, modifiers, released); !command.empty()) {
            post(command);
        }
        return;
    }
    if (released && !asksForCorner(*mRequest)) {
        // The press may still be on its way to who asks for the corner then.
        mReleased = mComing.empty() ? std::nullopt : std::optional(aimed);
        return;
    }
    // At the prompt of a command that is on its way this is the answer to its first question.
    if (mRequest->wantsPoint || mRequest->atCommandPrompt) {
        answer(pickedItem(aimed));
    }
}

void WindowInput::moved(const Aimed& aimed) {
    if (cursorMoved) {
        cursorMoved(aimed);
    }
    if (mRequest != nullptr && mRequest->wantsMotion && mComing.empty() &&
        (!mLastMotion || *mLastMotion != aimed.point)) {
        mLastMotion = aimed.point;
        answer(pointItem(host::InputItem::Kind::motion, aimed.point));
    }
}

void WindowInput::doubleClicked(const Aimed& aimed) {
    if (mRequest != nullptr && mRequest->atCommandPrompt) {
        if (const std::wstring command = mPicking.doubleClicked(aimed); !command.empty()) {
            post(command);
        }
    }
}

void WindowInput::confirmed() {
    if (mRequest != nullptr) {
        mCommandLine.submit();
    }
}

void WindowInput::enter(const QString& text) {
    mCommandLine.clearText();
    typed(text + QLatin1Char('\n'));
}

void WindowInput::menuWanted(const QPoint& onScreen, bool snaps) {
    if (mRequest != nullptr && menu) {
        menu(onScreen, snaps);
    }
}

void WindowInput::failed(const std::wstring& fault) {
    mCommandLine.tell(QString::fromStdWString(fault));
}

void WindowInput::keyPressed(QKeyEvent& event) {
    if (event.key() == Qt::Key_Delete && mCommandLine.text().isEmpty() && isIdle() &&
        mPicking.hasSelection()) {
        run(QStringLiteral("_.ERASE\n"));
        return;
    }
    if (!mCommandLine.takeKey(event) && otherKey) {
        otherKey(event);
    }
}

} // namespace app
