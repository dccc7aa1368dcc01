#include "app/chrome/propertybar.h"

#include "app/chrome/colordialog.h"
#include "app/chrome/entityvalues.h"
#include "app/chrome/icons.h"

#include "host/ed/acdocman.h"
#include "host/ed/colornames.h"
#include "host/ed/selection.h"
#include "host/ed/sysvars.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QPixmap>
#include <algorithm>

namespace app {
namespace {

/// Colour and state of a layer as one icon: a lamp, a snow flake, a lock, the colour.
QIcon layerIcon(const AcDbLayerTableRecord& layer) {
    constexpr int side = 16, scale = 2, places = 4;
    QPixmap pixmap(side * places * scale, side * scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.scale(scale, scale);
    const auto put = [&](int place, const QIcon& part) {
        painter.drawPixmap(QRect(place * side, 0, side, side), part.pixmap(side * scale, side * scale));
    };
    put(0, icon(layer.isOff() ? "lightoff" : "lighton"));
    if (layer.isFrozen()) {
        put(1, icon("freeze"));
    }
    if (layer.isLocked()) {
        put(2, icon("lock"));
    }
    const AcCmEntityColor color = layer.entityColor();
    put(3, colorIcon(color.isForeground() ? 0xFFFFFF : color.trueColor()));
    painter.end();
    return QIcon(pixmap);
}

QComboBox* addBox(QToolBar& bar, const QString& tip, int width, int iconWidth) {
    auto* box = new QComboBox(&bar);
    box->setToolTip(tip);
    box->setMinimumWidth(width);
    box->setMaximumWidth(width + 40);
    box->setIconSize(QSize(iconWidth, 16));
    box->setMaxVisibleItems(24);
    box->setFocusPolicy(Qt::NoFocus);
    box->view()->setMinimumWidth(width);
    bar.addWidget(box);
    return box;
}

QIcon weightIcon(int weight) {
    constexpr int width = 48, height = 32;
    QPixmap pixmap(width, height);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setPen(QPen(QColor(200, 207, 215), std::max(1.0, weight / 100.0 * 10)));
    painter.drawLine(2, height / 2, width - 2, height / 2);
    painter.end();
    return QIcon(pixmap);
}

void select(QComboBox& box, const QString& value) {
    const QSignalBlocker blocker(box);
    box.setCurrentIndex(value.isEmpty() ? -1 : box.findData(value));
}

QString colorText(const AcCmEntityColor& color) {
    if (color.isByLayer()) {
        return QStringLiteral("BYLAYER");
    }
    if (color.isByBlock()) {
        return QStringLiteral("BYBLOCK");
    }
    return color.isByACI()
               ? QString::number(color.colorIndex())
               : QStringLiteral("T%1,%2,%3").arg(color.red()).arg(color.green()).arg(color.blue());
}

QString weightText(int weight) {
    return QString::number(weight);
}

} // namespace

PropertyBar::PropertyBar(QWidget* parent) : QToolBar(tr("图层和特性"), parent) {
    setObjectName(QStringLiteral("propertyBar"));
    mLayers = addBox(*this, tr("图层"), 210, 64);
    addSeparator();
    mColors = addBox(*this, tr("颜色"), 120, 16);
    mLinetypes = addBox(*this, tr("线型"), 150, 16);
    mWeights = addBox(*this, tr("线宽"), 120, 24);
    mColors->addItem(colorIcon(0xFFFFFF), tr("随层"), QStringLiteral("BYLAYER"));
    mColors->addItem(colorIcon(0xFFFFFF), tr("随块"), QStringLiteral("BYBLOCK"));
    const QStringList names{tr("红"), tr("黄"), tr("绿"), tr("青"), tr("蓝"), tr("洋红"), tr("白")};
    for (int i = 1; i <= names.size(); ++i) {
        mColors->addItem(colorIcon(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(i))), names[i - 1],
                         QString::number(i));
    }
    for (const int index : {8, 9, 30, 40, 94, 140, 150, 200, 250, 252, 254}) {
        mColors->addItem(colorIcon(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index))),
                         tr("颜色 %1").arg(index), QString::number(index));
    }
    mColors->addItem(tr("选择颜色..."), QStringLiteral("?"));
    mWeights->addItem(weightIcon(25), tr("随层"), weightText(-1));
    mWeights->addItem(weightIcon(25), tr("随块"), weightText(-2));
    mWeights->addItem(weightIcon(25), tr("默认"), weightText(-3));
    for (const int weight : {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                             53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211}) {
        mWeights->addItem(weightIcon(weight), tr("%1 毫米").arg(weight / 100.0, 0, 'f', 2),
                          weightText(weight));
    }
    const auto follows = [this](QComboBox* box, const char* variable, const char* property) {
        connect(box, &QComboBox::activated, this, [this, box, variable, property](int index) {
            const QString value = box->itemData(index).toString();
            if (value != QLatin1String("?")) {
                choose(variable, property, value);
                return;
            }
            if (const std::optional<int> color = chooseColor(window(), 1)) {
                choose(variable, property, QString::number(*color));
            }
            mSeen = 0;
            follow();
        });
    };
    follows(mLayers, "CLAYER", "_LA");
    follows(mColors, "CECOLOR", "_C");
    follows(mLinetypes, "CELTYPE", "_LT");
    follows(mWeights, "CELWEIGHT", "_LW");
}

void PropertyBar::choose(const char* variable, const char* property, const QString& value) {
    const bool isWeight = qstrcmp(variable, "CELWEIGHT") == 0;
    if (!host::impliedSelection().empty()) {
        QString given = value;
        if (isWeight) {
            const int weight = value.toInt();
            given = weight == -1   ? QStringLiteral("_ByLayer")
                    : weight == -2 ? QStringLiteral("_ByBlock")
                    : weight < 0   ? QStringLiteral("_Default")
                                   : QString::number(weight / 100.0);
        }
        given = qstrcmp(property, "_C") == 0 && value.startsWith(QLatin1Char('T'))
                    ? QStringLiteral("\"_T\" ") + quoted(value.mid(1))
                    : quoted(given);
        run(QStringLiteral("(progn (setq $s (ssget \"_I\")) (command \"_.CHPROP\" $s \"\" \"%1\" %2 \"\") "
                           "(sssetfirst nil $s) (setq $s nil) (princ))\n")
                .arg(QLatin1String(property), given));
        return;
    }
    run(isWeight ? QStringLiteral("(progn (setvar \"CELWEIGHT\" %1) (princ))\n").arg(value)
                 : QStringLiteral("(progn (setvar \"%1\" %2) (princ))\n")
                       .arg(QLatin1String(variable), quoted(value)));
    mSeen = 0;
}

void PropertyBar::follow() {
    AcApDocument* document = curDoc();
    setEnabled(document != nullptr);
    if (document == nullptr) {
        return;
    }
    AcDbDatabase& database = *document->database();
    // Everything shown follows from the drawing's objects, its variables and the choice.
    const quint64 state = database.undoLog().changeCount() * 31 + database.impl().places.generation() * 17 +
                          host::impliedSelection().size() * 7 + 1;
    if (mDatabase == &database && mSeen == state) {
        return;
    }
    mDatabase = &database;
    mSeen = state;
    fillLayers(database);
    fillLinetypes(database);
    showValues(database);
}

void PropertyBar::fillLayers(AcDbDatabase& database) {
    const QSignalBlocker blocker(mLayers);
    mLayers->clear();
    std::vector<const AcDbLayerTableRecord*> layers;
    for (AcDbStub* stub : host::peek<AcDbLayerTable>(database.layerTableId())->records()) {
        if (const auto* layer = host::peek<AcDbLayerTableRecord>(AcDbObjectId(stub))) {
            layers.push_back(layer);
        }
    }
    std::sort(layers.begin(), layers.end(), [](const AcDbLayerTableRecord* a, const AcDbLayerTableRecord* b) {
        return text(a->name()).localeAwareCompare(text(b->name())) < 0;
    });
    for (const AcDbLayerTableRecord* layer : layers) {
        mLayers->addItem(layerIcon(*layer), text(layer->name()), text(layer->name()));
    }
}

void PropertyBar::fillLinetypes(AcDbDatabase& database) {
    const QSignalBlocker blocker(mLinetypes);
    mLinetypes->clear();
    for (AcDbStub* stub : host::peek<AcDbLinetypeTable>(database.linetypeTableId())->records()) {
        const QString name = nameOf(AcDbObjectId(stub));
        if (!name.isEmpty()) {
            const QString shown =
                name.compare(QLatin1String("ByLayer"), Qt::CaseInsensitive) == 0   ? tr("随层")
                : name.compare(QLatin1String("ByBlock"), Qt::CaseInsensitive) == 0 ? tr("随块")
                                                                                   : name;
            mLinetypes->addItem(shown, name);
        }
    }
}

/// A colour that the list lacks gets a row.
void PropertyBar::showColor(const QString& value) {
    if (!value.isEmpty() && mColors->findData(value) < 0) {
        const QStringList parts = value.mid(1).split(QLatin1Char(','));
        const bool isIndex = parts.size() < 3;
        const std::uint32_t rgb = isIndex
                                      ? AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(value.toUInt()))
                                      : parts[0].toUInt() << 16 | parts[1].toUInt() << 8 | parts[2].toUInt();
        mColors->insertItem(mColors->count() - 1, colorIcon(rgb),
                            isIndex ? tr("颜色 %1").arg(value) : value.mid(1), value);
    }
    select(*mColors, value);
}

void PropertyBar::showValues(AcDbDatabase& database) {
    const std::vector<AcDbObjectId>& ids = host::impliedSelection().ids;
    if (ids.empty()) {
        select(*mLayers, nameOf(database.clayer()));
        showColor(colorText(database.cecolor().entityColor()));
        select(*mLinetypes, nameOf(database.celtype()));
        select(*mWeights, weightText(database.celweight()));
        return;
    }
    const auto show = [&](QComboBox& box, auto get) { select(box, sharedBy(ids, get).value_or(QString())); };
    show(*mLayers, [](const AcDbEntity& entity) { return nameOf(entity.layerId()); });
    showColor(sharedBy(ids, [](const AcDbEntity& entity) {
                  return colorText(entity.entityColor());
              }).value_or(QString()));
    show(*mLinetypes, [](const AcDbEntity& entity) { return nameOf(entity.linetypeId()); });
    show(*mWeights, [](const AcDbEntity& entity) { return weightText(entity.lineWeight()); });
}

} // namespace app
