// SPDX-License-Identifier: Apache-2.0
// A stable sort that stays within its bounds whatever the comparison returns; for Foundation's own sources.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace pelvor {

namespace detail {

template <class T, class Compare>
void insertionSort(T* items, std::size_t count, Compare&& compare) {
    for (std::size_t i = 1; i < count; ++i) {
        T item = items[i];
        std::size_t place = i;
        while (place > 0 && compare(items[place - 1], item) > 0) --place;
        std::move_backward(items + place, items + i, items + i + 1);
        items[place] = item;
    }
}

template <class T, class Compare>
void mergeSort(T* items, std::size_t count, T* scratch, Compare&& compare) {
    if (count <= 8) return insertionSort(items, count, compare);
    std::size_t half = count / 2;
    mergeSort(items, half, scratch, compare);
    mergeSort(items + half, count - half, scratch, compare);
    if (compare(items[half - 1], items[half]) <= 0) return;
    std::copy(items, items + half, scratch);
    T* left = scratch;
    T* right = items + half;
    T* out = items;
    while (left < scratch + half && right < items + count)
        *out++ = compare(*left, *right) > 0 ? *right++ : *left++;
    std::copy(left, scratch + half, out);
}

}  // namespace detail

/// Sorts plain items by `compare`, which returns more than 0 if its first argument belongs behind the second.
/// Items that compare as equal keep their order. If a comparison contradicts itself, the items end up in some
/// order, each of them once. If a comparison raises, an item may stand in the vector twice or not at all.
template <class T, class Compare>
void sortStably(std::vector<T>& items, Compare&& compare) {
    std::vector<T> scratch(items.size() / 2);
    detail::mergeSort(items.data(), items.size(), scratch.data(), compare);
}

}  // namespace pelvor
