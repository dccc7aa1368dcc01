// Looks of layers and linetypes, resolved from the tables once for a picture.
#include "host/db/drawingsource.h"

#include "host/db/dbents.h"
#include "host/gi/extentssink.h"
#include "host/gi/flatten.h"

#include <algorithm>
#include <unordered_map>

namespace host {
namespace {

class Source;

/// The traits of a drawable in this database: ids are looked up here.
class SourceTraits final : public DrawTraits {
public:
    explicit SourceTraits(Source& source) : mSource(source) {}
    void setLayer(const AcDbObjectId layerId) override;
    void setLineType(const AcDbObjectId linetypeId) override;
    AcDbObjectId layerId() const override;
    AcDbObjectId lineTypeId() const override;

private:
    Source& mSource;
};

class Source final : public DrawingSource {
public:
    explicit Source(AcDbDatabase& database) : mDatabase(database) {
        mLinetypeScale = database.ltscale();
        mScalesToPaper = std::get<Adesk::Int16>(database.variable(*findHeaderVariable("PSLTSCALE"))) != 0;
        mFill = std::get<Adesk::Int16>(database.variable(*findHeaderVariable("FILLMODE"))) != 0;
        const auto* layers = peek<AcDbLayerTable>(database.layerTableId());
        for (std::size_t index = 0; index < layers->records().size(); ++index) {
            mLayerIndex.emplace(layers->records()[index], static_cast<int>(index));
        }
        const auto* linetypes = peek<AcDbLinetypeTable>(database.linetypeTableId());
        for (std::size_t index = 0; index < linetypes->records().size(); ++index) {
            mLinetypeIndex.emplace(linetypes->records()[index], static_cast<int>(index));
        }
    }

    std::unique_ptr<DrawTraits> makeTraits() override { return std::make_unique<SourceTraits>(*this); }
    void readLightPolyline(const AcDbPolyline& polyline, LightPolyline& result) const override;
    AcDbDatabase* database() const override { return &mDatabase; }
    const LayerLook& layerAt(int tableIndex) override {
        return layer(idAt(mDatabase.layerTableId(), tableIndex, mDatabase.layerZero()));
    }
    const LinetypeLook& linetypeAt(int tableIndex) override {
        return linetype(idAt(mDatabase.linetypeTableId(), tableIndex, mDatabase.byLayerLinetype()));
    }
    double linetypeScale() const override { return mLinetypeScale; }
    bool scalesLinetypesToPaper() const override { return mScalesToPaper; }
    bool fillMode() const override { return mFill; }

    const LayerLook& layer(AcDbObjectId id);
    const LinetypeLook& linetype(AcDbObjectId id);
    AcDbObjectId layerIdAt(int index) const {
        return idAt(mDatabase.layerTableId(), index, mDatabase.layerZero());
    }
    AcDbObjectId linetypeIdAt(int index) const {
        return idAt(mDatabase.linetypeTableId(), index, mDatabase.byLayerLinetype());
    }

private:
    static AcDbObjectId idAt(AcDbObjectId tableId, int index, AcDbObjectId otherwise) {
        const auto* table = peek<AcDbSymbolTable>(tableId);
        if (table == nullptr || index < 0 || index >= static_cast<int>(table->records().size())) {
            return otherwise;
        }
        return AcDbObjectId(table->records()[static_cast<std::size_t>(index)]);
    }
    LinetypeLook makeLinetype(AcDbObjectId id) const;

    AcDbDatabase& mDatabase;
    double mLinetypeScale = 1.0;
    bool mScalesToPaper = true;
    bool mFill = true;
    // Nodes of these maps stay where they are: looks given out are pointed to.
    std::unordered_map<AcDbObjectId, LayerLook> mLayers;
    std::unordered_map<AcDbObjectId, LinetypeLook> mLinetypes;
    std::unordered_map<AcDbStub*, int> mLayerIndex;
    std::unordered_map<AcDbStub*, int> mLinetypeIndex;
};

const LayerLook& Source::layer(AcDbObjectId id) {
    const auto* record = peek<AcDbLayerTableRecord>(id, true);
    if (record == nullptr) {
        id = mDatabase.layerZero();
        record = peek<AcDbLayerTableRecord>(id);
    }
    const auto [found, added] = mLayers.try_emplace(id);
    LayerLook& look = found->second;
    if (added && record != nullptr) {
        look.name = record->name().kwszPtr();
        look.color = record->entityColor();
        look.lineWeight = record->lineWeight();
        look.isOff = record->isOff();
        look.isFrozen = record->isFrozen();
        look.isPlottable = record->isPlottable() && record->name().compareNoCase(L"DEFPOINTS") != 0;
        look.isZero = id == mDatabase.layerZero();
        const auto index = mLayerIndex.find(id.stub());
        look.tableIndex = index != mLayerIndex.end() ? index->second : 0;
        const LinetypeLook& line = linetype(record->linetypeObjectId());
        look.linetype = line.kind == LinetypeLook::Kind::pattern ? &line : &LinetypeLook::continuous();
    }
    return look;
}

const LinetypeLook& Source::linetype(AcDbObjectId id) {
    if (id.isNull() || peek<AcDbLinetypeTableRecord>(id, true) == nullptr ||
        id == mDatabase.byLayerLinetype()) {
        return LinetypeLook::byLayer();
    }
    if (id == mDatabase.byBlockLinetype()) {
        return LinetypeLook::byBlock();
    }
    const auto [found, added] = mLinetypes.try_emplace(id);
    if (added) {
        found->second = makeLinetype(id);
    }
    return found->second;
}

LinetypeLook Source::makeLinetype(AcDbObjectId id) const {
    LinetypeLook look;
    const auto index = mLinetypeIndex.find(id.stub());
    look.tableIndex = index != mLinetypeIndex.end() ? index->second : 0;
    for (const AcDbLinetypeTableRecord::Dash& dash : peek<AcDbLinetypeTableRecord>(id, true)->dashes()) {
        LinetypeLook::Element& element = look.elements.emplace_back();
        element.length = dash.length;
        if (!dash.hasText && !dash.hasShape) {
            continue;
        }
        element.inset =
            dash.hasText ? LinetypeLook::Element::Inset::text : LinetypeLook::Element::Inset::shape;
        element.text = dash.text.kwszPtr();
        element.shapeNumber = dash.shapeNumber;
        element.rotation = dash.rotation;
        element.isAbsolute = dash.absoluteRotation;
        element.isUpright = dash.uprightRotation;
        element.offsetX = dash.offset.x;
        element.offsetY = dash.offset.y;
        if (const auto* style = peek<AcDbTextStyleTableRecord>(dash.style)) {
            AcGiTextStyle text;
            style->toGiTextStyle(text);
            element.format = text.format();
        }
        element.format.height = (element.format.height > 0.0 ? element.format.height : 1.0) * dash.scale;
    }
    return look;
}

void Source::readLightPolyline(const AcDbPolyline& polyline, LightPolyline& result) const {
    const BulgePath& path = polyline.bulgePath();
    result.vertices.resize(path.vertices.size());
    std::transform(path.vertices.begin(), path.vertices.end(), result.vertices.begin(),
                   [](const BulgeVertex& vertex) {
                       return LightPolyline::Vertex{vertex.point.x, vertex.point.y, vertex.bulge, 0.0, 0.0};
                   });
    if (polyline.hasWidth()) {
        for (unsigned index = 0; index < result.vertices.size(); ++index) {
            polyline.getWidthsAt(index, result.vertices[index].startWidth, result.vertices[index].endWidth);
        }
    }
    result.isClosed = polyline.isClosed();
    result.generatesLinetype = polyline.hasPlinegen();
    result.elevation = polyline.elevation();
    result.thickness = polyline.thickness();
    result.normal = polyline.normal();
}

void SourceTraits::setLayer(const AcDbObjectId layerId) {
    state().layer = &mSource.layer(layerId);
}
void SourceTraits::setLineType(const AcDbObjectId linetypeId) {
    state().linetype = &mSource.linetype(linetypeId);
}
AcDbObjectId SourceTraits::layerId() const {
    return mSource.layerIdAt(state().layer->tableIndex);
}
AcDbObjectId SourceTraits::lineTypeId() const {
    switch (state().linetype->kind) {
    case LinetypeLook::Kind::byLayer:
        return mSource.database()->byLayerLinetype();
    case LinetypeLook::Kind::byBlock:
        return mSource.database()->byBlockLinetype();
    default:
        return mSource.linetypeIdAt(state().linetype->tableIndex);
    }
}

} // namespace

std::unique_ptr<DrawingSource> drawingSource(AcDbDatabase& database) {
    return std::make_unique<Source>(database);
}

Acad::ErrorStatus drawnExtents(AcDbEntity& entity, AcDbExtents& extents) {
    if (entity.database() == nullptr) {
        return Acad::eNoDatabase;
    }
    const std::unique_ptr<DrawingSource> source = drawingSource(*entity.database());
    ExtentsSink sink;
    Flattener flattener(*source, sink, {});
    const ReadAccess access(entity);
    flattener.draw(entity);
    return sink.isEmpty() ? Acad::eInvalidExtents : extents.set(sink.min(), sink.max());
}

} // namespace host
