// Layer, colour, linetype and lineweight: what new objects get, or what the chosen objects have. A choice
// made here is typed as a command, so that it is one step of undo.
#pragma once

#include <QComboBox>
#include <QCoreApplication>
#include <QToolBar>
#include <functional>

class AcDbDatabase;

namespace app {

class PropertyBar final : public QToolBar {
    Q_DECLARE_TR_FUNCTIONS(PropertyBar)

public:
    explicit PropertyBar(QWidget* parent);

    /// Types for the user.
    std::function<void(const QString&)> run;
    /// Shows the state of the current drawing; cheap when nothing changed.
    void follow();

private:
    void fillLayers(AcDbDatabase& database);
    void fillLinetypes(AcDbDatabase& database);
    void showValues(AcDbDatabase& database);
    void showColor(const QString& value);
    void choose(const char* variable, const char* property, const QString& value);

    QComboBox* mLayers;
    QComboBox* mColors;
    QComboBox* mLinetypes;
    QComboBox* mWeights;
    AcDbDatabase* mDatabase = nullptr;
    quint64 mSeen = 0;
};

} // namespace app
