// What the program's window hangs in, and asks, so that module code finds it: the one header of this area
// that the window needs besides mfc.h.
#pragma once

#include "host/mfc/widgets/application.h"

#include <functional>
#include <string>

class QWidget;

namespace host {

// The main window and the drawing's view become acedGetAcadFrame() and acedGetAcadDwgView(); null takes them
// away. They stay their owner's, and may be deleted at any time. From then on key events of both go through
// the message filters first.
void hangApplicationWindows(QWidget* frame, QWidget* drawingView);
// The cursor has come over the drawing: true when the dialog that has the keyboard wants to keep it, else the
// view should take the focus.
bool dialogKeepsFocus();
// An exception that a module's handler let escape is kept until this throws it again; the loop that runs
// events for a question calls it after each turn.
void throwKept();
// Told, in words, of an exception that a handler of the toolkit's events let escape; the program goes on.
// Null: such exceptions are kept like those of modules.
void setEventFaultHandler(std::function<void(const std::wstring&)> handler);

} // namespace host
