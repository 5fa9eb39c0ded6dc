#include "bench/GeneratedLog.h"

#include <cstdio>

#include "support/StringFunctions.h"

namespace {

constexpr unsigned framesPerSecond = 25;

template <class... Values>
std::string format(const char* pattern, Values... values) {
    char text[256];
    std::snprintf(text, sizeof text, pattern, values...);
    return text;
}

std::string timecode(unsigned frame) {
    const unsigned second = frame / framesPerSecond;
    return format("%02u:%02u:%02u:%02u", second / 3600 % 24, second / 60 % 60, second % 60,
                  frame % framesPerSecond);
}

// Sixteen frames of film to the foot.
std::string keycode(unsigned frame) {
    return format("KJ 23 1234 %04u+%02u", frame / 16 % 10000, frame % 16);
}

constexpr const char* people[] = {"Anna Lind",   "B. Okafor",    "carla Reyes",  "Dmitri Pell", "Esra Tan",
                                  "Farid Nasri", "G. Holmqvist", "hanna Brandt", "Ivo Kral",    "J. Moreau"};
constexpr const char* subjects[] = {"Interview", "Wide",         "Close-up", "Two shot",      "insert",
                                    "Crowd",     "Establishing", "Reverse",  "Tracking shot", "pickup"};
constexpr const char* places[] = {"harbour", "kitchen",           "stairwell", "Main street",
                                  "roof",    "hospital corridor", "garden",    "studio B"};
constexpr const char* notes[] = {"",
                                 "",
                                 "boom in frame at the end",
                                 "NG sound",
                                 "best of the day",
                                 "",
                                 "focus soft in the middle, recovers before the turn",
                                 "print"};

template <std::size_t count>
const char* pick(const char* const (&list)[count], std::uint64_t number) {
    return list[number % count];
}

}  // namespace

std::vector<DBFieldDesc> GeneratedLog::columns() {
    constexpr auto text = DBFieldTypes::eText;
    constexpr auto code = DBFieldTypes::eTimecode;
    return {{"Cookie", text},      {"Type", text},          {"Flags", text},       {"Name", text},
            {"Date", text},        {"Start time", code},    {"End time", code},    {"Duration", text},
            {"Reel", text},        {"Scene", text},         {"Shot", text},        {"Who", text},
            {"Description", text}, {"Notes", text},         {"snd start", code},   {"snd end", code},
            {"snd reel", text},    {"start keycode", text}, {"end keycode", text}, {"film duration", text},
            {"cam reel", text},    {"lab reel", text},      {"Mdrive", text},      {"Tag", text}};
}

// An xorshift generator: the standard library's distributions differ between implementations.
std::uint64_t GeneratedLog::random() {
    m_random ^= m_random << 13;
    m_random ^= m_random >> 7;
    m_random ^= m_random << 17;
    return m_random * 0x2545F4914F6CDD1D >> 16;
}

void GeneratedLog::nextReel() {
    ++m_reel;
    m_rowsOfReel = 60 + random(60);
    if (m_reel % 6 == 0) ++m_day;
    m_frame = m_reel % 24 * 3600 * framesPerSecond;
    m_foot = random(100000);
    const char camera = static_cast<char>('A' + m_reel % 3);
    m_row[eDate] = format("%02u/%02u/%04u", m_day % 28 + 1, m_day / 28 % 12 + 1, 1996 + m_day / 336 % 20);
    m_row[eReel] = format("%c%04u", camera, m_reel);
    m_row[eSoundReel] = format("S%04u", m_reel / 2);
    m_row[eCameraReel] = format("%c%04u/%u", camera, m_reel, m_day % 10);
    m_row[eLabReel] = format("LAB%05u", m_reel / 4);
    m_row[eDrive] = format("V%02u", m_reel % 40);
}

void GeneratedLog::nextScene() {
    m_rowsOfScene = 5 + random(20);
    m_take = 0;
    m_row[eScene] = format("%u%c", random(180) + 1, static_cast<char>('A' + random(6)));
    m_row[eWho] = pick(people, random());
    m_row[eDescription] =
        format("%s, %s, %s", pick(subjects, random()), pick(places, random()), random(2) ? "day" : "NIGHT");
}

const GeneratedLog::Row& GeneratedLog::next() {
    if (m_rowsOfReel-- == 0) nextReel();
    if (m_rowsOfScene-- == 0) nextScene();
    ++m_take;
    const unsigned length = 40 + random(2000);

    m_row[eCookie] = format("M%016llx%016llxff", static_cast<unsigned long long>(random()) << 16,
                            static_cast<unsigned long long>(random()) << 8);
    m_row[eType] = random(20) ? "V" : "A";
    m_row[eFlags] = format("%08x", random(16));
    m_row[eName] = format("%s %s %u", pick(subjects, random()), m_row[eScene].c_str(), random(100000));
    m_row[eStartTime] = timecode(m_frame);
    m_row[eEndTime] = timecode(m_frame + length);
    m_row[eDuration] = timecode(length);
    m_row[eShot] = format("%u", m_take);
    m_row[eNotes] = pick(notes, random());
    m_row[eSoundStart] = timecode(m_frame + 12);
    m_row[eSoundEnd] = timecode(m_frame + length + 12);
    m_row[eStartKeycode] = keycode(m_foot);
    m_row[eEndKeycode] = keycode(m_foot + length);
    m_row[eFilmDuration] = format("%04u+%02u", length / 16, length % 16);
    m_row[eTag] = random(10) ? "0" : "1";
    m_frame += length;
    m_foot += length + 8;
    return m_row;
}

bool GeneratedLog::write(const std::string& fileName, unsigned rows) {
    GeneratedLog log;
    return writeRows(fileName, rows, [&log]() -> const Row& { return log.next(); });
}

bool GeneratedLog::writeRepeating(const std::string& fileName, unsigned rows) {
    GeneratedLog log;
    std::vector<Row> texts;
    for (unsigned i = 0; i < 20; ++i) texts.push_back(log.next());
    Row row;
    return writeRows(fileName, rows, [&]() -> const Row& {
        for (unsigned i = 0; i < eColumnCount; ++i) row[i] = texts[log.random(20)][i];
        return row;
    });
}

template <class Next>
bool GeneratedLog::writeRows(const std::string& fileName, unsigned rows, const Next& next) {
    const Zr::Ptr<kesta> log(new kesta(columns()));
    std::array<LightweightString<char>, eColumnCount> recent;
    log->add_param("Title", "Generated");
    log->add_records(static_cast<int>(rows));
    for (unsigned row = 0; row < rows; ++row) {
        const Row& texts = next();
        for (unsigned i = 0; i < eColumnCount; ++i) {
            if (recent[i].view() != texts[i]) recent[i] = LightweightString<char>(std::string_view(texts[i]));
            log->setField(row, i, recent[i]);
        }
    }
    log->set_filename(fromUTF8(fileName.c_str()));
    return log->save_text() == static_cast<int>(rows);
}
