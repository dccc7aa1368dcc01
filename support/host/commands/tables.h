// Questions for records of symbol tables, colours and lineweights by name.
#pragma once

#include "host/commands/ask.h"

namespace host {

/// A record of the table; null for Enter, nothing for Escape. Unknown names are told and asked for again;
/// `current` is shown as the default (null: several). `what` names the kind ("图层"). "?" lists the names.
std::optional<AcDbObjectId> askRecord(AcDbObjectId table, const std::wstring& prompt,
                                      const std::wstring& what, AcDbObjectId current);
/// The same for a linetype, which is loaded from the standard files when the drawing has none of that name.
std::optional<AcDbObjectId> askLinetype(const std::wstring& prompt, AcDbObjectId current);
/// The linetype of that name, loaded when necessary; null when there is none.
AcDbObjectId linetypeNamed(const std::wstring& name);

/// A new layer; null when the name is invalid or taken.
AcDbObjectId makeLayer(const std::wstring& name);
/// The layer of that name, made when there is none; null with a line told when it can't be.
AcDbObjectId layerNamed(const std::wstring& name, bool* created = nullptr);

/// A colour by number, name or true colour; nothing for Enter and Escape.
std::optional<AcCmEntityColor> askColor(const std::wstring& prompt, const std::wstring& standard);
struct LayerColor {
    AcCmEntityColor color;
    bool off = false; ///< given as a negative number
};
/// The same for a layer, which has a colour of its own always.
std::optional<LayerColor> askLayerColor(const std::wstring& prompt);
/// Millimetres, or one of the words ByLayer, ByBlock, DEFAULT. Nothing for other text.
std::optional<AcDb::LineWeight> parseLineWeight(const std::wstring& text);

std::wstring recordName(AcDbObjectId record);

} // namespace host
