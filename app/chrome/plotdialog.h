// Plotting in the window: the dialog of PLOT and the picture of PREVIEW.
#pragma once

#include "host/plot/plotcommand.h"

class QWidget;

namespace app {

class PlotWindows final : public host::PlotWindows {
public:
    /// The dialogs lie over the parent, which must outlive this.
    explicit PlotWindows(QWidget& parent) : mParent(parent) { host::setPlotWindows(this); }
    ~PlotWindows() override { host::setPlotWindows(nullptr); }
    PlotWindows(const PlotWindows&) = delete;
    PlotWindows& operator=(const PlotWindows&) = delete;

    bool ask(AcApDocument& document, host::PlotJob& job) override;
    void preview(AcApDocument& document, const host::PlotJob& job) override;

private:
    QWidget& mParent;
};

} // namespace app
