// The toolkit's own texts, as on the buttons of its dialogs, in the user's language.
#pragma once

class QApplication;

namespace host {

void translateToolkit(QApplication& application);

} // namespace host
