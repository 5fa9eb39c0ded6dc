# Hands the headers' comments to Doxygen as it takes them:
#  - the comment that a file opens with is that of the class which it names, or of the file;
#  - "// --- Rows (rows.cpp) ---" and the comment below it open a group of members;
#  - a comment holds for all declarations below it up to a blank line;
#  - deleted operations, and destructors and assignments without a comment, are left out.

function closeGroup() {
    if (inGroup) print "///@}"
    inGroup = 0
}

# The braces and parentheses that a line leaves open.
function opened(line, open) {
    sub(/\/\/.*/, "", line)
    open = gsub(/[{(]/, "", line)
    return open - gsub(/[})]/, "", line)
}

function isName(word) { return word ~ /^[A-Za-z_]+:$/ }

FNR == 1 {
    name = $2
    sub(/:$/, "", name)
    ofClass = 0
    if (isName($2)) {
        while ((getline line < FILENAME) > 0) {
            if (line ~ "^ *(class|struct) ([A-Z]+_API )?" name "( [:{]|$)") ofClass = 1
        }
        close(FILENAME)
    }
    print ofClass ? "/// \\class " name : "/// \\file"
    if (sub(/^\/\/ [A-Za-z_]+: /, "// ")) $0 = "// " toupper(substr($0, 4, 1)) substr($0, 5)
    inHead = 1
}

inHead && /^\/\// {
    sub(/^\/\//, "///")
    if (sub(/^\/\/\/ Thread-safety:/, "///")) print "/// \\par Thread-safety"
    print
    next
}
{ inHead = 0 }

/^ *(private|protected):/ { isHidden = 1 }
/^ *public:/ || /^};/ { isHidden = 0 }
/^ *\/\/ --- .* ---$/ && !isHidden {
    closeGroup()
    title = $0
    sub(/^ *\/\/ --- /, "", title)
    sub(/( \([^()]*\))? ---$/, "", title)
    print "/** \\name " title
    inTitle = 1
    next
}
inTitle && /^ *\/\// {
    sub(/\/\//, " *")
    print
    next
}
inTitle {
    print " */\n///@{"
    inTitle = 0
    inGroup = 1
}

/^ *(private|protected):/ || /^};/ { closeGroup() }

/^ *\/\/\/($| )/ {
    if (!inComment) comment = ""
    comment = comment $0 "\n"
    inComment = 1
    print
    next
}
/^ *(\/\/|$)/ {
    if (/^ *$/) comment = ""
    print
    next
}

/^#/ {
    comment = ""
    print
    next
}

depth == 0 && (/= delete;/ || (!inComment && /^ *(virtual )?(~|[A-Za-z&]+ operator=)[^{}]*;/)) {
    inComment = 0
    next
}
depth == 0 && !inComment && !inStatement && comment != "" && !/\/\/\/</ { printf "%s", comment }
{
    inComment = 0
    print
    # Namespaces and classes are no statements: what is in them is looked at like the rest.
    if (depth == 0 && !inStatement && /^ *(extern "C" |namespace |class |struct |enum |template|public:|private:|protected:)/ && !/;$/) {
        comment = ""
        next
    }
    depth += opened($0)
    if (depth < 0) depth = 0
    code = $0
    sub(/ *\/\/.*/, "", code)
    inStatement = depth > 0 || code !~ /[;}]$/
}
