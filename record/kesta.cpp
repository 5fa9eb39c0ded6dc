// kesta: how a database comes and goes, its columns as a whole, and its parameters.
#include "record/kesta.h"

#include "record/ColumnTypes.h"
#include "record/parts/FileRevision.h"

const char* kestaDllVersionStr() {
    return KESTA_VERSION;
}

kesta::kesta() {
    init();
}

kesta::kesta(const DBFieldDesc* descs) {
    init();
    for (; descs && descs->type != DBFieldTypes::eNone; ++descs) m_fields.push_back(*descs);
    m_valid = 1;
    post_init();
}

kesta::kesta(const std::vector<DBFieldDesc>& descs) {
    init();
    setFields(descs);
}

kesta::kesta(const kesta& other, int copyRecords)
    : Zr::InternalRefCount(), iVirtual(), KSTBase(), Notifier() {
    init();
    m_revision = other.m_revision;
    m_fields = other.m_fields;
    m_params = other.m_params;
    post_init();
    for (unsigned row = 0; copyRecords && row < other.get_num_records(); ++row) {
        const Zr::Ptr<dbrecord> record = other.get_record(row);
        m_records.push_back(record ? Zr::Ptr<dbrecord>(new dbrecord(*record)) : make_dummy_record());
    }
    m_valid = 1;
}

kesta::kesta(const LightweightString<wchar_t>& fileName, int maxRecords, bool strict) : m_fileName(fileName) {
    loadFromFile(maxRecords, strict);
}

kesta::~kesta() = default;

void kesta::init() {
    // Copies share the list: it is emptied for all of them, as every change of a parameter is seen by all.
    m_params->clear();
    m_showTagsOnly = 0;
    m_changed = 0;
    m_valid = 0;
    m_revision = 1;
    m_matchOptions = 0;
    m_query.clear();
    m_fields.clear();
    m_fieldNames.clear();
    m_specialLabels.clear();
}

void kesta::free() {
    m_records.clear();
    m_taggedIndex.clear();
    m_identifiers.clear();
    init();
}

void kesta::post_init() {
    set_sortfield(0);
    m_specialLabels.clear();
    for (std::size_t field = 0; field < m_fields.size(); ++field) {
        m_specialLabels.push_back(isSpecialLabelField(field));
    }
    getFieldNameIndexMap();
}

void kesta::setFields(const std::vector<DBFieldDesc>& descs) {
    free();
    m_fields = descs;
    for (DBFieldDesc& field : m_fields) field.type = ColumnTypes::stored(field.type);
    m_valid = 1;
    post_init();
}

int kesta::get_valid() const {
    return m_valid;
}

int kesta::add_param(const LightweightString<char>& key, const LightweightString<char>& value) {
    if (m_params->empty()) {
        LightweightString<char> revision("Rev ");
        revision += currentRevision;
        m_params->append("KESTA", revision);
    }
    return KSTBase::add_param(key, value);
}
