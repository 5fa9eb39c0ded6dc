// ZRContainerFile::Writer: a container, filled in memory and saved.
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

#include "container/ZRContainerFile.h"
#include "support/OS.h"
#include "support/StringFunctions.h"

namespace {

/// A name for a temporary file, free from the start and free again in the end unless the file was moved away.
/// The name is one that the system takes: not empty, no zero characters. Going keeps errno.
class TemporaryFile {
 public:
    explicit TemporaryFile(const LightweightString<wchar_t>& name) : m_name(name), m_path(toUTF8(name)) {
        ::unlink(m_path.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (m_moved) return;
        const int error = errno;
        ::unlink(m_path.c_str());
        errno = error;
    }

    const LightweightString<wchar_t>& name() const noexcept { return m_name; }
    bool exists() const { return fileExists(m_name); }

    void takePermissionsOf(const LightweightString<wchar_t>& fileName) const {
        struct stat status;
        if (::stat(toUTF8(fileName).c_str(), &status) == 0) ::chmod(m_path.c_str(), status.st_mode & 0777);
    }

    void moveTo(const LightweightString<wchar_t>& fileName) {
        m_moved = OS()->fileSystem()->move(m_name, fileName, 0);
    }

 private:
    LightweightString<wchar_t> m_name;
    LightweightString<char> m_path;
    bool m_moved = false;
};

}  // namespace

ZRContainerFile::Writer::Writer(const DBFieldDesc* fields)
    : m_database(new kesta(fields)), m_cookieField(static_cast<int>(m_database->get_fieldnum("Cookie"))) {}

ZRContainerFile::Writer::~Writer() = default;

dbrecord* ZRContainerFile::Writer::addItem(const Cookie& k) {
    if (k.type() == 'I') return nullptr;
    const LightweightString<char> text = k.asString(true);
    const unsigned row = m_database->add_records(1);
    m_database->set_field(row, static_cast<unsigned>(m_cookieField), text.c_str());
    return m_database->get_record(row).get();  // NOLINT(clang-analyzer-cplusplus.NewDelete): has other owners
}

void ZRContainerFile::Writer::setAttrib(LightweightString<char> key, LightweightString<char> value) {
    m_database->add_param(key, value);
}

void ZRContainerFile::Writer::setName(LightweightString<char> name) {
    setAttrib(getNameParamKey(), name);
}

void ZRContainerFile::Writer::setPermanent(bool on) {
    setAttrib(getPermanentParamKey(), BoolAsString(on));
}

void ZRContainerFile::Writer::save(const LightweightString<wchar_t>& fileName) {
    if (fileExists(fileName)) {
        saveOver(fileName);
    } else {
        m_database->set_filename(fileName);
        m_database->save_text();
    }
}

void ZRContainerFile::Writer::saveOver(const LightweightString<wchar_t>& fileName) {
    TemporaryFile temporary(fileName + L".tmp");
    if (temporary.exists()) return;  // something that cannot be replaced, and must not become the container
    m_database->set_filename(temporary.name());
    m_database->save_text();
    // The temporary file is there whole or not at all. The number of records saved would not tell: an empty
    // container saves none.
    const int error = errno;
    if (!temporary.exists()) {
        errno = error;
        return;
    }
    temporary.takePermissionsOf(fileName);
    temporary.moveTo(fileName);
}
