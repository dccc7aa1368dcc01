// Sessions in which host commands run, and questions about what they drew.
#pragma once

#include "tests/ed/host.h"

#include "host/commands/commands.h"

namespace commandtest {

class CommandTest : public edtest::HostTest {
protected:
    CommandTest() {
        static const bool initialized = [] {
            host::initializeCommands();
            return true;
        }();
        EXPECT_TRUE(initialized);
    }

    /// Entities of the current space that are there, in drawing order.
    template <class T = AcDbEntity>
    std::vector<T*> entities() {
        std::vector<T*> found;
        const auto* space = host::peek<AcDbBlockTableRecord>(database().currentSpaceId());
        for (AcDbStub* stub : space->entities()) {
            if (T* entity = host::peek<T>(AcDbObjectId(stub))) {
                found.push_back(entity);
            }
        }
        return found;
    }
    bool showed(const wchar_t* text) const { return transcript.shown.find(text) != std::wstring::npos; }
};

/// Lets entities be read without being opened.
template <class T>
class Read {
public:
    explicit Read(T* entity) : mEntity(entity), mAccess(*entity) {}
    T* operator->() const { return mEntity; }

private:
    T* mEntity;
    host::ReadAccess mAccess;
};

inline double lengthOf(const AcDbCurve& curve) {
    const host::ReadAccess access(curve);
    double end = 0.0;
    double length = 0.0;
    curve.getEndParam(end);
    curve.getDistAtParam(end, length);
    return length;
}

} // namespace commandtest
