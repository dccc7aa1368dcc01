// An edit for a number within a range.
#pragma once

#include "host/arx.h"

/// Takes only what a number is written with. A number out of its range stays and is shown in red; the dialog
/// asks IsValid.
class QDV_EXPORT CNumEdit : public CEdit {
public:
    /// Shows values with so many decimals at most; trailing zeros are left away.
    explicit CNumEdit(int precision = 2) : mPrecision(precision) {}

    void SetRange(double maximum, double minimum);
    void SetValue(double value);
    /// The number; 0 when the text is none. What was shown and not changed keeps the decimals that aren't
    /// seen.
    double GetValue() const;
    /// The text is a number, and within the range.
    bool IsValid() const;
    /// When the number is not valid: says so ("字高应为 0.1 到 10 之间的数。"), takes the focus, and gives
    /// false.
    bool Validate(const ACHAR* name);

protected:
    DECLARE_MESSAGE_MAP()
    void OnChar(UINT character, UINT repeat, UINT flags);
    afx_msg HBRUSH CtlColor(CDC* context, UINT kind);

private:
    bool read(double& value) const;
    CString textOf(double value) const;

    int mPrecision;
    double mMaximum;
    double mMinimum;
    bool mHasRange = false;
    double mShown = 0.0;
    CString mShownText;
};
