#include "host/ed/drawingtimes.h"

#include "host/ed/acdocman.h"
#include "host/ed/documentstate.h"
#include "host/win/clock.h"

namespace host {
namespace {

double number(const AcDbDatabase& database, std::string_view name) {
    const HeaderValue value = database.variable(*findHeaderVariable(name));
    const auto* real = std::get_if<double>(&value);
    return real != nullptr ? *real : 0.0;
}

void setNumber(AcDbDatabase& database, std::string_view name, double value) {
    const UndoLog::Suspend suspend(database.undoLog());
    database.setVariable(*findHeaderVariable(name), value);
}

double julianNow(Zone zone) {
    return toJulianDate(std::chrono::system_clock::now(), zone).value();
}

using SteadyTime = std::chrono::steady_clock::time_point;

double daysSince(SteadyTime time) {
    using Days = std::chrono::duration<double, std::ratio<86400>>;
    return Days(std::chrono::steady_clock::now() - time).count();
}

} // namespace

DrawingTimes drawingTimes(const AcApDocument& document) {
    const AcDbDatabase& database = *document.database();
    const DocumentState& state = document.state();
    return {number(database, "TDCREATE"), number(database, "TDUPDATE"),
            number(database, "TDINDWG") + daysSince(state.editedSince),
            number(database, "TDUSRTIMER") + (state.timerSince ? daysSince(*state.timerSince) : 0.0),
            state.timerSince.has_value()};
}

void stampCreated(AcDbDatabase& database) {
    for (const char* name : {"TDCREATE", "TDUPDATE"}) {
        setNumber(database, name, julianNow(Zone::local));
    }
    for (const char* name : {"TDUCREATE", "TDUUPDATE"}) {
        setNumber(database, name, julianNow(Zone::utc));
    }
}

void stampSaved(AcApDocument& document) {
    AcDbDatabase& database = *document.database();
    DocumentState& state = document.state();
    const DrawingTimes times = drawingTimes(document);
    setNumber(database, "TDUPDATE", julianNow(Zone::local));
    setNumber(database, "TDUUPDATE", julianNow(Zone::utc));
    setNumber(database, "TDINDWG", times.edited);
    setNumber(database, "TDUSRTIMER", times.timer);
    state.editedSince = std::chrono::steady_clock::now();
    if (state.timerSince) {
        state.timerSince = state.editedSince;
    }
}

void runTimer(AcApDocument& document, bool runs) {
    DocumentState& state = document.state();
    if (runs == state.timerSince.has_value()) {
        return;
    }
    if (!runs) {
        setNumber(*document.database(), "TDUSRTIMER", drawingTimes(document).timer);
        state.timerSince.reset();
    } else {
        state.timerSince = std::chrono::steady_clock::now();
    }
}

void resetTimer(AcApDocument& document) {
    setNumber(*document.database(), "TDUSRTIMER", 0.0);
    document.state().timerSince = std::chrono::steady_clock::now();
}

} // namespace host
