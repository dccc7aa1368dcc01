// PLOT, -PLOT and PREVIEW.
#pragma once

#include "host/plot/plotjob.h"

namespace host {

// The window's part of plotting.
class PlotWindows {
public:
    virtual ~PlotWindows() = default;
    // Lets the user set the job up; false when he gave up.
    virtual bool ask(AcApDocument& document, PlotJob& job) = 0;
    virtual void preview(AcApDocument& document, const PlotJob& job) = 0;
};
// Null: everything is asked on the command line. Not owned.
void setPlotWindows(PlotWindows* windows);

// Adds the commands to the command stack. Once, after initializeEditor.
void initializePlotting();

} // namespace host
