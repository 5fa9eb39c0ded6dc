#include "tools/terminal/Suggestion.h"

#include <algorithm>
#include <numeric>

#include "support/Ascii.h"

namespace {

constexpr std::size_t longestCompared = 64;
constexpr std::size_t listedAtMost = 20;

/// How many characters must be changed, added or taken away to make one text of the other, ignoring case.
std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> costs(b.size() + 1);
    std::iota(costs.begin(), costs.end(), std::size_t(0));
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = costs[0];
        costs[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t change = diagonal + (Ascii::fold(a[i]) == Ascii::fold(b[j]) ? 0 : 1);
            diagonal = costs[j + 1];
            costs[j + 1] = std::min({change, costs[j] + 1, costs[j + 1] + 1});
        }
    }
    return costs.back();
}

std::string nearest(const std::string& name, const std::vector<std::string>& existing) {
    std::string best;
    std::size_t bestDistance = std::max<std::size_t>(1, name.size() / 3) + 1;
    for (const std::string& candidate : existing) {
        if (name.size() > longestCompared || candidate.size() > longestCompared) continue;
        const std::size_t distance = editDistance(name, candidate);
        if (distance >= bestDistance) continue;
        bestDistance = distance;
        best = candidate;
    }
    return best;
}

}  // namespace

std::string suggestionFor(const std::string& name, const std::vector<std::string>& existing,
                          const std::string& whatTheyAre, const std::string& howToSeeAll) {
    std::string text = '"' + name + '"';
    const std::string best = nearest(name, existing);
    if (!best.empty()) text += "; did you mean \"" + best + "\"?";
    if (existing.empty()) return text + "; there are no " + whatTheyAre;
    text += (best.empty() ? "; the " : " The ") + whatTheyAre + " are: ";
    const std::size_t listed = std::min(existing.size(), listedAtMost);
    for (std::size_t i = 0; i < listed; ++i) text += (i == 0 ? "" : ", ") + existing[i];
    if (listed == existing.size()) return text;
    return text + " ... and " + std::to_string(existing.size() - listed) + " more; " + howToSeeAll;
}
