// Choosing before a command: clicks and rectangles make the pick-first set, its entities show grips, and a
// grip that is clicked is moved by a command.
#pragma once

#include "app/canvas/canvas.h"

#include <string>

namespace app {

class Picking {
public:
    explicit Picking(Canvas& canvas) : mCanvas(canvas) {}

    /// A press (or the end of a drag) at the command prompt; answers a command to run, or nothing.
    std::wstring pressed(const Aimed& aimed, Qt::KeyboardModifiers modifiers, bool released);
    /// A command that edits what was clicked.
    std::wstring doubleClicked(const Aimed& aimed);
    /// A rectangle that was begun is given up.
    void cancel();
    /// The set may have changed: shows it and its grips.
    void follow(bool atCommandPrompt);
    bool hasSelection() const;

private:
    void change(const std::vector<AcDbObjectId>& ids, bool remove);
    void select(const AcGePoint3d& corner, bool remove);
    void showGrips(bool visible);

    Canvas& mCanvas;
    std::optional<AcGePoint3d> mCorner;
    bool mRemovesByRectangle = false;
    std::vector<AcDbObjectId> mShown; ///< as selected
    Adesk::UInt64 mGeneration = 0;    ///< of the drawing when the grips were made
    bool mShowsGrips = false;
};

} // namespace app
