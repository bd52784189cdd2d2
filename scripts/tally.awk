# Reads the output of `ctest -V` (with -v single=NAME -v status=N: the output of one
# program). Prints "PASSED FAILED", then one line for each program that failed and, for
# ctest, indented under it what the program said of its first failures. It counts the cases
# inside the programs: the closing lines of GoogleTest, and "N passed, N failed" of a
# script. A program without a closing line is one failed case, and so is a program that
# fails although its closing line names no failure (a crash, a timeout, a sanitizer's
# report).

{ sub(/\r$/, "") }

# Stores the lines that begin a failed case or a sanitizer's report, with those that follow:
# at most 12 of one case, and 60 of a program.
function store_report(id, text) {
  if (text ~ /: Failure$|^FAILED  |^==[0-9]+==ERROR|^WARNING: ThreadSanitizer|: runtime error: /) linesLeft[id] = 12
  else if (text ~ /^(\[ +(OK|RUN|FAILED) +\]|ok  )/) linesLeft[id] = 0
  if (linesLeft[id] > 0 && reportLines[id] < 60) {
    linesLeft[id]--
    reportLines[id]++
    report[id] = report[id] "\n  " substr(text, 1, 400)
  }
}

function note(id, text) {
  if (match(text, /^\[  PASSED  \] [0-9]+ tests?\.$/)) {
    passed[id] += numberAfter(text, "[  PASSED  ] "); closed[id] = 1
  } else if (match(text, /^\[  FAILED  \] [0-9]+ tests?, listed below:$/)) {
    failed[id] += numberAfter(text, "[  FAILED  ] "); closed[id] = 1
  } else if (match(text, /^[0-9]+ passed, [0-9]+ failed$/)) {
    split(text, words, " ")
    passed[id] += words[1]; failed[id] += words[3]; closed[id] = 1
  } else if (text ~ /^Test command: [^ ]*cmake"? .*"-P"/) {
    checkOnly[id] = 1
  }
}

function numberAfter(text, prefix) { return substr(text, length(prefix) + 1) + 0 }

function close_program(id, name, good, how) {
  if (checkOnly[id]) {  # a CMake script has only its exit status
    closed[id] = 1
    if (good) passed[id] = 1
  }
  if (!closed[id] || (!good && !failed[id])) failed[id]++
  if (failed[id]) bad[++badCount] = name ": " failed[id] " failed (" (closed[id] ? how : "no closing line, " how) ")" report[id]
  allPassed += passed[id]; allFailed += failed[id]
}

single == "" && /^ *[0-9]+\/[0-9]+ Test +#[0-9]+: / {
  line = $0
  sub(/^ *[0-9]+\/[0-9]+ Test +#/, "", line)
  id = line + 0
  sub(/^[0-9]+: /, "", line)
  name = line
  sub(/ .*/, "", name)
  how = line
  sub(/^[^ ]+ \.*/, "", how)
  gsub(/\*/, "", how)
  sub(/^ +/, "", how)
  close_program(id, name, how ~ /^Passed/, how)
  next
}

single == "" && /^[0-9]+: / {
  text = $0
  sub(/^[0-9]+: /, "", text)
  note($0 + 0, text)
  store_report($0 + 0, text)
}

single != "" { note(1, $0) }

END {
  if (single != "") close_program(1, single, status == 0, "exit status " status)
  print allPassed + 0, allFailed + 0
  for (i = 1; i <= badCount; i++) print bad[i]
}
