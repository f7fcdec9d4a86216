# Reads what GoogleTest printed, tells the failed tests in full and ends with the counts of passed, skipped and failed.
# A test that began and told no outcome took the process down with it: it failed too.

function finish(failed) {
  if (failed) printf "%s\n", text
  running = 0
}

function crashed() {
  ++failures
  text = text "The process ended in the middle of this test.\n"
  finish(1)
}

FNR == 1 && running { crashed() }
/\[ RUN      \] / {
  if (running) crashed()
  running = 1
  text = ""
}
running { text = text $0 "\n" }
running && /\[       OK \] / {
  ++passed
  finish(0)
}
running && /\[  SKIPPED \] / {
  ++skipped
  finish(0)
}
running && /\[  FAILED  \] / {
  ++failures
  finish(1)
}
END {
  if (running) crashed()
  print passed + 0, skipped + 0, failures + 0
}
