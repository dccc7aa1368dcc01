#include "host/mfc/widgets/application.h"

#include "host/ed/input.h"
#include "host/mfc/appwindow.h"
#include "host/mfc/widgets/toolkittexts.h"
#include "host/mfc/widgets/window.h"
#include "host/rx/text.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QStyleFactory>
#include <cstdio>
#include <cstdlib>

namespace host {
namespace {

bool hasDisplay() {
    const auto isSet = [](const char* name) {
        return std::getenv(name) != nullptr && *std::getenv(name) != 0;
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

// What the toolkit has to say of its surroundings is no business of the user's diagnostics.
void tellFaults(QtMsgType kind, const QMessageLogContext&, const QString& text) {
    if (kind == QtCriticalMsg || kind == QtFatalMsg)
        std::fprintf(stderr, "%s\n", text.toUtf8().constData());
}

QPalette lightPalette() {
    QPalette palette(QColor(240, 240, 240));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(246, 248, 250));
    palette.setColor(QPalette::Highlight, QColor(0, 104, 190));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, QColor(255, 255, 220));
    palette.setColor(QPalette::ToolTipText, Qt::black);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(140, 140, 140));
    palette.setColor(QPalette::Disabled, QPalette::Base, QColor(240, 240, 240));
    return palette;
}

std::function<void(const std::wstring&)>& eventFaultHandler() {
    static std::function<void(const std::wstring&)> handler;
    return handler;
}

/// Nothing that a handler of an event throws leaves the event loop, where it would end the program.
class GuardedApplication final : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        bool taken = true;
        guarded([&] {
            try {
                taken = QApplication::notify(receiver, event);
            } catch (const InputEnded&) {
                throw;
            } catch (const std::exception& error) {
                if (!eventFaultHandler()) {
                    throw;
                }
                eventFaultHandler()(fromUtf8(error.what()));
            }
        });
        return taken;
    }
};

} // namespace

void setEventFaultHandler(std::function<void(const std::wstring&)> handler) {
    eventFaultHandler() = std::move(handler);
}

bool hasApplication() {
    return QCoreApplication::instance() != nullptr;
}

QApplication& application() {
    if (!hasApplication()) {
        static int argumentCount = 1;
        static char name[] = "qdvhost";
        static char* arguments[] = {name, nullptr};
        if (!hasDisplay())
            qputenv("QT_QPA_PLATFORM", "offscreen");
        qInstallMessageHandler(tellFaults);
        localizeToolkit();
        // Lives until the process ends: widgets of modules may outlast every scope here.
        auto* made = new GuardedApplication(argumentCount, arguments);
        made->setApplicationName("qdvhost");
        made->setQuitOnLastWindowClosed(false);
        translateToolkit(*made);
        made->setStyle(QStyleFactory::create("Fusion"));
        made->setPalette(lightPalette());
        made->setFont(dialogFont(L"", 9, FW_NORMAL, false));
        made->setEffectEnabled(Qt::UI_AnimateCombo, false);
        made->setCursorFlashTime(isOffscreen() ? 0 : made->cursorFlashTime());
    }
    return *static_cast<QApplication*>(QCoreApplication::instance());
}

bool isOffscreen() {
    return hasApplication() && QGuiApplication::platformName() == "offscreen";
}

void processEvents() {
    if (hasApplication()) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

} // namespace host
