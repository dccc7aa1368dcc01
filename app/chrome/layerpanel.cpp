#include "app/chrome/layerpanel.h"

#include "app/chrome/colordialog.h"
#include "app/chrome/entityvalues.h"
#include "app/chrome/icons.h"

#include "host/ed/acdocman.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {
namespace {

/// A name as a pattern that means nothing but itself.
QString literal(const QString& name) {
    static const QString special = QStringLiteral("#@.*?~[],`-");
    QString pattern;
    for (const QChar character : name) {
        if (special.contains(character)) {
            pattern += QLatin1Char('`');
        }
        pattern += character;
    }
    return pattern;
}

QString weightText(int weight) {
    return weight < 0 ? LayerPanel::tr("默认") : QString::number(weight / 100.0, 'f', 2);
}

QString colorText(const AcCmEntityColor& color) {
    return color.isByColor()
               ? QStringLiteral("%1,%2,%3").arg(color.red()).arg(color.green()).arg(color.blue())
               : QString::number(color.colorIndex());
}

/// Clicks on the switches of chosen rows mean all of them, and leave them chosen.
class LayerTable final : public QTreeWidget {
protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override {
        const QEvent::Type type = event != nullptr ? event->type() : QEvent::None;
        if (type == QEvent::MouseButtonPress) {
            const auto& press = static_cast<const QMouseEvent&>(*event);
            mKeepsChoice = index.column() > 0 && selectionModel()->isSelected(index) &&
                           press.button() == Qt::LeftButton && !press.modifiers().testFlag(Qt::ShiftModifier);
        }
        const bool isMouse = type == QEvent::MouseButtonPress || type == QEvent::MouseMove ||
                             type == QEvent::MouseButtonRelease;
        return isMouse && mKeepsChoice ? QItemSelectionModel::NoUpdate
                                       : QTreeWidget::selectionCommand(index, event);
    }

private:
    mutable bool mKeepsChoice = false; ///< since the button was pressed
};

} // namespace

LayerPanel::LayerPanel(QWidget* parent)
    : QDockWidget(tr("图层管理"), parent), mTable(new LayerTable), mFilter(new QLineEdit) {
    setObjectName(QStringLiteral("layerPanel"));
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(4, 4, 4, 4);
    auto* line = new QHBoxLayout;
    const auto button = [&](const QString& label, auto slot) {
        auto* made = new QPushButton(label);
        made->setFocusPolicy(Qt::NoFocus);
        connect(made, &QPushButton::clicked, this, slot);
        line->addWidget(made);
    };
    button(tr("新建"), [this] { addLayer(); });
    button(tr("置为当前"), [this] { option(QStringLiteral("_S"), current()); });
    button(tr("删除"), [this] {
        run(QStringLiteral("(progn (command \"_.-PURGE\" \"_LA\" %1 \"_N\") (princ))\n")
                .arg(quoted(literal(current()))));
    });
    mFilter->setPlaceholderText(tr("搜索图层"));
    mFilter->setClearButtonEnabled(true);
    line->addWidget(mFilter, 1);
    layout->addLayout(line);
    mTable->setColumnCount(columnCount);
    mTable->setHeaderLabels(
        {tr("名称"), tr("开"), tr("冻结"), tr("锁定"), tr("颜色"), tr("线型"), tr("线宽"), tr("打印")});
    mTable->setSelectionMode(QAbstractItemView::ExtendedSelection);
    mTable->setRootIsDecorated(false);
    mTable->setAlternatingRowColors(true);
    mTable->setUniformRowHeights(true);
    mTable->setSortingEnabled(true);
    mTable->sortByColumn(name, Qt::AscendingOrder);
    mTable->header()->resizeSection(name, 130);
    for (int column = on; column < columnCount; ++column) {
        mTable->header()->resizeSection(column, column == linetype ? 90 : column == color ? 64 : 46);
    }
    layout->addWidget(mTable);
    setWidget(box);
    connect(mTable, &QTreeWidget::itemClicked, this,
            [this](QTreeWidgetItem* item, int column) { clicked(item, column); });
    connect(mTable, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item, int column) {
        if (column == name) {
            option(QStringLiteral("_S"), item->text(name));
        }
    });
    connect(mFilter, &QLineEdit::textChanged, this, [this](const QString& wanted) {
        for (int i = 0; i < mTable->topLevelItemCount(); ++i) {
            QTreeWidgetItem* item = mTable->topLevelItem(i);
            item->setHidden(!item->text(name).contains(wanted, Qt::CaseInsensitive));
        }
    });
    connect(this, &QDockWidget::visibilityChanged, this, [this] { follow(); });
}

void LayerPanel::follow() {
    AcApDocument* document = curDoc();
    if (!isVisible() || document == nullptr) {
        return;
    }
    const AcDbDatabase& database = *document->database();
    const quint64 state =
        database.undoLog().changeCount() * 2 + reinterpret_cast<std::uintptr_t>(&database) + 1;
    if (state != mSeen) {
        mSeen = state;
        fill();
    }
}

void LayerPanel::fill() {
    const AcDbDatabase& database = *curDoc()->database();
    QStringList chosen;
    for (const QTreeWidgetItem* item : mTable->selectedItems()) {
        chosen.append(item->text(name));
    }
    mTable->setSortingEnabled(false);
    mTable->clear();
    for (AcDbStub* stub : host::peek<AcDbLayerTable>(database.layerTableId())->records()) {
        const auto* layer = host::peek<AcDbLayerTableRecord>(AcDbObjectId(stub));
        if (layer == nullptr) {
            continue;
        }
        auto* item = new QTreeWidgetItem(mTable);
        show(*item, *layer, AcDbObjectId(stub) == database.clayer());
        item->setHidden(!item->text(name).contains(mFilter->text(), Qt::CaseInsensitive));
        item->setSelected(chosen.contains(item->text(name)));
    }
    mTable->setSortingEnabled(true);
}

void LayerPanel::show(QTreeWidgetItem& item, const AcDbLayerTableRecord& layer, bool isCurrent) const {
    item.setText(name, text(layer.name()));
    QFont font = item.font(name);
    font.setBold(isCurrent);
    item.setFont(name, font);
    item.setIcon(on, icon(layer.isOff() ? "lightoff" : "lighton"));
    if (layer.isFrozen()) {
        item.setIcon(frozen, icon("freeze"));
    }
    if (layer.isLocked()) {
        item.setIcon(locked, icon("lock"));
    }
    const AcCmEntityColor own = layer.entityColor();
    item.setIcon(color, colorIcon(own.isForeground() ? 0xFFFFFF : own.trueColor()));
    item.setText(color, colorText(own));
    const auto* line = host::peek<AcDbLinetypeTableRecord>(layer.linetypeObjectId());
    item.setText(linetype, line != nullptr ? text(line->name()) : QString());
    item.setText(weight, weightText(layer.lineWeight()));
    if (layer.isPlottable()) {
        item.setIcon(plots, icon("plot"));
    }
    for (int column = 0; column < columnCount; ++column) {
        item.setData(column, Qt::UserRole,
                     column == on       ? layer.isOff()
                     : column == frozen ? layer.isFrozen()
                     : column == locked ? layer.isLocked()
                     : column == plots  ? layer.isPlottable()
                                        : false);
    }
}

QString LayerPanel::current() const {
    const QList<QTreeWidgetItem*> chosen = mTable->selectedItems();
    return chosen.isEmpty() ? QString() : chosen.first()->text(name);
}

/// The layer that was clicked, with the others that are selected when it is one of them.
QString LayerPanel::patternFor(const QString& layer) const {
    QStringList names;
    for (const QTreeWidgetItem* item : mTable->selectedItems()) {
        names.append(literal(item->text(name)));
    }
    return names.contains(literal(layer)) ? names.join(QLatin1Char(',')) : literal(layer);
}

void LayerPanel::option(const QString& word, const QString& layer, const QString& value) {
    if (layer.isEmpty() || !run) {
        return;
    }
    const bool takesPattern = word != QLatin1String("_S") && word != QLatin1String("_M");
    const QString named = quoted(takesPattern ? patternFor(layer) : layer);
    const QString given = value.isEmpty() ? named : value + QLatin1Char(' ') + named;
    // Switching the current layer off asks whether that is meant.
    const bool isCurrent =
        curDoc() != nullptr && word == QLatin1String("_OFF") &&
        patternFor(layer).split(QLatin1Char(',')).contains(literal(nameOf(curDoc()->database()->clayer())));
    run(QStringLiteral("(progn (command \"_.-LAYER\" \"%1\" %2%3 \"\") (princ))\n")
            .arg(word, given, isCurrent ? QStringLiteral(" \"_Y\"") : QString()));
}

void LayerPanel::clicked(QTreeWidgetItem* item, int column) {
    const QString layer = item->text(name);
    const bool was = item->data(column, Qt::UserRole).toBool();
    const QPoint at = mTable->viewport()->mapToGlobal(mTable->visualItemRect(item).bottomLeft() +
                                                      QPoint(mTable->columnViewportPosition(column), 0));
    switch (column) {
    case on:
        option(was ? QStringLiteral("_ON") : QStringLiteral("_OFF"), layer);
        break;
    case frozen:
        option(was ? QStringLiteral("_T") : QStringLiteral("_F"), layer);
        break;
    case locked:
        option(was ? QStringLiteral("_U") : QStringLiteral("_LO"), layer);
        break;
    case plots:
        option(QStringLiteral("_P"), layer, was ? QStringLiteral("\"_N\"") : QStringLiteral("\"_P\""));
        break;
    case color:
        chooseColor(layer, item->text(color).toInt());
        break;
    case linetype:
        chooseLinetype(layer, at);
        break;
    case weight:
        chooseWeight(layer, at);
        break;
    default:
        break;
    }
}

void LayerPanel::chooseColor(const QString& layer, int before) {
    if (const std::optional<int> chosen = app::chooseColor(window(), before)) {
        option(QStringLiteral("_C"), layer, quoted(QString::number(*chosen)));
    }
}

void LayerPanel::chooseLinetype(const QString& layer, const QPoint& at) {
    QMenu menu(this);
    for (AcDbStub* stub : host::peek<AcDbLinetypeTable>(curDoc()->database()->linetypeTableId())->records()) {
        const auto* line = host::peek<AcDbLinetypeTableRecord>(AcDbObjectId(stub));
        const QString own = line != nullptr ? text(line->name()) : QString();
        if (!own.isEmpty() && own.compare(QLatin1String("ByLayer"), Qt::CaseInsensitive) != 0 &&
            own.compare(QLatin1String("ByBlock"), Qt::CaseInsensitive) != 0) {
            menu.addAction(own)->setData(own);
        }
    }
    if (const QAction* chosen = menu.exec(at)) {
        option(QStringLiteral("_L"), layer, quoted(chosen->data().toString()));
    }
}

void LayerPanel::chooseWeight(const QString& layer, const QPoint& at) {
    QMenu menu(this);
    menu.addAction(tr("默认"))->setData(QStringLiteral("_Default"));
    for (const int hundredths :
         {0, 5, 9, 13, 15, 18, 20, 25, 30, 35, 40, 50, 53, 60, 70, 80, 90, 100, 140, 200}) {
        menu.addAction(weightText(hundredths))->setData(weightText(hundredths));
    }
    if (const QAction* chosen = menu.exec(at)) {
        option(QStringLiteral("_LW"), layer, quoted(chosen->data().toString()));
    }
}

void LayerPanel::addLayer() {
    bool accepted = false;
    const QString layer =
        QInputDialog::getText(this, tr("新建图层"), tr("图层名:"), QLineEdit::Normal, tr("图层1"), &accepted);
    if (accepted && !layer.trimmed().isEmpty()) {
        option(QStringLiteral("_N"), layer.trimmed());
    }
}

} // namespace app
