#include "NyServer/socket/ServerDoor.h"

#include <new>

ServerDoor::ServerDoor() : m_mutex(::CreateMutexW(nullptr, FALSE, nullptr)) {
    if (!m_mutex) throw std::bad_alloc();
}

bool ServerDoor::admit(Visit& visit) {
    const Lock lock(*this);
    if (m_state != State::Open) return false;
    ++m_residents;
    begin(visit, false);
    return true;
}

ServerDoor::State ServerDoor::comeBack(Visit& visit) {
    const Lock lock(*this);
    if (m_state != State::Gone) begin(visit, false);
    return m_state;
}

bool ServerDoor::enterToJudge(Visit& visit) {
    const Lock lock(*this);
    if (m_state != State::Open) return false;
    begin(visit, true);
    return true;
}

void ServerDoor::leave(Visit& visit) {
    const Lock lock(*this);
    Visit** link = &m_visits;
    while (*link && *link != &visit) link = &(*link)->m_next;
    if (*link) *link = visit.m_next;
}

void ServerDoor::moveOut() {
    const Lock lock(*this);
    --m_residents;
}

bool ServerDoor::shutIfIdle() {
    const Lock lock(*this);
    if (m_residents > 0 || hasOthersInside(Whom::Everybody)) return false;
    m_state = State::Shut;
    return true;
}

void ServerDoor::shut() {
    const Lock lock(*this);
    m_state = State::Shut;
}

void ServerDoor::awaitEmpty() const {
    awaitOthers(Whom::Everybody);
}

void ServerDoor::forgetServer() {
    {
        const Lock lock(*this);
        m_state = State::Gone;
    }
    // A peer's judge is not waited for: the accepting thread touches nothing of the server
    // afterwards.
    awaitOthers(Whom::Residents);
}

void ServerDoor::begin(Visit& visit, bool isJudging) {
    visit.m_isJudging = isJudging;
    visit.m_thread = ::GetCurrentThreadId();
    visit.m_next = m_visits;
    m_visits = &visit;
}

bool ServerDoor::hasOthersInside(Whom whom) const {
    const Lock lock(*this);
    for (const Visit* visit = m_visits; visit; visit = visit->m_next) {
        const bool counts = whom == Whom::Everybody || !visit->m_isJudging;
        if (counts && visit->m_thread != ::GetCurrentThreadId()) return true;
    }
    return false;
}

void ServerDoor::awaitOthers(Whom whom) const {
    while (hasOthersInside(whom)) ::Sleep(1);
}
