// A part of an entity that nearly always has its standard values, and costs a pointer then.
#pragma once

#include <cstring>
#include <memory>
#include <type_traits>

namespace host {

template <class T>
class Uncommon {
public:
    const T& operator*() const {
        static const T standard;
        return mValue != nullptr ? *mValue : standard;
    }
    const T* operator->() const { return &**this; }

    void assign(const T& value) {
        static_assert(std::is_trivially_copyable_v<T>);
        static const T standard;
        const bool isStandard = std::memcmp(&value, &standard, sizeof value) == 0;
        mValue = isStandard ? nullptr : std::make_unique<T>(value);
    }
    /// Sets one member; nothing is made for the value it has anyway.
    template <class Member>
    void set(Member T::*member, const std::type_identity_t<Member>& value) {
        static_assert(std::is_trivially_copyable_v<Member>);
        if (std::memcmp(&((**this).*member), &value, sizeof value) == 0) {
            return; // equal to the bit: comparing vectors has a tolerance
        }
        if (mValue == nullptr) {
            mValue = std::make_unique<T>();
        }
        (*mValue).*member = value;
    }

private:
    std::unique_ptr<T> mValue;
};

} // namespace host
