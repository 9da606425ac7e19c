// A list of network adapters as the system would give it.
#pragma once

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "NyServer/host/MachineIdentity.h"

class AdapterChain {
  public:
    AdapterChain& add(const std::vector<BYTE>& hardware,
                      const std::vector<std::string>& addresses) {
        IP_ADAPTER_INFO& adapter = m_adapters.emplace_back();
        if (m_adapters.size() > 1) m_adapters[m_adapters.size() - 2].Next = &adapter;
        adapter.AddressLength = static_cast<UINT>(hardware.size());
        std::copy(hardware.begin(), hardware.end(), adapter.Address);
        IP_ADDR_STRING* place = &adapter.IpAddressList;
        for (size_t i = 0; i < addresses.size(); ++i) {
            if (i > 0) place = place->Next = &m_addresses.emplace_back();
            std::strcpy(place->IpAddress.String, addresses[i].c_str());
        }
        return *this;
    }

    // Null when the chain is empty.
    const IP_ADAPTER_INFO* first() const { return m_adapters.empty() ? nullptr : &m_adapters[0]; }
    IP_ADAPTER_INFO& last() { return m_adapters.back(); }

  private:
    std::deque<IP_ADAPTER_INFO> m_adapters;  // which do not move when more come
    std::deque<IP_ADDR_STRING> m_addresses;
};
