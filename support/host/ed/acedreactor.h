// The editor's events: commands, LISP, system variables, the pick-first set, reading and saving.
#pragma once

#include "host/db/db.h"

#include <vector>

class AcEditorReactor : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcEditorReactor);

public:
    virtual void commandWillStart(const ACHAR*) {}
    virtual void commandEnded(const ACHAR*) {}
    virtual void commandCancelled(const ACHAR*) {}
    virtual void commandFailed(const ACHAR*) {}
    virtual void unknownCommand(const ACHAR*) {}
    virtual void lispWillStart(const ACHAR*) {}
    virtual void lispEnded() {}
    virtual void lispCancelled() {}
    virtual void sysVarWillChange(const ACHAR*) {}
    virtual void sysVarChanged(const ACHAR*, bool) {}
    virtual void pickfirstModified() {}
    virtual void beginDwgOpen(ACHAR*) {}
    virtual void endDwgOpen(ACHAR*, AcDbDatabase*) {}
    virtual void beginSave(AcDbDatabase*, const ACHAR*) {}
    virtual void saveComplete(AcDbDatabase*, const ACHAR*) {}
    virtual void beginClose(AcDbDatabase*) {}
    virtual void beginQuit() {}
    virtual void quitWillStart() {}
};
using AcEditorReactor2 = AcEditorReactor;

class AcEditor : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcEditor);

public:
    virtual void addReactor(AcEditorReactor* reactor);
    virtual void removeReactor(AcEditorReactor* reactor);
    /// Calls every reactor; one may remove itself meanwhile.
    template <class Call>
    void notify(Call call) {
        for (AcEditorReactor* reactor : std::vector(mReactors)) {
            call(*reactor);
        }
    }

private:
    std::vector<AcEditorReactor*> mReactors;
};
AcEditor* acedEditorPtr();
#define acedEditor acedEditorPtr()
