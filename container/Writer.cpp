// ZRContainerFile::Writer: a container, filled in memory and saved.
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "container/ZRContainerFile.h"
#include "support/OS.h"
#include "support/StringFunctions.h"

namespace {

/// An empty temporary file that only its owner may open, in the place of any that has the name. It goes in
/// the end unless it was moved away. The name is one that the system takes: not empty, no zero characters.
class TemporaryFile {
 public:
    /// When the file cannot be made, errno says why.
    explicit TemporaryFile(const LightweightString<wchar_t>& name) : m_name(name), m_path(toUTF8(name)) {
        if (::unlink(m_path.c_str()) != 0 && errno != ENOENT) return;
        const int file = ::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        m_mine = file >= 0;
        if (m_mine) ::close(file);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!m_mine) return;
        const int error = errno;
        ::unlink(m_path.c_str());
        errno = error;
    }

    const LightweightString<wchar_t>& name() const noexcept { return m_name; }
    bool isMade() const noexcept { return m_mine; }

    bool isEmpty() const noexcept {
        struct stat status;
        return ::stat(m_path.c_str(), &status) != 0 || status.st_size == 0;
    }

    void moveTo(const LightweightString<wchar_t>& fileName, mode_t permissions) {
        if (::chmod(m_path.c_str(), permissions) != 0) return;
        m_mine = !OS()->fileSystem()->move(m_name, fileName, 0);
    }

 private:
    LightweightString<wchar_t> m_name;
    LightweightString<char> m_path;
    bool m_mine = false;
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
    struct stat status;
    if (::stat(toUTF8(fileName).c_str(), &status) != 0) return;
    TemporaryFile temporary(fileName + L".tmp");
    if (!temporary.isMade()) return;
    m_database->set_filename(temporary.name());
    m_database->save_text();
    // The temporary file is still empty or written whole. The number of records saved would not tell: an
    // empty container saves none.
    if (!temporary.isEmpty()) temporary.moveTo(fileName, status.st_mode & 0777);
}
