// What commands ask of the desktop that the program's window stands on: the clipboard that programs share,
// panels beside the drawing, time for events. Without a window there is none of it.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace host {

class Desktop {
public:
    virtual ~Desktop() = default;
    /// Offers a drawing to other programs. `drawing` makes the DXF file, once somebody wants it; what it
    /// needs is kept alive by itself.
    virtual void offerDrawing(std::function<std::string()> /*drawing*/) {}
    /// The DXF file that another program has offered since; nothing when the last offer was our own, or there
    /// is no drawing.
    virtual std::optional<std::string> offeredDrawing() { return std::nullopt; }
    /// The text that another program has put there since; nothing when there is none, or a drawing beside it.
    virtual std::optional<std::wstring> offeredText() { return std::nullopt; }
    /// Shows or hides the panel of properties; false when there is none.
    virtual bool showProperties(bool /*visible*/) { return false; }
    /// Lets time pass, with events taking place meanwhile; false when the user wants what runs to stop.
    virtual bool wait(std::chrono::milliseconds time);
};

Desktop& desktop();
/// Null: none. Not owned.
void setDesktop(Desktop* desktop);

} // namespace host
