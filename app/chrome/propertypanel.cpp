#include "app/chrome/propertypanel.h"

#include "host/db/dbents.h"
#include "host/db/entities/text.h"
#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/selection.h"

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <cmath>
#include <map>

namespace app {
namespace {

QString text(const AcString& name) {
    return QString::fromWCharArray(name.kwszPtr());
}

QString number(double value) {
    AcString shown;
    return acdbRToS(value, -1, -1, shown) == RTNORM ? text(shown) : QString::number(value);
}

QString degrees(double radians) {
    constexpr double halfTurn = 180.0;
    return QString::number(radians * halfTurn / 3.14159265358979323846, 'f', 4);
}

QString nameOf(AcDbObjectId id) {
    const auto* record = host::peek<AcDbSymbolTableRecord>(id);
    return record != nullptr ? text(record->name()) : QString();
}

QString colorText(const AcCmEntityColor& color) {
    if (color.isByLayer()) {
        return PropertyPanel::tr("随层");
    }
    if (color.isByBlock()) {
        return PropertyPanel::tr("随块");
    }
    return color.isByACI() ? QString::number(color.colorIndex())
                           : QStringLiteral("%1,%2,%3").arg(color.red()).arg(color.green()).arg(color.blue());
}

/// Only values are edited, and only those that say how.
class ValueDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        return index.column() == 1 && !index.data(Qt::UserRole).toString().isEmpty()
                   ? QStyledItemDelegate::createEditor(parent, option, index)
                   : nullptr;
    }
};

QString kindName(const AcDbEntity& entity) {
    static const std::map<std::string, const char*> names = {
        {"LINE", "直线"},      {"LWPOLYLINE", "多段线"}, {"POLYLINE", "多段线"}, {"CIRCLE", "圆"},
        {"ARC", "圆弧"},       {"ELLIPSE", "椭圆"},      {"SPLINE", "样条曲线"}, {"TEXT", "单行文字"},
        {"MTEXT", "多行文字"}, {"INSERT", "块参照"},     {"POINT", "点"},        {"HATCH", "图案填充"},
        {"DIMENSION", "标注"}, {"MLINE", "多线"},        {"SOLID", "实体填充"},  {"XLINE", "构造线"},
        {"RAY", "射线"},       {"LEADER", "引线"},       {"VIEWPORT", "视口"},   {"IMAGE", "图像"}};
    const auto found = names.find(entity.dxfRecordName());
    return found != names.end() ? QString::fromUtf8(found->second)
                                : QString::fromStdString(entity.dxfRecordName());
}

} // namespace

PropertyPanel::PropertyPanel(QWidget* parent) : QDockWidget(tr("特性"), parent), mTable(new QTreeWidget) {
    setObjectName(QStringLiteral("propertyPanel"));
    mTable->setColumnCount(2);
    mTable->setHeaderLabels({tr("名称"), tr("值")});
    mTable->setAlternatingRowColors(true);
    mTable->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked);
    mTable->setItemDelegate(new ValueDelegate(mTable));
    mTable->header()->resizeSection(0, 110);
    setWidget(mTable);
    connect(mTable, &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* item, int column) { changed(item, column); });
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
        fill();
    }
}

void PropertyPanel::add(QTreeWidgetItem& group, const QString& label, const QString& value,
                        const QString& code) {
    auto* item = new QTreeWidgetItem(&group, {label, value});
    item->setData(1, Qt::UserRole, code);
    if (!code.isEmpty()) {
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
}

void PropertyPanel::fill() {
    mIsFilling = true;
    mTable->clear();
    const std::vector<AcDbObjectId>& ids = host::impliedSelection().ids;
    auto* general = new QTreeWidgetItem(mTable, {tr("常规")});
    const AcDbDatabase& database = *curDoc()->database();
    if (ids.empty()) {
        add(*general, tr("对象"), tr("无选择"));
        add(*general, tr("当前图层"), nameOf(database.clayer()));
        add(*general, tr("颜色"), colorText(database.cecolor().entityColor()));
        add(*general, tr("线型"), nameOf(database.celtype()));
        add(*general, tr("线型比例"), number(database.ltscale()));
    } else if (const auto* entity = host::peek<AcDbEntity>(ids.front())) {
        const bool single = ids.size() == 1;
        const auto common = [&](auto get) {
            const QString first = get(*entity);
            for (const AcDbObjectId id : ids) {
                const auto* other = host::peek<AcDbEntity>(id);
                if (other != nullptr && get(*other) != first) {
                    return tr("*多种*");
                }
            }
            return first;
        };
        add(*general, tr("对象"), single ? kindName(*entity) : tr("全部 (%1)").arg(ids.size()));
        add(*general, tr("图层"), common([](const AcDbEntity& e) { return nameOf(e.layerId()); }),
            QStringLiteral("_LA"));
        add(*general, tr("颜色"), common([](const AcDbEntity& e) { return colorText(e.entityColor()); }),
            QStringLiteral("_C"));
        add(*general, tr("线型"), common([](const AcDbEntity& e) { return nameOf(e.linetypeId()); }),
            QStringLiteral("_LT"));
        add(*general, tr("线型比例"), common([](const AcDbEntity& e) { return number(e.linetypeScale()); }),
            QStringLiteral("_S"));
        if (single) {
            add(*general, tr("句柄"), QString::fromStdWString(ids.front().handle().toString()));
            addGeometry(*entity);
        }
    }
    mTable->expandAll();
    mIsFilling = false;
}

void PropertyPanel::addGeometry(const AcDbEntity& entity) {
    const host::ReadAccess access(entity);
    auto* group = new QTreeWidgetItem(mTable, {tr("几何图形")});
    const auto point = [&](const QString& label, const AcGePoint3d& at, const QString& code = {}) {
        add(*group, label, number(at.x) + QLatin1Char(',') + number(at.y) + QLatin1Char(',') + number(at.z),
            code);
    };
    if (const auto* line = AcDbLine::cast(&entity)) {
        point(tr("起点"), line->startPoint(), QStringLiteral("p10"));
        point(tr("端点"), line->endPoint(), QStringLiteral("p11"));
    } else if (const auto* circle = AcDbCircle::cast(&entity)) {
        point(tr("圆心"), circle->center(), QStringLiteral("p10"));
        add(*group, tr("半径"), number(circle->radius()), QStringLiteral("r40"));
    } else if (const auto* arc = AcDbArc::cast(&entity)) {
        point(tr("圆心"), arc->center(), QStringLiteral("p10"));
        add(*group, tr("半径"), number(arc->radius()), QStringLiteral("r40"));
        add(*group, tr("起点角度"), degrees(arc->startAngle()), QStringLiteral("a50"));
        add(*group, tr("端点角度"), degrees(arc->endAngle()), QStringLiteral("a51"));
    } else if (const auto* polyline = AcDbPolyline::cast(&entity)) {
        add(*group, tr("顶点数"), QString::number(polyline->numVerts()));
        add(*group, tr("闭合"), polyline->isClosed() ? tr("是") : tr("否"));
        add(*group, tr("标高"), number(polyline->elevation()), QStringLiteral("r38"));
    } else if (const auto* string = AcDbText::cast(&entity)) {
        AcString content;
        content = string->textStringConst();
        add(*group, tr("内容"), text(content), QStringLiteral("s1"));
        point(tr("位置"), string->position());
        add(*group, tr("高度"), number(string->height()), QStringLiteral("r40"));
        add(*group, tr("旋转"), degrees(string->rotation()), QStringLiteral("a50"));
        add(*group, tr("宽度因子"), number(string->widthFactor()), QStringLiteral("r41"));
    } else if (const auto* reference = AcDbBlockReference::cast(&entity)) {
        add(*group, tr("块名"), nameOf(reference->blockTableRecord()));
        point(tr("位置"), reference->position(), QStringLiteral("p10"));
        add(*group, tr("旋转"), degrees(reference->rotation()), QStringLiteral("a50"));
    }
    if (const auto* curve = AcDbCurve::cast(&entity)) {
        double end = 0;
        double length = 0;
        if (curve->getEndParam(end) == Acad::eOk && curve->getDistAtParam(end, length) == Acad::eOk) {
            add(*group, tr("长度"), number(length));
        }
    }
    AcDbExtents extents;
    if (entity.getGeomExtents(extents) == Acad::eOk) {
        point(tr("范围最小"), extents.minPoint());
        point(tr("范围最大"), extents.maxPoint());
    }
}

void PropertyPanel::changed(QTreeWidgetItem* item, int column) {
    const QString code = item->data(1, Qt::UserRole).toString();
    if (mIsFilling || column != 1 || code.isEmpty() || !run) {
        return;
    }
    QString value = item->text(1).trimmed();
    mSeen = 0; // whatever comes of it is shown
    const auto quoted = [](QString given) {
        return QLatin1Char('"') +
               given.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
                   .replace(QLatin1Char('"'), QLatin1String("\\\"")) +
               QLatin1Char('"');
    };
    if (code.startsWith(QLatin1Char('_'))) {
        if (value == tr("随层")) {
            value = QStringLiteral("_ByLayer");
        } else if (value == tr("随块")) {
            value = QStringLiteral("_ByBlock");
        }
        run(QStringLiteral("(progn (setq $s (ssget \"_I\")) (command \"_.CHPROP\" $s \"\" \"%1\" %2 \"\") "
                           "(sssetfirst nil $s) (setq $s nil) (princ))\n")
                .arg(code, quoted(value)));
        return;
    }
    const QString group = code.mid(1);
    QString form = quoted(value);
    if (code.at(0) == QLatin1Char('r')) {
        form = QStringLiteral("(distof %1)").arg(form);
    } else if (code.at(0) == QLatin1Char('a')) {
        form = QStringLiteral("(angtof %1 0)").arg(form);
    } else if (code.at(0) == QLatin1Char('p')) {
        const QStringList parts = value.split(QLatin1Char(','));
        form = QStringLiteral("(list");
        for (const QString& part : parts) {
            form += QStringLiteral(" (distof %1)").arg(quoted(part.trimmed()));
        }
        form += QLatin1Char(')');
    }
    // A value that cannot be read leaves the object as it is.
    run(QStringLiteral(
            "(progn (setq $v %1 $s (ssget \"_I\")) (if (and $v $s (or (atom $v) (apply 'and $v))) "
            "(progn (setq $e (entget (ssname $s 0))) (entmod (subst (cons %2 $v) (assoc %2 $e) $e)) "
            "(sssetfirst nil $s)) (princ \"\\n值无效。\")) (setq $v nil $s nil $e nil) (princ))\n")
            .arg(form, group));
}

} // namespace app
