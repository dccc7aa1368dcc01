// Proxy graphics: the picture of an entity as a list of binary drawing calls, by which drawings show entities
// whose code is not there. The data as other programs know it: two 32-bit numbers (the size of all in bytes,
// the count of chunks), then chunks, each its size in bytes (head included), its type and its data, in
// little-endian order and padded to four bytes.
#pragma once

#include "host/gi/looks.h"
#include "host/gi/worlddraw.h"

#include <functional>
#include <string>
#include <string_view>

namespace host {

// The picture that a drawable draws for a proxy (regeneration type kAcGiSaveWorldDrawForProxy); empty when it
// draws nothing. Layers and linetypes are told by their position in the tables of the source.
std::string recordProxyGraphics(AcGiDrawable& drawable, DrawingSource& source);

struct ProxyGraphicsOptions {
    // Decodes texts of older files, which are in the drawing's code page; without it they are read as UTF-8,
    // or as Latin-1 where they are no UTF-8.
    std::function<std::wstring(std::string_view)> decodeText;
    // Finds layers and linetypes by their position; without it changes of both are passed over.
    DrawingSource* source = nullptr;
};

// Draws the picture. Chunks of unknown types and damaged ones are passed over. False when the data ended
// early or held a damaged chunk. Memory and time are proportional to the data's size.
bool playProxyGraphics(std::string_view data, AcGiWorldDraw& draw, const ProxyGraphicsOptions& options = {});

} // namespace host
