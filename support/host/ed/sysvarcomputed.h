// System variables that are made when they are asked for.
#pragma once

#include "host/ed/documentstate.h"
#include "host/ed/sysvars.h"

#include <optional>
#include <string_view>

class AcApDocument;

namespace host {

/// The value of a computed variable; `name` is in capitals. Nothing for other names.
std::optional<VariableValue> computedVariable(std::wstring_view name, const AcApDocument* document);
/// Carries out the setting of a computed variable.
VariableError setComputedVariable(std::wstring_view name, const VariableValue& value, AcApDocument* document);

/// Layout names and spaces.
std::wstring currentLayoutName(const AcDbDatabase& database);
bool setCurrentLayout(AcDbDatabase& database, std::wstring_view name);

} // namespace host
