#include "host/ed/desktop.h"

#include <thread>

namespace host {
namespace {

Desktop*& installed() {
    static Desktop* desktop = nullptr;
    return desktop;
}

} // namespace

bool Desktop::wait(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
    return true;
}

Desktop& desktop() {
    static Desktop none;
    return installed() != nullptr ? *installed() : none;
}

void setDesktop(Desktop* desktop) {
    installed() = desktop;
}

} // namespace host
