// A set of object addresses that is tested and filled in a few instructions. Internal to the class
// library.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

// One bit for each possible address, in pages of 4096 bytes of address space: objects that were
// allocated one after the other share a page, whose bits lie in one line of the processor's cache.
// Not for concurrent use.
class AfxAddressSet {
  public:
    static constexpr size_t kAlignment = 8;

    // REQUIRES: `address` is a multiple of kAlignment and not null.
    // True when the address was not in the set; it is now.
    bool insert(const void* address) {
        const uintptr_t value = reinterpret_cast<uintptr_t>(address);
        uint64_t& word = wordsOf(value >> kPageBits)[value >> kWordBits & (kWords - 1)];
        const uint64_t bit = uint64_t{1} << (value / kAlignment & 63);
        const bool isNew = (word & bit) == 0;
        word |= bit;
        return isNew;
    }

  private:
    static constexpr int kPageBits = 12;
    static constexpr int kWordBits = 9;  // 64 addresses, 8 bytes apart
    static constexpr size_t kWords = 8;

    using Words = std::array<uint64_t, kWords>;
    struct Page {
        uintptr_t number = 0;  // 0: a free slot; no object lies in the first page
        Words words{};
    };
    struct Recent {
        uintptr_t number = 0;
        Words* words = nullptr;
    };

    // A table of records takes turns between few pages.
    Words& wordsOf(uintptr_t number) {
        Recent& recent = m_recent[number % kRecent];
        if (recent.number != number) [[unlikely]]
            recent = {number, &pageOf(number).words};
        return *recent.words;
    }

    // A hash table with linear probing, at most half full.
    Page& pageOf(uintptr_t number);
    size_t firstSlot(uintptr_t number) const {
        constexpr uint64_t kGoldenRatio = 0x9E3779B97F4A7C15;  // spreads neighbouring pages
        return static_cast<size_t>(number * kGoldenRatio >> m_shift);
    }
    Page& addPage(size_t slot, uintptr_t number);

    static constexpr size_t kFewPages = 8;
    static constexpr size_t kRecent = 16;

    std::array<Recent, kRecent> m_recent;
    std::array<Page, kFewPages> m_few;  // enough for a small message
    std::vector<Page> m_many;
    Page* m_pages = m_few.data();
    size_t m_slots = kFewPages;
    size_t m_used = 0;
    int m_shift = 64 - std::countr_zero(kFewPages);
};
