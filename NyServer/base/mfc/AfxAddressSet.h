// A set of object addresses that is tested and filled in a few instructions. Internal to the class
// library.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

// What archives write is nearly always new, so that this is asked for every object and answered
// from bits. One bit for each possible address, in pages of 4096 bytes of address space: objects
// that were allocated one after the other share a page, whose bits lie in one line of the
// processor's cache. Not for concurrent use.
class AfxAddressSet {
  public:
    static constexpr size_t kAlignment = 8;

    // One address's bit.
    struct Place {
        uint64_t* word;
        uint64_t bit;

        bool isSet() const { return (*word & bit) != 0; }
        void set() const { *word |= bit; }
    };

    // The place of an address whose page was asked for lately; false when it was not, or when the
    // address is not a multiple of kAlignment.
    bool findRecent(const void* address, Place& place) const {
        const uintptr_t value = reinterpret_cast<uintptr_t>(address);
        const Recent& recent = m_recent[value >> kPageBits & (kRecent - 1)];
        if ((value & ~kInPage) != recent.page) return false;
        place = placeIn(recent.words, value);
        return true;
    }

    // REQUIRES: `address` is a multiple of kAlignment and not null.
    Place find(const void* address) {
        const uintptr_t value = reinterpret_cast<uintptr_t>(address);
        uint64_t* const words = pageOf(value >> kPageBits).words.data();
        m_recent[value >> kPageBits & (kRecent - 1)] = {value & ~kInPage, words};
        return placeIn(words, value);
    }

  private:
    static constexpr int kPageBits = 12;
    static constexpr int kWordBits = 9;  // 64 addresses, 8 bytes apart
    static constexpr uintptr_t kInPage = (uintptr_t{1} << kPageBits) - kAlignment;
    static constexpr size_t kWords = 8;

    struct Page {
        uintptr_t number = 0;  // 0: a free slot; no object lies in the first page
        std::array<uint64_t, kWords> words{};
    };
    // A table of records takes turns between few pages.
    struct Recent {
        uintptr_t page = 0;  // the address of its first byte
        uint64_t* words = nullptr;
    };

    static Place placeIn(uint64_t* words, uintptr_t value) {
        return {words + (value >> kWordBits & (kWords - 1)),
                uint64_t{1} << (value / kAlignment & 63)};
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
