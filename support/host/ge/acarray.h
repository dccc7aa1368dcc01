// AcArray: the interface's growable array. Its length is the number of elements (logical length); its
// physical length is the room allocated. Indices are ints and must be valid: a bad one is a bug (assert).
#pragma once

#include <algorithm>
#include <cassert>
#include <concepts>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <new>
#include <utility>

template <class T>
class AcArray {
public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    explicit AcArray(int initPhysicalLength = 0, int initGrowLength = 8)
        : m_growLength(std::max(initGrowLength, 1)) {
        reallocate(initPhysicalLength);
    }
    AcArray(std::initializer_list<T> values) : AcArray(static_cast<int>(values.size())) {
        for (const T& value : values)
            append(value);
    }
    AcArray(const AcArray& other) : m_growLength(other.m_growLength) { append(other); }
    AcArray(AcArray&& other) noexcept { exchange(other); }
    ~AcArray() {
        std::destroy_n(m_data, m_length);
        release(m_data, m_physicalLength);
    }
    AcArray& operator=(const AcArray& other) {
        AcArray copy(other);
        exchange(copy);
        return *this;
    }
    AcArray& operator=(AcArray&& other) noexcept {
        exchange(other);
        return *this;
    }

    bool operator==(const AcArray& other) const {
        return std::equal(begin(), end(), other.begin(), other.end());
    }

    T& operator[](int index) { return at(index); }
    const T& operator[](int index) const { return at(index); }
    T& at(int index) {
        assert(isValid(index));
        return m_data[index];
    }
    const T& at(int index) const {
        assert(isValid(index));
        return m_data[index];
    }
    AcArray& setAt(int index, const T& value) {
        at(index) = value;
        return *this;
    }
    AcArray& setAll(const T& value) {
        const T copy(value);
        std::fill(begin(), end(), copy);
        return *this;
    }
    T& first() { return at(0); }
    const T& first() const { return at(0); }
    T& last() { return at(m_length - 1); }
    const T& last() const { return at(m_length - 1); }

    // Appends one element and returns its index.
    int append(const T& value) { return emplace(value); }
    int append(T&& value) { return emplace(std::move(value)); }
    // A template, so that a braced value is never taken for an array.
    template <std::derived_from<AcArray> Array>
    AcArray& append(const Array& other) {
        return insertAt(m_length, other);
    }
    void push_back(const T& value) { emplace(value); }
    void push_back(T&& value) { emplace(std::move(value)); }

    AcArray& insertAt(int index, const T& value) {
        emplace(value);
        std::rotate(m_data + index, m_data + m_length - 1, m_data + m_length);
        return *this;
    }
    AcArray& insertAt(int index, T&& value) {
        emplace(std::move(value));
        std::rotate(m_data + index, m_data + m_length - 1, m_data + m_length);
        return *this;
    }
    template <std::derived_from<AcArray> Array>
    AcArray& insertAt(int index, const Array& other) {
        assert(index >= 0 && index <= m_length);
        const int count = other.m_length, oldLength = m_length;
        if (oldLength + count > m_physicalLength)
            reallocate(grownLength(oldLength + count));
        for (int i = 0; i < count; ++i) { // also right when other is this array
            std::construct_at(m_data + m_length, other.m_data[i]);
            ++m_length;
        }
        std::rotate(m_data + index, m_data + oldLength, m_data + m_length);
        return *this;
    }

    AcArray& removeAt(int index) { return removeSubArray(index, index); }
    // Removes the first element equal to value at or after startIndex; false when there is none.
    bool remove(const T& value, int startIndex = 0) {
        const int index = findFrom(value, startIndex);
        if (index >= 0)
            removeAt(index);
        return index >= 0;
    }
    AcArray& removeFirst() { return removeAt(0); }
    AcArray& removeLast() { return removeAt(m_length - 1); }
    AcArray& removeAll() { return setLogicalLength(0); }
    // Removes the elements startIndex to endIndex, both included.
    AcArray& removeSubArray(int startIndex, int endIndex) {
        assert(isValid(startIndex) && isValid(endIndex) && startIndex <= endIndex);
        std::move(m_data + endIndex + 1, end(), m_data + startIndex);
        truncate(m_length - (endIndex - startIndex + 1));
        return *this;
    }

    bool contains(const T& value, int startIndex = 0) const { return findFrom(value, startIndex) >= 0; }
    // Index of the first element equal to value, or -1.
    int find(const T& value) const { return findFrom(value, 0); }
    bool find(const T& value, int& foundAt, int startIndex = 0) const {
        const int index = findFrom(value, startIndex);
        if (index >= 0)
            foundAt = index;
        return index >= 0;
    }
    int findFrom(const T& value, int startIndex) const {
        assert(startIndex >= 0);
        for (int i = startIndex; i < m_length; ++i)
            if (m_data[i] == value)
                return i;
        return -1;
    }

    int length() const { return m_length; }
    int logicalLength() const { return m_length; }
    int size() const { return m_length; }
    bool isEmpty() const { return m_length == 0; }
    bool empty() const { return m_length == 0; }
    int physicalLength() const { return m_physicalLength; }
    int growLength() const { return m_growLength; }
    // New elements are value-initialised.
    AcArray& setLogicalLength(int length) {
        assert(length >= 0);
        if (length > m_physicalLength)
            reallocate(grownLength(length));
        for (; m_length < length; ++m_length)
            std::construct_at(m_data + m_length);
        truncate(length);
        return *this;
    }
    // A physical length below the logical one cuts the array.
    AcArray& setPhysicalLength(int length) {
        assert(length >= 0);
        truncate(length);
        reallocate(length);
        return *this;
    }
    AcArray& setGrowLength(int length) {
        assert(length > 0);
        m_growLength = length;
        return *this;
    }

    AcArray& reverse() {
        std::reverse(begin(), end());
        return *this;
    }
    AcArray& swap(int first, int second) {
        std::swap(at(first), at(second));
        return *this;
    }
    void swap(AcArray& other) noexcept { exchange(other); }

    T* asArrayPtr() { return m_data; }
    const T* asArrayPtr() const { return m_data; }
    T* begin() { return m_data; }
    T* end() { return m_data + m_length; }
    const T* begin() const { return m_data; }
    const T* end() const { return m_data + m_length; }

private:
    bool isValid(int index) const { return index >= 0 && index < m_length; }

    // Doubles, but adds growLength at least, so that appending is constant on average.
    int grownLength(int needed) const {
        return std::max(needed, m_length + std::max(m_growLength, m_length));
    }

    static void release(T* data, int count) {
        if (data)
            std::allocator<T>().deallocate(data, static_cast<std::size_t>(count));
    }

    void reallocate(int physicalLength) {
        if (physicalLength == m_physicalLength)
            return;
        T* data = physicalLength > 0 ? std::allocator<T>().allocate(static_cast<std::size_t>(physicalLength))
                                     : nullptr;
        if (m_data != nullptr && data != nullptr) {
            std::uninitialized_move_n(m_data, m_length, data);
            std::destroy_n(m_data, m_length);
        }
        release(m_data, m_physicalLength);
        m_data = data;
        m_physicalLength = physicalLength;
    }

    template <class Value>
    int emplace(Value&& value) {
        if (m_length == m_physicalLength) {
            T copy(std::forward<Value>(value)); // value may live in this array
            reallocate(grownLength(m_length + 1));
            std::construct_at(m_data + m_length, std::move(copy));
        } else {
            std::construct_at(m_data + m_length, std::forward<Value>(value));
        }
        return m_length++;
    }

    void truncate(int length) {
        if (length < m_length) {
            std::destroy_n(m_data + length, m_length - length);
            m_length = length;
        }
    }

    void exchange(AcArray& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_length, other.m_length);
        std::swap(m_physicalLength, other.m_physicalLength);
        std::swap(m_growLength, other.m_growLength);
    }

    T* m_data = nullptr;
    int m_length = 0;
    int m_physicalLength = 0;
    int m_growLength = 8;
};
