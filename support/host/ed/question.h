// Questions for values: what acedInitGet set, keywords, Enter and Escape are dealt with once for all kinds.
#pragma once

#include "host/ed/input.h"
#include "host/ed/keywords.h"
#include "host/ge/ge.h"

#include <functional>
#include <optional>
#include <string>

namespace host {

/// What acedInitGet said for the next question.
struct InitGet {
    int flags = 0;
    KeywordList keywords;

    bool forbids(int flag) const { return (flags & flag) != 0; }
    bool allowsOther() const;
};
/// Takes what was set; the question after has none again.
InitGet takeInitGet();
void setInitGet(int flags, std::wstring_view keywords);
/// Why a number is not allowed; empty when it is.
std::wstring numberRefusal(const InitGet& init, double value);

/// The last keyword or other text, for acedGetInput.
std::wstring& lastInput();

/// Says what is wrong with an answer.
void refuse(std::wstring_view line);

/// One round of question and answer. `take` reads the item; false refuses it. RTNORM, RTNONE, RTCAN, RTKWORD.
struct ValueQuestion {
    std::wstring prompt;
    AskOptions options;
    std::wstring refusal; ///< told when an answer can't be read
    std::function<bool(const InputItem&)> take;
};
int askValue(const InitGet& init, const ValueQuestion& question);

/// A point in UCS coordinates in what was typed or given; nothing when there is none.
std::optional<AcGePoint3d> pointIn(const InputItem& item, const std::optional<AcGePoint3d>& base);
/// A plain number given as a value, or typed as a distance.
std::optional<double> numberIn(const InputItem& item);

/// Asks for a point (UCS) with snap overrides, and keeps it as LASTPOINT.
int askPoint(const InitGet& init, std::wstring_view prompt, const std::optional<AcGePoint3d>& base,
             AcGePoint3d& result);
/// The same for the corner opposite to the base.
int askCorner(const InitGet& init, std::wstring_view prompt, const AcGePoint3d& base, Aim::Band band,
              AcGePoint3d& result);
int askDistance(const InitGet& init, std::wstring_view prompt, const std::optional<AcGePoint3d>& base,
                double& result);
/// `orientation`: against the X axis instead of ANGBASE.
int askAngle(const InitGet& init, std::wstring_view prompt, const std::optional<AcGePoint3d>& base,
             bool orientation, double& result);

AcGePoint3d lastPoint();
void setLastPoint(const AcGePoint3d& point);

} // namespace host
