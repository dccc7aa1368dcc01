#include "app/chrome/propertypanel.h"

#include "app/chrome/entityvalues.h"
#include "app/chrome/propertyrows.h"

#include "host/ed/acdocman.h"
#include "host/ed/selection.h"

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>
#include <map>

namespace app {
namespace {

/// So many that comparing their geometry would be waited for.
constexpr std::size_t manyChosen = 20'000;

constexpr int editRole = Qt::UserRole;

QStringList namesIn(AcDbObjectId tableId) {
    QStringList names;
    const auto* table = host::peek<AcDbSymbolTable>(tableId);
    for (AcDbStub* stub : table != nullptr ? table->records() : std::vector<AcDbStub*>()) {
        if (const QString name = nameOf(AcDbObjectId(stub)); !name.isEmpty()) {
            names.append(name);
        }
    }
    names.sort(Qt::CaseInsensitive);
    return names;
}

/// What may be chosen for a value; empty: it is typed.
QStringList choicesFor(const QString& edit) {
    const AcDbDatabase& database = *curDoc()->database();
    if (edit == QLatin1String("_LA")) {
        return namesIn(database.layerTableId());
    }
    if (edit == QLatin1String("_LT")) {
        return namesIn(database.linetypeTableId());
    }
    if (edit == QLatin1String("s7")) {
        return namesIn(database.textStyleTableId());
    }
    if (edit == QLatin1String("c70")) {
        return {PropertyPanel::tr("是"), PropertyPanel::tr("否")};
    }
    if (edit == QLatin1String("_C")) {
        return {shownColor(AcCmEntityColor(AcCmEntityColor::kByLayer)),
                shownColor(AcCmEntityColor(AcCmEntityColor::kByBlock)),
                PropertyPanel::tr("红"),
                PropertyPanel::tr("黄"),
                PropertyPanel::tr("绿"),
                PropertyPanel::tr("青"),
                PropertyPanel::tr("蓝"),
                PropertyPanel::tr("洋红"),
                PropertyPanel::tr("白")};
    }
    QStringList weights;
    if (edit == QLatin1String("_LW")) {
        for (const int weight :
             {-1, -2, -3, 0, 9, 13, 18, 20, 25, 30, 35, 40, 50, 60, 70, 80, 100, 140, 200}) {
            weights.append(shownWeight(weight));
        }
    }
    return weights;
}

/// Only values are edited, and only those that say how: from a list or by typing.
class ValueDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        const QString edit = index.data(editRole).toString();
        if (index.column() != 1 || edit.isEmpty()) {
            return nullptr;
        }
        const QStringList choices = choicesFor(edit);
        if (choices.isEmpty()) {
            return QStyledItemDelegate::createEditor(parent, option, index);
        }
        auto* box = new QComboBox(parent);
        box->addItems(choices);
        box->setEditable(edit == QLatin1String("_C"));
        connect(box, &QComboBox::activated, this, [this, box] {
            auto* self = const_cast<ValueDelegate*>(this);
            emit self->commitData(box);
            emit self->closeEditor(box);
        });
        return box;
    }
    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        if (auto* box = qobject_cast<QComboBox*>(editor)) {
            box->setCurrentText(index.data().toString());
        } else {
            QStyledItemDelegate::setEditorData(editor, index);
        }
    }
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override {
        const auto* box = qobject_cast<QComboBox*>(editor);
        const QString before = index.data().toString();
        if (box == nullptr) {
            QStyledItemDelegate::setModelData(editor, model, index);
        } else if (!box->currentText().isEmpty() && box->currentText() != before) {
            model->setData(index, box->currentText());
        }
    }
};

QString dxfName(const AcDbEntity& entity) {
    return QString::fromStdString(entity.dxfRecordName());
}

/// What is chosen of a kind; of all kinds for none.
std::vector<AcDbObjectId> chosenOf(const QString& kind) {
    std::vector<AcDbObjectId> ids;
    for (const AcDbObjectId id : host::impliedSelection().ids) {
        const auto* entity = host::peek<AcDbEntity>(id);
        if (entity != nullptr && (kind.isEmpty() || dxfName(*entity) == kind)) {
            ids.push_back(id);
        }
    }
    return ids;
}

} // namespace

PropertyPanel::PropertyPanel(QWidget* parent)
    : QDockWidget(tr("特性"), parent), mKinds(new QComboBox), mTable(new QTreeWidget) {
    setObjectName(QStringLiteral("propertyPanel"));
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(4, 4, 4, 4);
    mKinds->setFocusPolicy(Qt::NoFocus);
    layout->addWidget(mKinds);
    mTable->setColumnCount(2);
    mTable->setHeaderLabels({tr("名称"), tr("值")});
    mTable->setAlternatingRowColors(true);
    mTable->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                            QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    mTable->setItemDelegate(new ValueDelegate(mTable));
    mTable->header()->resizeSection(0, 110);
    layout->addWidget(mTable, 1);
    setWidget(box);
    connect(mTable, &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* item, int column) { changed(item, column); });
    connect(mTable, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item, int column) {
        if (column == 1) {
            mTable->editItem(item, column);
        }
    });
    connect(mKinds, &QComboBox::activated, this, [this] { fill(); });
    connect(this, &QDockWidget::visibilityChanged, this, [this] { follow(); });
}

void PropertyPanel::follow() {
    AcApDocument* document = curDoc();
    if (!isVisible() || document == nullptr) {
        return;
    }
    quint64 state =
        document->database()->undoLog().changeCount() * 31 + reinterpret_cast<std::uintptr_t>(document) + 1;
    for (const AcDbObjectId id : host::impliedSelection().ids) {
        state = state * 1099511628211U + reinterpret_cast<std::uintptr_t>(id.stub());
    }
    if (state != mSeen) {
        mSeen = state;
        fillKinds();
        fill();
    }
}

void PropertyPanel::fillKinds() {
    const QString before = mKinds->currentData().toString();
    std::map<QString, std::pair<QString, int>> counts;
    for (const AcDbObjectId id : host::impliedSelection().ids) {
        if (const auto* entity = host::peek<AcDbEntity>(id)) {
            auto& [name, count] = counts[dxfName(*entity)];
            name = kindName(*entity);
            ++count;
        }
    }
    mKinds->clear();
    if (counts.empty()) {
        mKinds->addItem(tr("无选择"));
    } else if (counts.size() > 1) {
        mKinds->addItem(tr("全部 (%1)").arg(host::impliedSelection().size()));
    }
    for (const auto& [kind, named] : counts) {
        mKinds->addItem(tr("%1 (%2)").arg(named.first).arg(named.second), kind);
    }
    mKinds->setCurrentIndex(std::max(0, mKinds->findData(before)));
}

QTreeWidgetItem& PropertyPanel::group(const QString& name) {
    for (int i = 0; i < mTable->topLevelItemCount(); ++i) {
        if (mTable->topLevelItem(i)->text(0) == name) {
            return *mTable->topLevelItem(i);
        }
    }
    auto* made = new QTreeWidgetItem(mTable, {name});
    made->setFirstColumnSpanned(true);
    return *made;
}

void PropertyPanel::add(const QString& groupName, const QString& label, const QString& value,
                        const QString& edit) {
    auto* item = new QTreeWidgetItem(&group(groupName), {label, value});
    item->setData(1, editRole, edit);
    item->setToolTip(1, value);
    if (!edit.isEmpty()) {
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    } else {
        item->setForeground(1, palette().brush(QPalette::Disabled, QPalette::Text));
    }
}

void PropertyPanel::fill() {
    mIsFilling = true;
    mTable->clear();
    if (const std::vector<AcDbObjectId> ids = chosenOf(mKinds->currentData().toString()); ids.empty()) {
        showDefaults();
    } else {
        showShared(ids);
        showTotals(ids);
    }
    mTable->expandAll();
    mIsFilling = false;
}

void PropertyPanel::showDefaults() {
    const AcDbDatabase& database = *curDoc()->database();
    const QString general = tr("常规");
    add(general, tr("当前图层"), nameOf(database.clayer()));
    add(general, tr("颜色"), shownColor(database.cecolor().entityColor()));
    add(general, tr("线型"), nameOf(database.celtype()));
    add(general, tr("线型比例"), shownNumber(database.ltscale()));
    add(general, tr("线宽"), shownWeight(database.celweight()));
}

void PropertyPanel::showShared(const std::vector<AcDbObjectId>& ids) {
    const std::span<const PropertyRow> all = propertyRows();
    for (const PropertyRow& row : all) {
        const bool isGeneral = row.group == all.front().group;
        if (!isGeneral && ids.size() > manyChosen) {
            break;
        }
        const bool allHave = isGeneral || std::all_of(ids.begin(), ids.end(), [&](AcDbObjectId id) {
                                 const auto* entity = host::peek<AcDbEntity>(id);
                                 const host::ReadAccess access(*entity);
                                 return row.has(*entity);
                             });
        if (allHave) {
            add(QCoreApplication::translate("Properties", row.group),
                QCoreApplication::translate("Properties", row.label),
                sharedBy(ids, row.get).value_or(tr("*多种*")), QString::fromLatin1(row.edit));
        }
    }
    if (ids.size() == 1) {
        add(QCoreApplication::translate("Properties", all.front().group), tr("句柄"),
            QString::fromStdWString(ids.front().handle().toString()));
    }
}

/// Lengths and areas of several curves together.
void PropertyPanel::showTotals(const std::vector<AcDbObjectId>& ids) {
    double length = 0;
    std::size_t counted = 0;
    for (const AcDbObjectId id :
         ids.size() > 1 && ids.size() <= manyChosen ? ids : std::vector<AcDbObjectId>()) {
        const auto* curve = host::peek<AcDbCurve>(id);
        if (curve == nullptr) {
            continue;
        }
        const host::ReadAccess access(*curve);
        if (const std::optional<double> own = curveLength(*curve)) {
            length += *own;
            ++counted;
        }
    }
    if (counted > 1) {
        add(tr("几何图形"), tr("累计长度"), shownNumber(length));
    }
}

void PropertyPanel::changed(QTreeWidgetItem* item, int column) {
    const QString edit = item->data(1, editRole).toString();
    if (mIsFilling || column != 1 || edit.isEmpty() || !run) {
        return;
    }
    mSeen = 0; // whatever comes of it is shown
    const QString kind = mKinds->currentData().toString();
    run(editingLisp(edit, edit.startsWith(QLatin1Char('s')) ? item->text(1) : item->text(1).trimmed(),
                    kind.isEmpty() ? QStringLiteral("*") : kind));
}

} // namespace app
