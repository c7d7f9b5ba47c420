# What test programs leave behind; source it after common.sh, do not run it.

# without_passed: the output of test programs without the tests that went well.
without_passed() {
    awk '
        /^\[ RUN / { test = $0 "\n"; inside = 1; next }
        inside && /^\[ +(OK|SKIPPED) / { inside = 0; next }
        # A program that crashed leaves its last test open; ctest goes on with its own lines.
        inside && (/^\[  FAILED/ || /^ *([0-9]+\/[0-9]+ Test +#|Start )/) { printf "%s", test; inside = 0 }
        inside { test = test $0 "\n"; next }
        /^\[(-+|=+)\]|^Running main|^Note: This is test shard/ { next }
        { print; fflush() }
        END { if (inside) printf "%s", test }'
}

# summarize FOLDER: from the reports PROGRAM.PART.xml, how many tests of each program passed, failed and were skipped, and
# why; false when one failed or there was none.
summarize() {
    local reports=("$1"/*.xml)
    [ -e "${reports[0]}" ] || { echo 'no test program left a report'; return 1; }
    awk '
        # value NAME: of the attribute, with the characters that XML writes as references.
        function value(name) {
            if (!match($0, " " name "=\"[^\"]*")) return ""
            text = substr($0, RSTART + length(name) + 3, RLENGTH - length(name) - 3)
            gsub(/&#x0A;/, " ", text); gsub(/&lt;/, "<", text); gsub(/&gt;/, ">", text); gsub(/&quot;/, "\"", text)
            gsub(/&apos;/, "\047", text); gsub(/&amp;/, "\\&", text)
            return text
        }
        function tell() {
            if (program != "") printf "%-22s %5d passed, %d failed, %d skipped\n%s", program, passed, failed, skipped, reasons
            passed = failed = skipped = 0
            reasons = ""
        }
        FNR == 1 {
            name = FILENAME
            sub(/.*\//, "", name)
            sub(/\..*/, "", name)
            if (name != program) { tell(); program = name }
        }
        /<testsuites / { count = value("tests") - value("failures"); passed += count; allPassed += count
            failed += value("failures"); allFailed += value("failures") }
        /<testcase / { test = value("classname") "." value("name") }
        /<skipped / { --passed; --allPassed; ++skipped; ++allSkipped; reason = value("message")
            sub(/^[^ ]+:[0-9]+ /, "", reason)
            reasons = reasons "    skipped: " test ": " reason "\n" }
        /<failure / && test != lastFailed { lastFailed = test; reasons = reasons "    FAILED: " test "\n" }
        END {
            tell()
            printf "in all: %d passed, %d failed, %d skipped\n", allPassed, allFailed, allSkipped
            exit allFailed > 0 || allPassed + allSkipped == 0
        }' "${reports[@]}"
}
