#include "tests/app/windowdriver.h"

#include "app/startup.h"
#include "tests/temporaryfolder.h"

#include "host/mfc/appwindow.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    const TemporaryFolder settings;
    host::application();
    app::initializeHost(settings.path());
    return RUN_ALL_TESTS();
}

WindowDriver::WindowDriver(const std::vector<std::string>& modules)
    : mWindow(std::make_unique<app::MainWindow>()) {
    app::Options options;
    options.loadsDefaultModule = false;
    options.modules.assign(modules.begin(), modules.end());
    mWindow->resize(1000, 700);
    mWindow->show();
    mWindow->begin(options);
    host::setSystemVariable(L"OSMODE", 0);
    look(0, 0, 200);
    mTimer.setInterval(0);
    QObject::connect(&mTimer, &QTimer::timeout, [this] { next(); });
}

WindowDriver::~WindowDriver() {
    mWindow.reset();
    host::unloadAllModules();
}

void WindowDriver::next() {
    if (!mWindow->windowInput().isAsking()) {
        return;
    }
    if (mAt < mSteps.size()) {
        mSteps[mAt++](*this);
    } else {
        mTimer.stop();
        mWindow->windowInput().close();
    }
}

void WindowDriver::run(std::vector<Step> steps) {
    mSteps = std::move(steps);
    mAt = 0;
    mTimer.start();
    mSession.run(mWindow->input());
}

void WindowDriver::send(QEvent::Type type, const QPointF& at, Qt::MouseButton button,
                        Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers) {
    QMouseEvent event(type, at, canvas().mapToGlobal(at), button, buttons, modifiers);
    QApplication::sendEvent(&canvas(), &event);
}

void WindowDriver::move(double x, double y) {
    send(QEvent::MouseMove, canvas().toWidget({x, y, 0}), Qt::NoButton, Qt::NoButton);
}

void WindowDriver::click(double x, double y, Qt::KeyboardModifiers modifiers) {
    const QPointF at = canvas().toWidget({x, y, 0});
    send(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton, modifiers);
    send(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton, modifiers);
}

void WindowDriver::drag(double fromX, double fromY, double toX, double toY) {
    const QPointF to = canvas().toWidget({toX, toY, 0});
    send(QEvent::MouseButtonPress, canvas().toWidget({fromX, fromY, 0}), Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
}

void WindowDriver::rightClick() {
    send(QEvent::MouseButtonPress, QPointF(50, 50), Qt::RightButton, Qt::RightButton);
    send(QEvent::MouseButtonRelease, QPointF(50, 50), Qt::RightButton, Qt::NoButton);
}

void WindowDriver::key(int key) {
    QKeyEvent event(QEvent::KeyPress, key, {});
    QApplication::sendEvent(&canvas(), &event);
}

/// Character by character; a blank and a line end are keys of their own.
void WindowDriver::type(const QString& text) {
    for (const QChar character : text) {
        const int code = character == QLatin1Char(' ')    ? static_cast<int>(Qt::Key_Space)
                         : character == QLatin1Char('\n') ? static_cast<int>(Qt::Key_Return)
                                                          : static_cast<int>(character.toUpper().unicode());
        QKeyEvent event(QEvent::KeyPress, code, {}, QString(character));
        QApplication::sendEvent(&canvas(), &event);
    }
}

void WindowDriver::look(double x, double y, double width) {
    host::ResbufBuilder centre;
    centre.point(RT3DPOINT, x, y, 0);
    host::putSystemVariable(L"VIEWCTR", *centre.release());
    host::ResbufBuilder height;
    height.real(RTREAL, width * canvas().map().height / canvas().map().width);
    host::putSystemVariable(L"VIEWSIZE", *height.release());
    canvas().viewChanged();
}

std::vector<AcDbEntity*> entities() {
    std::vector<AcDbEntity*> found;
    const auto* space = host::peek<AcDbBlockTableRecord>(acdbCurDwg()->currentSpaceId());
    for (AcDbStub* stub : space->entities()) {
        if (auto* entity = host::peek<AcDbEntity>(AcDbObjectId(stub))) {
            found.push_back(entity);
        }
    }
    return found;
}
