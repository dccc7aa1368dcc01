// MVIEW, MSPACE, PSPACE and VPLAYER: windows of a layout onto the model.
#include "host/ed/viewports.h"

#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace host {
namespace {

/// A rectangle on the sheet.
struct Frame {
    AcGePoint2d low;
    AcGePoint2d high;

    double width() const { return high.x - low.x; }
    double height() const { return high.y - low.y; }
    /// The part between shares of the width and of the height.
    Frame part(double left, double bottom, double right, double top) const {
        return {{std::lerp(low.x, high.x, left), std::lerp(low.y, high.y, bottom)},
                {std::lerp(low.x, high.x, right), std::lerp(low.y, high.y, top)}};
    }
};

AcGePoint2d variablePoint(const wchar_t* name) {
    const ResbufList value = systemVariable(name);
    return value != nullptr ? AcGePoint2d(value->resval.rpoint[0], value->resval.rpoint[1]) : AcGePoint2d();
}

/// What the current layout's device can print; its limits when no paper is chosen.
Frame printableArea() {
    const auto* block = peek<AcDbBlockTableRecord>(currentDatabase().paperSpaceId());
    const auto* layout = block != nullptr ? peek<AcDbLayout>(block->getLayoutId()) : nullptr;
    double width = 0.0;
    double height = 0.0;
    std::array<double, 4> margins{};
    if (layout != nullptr) {
        const ReadAccess access(*layout);
        layout->getPlotPaperSize(width, height);
        layout->getPlotPaperMargins(margins[0], margins[1], margins[2], margins[3]);
        width -= margins[0] + margins[2];
        height -= margins[1] + margins[3];
        if (layout->plotRotation() == AcDbPlotSettings::k90degrees ||
            layout->plotRotation() == AcDbPlotSettings::k270degrees) {
            std::swap(width, height);
        }
    }
    return width > 0.0 && height > 0.0 ? Frame{{0.0, 0.0}, {width, height}}
                                       : Frame{variablePoint(L"LIMMIN"), variablePoint(L"LIMMAX")};
}

/// Lets a new viewport show all of the model.
void showAll(AcDbViewport& viewport) {
    constexpr double around = 1.05;
    AcDbDatabase& database = currentDatabase();
    const auto* model = peek<AcDbBlockTableRecord>(database.modelSpaceId());
    const AcDbExtents extents = database.impl().places.of(model->objectId()).extents({});
    AcGePoint3d minimum;
    AcGePoint3d maximum(420.0, 297.0, 0.0);
    if (!extents.isEmpty()) {
        minimum = extents.minPoint();
        maximum = extents.maxPoint();
    }
    const AcGeVector3d size = maximum - minimum;
    const double height = std::max(size.y, size.x * viewport.height() / viewport.width()) * around;
    viewport.setViewCenter(to2d(minimum + size * 0.5));
    viewport.setViewHeight(height > 0.0 ? height : viewport.height());
}

/// Layers that new viewports don't show.
AcDbObjectIdArray layersFrozenAtFirst() {
    AcDbObjectIdArray frozen;
    for (AcDbStub* stub : peek<AcDbLayerTable>(currentDatabase().layerTableId())->records()) {
        const auto* layer = peek<AcDbLayerTableRecord>(AcDbObjectId(stub));
        if (layer != nullptr && layer->VPDFLT()) {
            frozen.append(layer->objectId());
        }
    }
    return frozen;
}

/// The sheet's own view stands before all viewports: programs take the first of a layout for it.
void ensureSheetViewport() {
    const auto* sheet = peek<AcDbBlockTableRecord>(currentDatabase().paperSpaceId());
    const auto isViewport = [](AcDbStub* stub) { return peek<AcDbViewport>(AcDbObjectId(stub)) != nullptr; };
    if (std::any_of(sheet->entities().begin(), sheet->entities().end(), isViewport)) {
        return;
    }
    const Frame area = printableArea();
    auto* viewport = new AcDbViewport;
    const AcGePoint2d centre((area.low.x + area.high.x) / 2.0, (area.low.y + area.high.y) / 2.0);
    viewport->setCenterPoint({centre.x, centre.y, 0.0});
    viewport->setWidth(area.width());
    viewport->setHeight(area.height());
    viewport->setViewCenter(centre);
    viewport->setViewHeight(area.height());
    viewport->setNumber(1);
    appendToCurrentSpace(viewport);
}

AcDbObjectId addViewport(const Frame& frame, AcDbObjectId clip = {}) {
    if (!(frame.width() > 0.0) || !(frame.height() > 0.0)) {
        acutPrintf(L"\n视口的宽度和高度必须大于零。");
        return {};
    }
    ensureSheetViewport();
    auto* viewport = new AcDbViewport;
    viewport->setCenterPoint({(frame.low.x + frame.high.x) / 2.0, (frame.low.y + frame.high.y) / 2.0, 0.0});
    viewport->setWidth(frame.width());
    viewport->setHeight(frame.height());
    viewport->setNumber(freeViewportNumber(currentDatabase()));
    viewport->setOn();
    showAll(*viewport);
    viewport->freezeLayersInViewport(layersFrozenAtFirst());
    if (!clip.isNull()) {
        viewport->setNonRectClipEntityId(clip);
    }
    return appendToCurrentSpace(viewport);
}

/// The rectangle between two points, or the printable area. Nothing when cancelled.
std::optional<Frame> askFrame(const PointAnswer& first) {
    if (first.isNone() || first.isKeyword(L"Fit")) {
        return printableArea();
    }
    if (!first.isValue()) {
        return std::nullopt;
    }
    const std::optional<AcGePoint3d> corner = askOppositeCorner(L"\n指定对角点: ", first.ucs);
    if (!corner) {
        return std::nullopt;
    }
    return Frame{{std::min(first.world.x, corner->x), std::min(first.world.y, corner->y)},
                 {std::max(first.world.x, corner->x), std::max(first.world.y, corner->y)}};
}

std::optional<Frame> askFrame() {
    return askFrame(askPoint(L"\n指定第一个角点或 [布满(F)] <布满>: ", L"Fit"));
}

/// Parts of an area as shares of it: left, bottom, right, top.
using Parts = std::vector<std::array<double, 4>>;

void addParts(const Parts& parts) {
    const std::optional<Frame> frame = askFrame();
    for (const auto& [left, bottom, right, top] : frame ? parts : Parts()) {
        if (addViewport(frame->part(left, bottom, right, top)).isNull()) {
            return;
        }
    }
}

void addTwo() {
    const Answer answer =
        askKeyword(L"\n输入视口排列方式 [水平(H)/垂直(V)] <垂直>: ", L"Horizontal Vertical");
    if (!answer.isCancelled()) {
        addParts(answer.isKeyword(L"Horizontal") ? Parts{{0, 0.5, 1, 1}, {0, 0, 1, 0.5}}
                                                 : Parts{{0, 0, 0.5, 1}, {0.5, 0, 1, 1}});
    }
}

void addThree() {
    constexpr double third = 1.0 / 3.0;
    const Answer answer = askKeyword(L"\n输入视口排列方式 [水平(H)/垂直(V)/上(A)/下(B)/左(L)/右(R)] <右>: ",
                                     L"Horizontal Vertical Above Below Left Right");
    if (answer.isCancelled()) {
        return;
    }
    if (answer.isKeyword(L"Horizontal")) {
        addParts({{0, 2 * third, 1, 1}, {0, third, 1, 2 * third}, {0, 0, 1, third}});
    } else if (answer.isKeyword(L"Vertical")) {
        addParts({{0, 0, third, 1}, {third, 0, 2 * third, 1}, {2 * third, 0, 1, 1}});
    } else if (answer.isKeyword(L"Above")) {
        addParts({{0, 0.5, 1, 1}, {0, 0, 0.5, 0.5}, {0.5, 0, 1, 0.5}});
    } else if (answer.isKeyword(L"Below")) {
        addParts({{0, 0, 1, 0.5}, {0, 0.5, 0.5, 1}, {0.5, 0.5, 1, 1}});
    } else if (answer.isKeyword(L"Left")) {
        addParts({{0, 0, 0.5, 1}, {0.5, 0.5, 1, 1}, {0.5, 0, 1, 0.5}});
    } else {
        addParts({{0.5, 0, 1, 1}, {0, 0.5, 0.5, 1}, {0, 0, 0.5, 0.5}});
    }
}

// Viewports that an entity cuts.

const wchar_t* clipRefusal(const AcDbEntity& entity) {
    const auto* curve = AcDbCurve::cast(&entity);
    return curve != nullptr && curve->isClosed() ? nullptr : L"\n需要闭合的曲线。";
}

void addClipped(AcDbObjectId clip) {
    AcDbExtents extents;
    {
        const Opened<AcDbEntity> entity(clip, AcDb::kForRead);
        if (!entity || entity->getGeomExtents(extents) != Acad::eOk) {
            return;
        }
    }
    addViewport({to2d(extents.minPoint()), to2d(extents.maxPoint())}, clip);
}

void addOfObject() {
    const EntityAnswer answer = askEntity(L"\n选择要剪切视口的对象: ", nullptr, clipRefusal);
    if (answer.isValue()) {
        addClipped(answer.id);
    }
}

/// The corners in UCS coordinates; empty when cancelled.
std::vector<AcGePoint3d> askPolygon() {
    std::vector<AcGePoint3d> corners;
    for (;;) {
        const bool closes = corners.size() > 2;
        const PointAnswer answer =
            corners.empty() ? askPoint(L"\n指定起点: ", nullptr, nullptr, 1)
                            : askPoint(closes ? L"\n指定下一个点或 [闭合(C)/放弃(U)] <闭合>: "
                                              : L"\n指定下一个点或 [放弃(U)]: ",
                                       closes ? L"Close Undo" : L"Undo", &corners.back(), closes ? 0 : 1);
        if (answer.isCancelled()) {
            return {};
        }
        if (answer.isKeyword(L"Undo")) {
            corners.pop_back();
        } else if (answer.isValue()) {
            corners.push_back(answer.ucs);
        } else {
            return corners;
        }
    }
}

void addPolygonal() {
    const std::vector<AcGePoint3d> corners = askPolygon();
    if (corners.empty()) {
        return;
    }
    auto* outline = new AcDbPolyline;
    for (unsigned index = 0; index < corners.size(); ++index) {
        outline->addVertexAt(index, to2d(corners[index]));
    }
    outline->setClosed(true);
    transformFromUcs(*outline);
    addClipped(appendToCurrentSpace(outline));
}

// Properties of viewports.

/// Applies a change to the viewports picked by themselves or by what cuts them.
void changePicked(const std::function<void(AcDbViewport&)>& apply) {
    const Selection selection = Selection::askEditable();
    int changed = 0;
    for (const AcDbObjectId id : layoutViewports(currentDatabase())) {
        const Opened<AcDbViewport> viewport(id, AcDb::kForRead);
        const AcDbObjectId clip = viewport ? viewport->nonRectClipEntityId() : AcDbObjectId();
        const bool isPicked =
            selection.ids().contains(id) || (!clip.isNull() && selection.ids().contains(clip));
        if (viewport && isPicked && viewport->upgradeOpen() == Acad::eOk) {
            apply(*viewport.get());
            ++changed;
        }
    }
    if (!selection.empty() && changed == 0) {
        acutPrintf(L"\n没有选中视口。");
    }
}

void lockViews() {
    const Answer answer = askKeyword(L"\n视口视图锁定 [开(ON)/关(OFF)]: ", L"ON OFF", 1);
    if (answer.kind == Answer::Kind::keyword) {
        changePicked([&](AcDbViewport& viewport) { viewport.setLocked(answer.isKeyword(L"ON")); });
    }
}

void resetLayersOf() {
    if (askYesNo(L"\n是否将视口的图层特性重置为全局特性?", false).value_or(false)) {
        changePicked([](AcDbViewport& viewport) {
            AcDbObjectIdArray frozen;
            for (const AcDbObjectId id : viewport.data().frozenLayers) {
                frozen.append(id);
            }
            viewport.thawLayersInViewport(frozen);
        });
    }
}

/// Viewports stand on the sheet.
void goToSheet() {
    if (!currentDatabase().activeViewportId().isNull()) {
        acutPrintf(L"\n切换到图纸空间。");
        leaveViewport();
    }
}

void runMview() {
    goToSheet();
    const PointAnswer answer =
        askPoint(L"\n指定视口的角点或\n[开(ON)/关(OFF)/布满(F)/锁定(L)/对象(O)/多边形(P)/"
                 L"图层(LA)/2/3/4] <布满>: ",
                 L"ON OFF Fit Lock Object Polygonal LAyer 2 3 4");
    if (answer.isKeyword(L"ON")) {
        changePicked([](AcDbViewport& viewport) { viewport.setOn(); });
    } else if (answer.isKeyword(L"OFF")) {
        changePicked([](AcDbViewport& viewport) { viewport.setOff(); });
    } else if (answer.isKeyword(L"Lock")) {
        lockViews();
    } else if (answer.isKeyword(L"Object")) {
        addOfObject();
    } else if (answer.isKeyword(L"Polygonal")) {
        addPolygonal();
    } else if (answer.isKeyword(L"LAyer")) {
        resetLayersOf();
    } else if (answer.isKeyword(L"2")) {
        addTwo();
    } else if (answer.isKeyword(L"3")) {
        addThree();
    } else if (answer.isKeyword(L"4")) {
        addParts({{0.5, 0.5, 1, 1}, {0, 0.5, 0.5, 1}, {0, 0, 0.5, 0.5}, {0.5, 0, 1, 0.5}});
    } else if (const std::optional<Frame> frame = askFrame(answer)) {
        addViewport(*frame);
    }
}

void runModelSpace() {
    if (!currentDatabase().activeViewportId().isNull()) {
        acutPrintf(L"\n已经在模型空间中。");
    } else if (acedMspace() != RTNORM) {
        acutPrintf(L"\n当前布局中没有打开的视口。");
    }
}

void runPaperSpace() {
    if (!leaveViewport()) {
        acutPrintf(L"\n已经在图纸空间中。");
    }
}

// VPLAYER.

/// The viewports that the answer is about; nothing when cancelled. The active one is current; on the sheet
/// they are picked.
std::optional<AcDbObjectIdArray> askViewports() {
    const AcDbObjectId active = currentDatabase().activeViewportId();
    const Answer answer =
        active.isNull() ? askKeyword(L"\n指定视口 [全部(A)/选择(S)] <选择>: ", L"All Select")
                        : askKeyword(L"\n指定视口 [全部(A)/选择(S)/当前(C)] <当前>: ", L"All Select Current");
    AcDbObjectIdArray chosen;
    if (answer.isCancelled()) {
        return std::nullopt;
    }
    if (!active.isNull() && (answer.isNone() || answer.isKeyword(L"Current"))) {
        chosen.append(active);
        return chosen;
    }
    const std::vector<AcDbObjectId> all = layoutViewports(currentDatabase());
    if (answer.isKeyword(L"All")) {
        for (const AcDbObjectId id : all) {
            chosen.append(id);
        }
        return chosen;
    }
    goToSheet();
    const Selection selection = Selection::askWith(L"\n选择对象: ");
    for (const AcDbObjectId id : all) {
        if (selection.ids().contains(id)) {
            chosen.append(id);
        }
    }
    if (!active.isNull()) {
        enterViewport(active);
    }
    return selection.isCancelled() ? std::nullopt : std::optional(chosen);
}

AcDbObjectIdArray layersNamed(const std::wstring& patterns) {
    AcDbObjectIdArray found;
    forEachMatch(
        *peek<AcDbLayerTable>(currentDatabase().layerTableId()), patterns,
        [&](AcDbObjectId id) { found.append(id); },
        [](const std::wstring& pattern) { acutPrintf(L"\n找不到匹配的图层名 \"%s\"。", pattern.c_str()); });
    return found;
}

enum class LayerChange { freeze, thaw, reset };

/// Frozen in new viewports is what a reset goes back to.
void applyTo(AcDbViewport& viewport, const AcDbObjectIdArray& layers, LayerChange change) {
    AcDbObjectIdArray frozen;
    AcDbObjectIdArray thawed;
    for (const AcDbObjectId id : layers) {
        const auto* layer = peek<AcDbLayerTableRecord>(id);
        const bool freezes =
            change == LayerChange::freeze || (change == LayerChange::reset && layer->VPDFLT());
        (freezes ? frozen : thawed).append(id);
    }
    viewport.freezeLayersInViewport(frozen);
    viewport.thawLayersInViewport(thawed);
}

void changeLayers(const wchar_t* prompt, LayerChange change) {
    const TextAnswer names = askName(prompt);
    const AcDbObjectIdArray layers = names.isValue() ? layersNamed(names.text) : AcDbObjectIdArray();
    if (layers.isEmpty()) {
        return;
    }
    const std::optional<AcDbObjectIdArray> viewports = askViewports();
    for (const AcDbObjectId id : viewports.value_or(AcDbObjectIdArray())) {
        if (const Opened<AcDbViewport> viewport(id, AcDb::kForWrite); viewport) {
            applyTo(*viewport.get(), layers, change);
        }
    }
}

/// New layers that only viewports chosen later show.
void makeFrozenLayers() {
    const TextAnswer names = askName(L"\n输入在所有视口中都冻结的新图层的名称: ");
    std::size_t begin = 0;
    while (names.isValue() && begin < names.text.size()) {
        const std::size_t end = std::min(names.text.find(L',', begin), names.text.size());
        const std::wstring name = names.text.substr(begin, end - begin);
        begin = end + 1;
        const AcDbObjectId id = makeLayer(name);
        if (const Opened<AcDbLayerTableRecord> layer(id, AcDb::kForWrite); layer) {
            layer->setVPDFLT(true);
        } else {
            acutPrintf(L"\n图层名 \"%s\" 无效或已经存在。", name.c_str());
            continue;
        }
        for (const AcDbObjectId viewportId : layoutViewports(currentDatabase())) {
            if (const Opened<AcDbViewport> viewport(viewportId, AcDb::kForWrite); viewport) {
                AcDbObjectIdArray one;
                one.append(id);
                viewport->freezeLayersInViewport(one);
            }
        }
    }
}

void setFirstVisibility() {
    const TextAnswer names = askName(L"\n输入要修改视口可见性的图层名: ");
    const AcDbObjectIdArray layers = names.isValue() ? layersNamed(names.text) : AcDbObjectIdArray();
    if (layers.isEmpty()) {
        return;
    }
    const Answer answer = askKeyword(L"\n输入视口可见性选项 [冻结(F)/解冻(T)] <解冻>: ", L"Freeze Thaw");
    for (const AcDbObjectId id : answer.isCancelled() ? AcDbObjectIdArray() : layers) {
        if (const Opened<AcDbLayerTableRecord> layer(id, AcDb::kForWrite); layer) {
            layer->setVPDFLT(answer.isKeyword(L"Freeze"));
        }
    }
}

void listFrozen() {
    const EntityAnswer answer = askEntity(L"\n选择视口: ", nullptr, [](const AcDbEntity& entity) {
        return entity.isKindOf(AcDbViewport::desc()) ? nullptr : L"\n不是视口。";
    });
    if (!answer.isValue()) {
        return;
    }
    const Opened<AcDbViewport> viewport(answer.id, AcDb::kForRead);
    acutPrintf(L"\n视口 %d 中冻结的图层:", viewport->number());
    for (const AcDbObjectId id : viewport->data().frozenLayers) {
        if (const auto* layer = peek<AcDbLayerTableRecord>(id)) {
            acutPrintf(L"\n  %s", layer->name().kwszPtr());
        }
    }
}

void runViewportLayer() {
    for (;;) {
        const Answer answer =
            askKeyword(L"\n输入选项 [?/冻结(F)/解冻(T)/重置(R)/新建冻结(N)/视口默认可见性(V)]: ",
                       L"? Freeze Thaw Reset Newfrz Vpvisdflt");
        if (answer.kind != Answer::Kind::keyword) {
            return;
        }
        if (answer.isKeyword(L"?")) {
            listFrozen();
        } else if (answer.isKeyword(L"Freeze")) {
            changeLayers(L"\n输入要冻结的图层名: ", LayerChange::freeze);
        } else if (answer.isKeyword(L"Thaw")) {
            changeLayers(L"\n输入要解冻的图层名: ", LayerChange::thaw);
        } else if (answer.isKeyword(L"Reset")) {
            changeLayers(L"\n输入要重置的图层名: ", LayerChange::reset);
        } else if (answer.isKeyword(L"Newfrz")) {
            makeFrozenLayers();
        } else {
            setFirstVisibility();
        }
    }
}

constexpr CommandRow rows[] = {{L"MVIEW", L"创建视口", ACRX_CMD_NOTILEMODE, runMview},
                               {L"MSPACE", L"切换到模型空间", ACRX_CMD_NOTILEMODE, runModelSpace},
                               {L"PSPACE", L"切换到图纸空间", ACRX_CMD_NOTILEMODE, runPaperSpace},
                               {L"VPLAYER", L"视口图层", ACRX_CMD_NOTILEMODE, runViewportLayer}};

} // namespace

std::span<const CommandRow> viewportCommands() {
    return rows;
}

} // namespace host
