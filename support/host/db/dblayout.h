// Layouts: what a sheet is plotted with (AcDbPlotSettings), the sheet itself (AcDbLayout, in the dictionary
// ACAD_LAYOUT) and the switching among them (AcDbLayoutManager).
#pragma once

#include "host/db/dbobject.h"

#include <initializer_list>
#include <utility>

/// A page setup. Paper is measured in millimetres, plot windows in drawing units.
class AcDbPlotSettings : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbPlotSettings);

public:
    enum PlotPaperUnits { kInches = 0, kMillimeters = 1, kPixels = 2 };
    enum PlotRotation { k0degrees = 0, k90degrees = 1, k180degrees = 2, k270degrees = 3 };
    enum PlotType { kDisplay = 0, kExtents = 1, kLimits = 2, kView = 3, kWindow = 4, kLayout = 5 };

    AcDbPlotSettings();
    explicit AcDbPlotSettings(bool modelType);

    Acad::ErrorStatus getPlotSettingsName(AcString& name) const;
    Acad::ErrorStatus setPlotSettingsName(const ACHAR* name) { return setText(1, name); }
    Acad::ErrorStatus getPlotCfgName(AcString& device) const;
    Acad::ErrorStatus setPlotCfgName(const ACHAR* device) { return setText(2, device); }
    Acad::ErrorStatus getCanonicalMediaName(AcString& medium) const;
    Acad::ErrorStatus setCanonicalMediaName(const ACHAR* medium) { return setText(4, medium); }
    Acad::ErrorStatus getCurrentStyleSheet(AcString& name) const;
    Acad::ErrorStatus setCurrentStyleSheet(const ACHAR* name) { return setText(7, name); }
    Acad::ErrorStatus getPlotPaperMargins(double& left, double& bottom, double& right, double& top) const;
    Acad::ErrorStatus setPlotPaperMargins(double left, double bottom, double right, double top);
    Acad::ErrorStatus getPlotPaperSize(double& width, double& height) const;
    Acad::ErrorStatus setPlotPaperSize(double width, double height);
    Acad::ErrorStatus getPlotOrigin(double& x, double& y) const;
    Acad::ErrorStatus setPlotOrigin(double x, double y);
    Acad::ErrorStatus getPlotWindowArea(double& left, double& bottom, double& right, double& top) const;
    Acad::ErrorStatus setPlotWindowArea(double left, double bottom, double right, double top);
    /// `numerator` units of paper for `denominator` drawing units.
    Acad::ErrorStatus getCustomPrintScale(double& numerator, double& denominator) const;
    Acad::ErrorStatus setCustomPrintScale(double numerator, double denominator);
    PlotPaperUnits plotPaperUnits() const { return static_cast<PlotPaperUnits>(integer(72)); }
    Acad::ErrorStatus setPlotPaperUnits(PlotPaperUnits units) { return setInteger(72, units); }
    PlotRotation plotRotation() const { return static_cast<PlotRotation>(integer(73)); }
    Acad::ErrorStatus setPlotRotation(PlotRotation rotation) { return setInteger(73, rotation); }
    PlotType plotType() const { return static_cast<PlotType>(integer(74)); }
    Acad::ErrorStatus setPlotType(PlotType type) { return setInteger(74, type); }
    bool plotCentered() const { return hasFlag(4); }
    Acad::ErrorStatus setPlotCentered(bool centered) { return setFlag(4, centered); }
    bool useStandardScale() const { return hasFlag(16); }
    Acad::ErrorStatus setUseStandardScale(bool use) { return setFlag(16, use); }
    /// As large as it fits the paper.
    bool scalesToFit() const { return useStandardScale() && integer(75) == 0; }
    Acad::ErrorStatus setScalesToFit(bool fit);
    bool plotPlotStyles() const { return hasFlag(32); }
    Acad::ErrorStatus setPlotPlotStyles(bool plot) { return setFlag(32, plot); }
    bool drawViewportsFirst() const { return hasFlag(512); }
    Acad::ErrorStatus setDrawViewportsFirst(bool first) { return setFlag(512, first); }
    Acad::ErrorStatus getPlotViewName(AcString& name) const;
    Acad::ErrorStatus setPlotViewName(const ACHAR* name) { return setText(6, name); }
    bool printLineweights() const { return hasFlag(128); }
    Acad::ErrorStatus setPrintLineweights(bool print) { return setFlag(128, print); }
    bool modelType() const { return hasFlag(1024); }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    std::string_view text(short code) const;
    double real(short code) const;
    Adesk::Int64 integer(short code) const;
    Acad::ErrorStatus setText(short code, const ACHAR* value);
    Acad::ErrorStatus setReals(std::initializer_list<std::pair<short, double>> values);
    Acad::ErrorStatus setInteger(short code, Adesk::Int64 value);
    bool hasFlag(Adesk::Int64 flag) const { return (integer(70) & flag) != 0; }
    Acad::ErrorStatus setFlag(Adesk::Int64 flag, bool on);

    host::GroupList mPlotSettings; ///< groups of AcDbPlotSettings in the order of the file
};

/// A layout: plot settings, tab order, and the block it shows. Fields beyond name, order and block are kept.
class AcDbLayout : public AcDbPlotSettings {
    ACRX_DECLARE_MEMBERS(AcDbLayout);

public:
    AcDbLayout();

    Acad::ErrorStatus getLayoutName(AcString& name) const;
    const AcString& layoutName() const { return mName; }
    /// The dictionary's entry is not changed: AcDbLayoutManager::renameLayout does both.
    Acad::ErrorStatus setLayoutName(const ACHAR* name);
    AcDbObjectId getBlockTableRecordId() const { return mBlock; }
    Acad::ErrorStatus setBlockTableRecordId(AcDbObjectId block);
    int getTabOrder() const { return mTabOrder; }
    void setTabOrder(int order);
    bool modelType() const { return mName.compareNoCase(L"Model") == 0; }
    /// The viewport worked in when the layout was current last; the one of the sheet itself, or null, for the
    /// sheet.
    AcDbObjectId activeViewportId() const;
    Acad::ErrorStatus setActiveViewportId(AcDbObjectId viewport);
    /// Takes plot settings and further fields of another layout, not its name, order and block.
    Acad::ErrorStatus copySettingsFrom(const AcDbLayout& other);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

private:
    AcString mName;
    AcDbObjectId mBlock;
    int mTabOrder = 0;
    host::GroupList mGroups; ///< further groups of AcDbLayout
};

/// Layouts of a drawing by name; without a drawing the working one. The current layout is the one whose block
/// is *Paper_Space, unless TILEMODE shows the model space.
class AcDbLayoutManager : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcDbLayoutManager);

public:
    /// eKeyNotFound for a name that is none.
    Acad::ErrorStatus setCurrentLayout(const ACHAR* name, AcDbDatabase* database = nullptr);
    Acad::ErrorStatus setCurrentLayoutId(AcDbObjectId layout);
    AcString findActiveLayout(bool allowModel, const AcDbDatabase* database = nullptr) const;
    AcDbObjectId getActiveLayoutBTRId(const AcDbDatabase* database = nullptr) const;
    AcDbObjectId findLayoutNamed(const ACHAR* name, const AcDbDatabase* database = nullptr) const;
    bool layoutExists(const ACHAR* name, const AcDbDatabase* database = nullptr) const {
        return !findLayoutNamed(name, database).isNull();
    }
    /// The model tab included.
    int countLayouts(const AcDbDatabase* database = nullptr) const;
    /// Names by tab order, the model tab first.
    std::vector<AcString> layoutNames(const AcDbDatabase* database = nullptr) const;

    // eInvalidInput for a name that a layout cannot have, eDuplicateKey for one that is there; the model tab
    // can be neither renamed nor deleted nor copied (eInvalidInput).

    Acad::ErrorStatus createLayout(const ACHAR* name, AcDbObjectId& layout, AcDbObjectId& block,
                                   AcDbDatabase* database = nullptr);
    Acad::ErrorStatus renameLayout(const ACHAR* oldName, const ACHAR* newName,
                                   AcDbDatabase* database = nullptr);
    /// Erases the layout and what stands on it. A drawing keeps one: instead of the last a new one appears.
    Acad::ErrorStatus deleteLayout(const ACHAR* name, AcDbDatabase* database = nullptr);
    Acad::ErrorStatus copyLayout(const ACHAR* name, const ACHAR* newName, AcDbDatabase* database = nullptr);
};
