// ParamList: the named parameters of a record source, in order.
//
// Keys compare ignoring case and may come twice, as they do in files; the first pair of a key is the one that
// is found.
//
// Thread-safety: one thread at a time; reading from several while nobody writes is safe.
#pragma once

#include <cstddef>
#include <map>
#include <vector>

#include "support/AttribValuePair.h"

class ParamList {
 public:
    using Pairs = std::vector<Zr::AttribValuePair>;

    const Pairs& pairs() const noexcept { return m_pairs; }
    bool empty() const noexcept { return m_pairs.empty(); }

    /// The index of the first pair with that key, an empty key among them; -1 when there is none.
    int find(const LightweightString<char>& key) const noexcept {
        const auto found = m_firstOfKey.find(key);
        return found == m_firstOfKey.end() ? -1 : static_cast<int>(found->second);
    }

    void append(const LightweightString<char>& key, const LightweightString<char>& value) {
        m_pairs.emplace_back(key, value, '=');
        try {
            m_firstOfKey.try_emplace(key, m_pairs.size() - 1);
        } catch (...) {
            m_pairs.pop_back();
            throw;
        }
    }

    void setValue(int index, const LightweightString<char>& value) noexcept {
        m_pairs[static_cast<std::size_t>(index)].setValue(value);
    }

    void clear() noexcept {
        m_pairs.clear();
        m_firstOfKey.clear();
    }

 private:
    Pairs m_pairs;
    std::map<LightweightString<char>, std::size_t, IgnoringCase> m_firstOfKey;
};
