// Standard records stand for names that were never set.
#include "host/formats/headervalues.h"

namespace host {

HeaderValue effectiveHeaderValue(const AcDbDatabase& database, HeaderIndex index) {
    const HeaderValue& value = database.impl().header[index];
    const auto* id = std::get_if<AcDbObjectId>(&value);
    if (id == nullptr || peek<AcDbSymbolTableRecord>(*id) != nullptr) {
        return value;
    }
    switch (headerVariables()[index].kind) {
    case HeaderKind::layer:
        return database.layerZero();
    case HeaderKind::linetype:
        return database.byLayerLinetype();
    case HeaderKind::textStyle:
        return database.standardTextStyle();
    case HeaderKind::dimStyle:
        return database.dimstyle();
    default:
        return value;
    }
}

} // namespace host
