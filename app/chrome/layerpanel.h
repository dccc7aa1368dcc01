// The layers of the drawing in a table: what is on, thawed, unlocked, their looks; all changes go through
// -LAYER, so that each is a step of undo.
#pragma once

#include <QCoreApplication>
#include <QDockWidget>
#include <QLineEdit>
#include <QTreeWidget>
#include <functional>

class AcDbLayerTableRecord;

namespace app {

class LayerPanel final : public QDockWidget {
    Q_DECLARE_TR_FUNCTIONS(LayerPanel)

public:
    explicit LayerPanel(QWidget* parent);

    /// Types for the user.
    std::function<void(const QString&)> run;
    /// Shows the layers as they are; does nothing while hidden or when nothing changed.
    void follow();
    QSize sizeHint() const override { return {520, 420}; }

private:
    enum Column { name, on, frozen, locked, color, linetype, weight, plots, columnCount };

    void fill();
    void show(QTreeWidgetItem& item, const AcDbLayerTableRecord& layer, bool isCurrent) const;
    void clicked(QTreeWidgetItem* item, int column);
    void option(const QString& word, const QString& layer, const QString& value = {});
    void chooseColor(const QString& layer, int before);
    QString patternFor(const QString& layer) const;
    void chooseLinetype(const QString& layer, const QPoint& at);
    void chooseWeight(const QString& layer, const QPoint& at);
    QString current() const;
    void addLayer();

    QTreeWidget* mTable;
    QLineEdit* mFilter;
    quint64 mSeen = 0;
};

} // namespace app
