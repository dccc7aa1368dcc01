// Values to and from result buffers: arguments and results of modules' functions, answers for commands, and
// entities as association lists.
#pragma once

#include "host/db/db.h"
#include "host/lisp/interpreter.h"

namespace host::lisp {

/// Which lists of two or three numbers are passed as points.
enum class PointRule {
    reals,  ///< those with a real among them, as arguments of functions
    numbers ///< all, as answers to questions
};

/// Appends a value: numbers, texts, names; lists between RTLB and RTLE, dotted ones closed by RTDOTE after
/// their last value.
void appendValue(ResbufBuilder& builder, const Value& value, PointRule points);

/// The value of the whole list: one item is that value, several are a list of them. Nothing when it is one
/// RTVOID. Group codes below 5000 become pairs.
std::optional<Value> valueFrom(LispInterpreter& lisp, const resbuf* list);
/// The list's items, one after the other.
std::vector<Value> valuesFrom(LispInterpreter& lisp, const resbuf* list);

/// A list of groups as entget shows it: ((code . value) ...), points as (code x y z), extended data as
/// (-3 ("APPLICATION" (code . value) ...) ...).
Value groupsToList(const resbuf* groups);
/// The other way; raises an error that names a pair which is none.
ResbufList listToGroups(const Value& list);

// Names of entities and selection sets.

Value entityValue(const ads_name name);
Value entityValue(AcDbObjectId id);
/// The set is freed with the last reference to the value.
Value selectionValue(const ads_name name);
/// Raises a type error when the value is no entity name.
const EntityName& entityOf(const Value& value);
const SelectionSet& selectionOf(const Value& value);

} // namespace host::lisp
