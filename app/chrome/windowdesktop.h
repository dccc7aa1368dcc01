// The desktop as commands see it: drawings over the clipboard of the system, the window's panels, its events.
#pragma once

#include "host/ed/desktop.h"

namespace app {

class MainWindow;

class WindowDesktop final : public host::Desktop {
public:
    explicit WindowDesktop(MainWindow& window);
    ~WindowDesktop() override;
    WindowDesktop(const WindowDesktop&) = delete;
    WindowDesktop& operator=(const WindowDesktop&) = delete;

    /// What is offered is made now, since the program ends.
    void keepOffer();

    // Desktop.
    void offerDrawing(std::function<std::string()> drawing) override;
    std::optional<std::string> offeredDrawing() override;
    std::optional<std::wstring> offeredText() override;
    bool showProperties(bool visible) override;
    bool wait(std::chrono::milliseconds time) override;

private:
    MainWindow& mWindow;
};

} // namespace app
