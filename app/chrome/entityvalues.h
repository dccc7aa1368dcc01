// Names and values of drawing objects as bars and panels show them, and as they are typed for LISP.
#pragma once

#include "host/db/dbents.h"

#include <QString>
#include <optional>
#include <vector>

namespace app {

inline QString text(const AcString& name) {
    return QString::fromWCharArray(name.kwszPtr());
}

/// Name of a layer, linetype or another record; empty when there is none.
inline QString nameOf(AcDbObjectId id) {
    const auto* record = host::peek<AcDbSymbolTableRecord>(id);
    return record != nullptr ? text(record->name()) : QString();
}

/// As a string of LISP.
inline QString quoted(QString value) {
    return QLatin1Char('"') +
           value.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
               .replace(QLatin1Char('"'), QLatin1String("\\\"")) +
           QLatin1Char('"');
}

/// What get(entity) gives for all of them; nothing when they differ.
template <class Get>
std::optional<QString> sharedBy(const std::vector<AcDbObjectId>& ids, Get get) {
    std::optional<QString> common;
    for (const AcDbObjectId id : ids) {
        const auto* entity = host::peek<AcDbEntity>(id);
        if (entity == nullptr) {
            continue;
        }
        const host::ReadAccess access(*entity);
        const QString own = get(*entity);
        if (common && own != *common) {
            return std::nullopt;
        }
        common = own;
    }
    return common.value_or(QString());
}

} // namespace app
