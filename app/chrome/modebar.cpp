#include "app/chrome/modebar.h"

#include "app/canvas/aiming.h"
#include "app/chrome/icons.h"

#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/editorview.h"
#include "host/ed/sysvars.h"

#include <QMenu>
#include <algorithm>
#include <string_view>

namespace app {
namespace {

constexpr int snapsOff = 0x4000; ///< of OSMODE

bool isObjectSnap(const wchar_t* variable) {
    return std::wstring_view(variable) == L"OSMODE";
}

QString length(double value) {
    AcString text;
    return acdbRToS(value, -1, -1, text) == RTNORM ? QString::fromWCharArray(text.kwszPtr()) : QString();
}

} // namespace

ModeBar::ModeBar(QWidget* parent)
    : QStatusBar(parent), mCoordinates(new QLabel(this)), mText(new QLabel(this)) {
    setSizeGripEnabled(false);
    mCoordinates->setMinimumWidth(260);
    mCoordinates->setObjectName(QStringLiteral("coordinates"));
    addWidget(mCoordinates);
    addWidget(mText, 1);
    add(tr("栅格"), "grid", tr("显示栅格 (F7)"), L"GRIDMODE", Qt::Key_F7);
    add(tr("捕捉"), "snap", tr("光标捕捉到间距 (F9)"), L"SNAPMODE", Qt::Key_F9);
    add(tr("正交"), "ortho", tr("只沿坐标轴移动 (F8)"), L"ORTHOMODE", Qt::Key_F8);
    add(tr("对象捕捉"), "osnap", tr("对象捕捉 (F3)，右键选择方式"), L"OSMODE", Qt::Key_F3);
    add(tr("线宽"), "lineweight", tr("显示线宽"), L"LWDISPLAY", 0);
    QToolButton* snaps = mSwitches[3].button;
    snaps->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(snaps, &QWidget::customContextMenuRequested, this,
            [this, snaps](const QPoint& at) { chooseSnaps(snaps->mapToGlobal(at)); });
}

void ModeBar::add(const QString& text, const char* iconName, const QString& tip, const wchar_t* variable,
                  int key) {
    auto* button = new QToolButton(this);
    button->setText(text);
    button->setIcon(icon(iconName));
    button->setIconSize(QSize(16, 16));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setToolTip(tip);
    button->setCheckable(true);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    addPermanentWidget(button);
    mSwitches.push_back({button, variable, key});
    const Switch one = mSwitches.back();
    connect(button, &QToolButton::clicked, this, [this, one] { turn(one); });
}

bool ModeBar::isOn(const Switch& one) {
    const int value = host::systemVariableInteger(one.variable);
    return isObjectSnap(one.variable) ? (value & snapsOff) == 0 && value != 0 : value != 0;
}

void ModeBar::turn(const Switch& one) {
    if (curDoc() == nullptr) {
        return;
    }
    const int value = host::systemVariableInteger(one.variable);
    const int usual = AcDb::kOsMaskEnd | AcDb::kOsMaskMid | AcDb::kOsMaskCen | AcDb::kOsMaskInt;
    const int turned = !isObjectSnap(one.variable) ? (value == 0 ? 1 : 0)
                       : value == 0                ? usual
                                                   : value ^ snapsOff;
    host::setSystemVariable(one.variable, turned);
    follow();
    window()->update();
    host::editorView().redraw();
}

bool ModeBar::toggle(int key) {
    const auto found = std::find_if(mSwitches.begin(), mSwitches.end(),
                                    [&](const Switch& one) { return one.key == key && key != 0; });
    if (found == mSwitches.end()) {
        return false;
    }
    turn(*found);
    return true;
}

void ModeBar::follow() {
    for (const Switch& one : mSwitches) {
        one.button->setChecked(curDoc() != nullptr && isOn(one));
    }
}

void ModeBar::showPoint(const AcGePoint3d& world) {
    const AcGePoint3d ucs = host::worldToUcs(world);
    mCoordinates->setText(length(ucs.x) + QStringLiteral(", ") + length(ucs.y) + QStringLiteral(", ") +
                          length(ucs.z));
}

void ModeBar::showText(const QString& text) {
    mText->setText(text);
}

void ModeBar::chooseSnaps(const QPoint& at) {
    QMenu menu(this);
    for (const int mode :
         {AcDb::kOsMaskEnd, AcDb::kOsMaskMid, AcDb::kOsMaskCen, AcDb::kOsMaskNode, AcDb::kOsMaskQuad,
          AcDb::kOsMaskInt, AcDb::kOsMaskIns, AcDb::kOsMaskPerp, AcDb::kOsMaskTan, AcDb::kOsMaskNear}) {
        QAction* action = menu.addAction(snapName(mode));
        action->setCheckable(true);
        action->setChecked((host::systemVariableInteger(L"OSMODE") & mode) != 0);
        connect(action, &QAction::triggered, this, [this, mode] {
            host::setSystemVariable(L"OSMODE", (host::systemVariableInteger(L"OSMODE") ^ mode) & ~snapsOff);
            follow();
        });
    }
    menu.exec(at);
}

} // namespace app
