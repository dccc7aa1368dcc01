#include "app/chrome/windowdesktop.h"

#include "app/chrome/mainwindow.h"

#include <QApplication>
#include <QClipboard>
#include <QDeadlineTimer>
#include <QMimeData>
#include <QThread>

namespace app {
namespace {

/// The registered type of DXF files.
QString drawingType() {
    return QStringLiteral("image/vnd.dxf");
}

/// A drawing that is written when somebody asks for it.
class OfferedDrawing final : public QMimeData {
public:
    explicit OfferedDrawing(std::function<std::string()> drawing) : mDrawing(std::move(drawing)) {}
    QStringList formats() const override { return {drawingType()}; }
    bool hasFormat(const QString& type) const override { return type == drawingType(); }
    QByteArray bytes() const {
        if (mDrawing) {
            mBytes = QByteArray::fromStdString(mDrawing());
            mDrawing = nullptr;
        }
        return mBytes;
    }

protected:
    QVariant retrieveData(const QString& type, QMetaType) const override {
        return type == drawingType() ? QVariant(bytes()) : QVariant();
    }

private:
    mutable std::function<std::string()> mDrawing;
    mutable QByteArray mBytes;
};

const OfferedDrawing* ownOffer() {
    return dynamic_cast<const OfferedDrawing*>(QApplication::clipboard()->mimeData());
}

} // namespace

WindowDesktop::WindowDesktop(MainWindow& window) : mWindow(window) {
    host::setDesktop(this);
}

WindowDesktop::~WindowDesktop() {
    host::setDesktop(nullptr);
}

void WindowDesktop::keepOffer() {
    if (const OfferedDrawing* offer = ownOffer()) {
        offer->bytes();
    }
}

void WindowDesktop::offerDrawing(std::function<std::string()> drawing) {
    QApplication::clipboard()->setMimeData(new OfferedDrawing(std::move(drawing)));
}

std::optional<std::string> WindowDesktop::offeredDrawing() {
    const QMimeData* data = QApplication::clipboard()->mimeData();
    if (data == nullptr || ownOffer() != nullptr || !data->hasFormat(drawingType())) {
        return std::nullopt;
    }
    return data->data(drawingType()).toStdString();
}

std::optional<std::wstring> WindowDesktop::offeredText() {
    const QMimeData* data = QApplication::clipboard()->mimeData();
    if (data == nullptr || ownOffer() != nullptr || data->hasFormat(drawingType()) || !data->hasText()) {
        return std::nullopt;
    }
    return data->text().toStdWString();
}

bool WindowDesktop::showProperties(bool visible) {
    mWindow.showProperties(visible);
    return true;
}

bool WindowDesktop::wait(std::chrono::milliseconds time) {
    constexpr unsigned long rest = 10; // milliseconds
    mWindow.canvas().followDrawing();
    const QDeadlineTimer deadline(time);
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, static_cast<int>(rest));
        if (mWindow.windowInput().takeCancel()) {
            return false;
        }
        if (!deadline.hasExpired()) {
            QThread::msleep(rest);
        }
    } while (!deadline.hasExpired());
    return true;
}

} // namespace app
