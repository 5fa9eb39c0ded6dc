// Records of a database beside plain strings: tagging all, deleting every tenth, each a run of its own, with
// and without a listener, appending a log to another, and looking records up by identifier.
#include <algorithm>
#include <random>
#include <unordered_map>

#include "bench/Benchmarks.h"
#include "bench/GeneratedLog.h"
#include "support/Cookie.h"

namespace {

constexpr unsigned step = 10;

void tagKesta(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    for (auto _ : state) {
        const unsigned rows = log->get_num_records();
        for (unsigned row = 0; row < rows; ++row) log->set_tag(row, 1);
        benchmark::DoNotOptimize(log->get_num_tags());
    }
}

void tagPlain(benchmark::State& state) {
    std::vector<char> tags(Benchmarks::rows(state));
    for (auto _ : state) {
        for (char& tag : tags) {
            tag = 1;
            benchmark::DoNotOptimize(&tag);
        }
        benchmark::DoNotOptimize(std::count(tags.begin(), tags.end(), 1));
    }
}

void tagEveryTenth(kesta& log) {
    for (unsigned row = 0; row < log.get_num_records(); row += step) log.set_tag(row, 1);
}

void deleteTagged(benchmark::State& state) {
    const auto tagged = [](const Zr::Ptr<kesta>& log) -> kesta& {
        tagEveryTenth(*log);
        return *log;
    };
    Benchmarks::change(state, LogFiles::database(Benchmarks::rows(state)), tagged,
                       [](kesta& log) { benchmark::DoNotOptimize(log.delete_tagged_records()); });
}

// Hears of deletions in a database, and tells the bytes of their announcements.
class Listener {
 public:
    explicit Listener(const Zr::Ptr<kesta>& log) : m_log(log) {
        const int deletions = NotifyMsgTypeDictionary::instance().intern("recordsDeleted");
        m_guard = log->registerNotification(deletions, [this](const NotifyMsg& message) {
            m_heard += message.text().length();
            return 0;
        });
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    kesta& log() { return *m_log; }
    std::size_t heard() const { return m_heard; }

 private:
    Zr::Ptr<kesta> m_log;
    Zr::Ptr<Zr::Guard> m_guard;
    std::size_t m_heard = 0;
};

void deleteTaggedListened(benchmark::State& state) {
    const auto tagged = [](const Zr::Ptr<kesta>& log) {
        tagEveryTenth(*log);
        return std::make_unique<Listener>(log);
    };
    Benchmarks::change(state, LogFiles::database(Benchmarks::rows(state)), tagged,
                       [](const std::unique_ptr<Listener>& listener) {
                           listener->log().delete_tagged_records();
                           benchmark::DoNotOptimize(listener->heard());
                       });
}

void deletePlain(benchmark::State& state) {
    Benchmarks::change(state, LogFiles::table(Benchmarks::rows(state)), [](PlainLog::Table& log) {
        unsigned row = 0;
        const auto tagged = [&row](const PlainLog::Row&) { return row++ % step == 0; };
        log.erase(std::remove_if(log.begin(), log.end(), tagged), log.end());
    });
}

void mergeKesta(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    const Zr::Ptr<kesta> other = LogFiles::copy(log);
    Benchmarks::change(state, log, [&other](const Zr::Ptr<kesta>& own) {
        benchmark::DoNotOptimize(own->add_kesta(other.get()));
    });
}

void mergePlain(benchmark::State& state) {
    const PlainLog::Table other = LogFiles::table(Benchmarks::rows(state));
    Benchmarks::change(state, LogFiles::copy(other),
                       [&other](PlainLog::Table& own) { own.insert(own.end(), other.begin(), other.end()); });
}

// All identifiers in an order that has nothing to do with the rows'.
std::vector<std::string> shuffledIdentifiers(const kesta& log) {
    std::vector<std::string> ids;
    for (unsigned row = 0; row < log.get_num_records(); ++row) {
        ids.emplace_back(log.getField(row, GeneratedLog::eCookie).c_str());
    }
    std::shuffle(ids.begin(), ids.end(), std::minstd_rand());
    return ids;
}

void lookUpKesta(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    std::vector<Cookie> ids;
    for (const std::string& text : shuffledIdentifiers(*log)) ids.emplace_back(text.c_str(), false);
    log->getRowIndexByID(ids.front());  // makes the index
    for (auto _ : state) {
        for (const Cookie& id : ids) benchmark::DoNotOptimize(log->getRowIndexByID(id));
    }
}

void lookUpMap(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    std::unordered_map<std::string, unsigned> rowsById;
    for (unsigned row = 0; row < log->get_num_records(); ++row) {
        rowsById.emplace(log->getField(row, GeneratedLog::eCookie).c_str(), row);
    }
    const std::vector<std::string> ids = shuffledIdentifiers(*log);
    for (auto _ : state) {
        for (const std::string& id : ids) benchmark::DoNotOptimize(rowsById.find(id)->second);
    }
}

}  // namespace

void Benchmarks::addRecords() {
    add("tag/kesta", tagKesta);
    add("tag/plain", tagPlain);
    add("delete-tagged/kesta", deleteTagged);
    add("delete-tagged/plain", deletePlain);
    add("delete-tagged-listened/kesta", deleteTaggedListened);
    add("delete-tagged-listened/plain", deletePlain);
    add("merge/kesta", mergeKesta);
    add("merge/plain", mergePlain);
    add("look-up/kesta", lookUpKesta);
    add("look-up/unordered_map", lookUpMap);
}
