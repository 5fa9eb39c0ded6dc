// The parameters of a record source.
#include "record/KSTBase.h"

#include "support/TextFile.h"

iKST::~iKST() = default;

KSTBase::KSTBase() : m_params(new ParamList) {}

KSTBase::~KSTBase() = default;

int KSTBase::findParamIndex(const LightweightString<char>& key) const noexcept {
    return m_params->find(key);
}

int KSTBase::add_param(const LightweightString<char>& key, const LightweightString<char>& value) {
    if (key.empty()) return -1;
    const int index = findParamIndex(key);
    if (index < 0) {
        m_params->append(key, value);
    } else {
        m_params->setValue(index, value);
    }
    return 0;
}

void KSTBase::set_param_val(const char* key, const char* value) {
    add_param(LightweightString<char>(key), LightweightString<char>(value));
}

const char* KSTBase::get_param_val(const char* key) const {
    const int index = findParamIndex(LightweightString<char>(key));
    return index < 0 ? "" : params()[static_cast<std::size_t>(index)].value().c_str();
}

LightweightString<char> KSTBase::getParamVal(const char* key) const {
    const int index = findParamIndex(LightweightString<char>(key));
    return index < 0 ? LightweightString<char>() : params()[static_cast<std::size_t>(index)].value();
}

void KSTBase::writeParams(TextFile& file) const {
    for (const Zr::AttribValuePair& pair : params()) {
        LightweightString<char> line("\"");
        line += pair.name();
        line += ':';
        line += pair.value();
        line += '"';
        file.appendLine(line);
    }
}
