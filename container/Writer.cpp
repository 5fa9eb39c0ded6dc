// ZRContainerFile::Writer: a container, filled in memory and saved.
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "container/ZRContainerFile.h"
#include "support/OS.h"
#include "support/StandIn.h"
#include "support/StringFunctions.h"
#include "support/SystemFile.h"

namespace {

/// A file that is to be filled and moved over `original`, whose permissions and owner it has. It goes at the
/// end unless it was moved.
class TemporaryFile {
 public:
    /// When the file cannot be made, errno says why.
    TemporaryFile(const LightweightString<wchar_t>& name, const LightweightString<wchar_t>& original)
        : m_name(name),
          m_original(original),
          m_path(systemPath(name)),
          m_isThere(makeStandIn(name, original)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!m_isThere) return;
        const int error = errno;
        ::unlink(m_path.c_str());
        errno = error;
    }

    bool isThere() const noexcept { return m_isThere; }

    /// Does nothing when the file was never filled.
    void moveOverOriginal() {
        if (isReady()) m_isThere = !OS()->fileSystem()->move(m_name, m_original, 0);
    }

 private:
    bool isReady() const {
        const SystemFile file(::open(m_path.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC));
        struct stat filled;
        struct stat original;
        if (!file || ::fstat(file.descriptor(), &filled) != 0 || filled.st_size == 0) return false;
        if (::stat(systemPath(m_original).c_str(), &original) != 0) return false;
        // A file that its owner may not write could not have been filled.
        return (original.st_mode & S_IWUSR) != 0 ||
               ::fchmod(file.descriptor(), filled.st_mode & 07777 & ~mode_t(S_IWUSR)) == 0;
    }

    const LightweightString<wchar_t>& m_name;
    const LightweightString<wchar_t>& m_original;
    const LibraryString m_path;
    bool m_isThere;
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
    const LightweightString<wchar_t> name = fileName + L".tmp";
    TemporaryFile temporary(name, fileName);
    if (!temporary.isThere()) return;
    m_database->set_filename(name);
    m_database->save_text();
    // The file is still empty or was written whole. The number of records saved would not tell: an empty
    // container saves none.
    temporary.moveOverOriginal();
}
