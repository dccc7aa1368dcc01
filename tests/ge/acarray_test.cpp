// AcArray against a plain list of operations, with elements that own memory and values that live in the
// array.
#include "host/ge/acarray.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

template <class T>
std::vector<T> listOf(const AcArray<T>& array) {
    return {array.begin(), array.end()};
}

TEST(AcArray, BehavesLikeAListUnderRandomOperations) {
    std::mt19937 random(7);
    AcArray<std::string> array(2, 3);
    std::vector<std::string> list;
    for (int step = 0; step < 5000; ++step) {
        const int size = static_cast<int>(list.size());
        const auto pick = [&](int limit) {
            return static_cast<int>(random() % static_cast<unsigned>(limit));
        };
        const std::string text(static_cast<std::size_t>(pick(40)), static_cast<char>('a' + pick(26)));
        switch (pick(9)) {
        case 0:
        case 1:
            EXPECT_EQ(array.append(text), size);
            list.push_back(text);
            break;
        case 2:
            if (size > 0) { // the value lives in the array that grows
                array.append(array[0]);
                list.push_back(std::string(list[0]));
            }
            break;
        case 3: {
            const int at = pick(size + 1);
            array.insertAt(at, text);
            list.insert(list.begin() + at, text);
            break;
        }
        case 4:
            if (size > 0 && size < 200) {
                const int at = pick(size + 1);
                array.insertAt(at, array);
                const std::vector<std::string> copy(list);
                list.insert(list.begin() + at, copy.begin(), copy.end());
            }
            break;
        case 5:
            if (size > 0) {
                const int from = pick(size), to = from + pick(size - from);
                array.removeSubArray(from, to);
                list.erase(list.begin() + from, list.begin() + to + 1);
            }
            break;
        case 6:
            if (size > 0) {
                const std::string value = list[static_cast<std::size_t>(pick(size))];
                EXPECT_TRUE(array.contains(value));
                EXPECT_TRUE(array.remove(value));
                list.erase(std::find(list.begin(), list.end(), value));
            }
            break;
        case 7: {
            const int length = pick(size + 5);
            array.setLogicalLength(length);
            list.resize(static_cast<std::size_t>(length));
            break;
        }
        default:
            array.reverse();
            std::reverse(list.begin(), list.end());
        }
        ASSERT_EQ(listOf(array), list) << "step " << step;
        ASSERT_GE(array.physicalLength(), array.length());
    }
}

TEST(AcArray, CopiesAndMovesKeepTheirElements) {
    AcArray<std::string> array{"one", "two"};
    AcArray<std::string> copy(array);
    copy[0] = "changed";
    EXPECT_EQ(array[0], "one");
    AcArray<std::string> moved(std::move(copy));
    EXPECT_EQ(moved.length(), 2);
    array = std::move(moved);
    EXPECT_EQ(array.first(), "changed");
    AcArray<std::string>& self = array;
    array = self;
    EXPECT_EQ(array.last(), "two");
}

TEST(AcArray, PhysicalLengthCutsAndLengthsKeepTheirMeaning) {
    AcArray<int> array(10);
    EXPECT_EQ(array.physicalLength(), 10);
    EXPECT_TRUE(array.isEmpty());
    for (int i = 0; i < 6; ++i)
        array.append(i);
    EXPECT_EQ(array.physicalLength(), 10);
    array.setPhysicalLength(4);
    EXPECT_EQ(array.logicalLength(), 4);
    EXPECT_EQ(array.last(), 3);
    array.setAll(array[2]);
    EXPECT_EQ(listOf(array), std::vector<int>(4, 2));
    int found = -1;
    EXPECT_FALSE(array.find(9, found));
    EXPECT_TRUE(array.find(2, found, 1));
    EXPECT_EQ(found, 1);
}

TEST(AcArray, HoldsBoolsAsBools) {
    AcArray<bool> array;
    array.append(true);
    array.append(false);
    bool* values = array.asArrayPtr();
    EXPECT_TRUE(values[0]);
    EXPECT_FALSE(values[1]);
}

} // namespace
