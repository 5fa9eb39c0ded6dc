# What fish offers for the cases on standard input. $argv[1] is the file of the completion.
source $argv[1]
while read -l case
    set -l offered (complete -C (string replace ^ '' -- $case) | string replace -r '\t.*' '' | env LC_ALL=C sort -u)
    set -l words (string join '|' -- $offered)
    printf '%s =>%s\n' $case (string replace -r '^(.)' ' $1' -- "$words")
end
