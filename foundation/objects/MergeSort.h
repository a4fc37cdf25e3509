// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_MERGESORT_H
#define ZQFOUNDATION_OBJECTS_MERGESORT_H

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace ZQFoundation::detail {

/// Sorts stably by an order that hosts may have written: an order that contradicts itself, or returns random
/// results, yields some permutation of the items and never reads beyond them, as the standard library's sorts
/// may. If the order throws, `items` is still a permutation. `comesBefore(a, b)` is true if a must come
/// before b.
template <class Item, class ComesBefore>
void mergeSort(std::vector<Item>& items, const ComesBefore& comesBefore) {
    std::vector<Item> merged(items.size());
    for (std::size_t width = 1; width < items.size(); width *= 2) {
        for (std::size_t start = 0; start < items.size(); start += 2 * width) {
            const std::size_t middle = std::min(start + width, items.size());
            const std::size_t end = std::min(middle + width, items.size());
            std::size_t left = start;
            std::size_t right = middle;
            for (std::size_t out = start; out < end; ++out) {
                const bool takesRight =
                    left == middle || (right < end && comesBefore(items[right], items[left]));
                merged[out] = takesRight ? items[right++] : items[left++];
            }
        }
        items.swap(merged);
    }
}

} // namespace ZQFoundation::detail

#endif
