#include "record/KSTBase.h"

#include "support/TextFile.h"

iKST::~iKST() = default;

KSTBase::KSTBase() : m_params(new Params) {}

KSTBase::~KSTBase() = default;

int KSTBase::findParamIndex(const LightweightString<char>& key) const noexcept {
    for (std::size_t i = 0; i < m_params->size(); ++i) {
        if ((*m_params)[i].name().icompare(key.c_str()) == 0) return static_cast<int>(i);
    }
    return -1;
}

int KSTBase::add_param(const LightweightString<char>& key, const LightweightString<char>& value) {
    if (key.empty()) return -1;
    const int index = findParamIndex(key);
    if (index < 0) {
        m_params->emplace_back(key, value, '=');
    } else {
        (*m_params)[static_cast<std::size_t>(index)].setValue(value);
    }
    return 0;
}

void KSTBase::set_param_val(const char* key, const char* value) {
    add_param(LightweightString<char>(key), LightweightString<char>(value));
}

const char* KSTBase::get_param_val(const char* key) const {
    const int index = findParamIndex(LightweightString<char>(key));
    return index < 0 ? "" : (*m_params)[static_cast<std::size_t>(index)].value().c_str();
}

LightweightString<char> KSTBase::getParamVal(const char* key) const {
    const int index = findParamIndex(LightweightString<char>(key));
    return index < 0 ? LightweightString<char>() : (*m_params)[static_cast<std::size_t>(index)].value();
}

void KSTBase::writeParams(TextFile& file) const {
    for (const Zr::AttribValuePair& pair : *m_params) {
        LightweightString<char> line("\"");
        line += pair.name();
        line += ':';
        line += pair.value();
        line += '"';
        file.appendLine(line);
    }
}
