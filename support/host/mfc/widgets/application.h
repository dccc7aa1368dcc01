// The one application object of the toolkit: made when something first needs it, on the offscreen platform
// when there is no display.
#pragma once

class QApplication;

namespace host {

// Makes it on the first call, with the look that all windows share. On the main thread.
QApplication& application();
bool hasApplication();
// Windows can't be seen; there is no window manager that draws frames.
bool isOffscreen();
// Runs what waits: events, timers that are due, windows to be deleted.
void processEvents();

} // namespace host
