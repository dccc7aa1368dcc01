// What the editor keeps for a document.
#pragma once

#include "host/ed/acedinpt.h"
#include "host/ed/externalfunctions.h"
#include "host/ed/grips.h"
#include "host/ed/selection.h"
#include "host/ed/stepfollower.h"
#include "host/ed/ucs.h"
#include "host/ed/viewhistory.h"
#include "host/formats/sld/slide.h"
#include "host/rx/text.h"

#include <chrono>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace host {

class Drive;

/// A command as CMDNAMES lists it.
struct ActiveCommand {
    std::wstring name;
    bool transparent = false;
    bool fromModule = false;
    bool lisp = false;
};

/// The steps of the undo log around commands and LISP: while LISP runs outside of a command, what it changes
/// itself is a step and every command it drives another.
class UndoSteps {
public:
    void beginCommand(AcDbDatabase& database, const std::wstring& name);
    void endCommand(AcDbDatabase& database);
    /// Around a command that changes the log itself.
    void beginUnrecorded(AcDbDatabase& database);
    void endUnrecorded(AcDbDatabase& database);
    /// By the user a group ends the one that is open; one of a program is part of what is open, and holds
    /// what the program changed itself just before it.
    void beginGroup(AcDbDatabase& database);
    void beginLisp(AcDbDatabase& database);
    void endLisp(AcDbDatabase& database);

private:
    void openLispStep(AcDbDatabase& database);
    void closeLispStep(AcDbDatabase& database);
    /// From the first step on there is a follower, which sees changes between the steps too.
    void needFollower(AcDbDatabase& database);
    std::unique_ptr<StepFollower> mFollower;
    int mCommands = 0;
    int mLisp = 0;
    bool mLispStepOpen = false;
    bool mLispStepMade = false; ///< the one closed last had changes
};

using VariableValue = std::variant<int, double, std::wstring, AcGePoint3d>;

/// A complex entity under construction by acdbEntMake, whose parts follow in further calls.
struct PendingEntity {
    AcDbObjectId owner; ///< block that the finished thing goes to; null when nothing is pending
    enum class Kind { none, polyline, insert, block } kind = Kind::none;
    std::vector<ResbufList> parts;
};

/// A layer that was set apart from others: what it was, and what it became.
struct LayerChange {
    AcDbObjectId layer;
    bool wasOff = false, wasLocked = false;
    bool isOff = false, isLocked = false;
};

struct DocumentState {
    std::list<ActiveCommand> active;
    std::vector<std::shared_ptr<Drive>> waiting; ///< innermost last
    UndoSteps undo;
    std::wstring lastCommand; ///< what Enter at the command prompt repeats
    std::wstring postedText;  ///< while the document is not current
    int scriptDepth = 0;
    int dialogDepth = 0;
    int lockCount = 0;

    PickSet implied;
    PickSet previous;
    std::vector<EntityGrip> shownGrips;
    std::vector<EntityGrip> hotGrips;
    std::vector<AcEdSSGetFilter*> selectionFilters;
    AcEdInputPointManager points;
    std::vector<UcsFrame> earlierUcs;   ///< the last one last
    std::deque<ShownView> earlierViews; ///< the last one last
    std::optional<ShownView> sheetView; ///< while one of the sheet's viewports is active

    std::vector<LayerChange> isolation; ///< what LAYISO changed last

    std::map<std::wstring, ExternalFunction, NoCaseLess> functions;
    std::map<std::wstring, VariableValue> variables; ///< session variables kept by document
    PendingEntity pending;
    std::map<std::wstring, std::size_t> tableCursors; ///< of acdbTblNext
    std::map<AcDbStub*, std::size_t> dictionaryCursors;

    std::shared_ptr<const Slide> shownSlide; ///< in the place of the drawing until the next redraw

    std::chrono::steady_clock::time_point editedSince = std::chrono::steady_clock::now();
    std::optional<std::chrono::steady_clock::time_point> timerSince = editedSince; ///< nothing: it stands

    Adesk::UInt64 savedChangeCount = 0;
    SaveFormat saveFormat; ///< that the drawing was saved in last
    std::vector<Adesk::UInt64> pushedDbmod;
};

} // namespace host
