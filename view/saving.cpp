// KSTViewRep: saving a view as a database file.
#include "support/StringFunctions.h"
#include "support/TextFile.h"
#include "view/KSTViewRep.h"

int KSTViewRep::saveAsText(LightweightString<wchar_t> name, bool headerOnly) const {
    if (!db() || name.empty()) return 0;
    TextFile file;
    writeHeader(file);
    int written = 0;
    // Record sources read tags through an operation that is not const, which derived views may answer.
    auto& reader = const_cast<KSTViewRep&>(*this);
    const auto tagField = static_cast<int>(get_fieldnum("Tag"));
    for (int row = 0; !headerOnly && row < m_index.size(); ++row) {
        const Zr::Ptr<dbrecord> shown = record(row);
        if (!shown) continue;
        dbrecord line(*shown);
        if (tagField >= 0) line.set_field(tagField, reader.get_tag(static_cast<unsigned>(row)));
        if (!line.write(file)) break;
        ++written;
    }
    return file.save(std::move(name), TextFile::eLF) ? written : 0;
}

int KSTViewRep::saveAsText(const char* name, bool headerOnly) const {
    return saveAsText(Zr::WStringFromAscii(name), headerOnly);
}

int KSTViewRep::saveOnlyTagged(LightweightString<wchar_t> name) const {
    if (!db() || name.empty()) return 0;
    TextFile file;
    writeHeader(file);
    int row = 0;
    for (; row < m_index.size(); ++row) {
        const Zr::Ptr<dbrecord> shown = record(row);
        if (shown && shown->get_tag() != 0 && !shown->write(file)) break;
    }
    return file.save(std::move(name), TextFile::eLF) ? row : 0;
}

int KSTViewRep::saveOnlyTagged(const char* name) const {
    return saveOnlyTagged(Zr::WStringFromAscii(name));
}

// The columns are always all of the database's, whatever the base view and the field specification say.
void KSTViewRep::writeHeader(TextFile& file) const {
    writeParams(file);
    if (const kesta* const columns = database()) columns->save_column_header(file, false);
}
