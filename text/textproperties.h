// The controls of a text's properties, as the text dialogs share them: height, width factor, rotation,
// obliquing and style.
#pragma once

#include "restools/numedit.h"

#include "host/arx.h"

#include <array>
#include <vector>

struct TextProperties {
    double height = 3.5;
    double widthFactor = 0.75;
    double rotation = 0.0; ///< degrees
    double oblique = 0.0;  ///< degrees
    AcDbObjectId style;
};

class CTextPropertyControls {
public:
    enum Field { height, widthFactor, rotation, oblique, style, fieldCount };

    /// Connects the controls with those of the dialog.
    void Exchange(CDataExchange* exchange);
    /// Sets the ranges of the numbers and lists the text styles of the drawing. After Exchange.
    void SetUp();

    void Show(const TextProperties& properties);
    TextProperties Read() const;
    /// Whether a number is one, and within its range.
    bool IsValid(Field field) const;
    void Enable(Field field, bool enable);
    /// Says which number is not valid, and takes the user there. True when all are.
    bool Validate();

    CComboBox& Styles() { return mStyles; }
    /// False when the style is not listed.
    bool SelectStyle(AcDbObjectId id);

private:
    std::array<CNumEdit, 4> mNumbers; ///< in the order of the fields
    CComboBox mStyles;
    std::vector<AcDbObjectId> mStyleIds; ///< an item's data is the index of its style
};
