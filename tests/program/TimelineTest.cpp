// kesta timeline: records as bars along their time codes, as a picture and as text.
#include "tests/program/ProgramTest.h"

namespace {

class TimelineTest : public ProgramTest {
 protected:
    void SetUp() override {
        ProgramTest::SetUp();
        setenv("LC_ALL", "C", 1);
        unsetenv("COLUMNS");
    }

    void records(std::vector<std::string> rows, const std::string& params = "") const {
        rows.insert(rows.begin(), "Name,Reel,Start time,End time,Tag,Notes");
        table("a.log", rows, params);
    }

    /// The lanes of the text form, without the lines above and below them.
    std::string lanes(const std::string& options = "") {
        const std::string text = run("timeline a.log --text --width 60 " + options).out;
        const std::size_t begin = text.find("\n\n") + 2;
        return text.substr(begin, text.find("\n\n", begin) + 1 - begin);
    }

    std::string picture(const std::string& options = "") { return run("timeline a.log -o - " + options).out; }

    static void expectIn(const std::string& text, const std::vector<std::string>& parts) {
        for (const std::string& part : parts) EXPECT_NE(text.find(part), std::string::npos) << part << text;
    }
};

TEST_F(TimelineTest, StacksOverlapsShowsGapsAndShortensLongOnes) {
    records({"1,B,01:00:00:00,01:00:10:00,0", "3,B,01:00:14:00,01:00:20:00,1", "2,B,01:00:05:00,01:00:10:00",
             "4,,05:00:00:00,05:00:02:00", "5,A,02:00:00:00,02:00:08:00", "6,A,09:00:00:00,09:00:08:00"});
    EXPECT_EQ(lanes(),
              "A         02:00:00:00 [5=======]~~~[6=======]    09:00:08:00\n"
              "B         01:00:00:00 [1====xxxxxx].....[*3####] 01:00:20:00\n"
              "                            [2xxxx]\n"
              "(no Reel) 05:00:00:00 []                         05:00:02:00\n");
    EXPECT_EQ(lanes("--common"),
              "A         02:00:00:00             [5=]~~~~~[6==] 09:00:08:00\n"
              "B         01:00:00:00 [1xx]..[*]                 01:00:20:00\n"
              "                        [2]\n"
              "(no Reel) 05:00:00:00                   =        05:00:02:00\n");
    expectIn(picture(), {"Overlap: 01:00:05:00 - 01:00:10:00, 00:00:05:00",
                         "Gap: 02:00:08:00 - 09:00:00:00, 06:59:52:00",
                         "3&#10;B&#10;01:00:14:00 - 01:00:20:00, 00:00:06:00&#10;row 2, tagged</title>"});
}

TEST_F(TimelineTest, CountsDropFrameCodesAndPassesMidnight) {
    records({"1,R,01:00:59;28,01:01:00;03", "2,R,00:59:59;29,01:00:00;00", "3,D,00:00:00;00,23:59:59;29",
             "4,T,01:09:59;28,01:10:00;01"});
    expectIn(picture(), {"29.97 fps (assumed)", "01:00:59;28 - 01:01:00;03, 00:00:00;03&#10;row 1",
                         "00:59:59;29 - 01:00:00;00, 00:00:00;01&#10;row 2",
                         "00:00:00;00 - 23:59:59;29, 23:59:59;29&#10;row 3",
                         "01:09:59;28 - 01:10:00;01, 00:00:00;03&#10;row 4"});
    expectIn(picture("--fps 59.94"), {"row 1: End time 01:01:00;03 is one of the numbers that drop frame"});

    records({"1,M,01:00:00:00,01:00:10:00", "2,M,01:00:10:00,01:00:20:00"});
    EXPECT_EQ(picture().find("Gap"), std::string::npos) << "records that meet leave no gap";

    records({"1,N,00:20:00:00,00:30:00:00", "2,N,23:50:00:00,00:10:00:00"}, "\"Frame_Rate:25 fps\"\n");
    EXPECT_EQ(lanes(), "N 23:50:00:00 [2==============]........[1======] 00:30:00:00\n");
    expectIn(picture(), {"25 fps (from the log)", "23:50:00:00 - 00:10:00:00, 00:20:00:00&#10;row 2"});
}

TEST_F(TimelineTest, NamesEveryRecordThatItCannotShow) {
    records({"1,R,01:00:00:00,01:00:01:00", "2,R,,01:00:01:00", "3,R,01:00:00:00,later",
             "4,R,01:00:10:00,01:00:00:00", "5,R,01:00:00:25,01:00:02:00", "6,R,01:61:00:00,01:00:02:00",
             "7,R,01:00:00;00,01:00:02;00"},
            "\"FPS:25\"\n");
    const Outcome outcome = run("timeline a.log -o a.svg");
    EXPECT_EQ(outcome.exitCode, 1);
    expectIn(content("a.svg"), {"6 of 7 records not shown:", "row 3: End time &quot;later&quot; is no"});
    expectIn(outcome.err,
             {"not shown: row 2: Start time is empty", "row 3: End time \"later\" is no time code",
              "row 4: End time 01:00:00:00 is before Start time 01:00:10:00",
              "row 5: Start time 01:00:00:25 has frame 25 of a second that has 25",
              "row 6: Start time 01:61:00:00 is no time of a day",
              "row 7: Start time 01:00:00;00 is drop frame, which there is not at 25 frames a second"});
}

TEST_F(TimelineTest, HostileTextsNeitherBreakThePictureNorReachTheTerminal) {
    records({"</text><script>&',R\xff\x1b[2J,01:00:00:00,01:00:01:00,1,\"\"x\"\"]]>",
             "\xE6\x97\xA5\xE6\x9C\xAC,<b>,01:00:00:00,01:00:01:00"});
    const std::string svg = picture();
    expectIn(svg, {"&lt;/text&gt;&lt;script&gt;&amp;&#39;", "&quot;x&quot;]]&gt;",
                   "R\xEF\xBF\xBD\xEF\xBF\xBD[2J"});
    EXPECT_EQ(svg.find('\x1b'), std::string::npos);
    std::vector<std::string> open;  // every element is closed again, in order
    for (std::size_t at = svg.find('<'); at != std::string::npos; at = svg.find('<', at + 1)) {
        const std::string tag = svg.substr(at + 1, svg.find('>', at) - at - 1);
        ASSERT_EQ(tag.find('<'), std::string::npos) << tag;
        ASSERT_EQ(std::count(tag.begin(), tag.end(), '"') % 2, 0) << tag;
        if (tag.front() == '/') {
            ASSERT_FALSE(open.empty()) << tag;
            ASSERT_EQ(open.back(), tag.substr(1));
            open.pop_back();
        } else if (tag.back() != '/') {
            open.push_back(tag.substr(0, tag.find(' ')));
        }
    }
    EXPECT_TRUE(open.empty());

    expectIn(lanes(),
             {"<b>          01:00:00:00 [?\?=====", "R\\xff\\x1b[2J 01:00:00:00 [*</text><script>&'###]"});
    setenv("LC_ALL", "C.UTF-8", 1);
    expectIn(lanes(), {"[\xE6\x97\xA5\xE6\x9C\xAC\xE2\x94\x81"});
}

TEST_F(TimelineTest, TakesOtherColumnsAndRefusesWhatItCannotDraw) {
    table("a.log", {"Scene,in,out", "12,10000000,10000100"});
    expectIn(picture("--lanes scene --start in --end out --common"), {"1 lane by Scene"});
    table("empty.log", {"Reel,Start time,End time"});
    expectRefused({
        {"timeline a.log", 64, "needs -o FILE or --text"},
        {"timeline a.log --text -o x.svg", 64, "excludes"},
        {"timeline a.log --text", 2, "no column \"Reel\"; the columns are: Scene, in, out"},
        {"timeline a.log --text --lanes Scene", 2, "no column \"Start time\""},
        {"timeline a.log --text --lanes in --start in --end Scene", 2, "no record has time codes"},
        {"timeline empty.log -o x.svg", 2, "there are no records to show"},
        {"timeline empty.log --text --fps 50i", 64, "\"50i\" is no frame rate"},
        {"timeline a.log -o a.log --force", 2, "is the log itself"},
        {"timeline a.log -o empty.log", 2, "is there already; --force replaces it"},
    });
}

}  // namespace
