// A database with a few views, some of them chained, beside the plain model: random operations on both,
// compared in what they return, in every notification (its type, its text, the state of its source at that
// moment) and in what all sources show afterwards. A failure names its seed, step and operation, and the
// first word that differs.
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <sstream>
#include <type_traits>

#include "tests/TestSupport.h"
#include "tests/view/ViewModel.h"
#include "view/KSTView.h"

namespace {

using namespace TestSupport;

constexpr int nameField = 0;
constexpr int valueField = 1;

class Worlds {
 public:
    Worlds(unsigned seed, int records)
        : m_random(seed),
          m_database(makeTextDatabase({"Name", "Value", "Cookie"})),
          m_model("database", m_expected) {
        listen(*m_database, "database");
        m_database->set_sortfield(valueField);
        m_database->add_records(records);
        m_model.add_records(records);
        nameNewRecords();
        dbrecord query(3);
        query.set_field(valueField, "a", false);
        m_database->set_query(&query);
        addView();
    }
    ~Worlds() {
        while (!m_views.empty()) dropView(0);
    }

    void step() {
        static constexpr std::pair<const char*, void (Worlds::*)()> steps[] = {
            {"addView", &Worlds::addView},
            {"chainView", &Worlds::chainView},
            {"copyView", &Worlds::copyView},
            {"dropSomeView", &Worlds::dropSomeView},
            {"showSome", &Worlds::showSome},
            {"deleteInDatabase", &Worlds::deleteInDatabase},
            {"deleteInDatabase", &Worlds::deleteInDatabase},
            {"setTags", &Worlds::setTags},
            {"setTags", &Worlds::setTags},
            {"setTagsInDatabase", &Worlds::setTagsInDatabase}};
        const int which = pick(0, 2 * static_cast<int>(std::size(steps)) - 1);
        const auto [name, step] = which < static_cast<int>(std::size(steps))
                                      ? steps[which]
                                      : std::pair("changeView", &Worlds::changeView);
        m_operation = name;
        (this->*step)();
        if (m_model.rows() < 10) both(anyView(), [](auto& view) { view.add_records(20); });
        nameNewRecords();
    }

    void compare() {
        SCOPED_TRACE(m_operation);
        expectSame("announcements", joined(m_expected), joined(m_actual));
        expectSame("database", m_model.state(), state(*m_database));
        for (const Pair& pair : m_views) {
            expectSame(pair.model->name, pair.model->state(), state(*pair.view));
            const auto row = static_cast<unsigned long>(pick(0, m_model.rows()));
            ASSERT_EQ(pair.model->findViewIndexForBaseRow(row), pair.view->findViewIndexForBaseRow(row));
        }
        m_expected.clear();
        m_actual.clear();
    }

 private:
    struct Pair {
        KSTView view;
        ViewModel::View* model = nullptr;
    };

    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    bool chance(int percent) { return pick(1, 100) <= percent; }
    const Pair& anyView() {
        return m_views[static_cast<std::size_t>(pick(0, static_cast<int>(m_views.size()) - 1))];
    }
    std::string anyName() { return "r" + std::to_string(pick(1, m_records)); }
    int anyRow(const ViewModel::Source& source) { return pick(-2, source.rows() + 2); }

    // --- What is compared ---

    static std::string joined(const ViewModel::Log& events) {
        std::string all;
        for (const std::string& event : events) all += event + "; ";
        return all;
    }

    /// Fails with the first word in which the two differ.
    static void expectSame(const std::string& what, const std::string& expected, const std::string& actual) {
        if (expected == actual) return;
        std::istringstream ours(expected);
        std::istringstream theirs(actual);
        std::string our = " ";
        std::string their = our;
        int word = -1;
        for (; our == their; ++word) {
            if (!(ours >> our)) our.clear();
            if (!(theirs >> their)) their.clear();
        }
        FAIL() << what << ", word " << word << ": expected \"" << our << "\", found \"" << their << '"';
    }

    static std::string state(iKST& source) {
        std::string all;
        for (unsigned row = 0; row < source.get_num_records(); ++row) {
            const Zr::Ptr<dbrecord> record = source.get_record(row);
            all += record ? str(record->getField(nameField)) : "none";
            all += '@' + std::to_string(source.baseIndex(static_cast<int>(row)));
            all += source.get_tag(row) > 0 ? "* " : " ";
        }
        return all;
    }

    template <class Notifying>
    void listen(Notifying& source, const std::string& name) {
        for (const char* const type : {"recordsDeleted", "recordsChanged"}) {
            m_guards.push_back(source.registerNotification(
                NotifyMsgTypeDictionary::instance().intern(type), [=, &source](const NotifyMsg& message) {
                    m_actual.push_back(name + ' ' + type + " [" + str(message.text()) + "] " + state(source));
                    return 0;
                }));
        }
    }

    /// Makes the same call of both, which are to return the same.
    template <class Call>
    static void both(const Pair& pair, Call call) {
        if constexpr (std::is_void_v<decltype(call(*pair.model))>) {
            call(*pair.model);
            call(*pair.view);
        } else {
            ASSERT_EQ(call(*pair.model), call(*pair.view));
        }
    }

    /// Makes one of the calls, which have the operations' names.
    template <class... Calls>
    void oneOf(const Pair& pair, std::pair<const char*, Calls>... calls) {
        int before = pick(0, static_cast<int>(sizeof...(calls)) - 1);
        ((before-- == 0 ? (m_operation = calls.first + (" of " + pair.model->name), both(pair, calls.second))
                        : void()),
         ...);
    }

    // --- Views come and go ---

    void keep(KSTViewRep* view, ViewModel::View* model) {
        m_views.push_back({KSTView(view), model});
        listen(*view, model->name);
    }
    ViewModel::View* newModel() {
        return new ViewModel::View("view" + std::to_string(++m_viewsMade), m_expected, m_model);
    }
    static void chain(const Pair& pair, const Pair& base) {
        pair.view->baseView(base.view.rep());
        pair.model->baseView(base.model);
    }

    void addView() {
        if (m_views.size() >= 5) return;
        keep(new KSTViewRep(m_database.get()), newModel());
        const Pair made = m_views.back();
        if (chance(60)) chain(made, anyView());
        if (chance(80)) both(made, [](auto& view) { view.displayAllRecords(); });
    }
    void chainView() {
        const Pair pair = anyView();
        chain(pair, chance(30) ? Pair{} : anyView());
    }
    void dropView(std::size_t i) {
        ViewModel::View* const model = m_views[i].model;
        m_views.erase(m_views.begin() + static_cast<std::ptrdiff_t>(i));
        ViewModel::View::release(model);
    }
    void dropSomeView() {
        if (m_views.size() > 2 && chance(50)) dropView(static_cast<std::size_t>(pick(0, 2)));
    }
    void copyView() {
        if (m_views.size() >= 5) return;
        const Pair original = anyView();
        ViewModel::View* const model = newModel();
        if (chance(50)) {
            keep(original.view->newTagSubview(), model);
            model->baseView(original.model);
            model->displayTaggedRecordsAt(0);
            return;
        }
        keep(original.view->copy(), model);
        if (original.model->base) {
            model->baseView(original.model->base);
            model->displayAllRecords();
        } else {
            model->displayAllFromAt(original.model, 0);
        }
        for (unsigned row = 0; row < original.view->get_num_records(); ++row)
            model->set_tag(row, original.model->tag(static_cast<int>(row)));
    }

    // --- Rows come and go ---

    void showSome() {
        const Pair pair = anyView();
        const Pair other = anyView();
        const int at = anyRow(*pair.model);
        if (chance(50)) {
            ASSERT_EQ(pair.model->displayAllFromAt(other.model, at),
                      pair.view->displayAllFromAt(other.view.rep(), at));
            return;
        }
        CookieVec ids;
        std::vector<std::string> names;
        for (int i = pick(0, 4); i > 0; --i) {
            names.push_back(anyName());
            ids.emplace_back(names.back().c_str(), false);
        }
        ASSERT_EQ(pair.model->displayRecordsAt(names, at), pair.view->displayRecordsAt(ids, at));
    }
    void deleteInDatabase() {
        if (chance(40)) {
            ASSERT_EQ(m_model.deleteTagged(), static_cast<int>(m_database->delete_tagged_records()));
            return;
        }
        const int row = pick(0, m_model.rows());
        const int count = pick(1, 3);
        m_model.deleteRecords(row, count);
        m_database->delete_records(static_cast<unsigned>(row), static_cast<unsigned>(count));
    }
    void changeView() {
        const Pair chosen = anyView();
        const int at = anyRow(*chosen.model);
        const int count = pick(0, 5);
        const int first = pick(-1, chosen.model->source().rows());
        const int many = pick(0, 1 + chosen.model->source().rows() / 2);
        const std::string name = anyName();
        const int on = chance(50);
        using std::pair;
        oneOf(
            chosen,
            pair("displayRecordsAt", [=](auto& view) { return view.displayRecordsAt(first, many, at); }),
            pair("displayMatchAt", [=](auto& view) { return view.displayMatchAt("Name", name.c_str(), at); }),
            pair("displayTaggedRecordsAt", [=](auto& view) { view.displayTaggedRecordsAt(at); }),
            pair("displayAllRecords", [=](auto& view) { view.displayAllRecords(); }),
            pair("insertBlankRecords", [=](auto& view) { view.insertBlankRecords(at, count); }),
            pair("remove", [=](auto& view) { view.remove(at, count); }),
            pair("removeRecordsFromBaseView", [=](auto& view) { view.removeRecordsFromBaseView(at, count); }),
            pair("deleteRecords", [=](auto& view) { view.deleteRecords(at, count); }),
            pair("deleteTagged", [=](auto& view) { return view.deleteTagged(); }),
            pair("removeTagged or removeNonTagged",
                 [=](auto& view) { return on ? view.removeTagged() : view.removeNonTagged(); }),
            pair("sort", [=](auto& view) { view.sort(on ? 1 : -1, 0); }),
            pair("tagMatches", [=](auto& view) { return view.tagMatches(on); }),
            pair("tagDuplicatesOrdered", [=](auto& view) { return view.tagDuplicatesOrdered(valueField); }),
            pair("tagDuplicates", [=](auto& view) { return view.tagDuplicates(valueField); }),
            pair("tagBaseFromTags", [=](auto& view) { view.tagBaseFromTags(); }));
    }

    // --- Tags ---

    void setTags() {
        const Pair pair = anyView();
        const int percent = pick(0, 60);
        for (unsigned row = 0; row < pair.view->get_num_records(); ++row) {
            const int tag = chance(percent) ? 5 : 0;
            both(pair, [=](auto& view) { view.set_tag(row, tag); });
        }
    }
    void setTagsInDatabase() {
        for (unsigned row = 0; row < m_database->get_num_records(); ++row) {
            const int tag = chance(20);
            m_model.set_tag(row, tag);
            m_database->set_tag(row, tag);
        }
    }
    // Records just made get a name, the same in both worlds, and a value that others may share.
    void nameNewRecords() {
        for (int row = 0; row < m_model.rows(); ++row) {
            ViewModel::Record* const record = m_model.record(row);
            if (!record || !record->name.empty()) continue;
            record->name = "r" + std::to_string(++m_records);
            record->value = std::string(1, "abcABC"[pick(0, 5)]) + (chance(50) ? "x" : "");
            const auto at = static_cast<unsigned>(row);
            m_database->setField(at, nameField, text(record->name));
            m_database->setField(at, valueField, text(record->value));
            m_database->set_field(at, Cookie(record->name.c_str(), false));
        }
    }

    std::mt19937 m_random;
    ViewModel::Log m_expected;
    ViewModel::Log m_actual;
    std::string m_operation;
    std::vector<Zr::Ptr<Zr::Guard>> m_guards;
    Zr::Ptr<kesta> m_database;
    ViewModel::Database m_model;
    std::vector<Pair> m_views;
    int m_viewsMade = 0;
    int m_records = 0;
};

void run(unsigned seed, int records, int steps) {
    SCOPED_TRACE("seed " + std::to_string(seed) + " with " + std::to_string(records) + " records");
    Worlds worlds(seed, records);
    for (int i = 0; i < steps && !::testing::Test::HasFatalFailure(); ++i) {
        SCOPED_TRACE("step " + std::to_string(i));
        worlds.step();
        worlds.compare();
    }
}

TEST(ViewModelTest, FollowsThePlainModelInSmallWorlds) {
    for (unsigned seed = 1; seed <= 3000 && !HasFatalFailure(); ++seed) run(seed, 12, 30);
}

TEST(ViewModelTest, FollowsThePlainModelInWorldsOfManyRows) {
    for (unsigned seed = 1; seed <= 12 && !HasFatalFailure(); ++seed) run(seed, 500, 25);
}

}  // namespace
