// The toolkit's own texts, as on the buttons of its dialogs, and its dates in the user's language.
#pragma once

class QApplication;

namespace host {

// Before the application is made. Numbers of the program's own are told and read without regard to it.
void localizeToolkit();
void translateToolkit(QApplication& application);

} // namespace host
