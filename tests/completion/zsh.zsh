# What zsh offers for the cases on standard input: completes them in an interactive shell on a terminal of its own. $1 is
# the file of the completion.
zmodload zsh/zpty
work=$(mktemp -d)
trap 'rm -rf $work' EXIT
mkdir $work/functions
cp $1 $work/functions/_kesta
cat >$work/cases

cat >$work/.zshrc <<'END'
LC_ALL=C PS1= PS2=
fpath=($ZDOTDIR/functions $fpath)
autoload -Uz compinit
compinit -u -D

# Notes what a completion adds, as a word without quotes.
compadd() {
    local -a words
    [[ ${@[1,(i)(-|--)]} == *-[OAD]* ]] || {
        builtin compadd -O words "$@"
        offered+=("${(Q)IPREFIX}"${^words})
    }
    builtin compadd "$@"
}

# A single word is in the line, quoted by zsh. The quote may still be open, with a comma that goes when a blank is typed.
inserted() {
    local -a before=(${(z)case%%^*}) words=(${(z)BUFFER})
    local word=${words[$#before+1]%,}
    [[ $word != [\"\']* || $word == *$word[1] ]] || word+=$word[1]
    print -r -- $word
}

run() {
    local case
    local -aU offered
    while read -r case; do
        offered=()
        BUFFER=${case/^/}
        CURSOR=$#BUFFER
        zle complete-word
        if (($#offered == 1)); then
            offered=("${(Q)$(inserted)}")
        else
            offered=(${(o)offered})
        fi
        print -r -- "$case =>${offered:+ }${(j:|:)offered}" >>$ZDOTDIR/answers
    done <$ZDOTDIR/cases
    exit
}
zle -N zle-line-init run
END

export ZDOTDIR=$work
zpty shell exec zsh -d -i
while zpty -r shell output; do :; done
cat $work/answers
