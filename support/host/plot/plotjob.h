// What PLOT does once everything is answered, and what can be answered: devices, sizes of paper, the file's
// name.
#pragma once

#include "host/db/db.h"
#include "host/plot/pagesetup.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

class AcApDocument;

namespace host {

struct PlotDevice {
    const wchar_t* name;
    const wchar_t* extension; // with its point
};
std::span<const PlotDevice> plotDevices();
// The device whose name the text holds ("PDF", "DWG To PDF.pc3"); null for none.
const PlotDevice* plotDeviceNamed(std::wstring_view text);

struct PaperSize {
    const wchar_t* name;
    Paper paper; // upright
};
std::span<const PaperSize> paperSizes();
// "A3", "ISO A3 (420.00 x 297.00 毫米)", "420x297": upright; nothing for other texts.
std::optional<Paper> paperNamed(std::wstring_view text);
std::wstring paperText(const Paper& paper);

// "1:500", "1=500", "1/500", "2": paper units a drawing unit; 0 for other texts.
double plotScale(std::wstring_view text);
std::wstring plotScaleText(const PageSetup& setup);

struct PlotJob {
    AcDbObjectId layout;
    const PlotDevice* device = nullptr;
    PageSetup setup;
    std::wstring file; // as typed
    bool keepsSetup = false;

    const AcDbLayout& tab() const;
};

// The tab that is shown, or the one of this name, as it was set up; paper is always chosen. Nothing for a
// name that is none.
std::optional<PlotJob> plotJobOf(AcApDocument& document, const std::wstring& layoutName = {});
// Beside the drawing, by its name and the tab's.
std::wstring plotFileName(const AcApDocument& document, const PlotJob& job);
// The drawing's file that the answer means: the device's extension is added where it is missing.
std::filesystem::path plotFile(const AcApDocument& document, const PlotJob& job);
// The result is empty or one line that says what went wrong.
std::wstring runPlotJob(AcApDocument& document, const PlotJob& job);
// As the layout's own from now on.
void keepPageSetup(const PlotJob& job);

} // namespace host
