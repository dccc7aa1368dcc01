// The controls of a text's properties.
#include "text/textproperties.h"

#include "resources/resource.h"
#include "restools/drawing.h"

#include <limits>

namespace {

constexpr double largest = std::numeric_limits<double>::max();
constexpr double smallest = 0.1;

/// The names and ids of the drawing's text styles; those without a name are shape files.
std::vector<std::pair<AcString, AcDbObjectId>> textStyles() {
    std::vector<std::pair<AcString, AcDbObjectId>> styles;
    for (const AcDbObjectId id : RecordIds<AcDbTextStyleTable>()) {
        const CArxObjTemplate<AcDbTextStyleTableRecord> style(id, false);
        AcString name;
        if (style && style->getName(name) == Acad::eOk && !name.isEmpty()) {
            styles.emplace_back(name, id);
        }
    }
    return styles;
}

} // namespace

void CTextPropertyControls::Exchange(CDataExchange* exchange) {
    constexpr int ids[] = {IDC_TEXT_HEIGHT, IDC_TEXT_WIDTH, IDC_TEXT_ANGLE, IDC_TEXT_OBLIQUE};
    for (std::size_t i = 0; i < mNumbers.size(); ++i) {
        DDX_Control(exchange, ids[i], mNumbers[i]);
    }
    DDX_Control(exchange, IDC_TEXT_STYLE, mStyles);
}

void CTextPropertyControls::SetUp() {
    mNumbers[height].SetRange(largest, smallest);
    mNumbers[widthFactor].SetRange(10.0, smallest);
    mNumbers[rotation].SetRange(360.0, 0.0);
    mNumbers[oblique].SetRange(360.0, 0.0);
    for (const auto& [name, id] : textStyles()) {
        mStyles.SetItemData(mStyles.AddString(name), mStyleIds.size());
        mStyleIds.push_back(id);
    }
}

void CTextPropertyControls::Show(const TextProperties& properties) {
    mNumbers[height].SetValue(properties.height);
    mNumbers[widthFactor].SetValue(properties.widthFactor);
    mNumbers[rotation].SetValue(properties.rotation);
    mNumbers[oblique].SetValue(properties.oblique);
    SelectStyle(properties.style);
}

TextProperties CTextPropertyControls::Read() const {
    TextProperties properties{mNumbers[height].GetValue(),
                              mNumbers[widthFactor].GetValue(),
                              mNumbers[rotation].GetValue(),
                              mNumbers[oblique].GetValue(),
                              {}};
    if (const int selected = mStyles.GetCurSel(); selected != CB_ERR) {
        properties.style = mStyleIds[mStyles.GetItemData(selected)];
    }
    return properties;
}

bool CTextPropertyControls::IsValid(Field field) const {
    return field == style || mNumbers[field].IsValid();
}

void CTextPropertyControls::Enable(Field field, bool enable) {
    CWnd& control = field == style ? static_cast<CWnd&>(mStyles) : mNumbers[field];
    control.EnableWindow(enable);
}

bool CTextPropertyControls::Validate() {
    constexpr std::array names{L"字高", L"字宽", L"角度", L"倾角"};
    for (std::size_t i = 0; i < mNumbers.size(); ++i) {
        if (!mNumbers[i].Validate(names[i])) {
            return false;
        }
    }
    return true;
}

bool CTextPropertyControls::SelectStyle(AcDbObjectId id) {
    for (int item = 0; item < mStyles.GetCount(); ++item) {
        if (mStyleIds[mStyles.GetItemData(item)] == id) {
            mStyles.SetCurSel(item);
            return true;
        }
    }
    return false;
}
