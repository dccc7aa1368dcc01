// The properties of what is chosen, by name and value, for all of it or for one kind; values that can be
// changed are typed over or chosen. A change goes through LISP's entmod or a command, so that it is a step of
// undo.
#pragma once

#include <QComboBox>
#include <QCoreApplication>
#include <QDockWidget>
#include <QTreeWidget>
#include <functional>
#include <vector>

class AcDbObjectId;

namespace app {

class PropertyPanel final : public QDockWidget {
    Q_DECLARE_TR_FUNCTIONS(PropertyPanel)

public:
    explicit PropertyPanel(QWidget* parent);

    /// Types for the user.
    std::function<void(const QString&)> run;
    void follow();
    QTreeWidget& table() { return *mTable; }
    QSize sizeHint() const override { return {300, 480}; }

private:
    void fill();
    void fillKinds();
    void showDefaults();
    void showShared(const std::vector<AcDbObjectId>& ids);
    void showTotals(const std::vector<AcDbObjectId>& ids);
    QTreeWidgetItem& group(const QString& name);
    void add(const QString& groupName, const QString& label, const QString& value, const QString& edit = {});
    void changed(QTreeWidgetItem* item, int column);

    QComboBox* mKinds;
    QTreeWidget* mTable;
    quint64 mSeen = 0;
    bool mIsFilling = false;
};

} // namespace app
