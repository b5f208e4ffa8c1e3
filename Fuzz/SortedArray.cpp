// SPDX-License-Identifier: Apache-2.0
// Sorted arrays and float vectors under random operations, beside plain vectors.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNumber.h"
#include "NSArray-PelvorAdditions.h"
#include "PBFloatArray.h"
#include "PBFloatVector.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"

namespace pelvor {
namespace {

int compareNumbers(id first, id second, void* calls) {
    ++*static_cast<int*>(calls);
    int a = cast<NSNumber>(first)->intValue(), b = cast<NSNumber>(second)->intValue();
    return a < b ? -1 : a > b ? 1 : 0;
}

struct Found {
    NSUInteger index = NSNotFound;
    NSUInteger next = 0;
};

Found search(const std::vector<int>& values, int value) {
    if (values.empty()) return {};
    long low = 0, high = static_cast<long>(values.size()) - 1;
    for (;;) {
        long middle = low + (high - low) / 2;
        int element = values[static_cast<std::size_t>(middle)];
        if (value == element) {
            while (middle > low && values[static_cast<std::size_t>(middle - 1)] == value) --middle;
            return {static_cast<NSUInteger>(middle), 0};
        }
        if (value < element) {
            if (middle == low) break;
            high = middle - 1;
        } else {
            if (middle == high) {
                low = high + 1;
                break;
            }
            low = middle + 1;
        }
    }
    return {NSNotFound, static_cast<NSUInteger>(low)};
}

struct SortedPair {
    NSMutableArray* array = NSMutableArray::array();
    std::vector<int> values;
    int calls = 0;

    void perform(unsigned operation, int value) {
        NSNumber* number = NSNumber::numberWithInt(value);
        Found found = search(values, value);
        auto place = values.begin() + (found.index == NSNotFound ? found.next : found.index);
        if (operation < 5) {
            NSUInteger index =
                insertObject_withCompareFunction_context(array, number, compareNumbers, &calls);
            require(index == static_cast<NSUInteger>(place - values.begin()), "inserted elsewhere");
            values.insert(place, value);
        } else if (operation == 5) {
            bool isThere = found.index != NSNotFound;
            require(
                removeObject_withCompareFunction_context(array, number, compareNumbers, &calls) == isThere,
                "removed something else");
            if (isThere) values.erase(place, std::upper_bound(place, values.end(), value));
        } else {
            checkSearch(number, found);
        }
    }

    void checkSearch(NSNumber* number, Found found) {
        NSUInteger next = 0, count = static_cast<NSUInteger>(values.size());
        require(_indexOfObject_withCompareFunction_context_nextIndex(array, number, compareNumbers, &calls,
                                                                     &next) == found.index,
                "found elsewhere");
        require(found.index != NSNotFound || next == found.next, "another place for it");
        NSUInteger nearest = found.index != NSNotFound ? found.index
                             : found.next < count      ? found.next
                                                       : NSNotFound;
        require(nearestIndexOfObject_withCompareFunction_context(array, number, compareNumbers, &calls) ==
                    nearest,
                "another is nearest");
    }

    void checkContent() {
        std::vector<int> content;
        for (id number : array) content.push_back(cast<NSNumber>(number)->intValue());
        require(content == values, "another content");
        auto count = static_cast<NSUInteger>(values.size());
        require(
            !count || _isSortedInRange_withCompareFunction_context(array, {0, count}, compareNumbers, &calls),
            "not sorted");
    }
};

// What raises does so with both, and changes nothing.
void performOnFloats(PBFloatVector* vector, std::vector<float>& values, unsigned operation, unsigned index) {
    bool raises = false, isOutside = index >= values.size();
    auto place = values.begin() + std::min<std::ptrdiff_t>(index, std::ssize(values));
    auto value = static_cast<float>(index);
    try {
        if (operation < 4) {
            vector->addFloat(value);
        } else if (operation == 4) {
            isOutside = index > values.size();
            vector->insertFloat_atIndex(value, index);
        } else if (operation == 5) {
            vector->removeFloatAtIndex(index);
        } else {
            vector->replaceFloatAtIndex_withFloat(index, value);
        }
    } catch (const NSException&) {
        raises = true;
    }
    require(raises == (operation >= 4 && isOutside), "raises otherwise");
    if (raises) return;
    if (operation < 4) values.push_back(value);
    if (operation == 4) values.insert(place, value);
    if (operation == 5) values.erase(place);
    if (operation > 5) *place = value;
    float sum = 0;
    for (float each : values) sum += each;
    auto count = static_cast<NSUInteger>(values.size());
    require(vector->count() == count && (!count || vector->sumFloatsInRange({count - 1, 1}) == sum),
            "floats");
}

void run(const std::uint8_t* data, std::size_t size) {
    SortedPair sorted;
    auto vector = PBFloatVector::initWithCapacity(1);
    std::vector<float> floats;
    int kinds = 1 + data[0] % 64;
    for (std::size_t i = 1; i + 1 < size; i += 2) {
        sorted.perform(data[i] % 8, data[i + 1] % kinds);
        performOnFloats(vector, floats, data[i] / 8 % 8, data[i + 1] % 32);
    }
    sorted.checkContent();
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelvor::AutoreleasePool pool;
    if (size >= 3) pelvor::run(data, std::min<std::size_t>(size, 600));
    return 0;
}
