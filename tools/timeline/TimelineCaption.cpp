#include "tools/timeline/TimelineCaption.h"

#include "tools/terminal/DisplayText.h"

std::vector<std::string> TimelineCaption::facts(const Timeline& timeline) const {
    std::vector<std::string> facts;
    facts.push_back(counted(timeline.records, "record"));
    facts.push_back(counted(timeline.lanes.size(), "lane") + " by " + laneName);
    facts.push_back(rate.name() + " fps (" + rateOrigin + ')');
    if (timeline.tagged > 0) facts.push_back(std::to_string(timeline.tagged) + " tagged");
    if (timeline.overlaps > 0) facts.push_back(counted(timeline.overlaps, "overlap"));
    if (timeline.gaps > 0) facts.push_back(counted(timeline.gaps, "gap"));
    if (!timeline.problems.empty()) facts.push_back(std::to_string(timeline.problems.size()) + " not shown");
    return facts;
}

std::string TimelineCaption::nameOf(const TimelineLane& lane) const {
    return lane.name.empty() ? "(no " + laneName + ')' : lane.name;
}

std::string describe(const TimelineProblem& problem) {
    return "row " + std::to_string(problem.row + 1) + ": " + problem.reason;
}
