// Something that takes long done on a thread of its own, with a bar that shows how far it is and a button
// that stops it, so that the window stays alive.
#pragma once

#include "host/db/db.h"

#include <QString>
#include <functional>

class QWidget;

namespace app {

/// The job's status; eUserBreak when the user stopped it. A job that is soon done shows nothing.
Acad::ErrorStatus runLongJob(QWidget* parent, const QString& title,
                             const std::function<Acad::ErrorStatus()>& job);

} // namespace app
