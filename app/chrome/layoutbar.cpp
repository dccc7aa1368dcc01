#include "app/chrome/layoutbar.h"

#include "host/db/dblayout.h"
#include "host/ed/acdocman.h"
#include "host/ed/sysvars.h"

#include <QMenu>

namespace app {
namespace {

/// Names may hold blanks.
QString quoted(const QString& name) {
    return QLatin1Char('"') + name + QLatin1Char('"');
}

} // namespace

LayoutBar::LayoutBar(QWidget* parent) : QTabBar(parent) {
    setObjectName(QStringLiteral("layoutTabs"));
    setShape(QTabBar::RoundedSouth);
    setDrawBase(false);
    setExpanding(false);
    setFocusPolicy(Qt::NoFocus);
    setUsesScrollButtons(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, &LayoutBar::showMenu);
    connect(this, &QTabBar::tabBarClicked, this, [this](int index) {
        if (index >= 0 && index != currentIndex() && run) {
            run(QStringLiteral("_.LAYOUT\n_S\n") + quoted(tabData(index).toString()) + QLatin1Char('\n'));
        }
    });
    // The drawing says which one is shown: a click alone changes nothing.
    connect(this, &QTabBar::currentChanged, this, [this] {
        if (!mIsFollowing) {
            follow();
        }
    });
}

void LayoutBar::follow() {
    const AcApDocument* document = curDoc();
    setVisible(document != nullptr);
    if (document == nullptr) {
        return;
    }
    mIsFollowing = true;
    const auto names = acdbHostApplicationServices()->layoutManager()->layoutNames(document->database());
    while (count() > static_cast<int>(names.size())) {
        removeTab(count() - 1);
    }
    const std::wstring current = host::systemVariableText(L"CTAB");
    for (int i = 0; i < static_cast<int>(names.size()); ++i) {
        const wchar_t* text = names[static_cast<std::size_t>(i)].kwszPtr();
        const QString name = QString::fromWCharArray(text);
        if (i >= count()) {
            addTab(QString());
        }
        if (tabData(i).toString() != name) {
            setTabData(i, name);
            setTabText(i, name == QLatin1String("Model") ? tr("模型") : QString(name).replace('&', "&&"));
        }
        if (current == text) {
            setCurrentIndex(i);
        }
    }
    mIsFollowing = false;
}

void LayoutBar::showMenu(const QPoint& at) {
    const int index = tabAt(at);
    const QString name = quoted(tabData(index).toString());
    QMenu menu(this);
    const auto add = [&](const QString& text, const QString& command) {
        menu.addAction(text, this, [this, command] { run(command); });
    };
    add(tr("新建布局(&N)"), QStringLiteral("_.LAYOUT\n_N\n"));
    if (index > 0) {
        add(tr("重命名(&R)"), QStringLiteral("_.LAYOUT\n_R\n") + name + QLatin1Char('\n'));
        add(tr("复制(&C)"), QStringLiteral("_.LAYOUT\n_C\n") + name + QLatin1Char('\n'));
        add(tr("删除(&D)"), QStringLiteral("_.LAYOUT\n_D\n") + name + QLatin1Char('\n'));
    }
    menu.addSeparator();
    add(tr("打印(&P)..."), QStringLiteral("_.PLOT\n"));
    menu.exec(mapToGlobal(at));
}

} // namespace app
