// KSTViewRep: saving a view as a database file.
#include <utility>

#include "support/StringFunctions.h"
#include "support/TextFile.h"
#include "view/KSTViewRep.h"

namespace {

// The columns are always all of the database's, whatever the base view and the field specification say.
void writeColumns(TextFile& file, const kesta* database) {
    if (database) database->save_column_header(file, false);
}

}  // namespace

int KSTViewRep::saveAsText(LightweightString<wchar_t> name, bool headerOnly) const {
    if (!db() || name.empty()) return 0;
    TextFile file;
    writeParams(file);
    writeColumns(file, m_database.get());
    file.beginSave(name, TextFile::eLF);

    // Record sources read tags through an operation that is not const and that a derived view may override.
    auto& reader = const_cast<KSTViewRep&>(*this);
    const auto tagField = static_cast<int>(get_fieldnum("Tag"));
    int written = 0;
    for (int row = 0; !headerOnly && row < m_index.size(); ++row) {
        const Zr::Ptr<dbrecord> shown = KSTViewRep::get_record(static_cast<unsigned>(row));
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
    writeParams(file);
    writeColumns(file, m_database.get());
    file.beginSave(name, TextFile::eLF);

    int row = 0;
    for (; row < m_index.size(); ++row) {
        const Zr::Ptr<dbrecord> shown = KSTViewRep::get_record(static_cast<unsigned>(row));
        if (shown && shown->get_tag() != 0 && !shown->write(file)) break;
    }
    return file.save(std::move(name), TextFile::eLF) ? row : 0;
}

int KSTViewRep::saveOnlyTagged(const char* name) const {
    return saveOnlyTagged(Zr::WStringFromAscii(name));
}
