// Identity stamps: names for listeners.
#pragma once

#include <cstdint>

#include "support/Export.h"

/// A name that no other default-made stamp of the process has. Copies name the same thing.
/// Thread-safety: stamps may be made on any thread.
class KESTA_API IdStamp {
 public:
    IdStamp() noexcept;
    IdStamp(const IdStamp&) noexcept = default;
    IdStamp& operator=(const IdStamp&) noexcept = default;

    friend bool operator==(const IdStamp& a, const IdStamp& b) noexcept { return a.m_number == b.m_number; }
    friend bool operator!=(const IdStamp& a, const IdStamp& b) noexcept { return a.m_number != b.m_number; }

 private:
    std::uint64_t m_number;
};

/// Something that carries an identity stamp.
class Identified {
 public:
    const IdStamp& id() const noexcept { return m_id; }
    void id(const IdStamp& stamp) noexcept { m_id = stamp; }

 private:
    IdStamp m_id;
};
