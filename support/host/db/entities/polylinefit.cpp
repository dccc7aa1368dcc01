// Variables of spline fitting.
#include "host/db/entities/polylinefit.h"

#include "host/db/headervars.h"

namespace host {
namespace {

int variableOf(const AcDbDatabase& database, std::string_view name, int standard) {
    const std::optional<HeaderIndex> index = findHeaderVariable(name);
    if (!index) {
        return standard;
    }
    const HeaderValue value = database.variable(*index);
    const auto* number = std::get_if<Adesk::Int16>(&value);
    return number != nullptr ? *number : standard;
}

} // namespace

SplineFitting splineFittingOf(const AcDbDatabase* database) {
    SplineFitting fitting;
    if (database != nullptr) {
        fitting.degree = variableOf(*database, "SPLINETYPE", 6) == 5 ? 2 : 3;
        const int segments = variableOf(*database, "SPLINESEGS", 8);
        fitting.segments = segments != 0 ? segments : 8;
    }
    return fitting;
}

} // namespace host
