// Driving of dialogs by the lines of a script.
#pragma once

#include "host/mfc/widgets/dialogwindow.h"

#include <QImage>

namespace host {

// A picture of a whole window, as many pixels a unit as the scale says.
QImage widgetPicture(QWidget& widget, double scale);
inline QImage windowPicture(HWND window, double scale) {
    return widgetPicture(*window->widget, scale);
}
// Does what a line beginning with @ says to the open dialogs; what is wrong is told.
void driveDialogs(const std::wstring& line);

} // namespace host
