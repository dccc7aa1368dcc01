// Points as lists of two or three numbers.
#pragma once

#include "host/ge/ge.h"
#include "host/lisp/value.h"

#include <optional>

namespace host::lisp {

struct ListPoint {
    AcGePoint3d point;
    bool flat = false; ///< the list had two numbers
};

/// Nothing when the value is no list of two or three numbers.
std::optional<ListPoint> pointIn(const Value& value);
/// Raises a type error when the value is no point.
ListPoint pointOf(const Value& value);
Value pointList(const AcGePoint3d& point);
Value flatPointList(double x, double y);

} // namespace host::lisp
