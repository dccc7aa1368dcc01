#include "app/canvas/longjob.h"

#include "host/formats/readprogress.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProgressDialog>
#include <QTimer>
#include <atomic>
#include <exception>
#include <memory>
#include <thread>

namespace app {

Acad::ErrorStatus runLongJob(QWidget* parent, const QString& title,
                             const std::function<Acad::ErrorStatus()>& job) {
    constexpr int steps = 1000, interval = 30; // milliseconds
    constexpr qint64 patience = 400;           // milliseconds before anything is shown
    std::atomic<double> share = 0;
    std::atomic<bool> isStopped = false;
    std::atomic<bool> isDone = false;
    Acad::ErrorStatus status = Acad::eOk;
    std::exception_ptr fault;
    std::thread worker([&] {
        const host::ReadProgress progress([&](double told) {
            share = told;
            return !isStopped;
        });
        try {
            status = job();
        } catch (...) {
            fault = std::current_exception();
        }
        isDone = true;
    });
    std::unique_ptr<QProgressDialog> dialog;
    QElapsedTimer timer;
    timer.start();
    QEventLoop loop;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (isDone) {
            loop.quit();
            return;
        }
        if (dialog == nullptr && timer.elapsed() > patience) {
            dialog = std::make_unique<QProgressDialog>(
                QCoreApplication::translate("LongJob", "正在读取 %1 ...").arg(title),
                QCoreApplication::translate("LongJob", "取消"), 0, steps, parent);
            dialog->setWindowTitle(QCoreApplication::translate("LongJob", "打开图形"));
            dialog->setWindowModality(Qt::ApplicationModal);
            dialog->setMinimumDuration(0);
            dialog->setAutoClose(false);
            dialog->setAutoReset(false);
            dialog->setMinimumWidth(420);
            QObject::connect(dialog.get(), &QProgressDialog::canceled, [&] { isStopped = true; });
            dialog->show();
        }
        if (dialog != nullptr) {
            dialog->setValue(static_cast<int>(share * steps));
        }
    });
    watch.start(interval);
    // Quick jobs do not let other events in: nothing else may happen before they are done.
    while (!isDone && timer.elapsed() < patience) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (!isDone) {
        loop.exec();
    }
    worker.join();
    if (fault) {
        std::rethrow_exception(fault);
    }
    return status;
}

} // namespace app
