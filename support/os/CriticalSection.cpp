// CriticalSection, by a recursive mutex.
#include "support/CriticalSection.h"

CriticalSection::CriticalSection() = default;
CriticalSection::~CriticalSection() = default;

void CriticalSection::enter() {
    m_mutex.lock();
}

void CriticalSection::leave() noexcept {
    m_mutex.unlock();
}
