// The properties of what is chosen, by name and value; values that can be changed are typed over. A change
// goes through LISP's entmod or a command, so that it is a step of undo.
#pragma once

#include <QCoreApplication>
#include <QDockWidget>
#include <QTreeWidget>
#include <functional>

class AcDbEntity;

namespace app {

class PropertyPanel final : public QDockWidget {
    Q_DECLARE_TR_FUNCTIONS(PropertyPanel)

public:
    explicit PropertyPanel(QWidget* parent);

    /// Types for the user.
    std::function<void(const QString&)> run;
    void follow();

private:
    struct Row;
    void fill();
    void add(QTreeWidgetItem& group, const QString& label, const QString& value, const QString& code = {});
    void addGeometry(const AcDbEntity& entity);
    void changed(QTreeWidgetItem* item, int column);

    QTreeWidget* mTable;
    quint64 mSeen = 0;
    bool mIsFilling = false;
};

} // namespace app
