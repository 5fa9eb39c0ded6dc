#!/usr/bin/env bash
# Makes sure that includes point one way. Prints FILE:LINE of each that points another way: check-arrows.sh [FOLDER],
# this project when not said.
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

# A part of the project, and which others it may include beside itself. A part is a folder without the parts inside it,
# a file, or a file's name without its ending. LIBRARY stands for what the library shows.
table() {
    cat <<'TABLE'
support
support/os              support
support/zr              support support/os
support/misc            support
record                  support record/parts
record/parts            support record
expr                    support record/iKST.h
search                  support record record/parts
view                    support record search expr view/parts record/parts/SortKeys.h record/parts/RecordsAhead.h
view/parts              support record view
fieldmap                support record search expr view
container               support record support/misc/FileReplacement.h
tools/Failure
tools/terminal          support tools/Failure
tools/files             support tools/Failure tools/terminal
tools/logs              LIBRARY tools/Failure tools/terminal tools/files
tools/forms             LIBRARY tools/Failure tools/terminal tools/files tools/logs
tools/timeline          LIBRARY tools/Failure tools/terminal tools/files tools/logs
tools/commands          LIBRARY tools/Failure tools/terminal tools/files tools/logs tools/forms tools/timeline
tools/CommandLine       LIBRARY tools/Failure tools/terminal tools/commands
tools/main              tools/Failure tools/terminal tools/CommandLine
tools/manual            record tools/CommandLine
examples                LIBRARY
bench                   LIBRARY
fuzz                    LIBRARY record/parts view/parts tests tools/forms tools/CommandLine tools/Failure
tests                   LIBRARY record/parts view/parts support/misc support/os fuzz/Fuzz.h
TABLE
}
library="support record search view expr fieldmap container"

# FILE:LINE: TARGET of each include of a header of the project.
includes() {
    local folders=()
    for folder in $library tools examples bench fuzz tests; do [[ ! -d $folder ]] || folders+=("$folder"); done
    find "${folders[@]}" \( -name '*.cpp' -o -name '*.h' \) -print0 | sort -z |
        xargs -0 awk -F'"' '/^#include "/ {print FILENAME ":" FNR ": " $2}'
}

wrong=$(awk -v library="$library" '
    # The longest name of a part that the path begins with.
    function partOf(path) {
        while (path != "" && !(path in allowed))
            path = match(path, "[/.][^/.]*$") ? substr(path, 1, RSTART - 1) : ""
        return path
    }
    NR == FNR {
        part = $1
        $1 = ""
        sub("LIBRARY", library)
        allowed[part] = " " part " " $0 " "
        next
    }
    {
        source = partOf(substr($1, 1, index($1, ":") - 1))
        if (!index(allowed[source], " " partOf($2) " ") && !index(allowed[source], " " $2 " "))
            print $1 " " source "/ may not include " $2
    }' <(table) <(includes))
[[ -z $wrong ]] || {
    echo "$wrong" >&2
    exit 1
}
