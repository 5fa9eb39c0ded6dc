// A database with a few views, some of them chained, beside the plain model: random operations on both,
// compared in what they answer, in every notification (its type, its text, the state of its source at that
// moment) and in what all sources show afterwards. A failure names its seed.
#include <gtest/gtest.h>
#include <memory>
#include <random>

#include "tests/TestSupport.h"
#include "tests/view/ViewModel.h"
#include "view/KSTView.h"

namespace {

using namespace TestSupport;

constexpr unsigned nameField = 0;
constexpr unsigned valueField = 1;

class Worlds {
 public:
    Worlds(unsigned seed, int records)
        : m_random(seed),
          m_database(makeTextDatabase({"Name", "Value", "Cookie"})),
          m_model("database", m_expected) {
        listen(*m_database, "database", [this] { return state(*m_database); });
        m_database->add_records(records);
        m_model.addRecords(records);
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
        static constexpr void (Worlds::*steps[])() = {
            &Worlds::addView,      &Worlds::chainView,        &Worlds::showRows,         &Worlds::showRows,
            &Worlds::showOthers,   &Worlds::removeRows,       &Worlds::removeRows,       &Worlds::deleteRows,
            &Worlds::deleteRows,   &Worlds::deleteInDatabase, &Worlds::deleteInDatabase, &Worlds::takeByTag,
            &Worlds::setTags,      &Worlds::setTags,          &Worlds::insertRecords,    &Worlds::sortView,
            &Worlds::tagByContent, &Worlds::copyView,         &Worlds::dropSomeView};
        (this->*steps[pick(0, static_cast<int>(std::size(steps)) - 1)])();
        nameNewRecords();
    }

    void compare() {
        ASSERT_EQ(m_expected, m_actual);
        ASSERT_EQ(m_model.state(), state(*m_database));
        for (const Pair& pair : m_views)
            ASSERT_EQ(pair.model->state(), state(*pair.view)) << pair.model->name;
        m_expected.clear();
        m_actual.clear();
    }

 private:
    struct Pair {
        KSTView view;
        ViewModel::View* model;
    };

    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    bool chance(int percent) { return pick(1, 100) <= percent; }
    Pair& anyView() {
        return m_views[static_cast<std::size_t>(pick(0, static_cast<int>(m_views.size()) - 1))];
    }
    int anyRow(const ViewModel::Source& source) { return pick(-2, source.rows() + 2); }

    // --- What is compared ---

    static std::string nameOf(const dbrecord* record) {
        return record ? str(record->getField(nameField)) : "none";
    }
    static std::string state(const kesta& database) {
        std::string all;
        for (unsigned row = 0; row < database.get_num_records(); ++row) {
            const Zr::Ptr<dbrecord> record = database.get_record(row);
            all += nameOf(record.get()) + (record && record->get_tag() ? "* " : " ");
        }
        return all;
    }
    static std::string state(KSTViewRep& view) {
        std::string all;
        for (int row = 0; row < static_cast<int>(view.get_num_records()); ++row) {
            all +=
                nameOf(view[row]) + '@' + std::to_string(view.baseIndex(row)) + (view.tag(row) ? "* " : " ");
        }
        return all;
    }

    template <class State>
    void listen(Notifier& source, const std::string& name, State stateNow) {
        for (const char* const type : {"recordsDeleted", "recordsChanged"}) {
            m_guards.push_back(source.registerNotification(
                NotifyMsgTypeDictionary::instance().intern(type), [=](const NotifyMsg& message) {
                    m_actual.push_back(name + ' ' + type + " [" + str(message.text()) + "] " + stateNow());
                    return 0;
                }));
        }
    }

    // --- Views come and go ---

    void keep(KSTViewRep* view, ViewModel::View* model) {
        m_views.push_back({KSTView(view), model});
        listen(*view, model->name, [view] { return state(*view); });
    }
    std::string newName() { return "view" + std::to_string(++m_viewsMade); }

    void addView() {
        if (m_views.size() >= 5) return;
        keep(new KSTViewRep(m_database.get()), new ViewModel::View(newName(), m_expected, m_model));
        Pair& made = m_views.back();
        if (chance(60)) {
            Pair& base = anyView();
            made.view->baseView(base.view.rep());
            made.model->chain(base.model);
        }
        if (chance(80)) {
            made.view->displayAllRecords();
            made.model->showAll();
        }
    }
    void chainView() {
        Pair& pair = anyView();
        Pair& base = anyView();
        const bool unchain = chance(30);
        pair.view->baseView(unchain ? nullptr : base.view.rep());
        pair.model->chain(unchain ? nullptr : base.model);
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
        Pair original = anyView();
        auto* const model = new ViewModel::View(newName(), m_expected, m_model);
        if (chance(50)) {
            keep(original.view->newTagSubview(), model);
            model->chain(original.model);
            model->showTagged(0);
            return;
        }
        keep(original.view->copy(), model);
        if (original.model->base) {
            model->chain(original.model->base);
            model->showAll();
        } else {
            model->showAllFrom(*original.model, 0);
        }
        for (int row = 0; row < original.model->rows(); ++row)
            model->setTag(row, original.model->tag(row) != 0);
    }

    // --- Rows come and go ---

    void showRows() {
        Pair& pair = anyView();
        const int at = anyRow(*pair.model);
        const int rows = pair.model->source().rows();
        switch (pick(0, 3)) {
            case 0: {
                const int first = pick(-1, rows);
                const int count = pick(0, 1 + rows / 2);
                ASSERT_EQ(pair.model->show(first, count, at), pair.view->displayRecordsAt(first, count, at));
                break;
            }
            case 1: {
                const std::string name = "r" + std::to_string(pick(1, m_records));
                ASSERT_EQ(pair.model->showMatch(name, at),
                          pair.view->displayMatchAt("Name", name.c_str(), at));
                break;
            }
            case 2: {
                CookieVec ids;
                std::vector<std::string> names;
                for (int i = pick(0, 4); i > 0; --i) {
                    names.push_back("r" + std::to_string(pick(1, m_records)));
                    ids.emplace_back(names.back().c_str(), false);
                }
                ASSERT_EQ(pair.model->showMatches(names, at), pair.view->displayRecordsAt(ids, at));
                break;
            }
            default:
                pair.model->showTagged(at);
                pair.view->displayTaggedRecordsAt(at);
        }
    }
    void showOthers() {
        Pair& pair = anyView();
        if (chance(20)) {
            pair.model->showAll();
            pair.view->displayAllRecords();
            return;
        }
        Pair& other = anyView();
        const int at = anyRow(*pair.model);
        ASSERT_EQ(pair.model->showAllFrom(*other.model, at),
                  pair.view->displayAllFromAt(other.view.rep(), at));
    }
    void removeRows() {
        Pair& pair = anyView();
        const int row = anyRow(*pair.model);
        const int count = pick(0, 4);
        if (chance(50)) {
            pair.model->remove(row, count);
            pair.view->remove(row, count);
        } else {
            pair.model->takeFromChain(row, count);
            pair.view->removeRecordsFromBaseView(row, count);
        }
    }
    void deleteRows() {
        Pair& pair = anyView();
        if (chance(40)) {
            ASSERT_EQ(pair.model->deleteTagged(), pair.view->deleteTagged());
            return;
        }
        const int row = anyRow(*pair.model);
        const int count = pick(0, 5);
        pair.model->deleteRecords(row, count);
        pair.view->deleteRecords(row, count);
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
    void takeByTag() {
        Pair& pair = anyView();
        const bool tagged = chance(70);
        ASSERT_EQ(pair.model->removeByTag(tagged),
                  tagged ? pair.view->removeTagged() : pair.view->removeNonTagged());
    }
    void insertRecords() {
        Pair& pair = anyView();
        const int at = anyRow(*pair.model);
        const int count = pick(0, 3);
        pair.model->insertRecords(at, count);
        pair.view->insertBlankRecords(at, count);
        if (m_model.rows() < 10) {
            pair.model->addRecords(20);
            pair.view->add_records(20);
        }
    }

    // --- Tags and order ---

    void setTags() {
        if (chance(30)) {
            for (int row = 0; row < m_model.rows(); ++row) {
                const bool on = chance(20);
                m_model.setTag(row, on);
                m_database->set_tag(static_cast<unsigned>(row), on);
            }
            return;
        }
        Pair& pair = anyView();
        const int percent = pick(0, 60);
        for (int row = 0; row < pair.model->rows(); ++row) {
            const bool on = chance(percent);
            pair.model->setTag(row, on);
            pair.view->set_tag(static_cast<unsigned>(row), on ? 5 : 0);
        }
        ASSERT_EQ(pair.view->countTags(), pair.view->get_num_tags());
    }
    void sortView() {
        Pair& pair = anyView();
        const int direction = chance(50) ? 1 : -1;
        pair.model->sort(direction);
        pair.view->set_sortfield(valueField);
        pair.view->sort(direction, 0);
    }
    void tagByContent() {
        Pair& pair = anyView();
        switch (pick(0, 4)) {
            case 0: {
                const bool keepTags = chance(50);
                ASSERT_EQ(pair.model->tagMatches(keepTags), pair.view->tagMatches(keepTags));
                break;
            }
            case 1:
                ASSERT_EQ(pair.model->tagDuplicatesOrdered(), pair.view->tagDuplicatesOrdered(valueField));
                break;
            case 2:
                ASSERT_EQ(pair.model->tagDuplicates("temporary"), pair.view->tagDuplicates(valueField));
                break;
            case 3:
                pair.model->tagSource();
                pair.view->tagBaseFromTags();
                break;
            default:
                pair.model->showAll();
                pair.view->displayAllRecordsWithBaseTagStatus();  // there is no field "Tag"
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
