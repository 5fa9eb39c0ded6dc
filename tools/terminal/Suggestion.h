// "Did you mean": the nearest of some names.
#pragma once

#include <string>
#include <vector>

/// The second half of a message about an unknown name: "\"Rel\"; did you mean \"Reel\"? The columns are ...".
/// Of many names only the first ones are listed; `howToSeeAll` follows them then.
std::string suggestionFor(const std::string& name, const std::vector<std::string>& existing,
                          const std::string& whatTheyAre, const std::string& howToSeeAll);
