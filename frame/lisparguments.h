// The arguments of a LISP function, taken one after the other.
#pragma once

#include "restools/resbuf.h"

#include <optional>

/// Each call takes the next argument when it is of its kind, and leaves it there otherwise.
class CLispArguments {
public:
    CLispArguments() : mAt(acedGetArgs()) {}

    bool AtEnd() const { return mAt == nullptr; }
    /// Any integer or real.
    std::optional<double> Number();
    /// A point, or a list of two or three numbers.
    std::optional<AcGePoint3d> Point();
    const ACHAR* Text();
    /// An entity's name; null for anything else.
    AcDbObjectId Entity();
    /// The name of a selection set, which stays the caller's; null for anything else.
    const ads_name* SelectionSet();
    /// A list of pairs of group and value, as ssget takes it; the empty chain for anything else.
    CResbuf Filter();

private:
    void Skip() { mAt = mAt->rbnext; }

    const resbuf* mAt;
};
