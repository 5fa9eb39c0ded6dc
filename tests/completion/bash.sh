# What bash offers for the cases on standard input: types them into an interactive shell, whose line editor inserts all
# words that it can complete. $1 is the file of the completion.
set -euo pipefail
start=$(mktemp)
lines=$(mktemp)
trap 'rm -f "$start" "$lines"' EXIT
cat >"$start" <<END
unset HISTFILE
PS1= PS2=
. /usr/share/bash-completion/bash_completion
. "$1"
note() { printf '%s\n' "\$READLINE_LINE" >>"$lines"; }
bind -x '"\C-o": note'
END

mapfile -t cases
keys=
for case in "${cases[@]}"; do
    # Inserting all words loses the quote that is open; the ordinary key keeps it.
    complete=$'\e*'
    [[ $case != *\^[\"\']* ]] || complete=$'\t'
    keys+=${case/^/}$complete$'\cO\cU'
done
printf %s "$keys" | bash --noprofile --rcfile "$start" -i >/dev/null 2>&1 || true

number=0
while read -r line; do
    case=${cases[number++]}
    eval "before=(${case%%^*}) words=($line)" || words=("$line")
    offered=("${words[@]:${#before[@]}}")
    [[ ${offered[*]} != "${case#*^}" ]] || offered=()
    printf '%s =>' "$case"
    printf '%s\n' "${offered[@]}" | LC_ALL=C sort | paste -sd '|' | sed 's/^./ &/'
done <"$lines"
