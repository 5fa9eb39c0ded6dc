// KSTBase: a record source with named parameters.
#pragma once

#include "record/iKST.h"
#include "record/parts/ParamList.h"
#include "support/LifeWatch.h"

/// Parameters are an ordered list of key/value pairs. Keys compare ignoring case. Copies of a database share
/// the list: a parameter changed through one is seen by the other.
class KESTA_API KSTBase : public iKST {
 public:
    /// The pairs, and how their list is held.
    using Params = ParamList::Pairs;
    using ParamsPtr = Zr::Ptr<ParamList, Zr::DtorTraits, Zr::ExternalRefCountTraits>;

    ~KSTBase() override;

    /// The index of the first pair with that key, an empty key among them; -1 when there is none.
    int findParamIndex(const LightweightString<char>& key) const noexcept;

    /// Appends the pair, or gives the first pair of that key the value (the key keeps its spelling). Returns
    /// 0, or -1 with nothing changed when the key is empty.
    int add_param(const LightweightString<char>& key, const LightweightString<char>& value) override;

    /// add_param with plain texts; null is the empty text.
    void set_param_val(const char* key, const char* value) override;

    /// The value of the first pair with that key; "" when there is none. Valid until the parameters change.
    const char* get_param_val(const char* key) const override;

    /// The same as a shared string.
    LightweightString<char> getParamVal(const char* key) const;

    /// All pairs, in order.
    const Params& params() const noexcept { return m_params->pairs(); }

    /// Tells those who point at this object without owning it when it is gone.
    LifeWatch watch() const noexcept { return LifeWatch(m_life); }

 protected:
    KSTBase();

    /// The one way in which both databases and views write their parameters, one line each: "key:value" in
    /// quotes.
    void writeParams(class TextFile& file) const;

    ParamsPtr m_params;  ///< never null

 private:
    LifeToken m_life;
};
