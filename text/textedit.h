// Editing of selected texts in a dialog, one after another or all at once: command V7_EditText.
#pragma once

void EditTexts();
