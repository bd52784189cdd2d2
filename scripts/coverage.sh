# Counts what a run of the coverage build has reached. To be sourced after console.sh.

# Removes the counts of earlier runs, which gcov would add to the new ones, and the
# notes of sources that are gone, which gcov would look for.
forget_earlier_counts() {
  ninja -C "$top/build/coverage" -t cleandead >/dev/null
  find "$top/build/coverage" -name '*.gcda' -delete
  local notes
  find "$top/build/coverage" -name '*.gcno' | while read -r notes; do
    [[ -e "${notes%.gcno}.o" ]] || rm "$notes"
  done
}

# count_coverage COUNTS.json [OPTION...]: the options are gcovr's.
# The compiler makes branches for the exceptions that a call may throw, and on lines
# that hold only a brace: they are left out. gcov finds the sources from the top folder,
# and its files stay there until gcovr has read them.
count_coverage() (
  trap 'rm -f "$top"/*.gcov' EXIT
  cd "$top" || return
  # gcovr waits for ever if a gcov that it started fails.
  timeout 900 gcovr build/coverage --root . --object-directory "$top" \
    --gcov-executable "$top/scripts/gcov-by-block" \
    --filter '(json|Src|net|messages|agent|platform|host|simulator|check)/' \
    --exclude-throw-branches --exclude-unreachable-branches \
    --json "$@"
)
