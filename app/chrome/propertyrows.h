// What the properties panel shows of entities: a table of named values, each with who has it and how a
// changed one is put back.
#pragma once

#include "host/db/dbents.h"

#include <QString>
#include <optional>
#include <span>

namespace app {

struct PropertyRow {
    const char* group;
    const char* label;
    /// How a new value is typed: a property of CHPROP (`_LA`), or what it is with the groups of entmod that
    /// get it: s text, r real, a angle, p point, c the flag that closes. Null: it is only shown.
    const char* edit;
    bool (*has)(const AcDbEntity&);
    QString (*get)(const AcDbEntity&);
};

std::span<const PropertyRow> propertyRows();
/// 直线, 圆 ...
QString kindName(const AcDbEntity& entity);
QString shownNumber(double value);
/// Nothing for a curve without end.
std::optional<double> curveLength(const AcDbCurve& curve);
QString shownColor(const AcCmEntityColor& color);
/// 随层, 随块, 默认 or millimetres.
QString shownWeight(int weight);
/// The LISP that puts a value into what is chosen of these DXF kinds ("LINE,CIRCLE"), as one step of undo.
/// What cannot be read changes nothing.
QString editingLisp(const QString& edit, const QString& value, const QString& kinds);

} // namespace app
