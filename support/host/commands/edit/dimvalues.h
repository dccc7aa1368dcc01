// Values of dimension variables as they are typed and shown; overrides of annotations.
#pragma once

#include "host/db/db.h"

#include <optional>
#include <string>

namespace host {

/// Position of a variable by its name, with or without DIM, in any case.
std::optional<std::size_t> dimVariableNamed(std::wstring_view name);
/// What the variable says, in a few words.
const wchar_t* dimVariableMeaning(std::size_t index);
std::wstring shownDimValue(const DimVariables& variables, std::size_t index);
/// Takes a value from a text; false, with nothing changed, when it is none for the variable. Arrow blocks are
/// made and linetypes loaded.
bool takeDimValue(AcDbDatabase& database, const std::wstring& text, std::size_t index,
                  DimVariables& variables);

/// The variables of a dimension, a leader or a tolerance; null for other entities.
std::optional<DimVariables> dimVariablesOf(const AcDbEntity& entity);
/// The entity, open for writing, gets values that differ from those it has as overrides.
void overrideDimVariables(AcDbEntity& entity, const DimVariables& values);
/// The same with the drawing's current values; what they name no record for stays the style's.
void overrideByCurrent(AcDbEntity& entity, const AcDbDatabase& database);
/// Takes all overrides off an entity that is open for writing.
void clearDimOverrides(AcDbEntity& entity);
AcDbObjectId dimensionStyleOf(const AcDbEntity& entity);
void setDimensionStyleOf(AcDbEntity& entity, AcDbObjectId style);

} // namespace host
