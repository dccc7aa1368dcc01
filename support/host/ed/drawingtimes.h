// When a drawing was made and saved, and how long it has been worked on. Times are Julian dates with a day's
// fraction; lengths are days.
#pragma once

class AcApDocument;
class AcDbDatabase;

namespace host {

struct DrawingTimes {
    double created = 0.0; ///< local; 0: the drawing does not say
    double updated = 0.0;
    double edited = 0.0;
    double timer = 0.0; ///< the user's own
    bool timerRuns = true;
};
DrawingTimes drawingTimes(const AcApDocument& document);

/// The drawing was made just now.
void stampCreated(AcDbDatabase& database);
/// The drawing is about to be saved: the times of this session go into it. No step of undo.
void stampSaved(AcApDocument& document);
void runTimer(AcApDocument& document, bool runs);
void resetTimer(AcApDocument& document);

} // namespace host
