#include "host/ed/viewhistory.h"

#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/documentstate.h"
#include "host/ed/editorview.h"
#include "host/ed/question.h"
#include "host/ed/sysvars.h"
#include "host/ed/ucs.h"

namespace host {

ShownView shownView() {
    const ResbufList centre = systemVariable(L"VIEWCTR");
    return {centre != nullptr ? ucsToWorld(asPoint3d(centre->resval.rpoint)) : AcGePoint3d(),
            systemVariableReal(L"VIEWSIZE")};
}

void keepShownView(const ShownView& view) {
    resbuf value{};
    value.restype = RT3DPOINT;
    setPoint(value.resval.rpoint, worldToUcs(view.centre));
    putSystemVariable(L"VIEWCTR", value);
    value = {};
    value.restype = RTREAL;
    value.resval.rreal = view.height;
    putSystemVariable(L"VIEWSIZE", value);
}

void showView(const ShownView& view) {
    keepShownView(view);
    editorView().viewChanged();
}

void rememberView() {
    constexpr std::size_t mostViews = 50;
    if (AcApDocument* document = curDoc()) {
        std::deque<ShownView>& earlier = document->state().earlierViews;
        earlier.push_back(shownView());
        if (earlier.size() > mostViews) {
            earlier.pop_front();
        }
    }
}

std::optional<ShownView> takeEarlierView() {
    AcApDocument* document = curDoc();
    if (document == nullptr || document->state().earlierViews.empty()) {
        return std::nullopt;
    }
    const ShownView view = document->state().earlierViews.back();
    document->state().earlierViews.pop_back();
    return view;
}

} // namespace host
