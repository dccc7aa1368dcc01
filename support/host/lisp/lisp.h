// AutoLISP for the documents of the editor: the public header of the area.
#pragma once

#include "host/lisp/convert.h"
#include "host/lisp/interpreter.h"

class AcApDocument;

namespace host {

/// Hangs the interpreter into the editor: expressions typed at the prompt or as answers, functions C:NAME as
/// commands, symbols and calls for modules. Once, after initializeEditor.
void initializeLisp();

/// The interpreter of a document, made at its first use and gone with the document.
LispInterpreter& lispOf(AcApDocument& document);

} // namespace host
