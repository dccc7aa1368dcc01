// The suite's icon, loaded once.
#include "restools/icons.h"

#include "restools/ownmodule.h"

namespace {

constexpr UINT suiteIcon = 128;

} // namespace

void SetIconAndAttachCaption(CWnd* dialog) {
    static const HICON icon = LoadIcon(GetOwnModule().instance, MAKEINTRESOURCE(suiteIcon));
    if (dialog != nullptr && icon != nullptr) {
        dialog->SetIcon(icon, FALSE);
    }
}
