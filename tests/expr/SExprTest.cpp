// Expression trees: printing, reversal, iteration and destruction.
#include "expr/SExpr.h"
#include "tests/TestSupport.h"

namespace {

std::string print(SExprElt& element) {
    GrowString out;
    element.asString(out);
    return std::string(out);
}

/// Prints its name, and notes in `log` when it goes.
class Named : public SExprElt {
 public:
    Named(char name, std::string& log) : m_name(name), m_log(log) {}
    ~Named() override { m_log += m_name; }
    void asString(GrowString& out) override { out.append(m_name); }

 private:
    char m_name;
    std::string& m_log;
};

class SExprTest : public ::testing::Test {
 protected:
    SExprElt* named(char name) { return new Named(name, destroyed); }

    std::string destroyed;
};

class Bracketed : public SExpr {
 public:
    using SExpr::SExpr;
    void asString(GrowString& out) override { out.append("[list]"); }
};

}  // namespace

TEST_F(SExprTest, PrintsElementsSeparatedBySpacesAndReferencesAsTheirColumns) {
    Zr::Ptr<kesta> database = TestSupport::makeTextDatabase({"Name", "Reel"});
    const auto column = [&](unsigned field) {
        return new SExprRef(field, database.get(), database->watch());
    };
    SExpr list(column(1), new SExpr(new SExprOperator, new SExpr(column(1))));
    SExpr outOfRange(column(77));
    SExprRef reference(0, database.get(), database->watch());
    EXPECT_EQ(print(list), "(Reel op  Reel)");
    EXPECT_EQ(print(outOfRange), "()");
    EXPECT_EQ(print(reference), "Name");
    EXPECT_EQ(reference.source(), database.get());
    database.reset();
    EXPECT_EQ(print(list), "(voidref op  voidref)");
    EXPECT_EQ(reference.source(), nullptr);
}

TEST_F(SExprTest, PrintsListsInListsAndMissingElements) {
    SExpr list(new SExpr(named('a'), new SExpr(new SExpr(named('b')))),
               new SExpr(named('c'), new SExpr(nullptr, new SExpr(new Bracketed(named('d'))))));
    EXPECT_EQ(print(list), "((a (b)) c  [list])");
}

TEST_F(SExprTest, ReversesFromACellToTheEnd) {
    SExpr* const last = new SExpr(named('c'));
    SExpr* const first = new SExpr(named('a'), new SExpr(named('b'), last));
    EXPECT_EQ(last->reverse(), last);
    EXPECT_EQ(first->reverse(), last);
    EXPECT_EQ(print(*last), "(c b a)");
    EXPECT_EQ(first->next(), nullptr);
    delete last;
}

TEST_F(SExprTest, IteratorBeginsBeforeTheFirstCellAndStartsOverPastTheLast) {
    SExpr list(named('a'), new SExpr(named('b')));
    SExprIterator at(&list);
    EXPECT_EQ(at.cell(), nullptr);
    EXPECT_EQ((++at).cell(), &list);
    EXPECT_EQ((++at).cell(), list.next());
    EXPECT_EQ((++at).cell(), nullptr);
    EXPECT_EQ((++at).cell(), &list);

    SExprIterator none(nullptr);
    EXPECT_EQ((++none).cell(), nullptr);
}

TEST_F(SExprTest, DestroysElementsInTheirOrder) {
    {
        SExpr list(named('a'),
                   new SExpr(new SExpr(named('b'), new SExpr(new SExpr(named('c')), new SExpr(named('d')))),
                             new SExpr(nullptr, new SExpr(named('e')))));
    }
    EXPECT_EQ(destroyed, "abcde");
}

TEST_F(SExprTest, LengthAndDepthNeedNoStack) {
    SExpr* chain = nullptr;
    SExpr* nest = nullptr;
    for (int i = 0; i < 1000000; ++i) {
        chain = new SExpr(new SExprOperator, chain);
        nest = new SExpr(nest, new SExpr(nullptr));
    }
    chain = chain->reverse();
    EXPECT_EQ(print(*nest).size(), 3000000U);
    delete chain;
    delete nest;
}
