// What the tools of layers do to a drawing: setting layers apart, and taking layers out of it.
#pragma once

#include "host/ed/documentstate.h"

#include <unordered_set>
#include <vector>

namespace host {

using LayerSet = std::unordered_set<AcDbStub*>;

enum class Isolation { lock, off };

/// Locks or turns off every layer that is not among those kept; gives what changed.
std::vector<LayerChange> isolateLayers(AcDbDatabase& database, const LayerSet& kept, Isolation how);
/// Gives layers back what they were, as far as nothing else has changed them since; gives how many.
int restoreLayers(const std::vector<LayerChange>& changes);
/// Calls change(record) for every layer of the drawing, open for writing.
template <class Change>
void forEachLayer(const AcDbDatabase& database, Change&& change) {
    for (AcDbStub* stub : std::vector<AcDbStub*>(peek<AcDbLayerTable>(database.layerTableId())->records())) {
        if (const Opened<AcDbLayerTableRecord> layer(stub, AcDb::kForWrite); layer) {
            change(*layer.get());
        }
    }
}

/// A line why the layer can't be taken out; null when it can.
const wchar_t* removalRefusal(const AcDbDatabase& database, AcDbObjectId layer);

struct LayerRemoval {
    std::size_t layers = 0;
    std::size_t entities = 0; ///< erased or moved, attributes and the contents of blocks among them
};
/// Takes layers out of the drawing: their entities, in blocks too and on locked layers, go with them or, with
/// a target, onto that one. One pass over all objects; whatever else names the layers (viewports, extended
/// data, kept data) names the target then, or nothing.
LayerRemoval removeLayers(AcDbDatabase& database, const LayerSet& layers, AcDbObjectId target = {});

} // namespace host
