#include "host/ed/editorview.h"

namespace host {
namespace {

EditorView*& installed() {
    static EditorView* view = nullptr;
    return view;
}

} // namespace

EditorView& editorView() {
    static EditorView none;
    return installed() != nullptr ? *installed() : none;
}

void setEditorView(EditorView* view) {
    installed() = view;
}

} // namespace host
