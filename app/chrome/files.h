// Documents and their files as the window sees them.
#pragma once

class AcApDocument;

namespace app {

/// There are changes that no file has.
bool isChanged(const AcApDocument& document);

} // namespace app
