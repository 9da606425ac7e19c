#include "AfxAddressSet.h"

#include <utility>

AfxAddressSet::Page& AfxAddressSet::pageOf(uintptr_t number) {
    for (size_t slot = firstSlot(number);; slot = (slot + 1) & (m_slots - 1)) {
        Page& page = m_pages[slot];
        if (page.number == number) return page;
        if (page.number == 0) return addPage(slot, number);
    }
}

AfxAddressSet::Page& AfxAddressSet::addPage(size_t slot, uintptr_t number) {
    if (2 * (m_used + 1) <= m_slots) {
        ++m_used;
        m_pages[slot].number = number;
        return m_pages[slot];
    }
    std::vector<Page> larger(m_slots * 4);
    const Page* const old = std::exchange(m_pages, larger.data());
    const size_t oldSlots = std::exchange(m_slots, larger.size());
    m_shift = 64 - std::countr_zero(m_slots);
    m_used = 0;
    m_recent.fill({});
    for (size_t i = 0; i < oldSlots; ++i) {
        if (old[i].number != 0) pageOf(old[i].number).words = old[i].words;
    }
    m_many.swap(larger);
    return pageOf(number);
}
