// Editing of selected texts in a dialog.
#include "text/textedit.h"

#include "text/texteditdialog.h"
#include "text/textselection.h"

void EditTexts() {
    CEntPicks texts;
    if (!SelectTexts(texts, L"选择要修改的文字:")) {
        return;
    }
    std::vector<AcDbObjectId> ids;
    for (int i = 0; i < texts.GetLength(); ++i) {
        ids.push_back(texts[i]);
    }
    texts.Release();
    CTextEditDlg(std::move(ids), acedGetAcadFrame()).DoModal();
}
