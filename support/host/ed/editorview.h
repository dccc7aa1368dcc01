// The picture of the current drawing on a screen, as far as commands have to do with it. Without a window
// there is none, and everything here does nothing.
#pragma once

#include "host/db/db.h"

#include <functional>
#include <span>
#include <string_view>

namespace host {

class EditorView {
public:
    virtual ~EditorView() = default;
    /// VIEWCTR and VIEWSIZE were set: the picture follows.
    virtual void viewChanged() {}
    /// Vectors drawn on top go, the picture is brought up to date.
    virtual void redraw() {}
    /// Everything is drawn anew from the drawing.
    virtual void regenerate() {}
    /// Shows entities as selected, or no more.
    virtual void highlight(std::span<const AcDbObjectId>, bool) {}
    /// A line on top of the picture until the next redraw; world coordinates, a standard colour (-1:
    /// inverting).
    virtual void drawVector(const AcGePoint3d&, const AcGePoint3d&, int /*color*/, bool /*highlighted*/) {}
    virtual void showStatus(std::wstring_view) {}
    virtual void showTextWindow(bool) {}
    /// Does something that may take long, with `title` and the progress that readers tell shown to the user,
    /// who may stop it. Nothing else happens meanwhile.
    virtual Acad::ErrorStatus runLong(std::wstring_view /*title*/,
                                      const std::function<Acad::ErrorStatus()>& job) {
        return job();
    }
    /// Whether the user pressed Escape since this was last asked, while nothing is asked of him.
    virtual bool isBreakAsked() { return false; }
    /// Whether there is a picture that a user sees.
    virtual bool isShown() const { return false; }
};

EditorView& editorView();
/// Null: none. Not owned.
void setEditorView(EditorView* view);

} // namespace host
