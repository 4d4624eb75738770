# Records of a run as ctest and GoogleTest write them; sourced by the tests that need some.
# shellcheck shell=bash

# write_ctest_record FILE NAME=STATUS...: STATUS is run, fail, notrun, disabled or, for a test that chose not to run, cannot.
write_ctest_record() {
  local file=$1 test status
  shift
  {
    printf '<?xml version="1.0" encoding="UTF-8"?>\n<testsuite name="(empty)"\n\ttests="%d"\n\ttime="1"\n\t>\n' "$#"
    for test in "$@"; do
      status=${test#*=}
      [[ $status != cannot ]] || status=notrun
      printf '\t<testcase name="%s" classname="%s" time="1" status="%s">\n' "${test%=*}" "${test%=*}" "$status"
      case "${test#*=}" in
        fail) printf '\t\t<failure message=""/>\n' ;;
        notrun) printf '\t\t<skipped message="Unable to find executable"/>\n' ;;
        cannot) printf '\t\t<skipped message="SKIP_RETURN_CODE=77"/>\n' ;;
      esac
      printf '\t\t<system-out>&lt;testcase name="no test" status="run"&gt;\n</system-out>\n\t</testcase>\n'
    done
    echo '</testsuite>'
  } >"$file"
}

# write_program_record FILE TESTS FAILURES SKIPPED: of one suite. Those that failed come first, then those that were skipped.
write_program_record() {
  local file=$1 tests=$2 failures=$3 skipped=$4 i
  local suite="tests=\"$tests\" failures=\"$failures\" disabled=\"0\""
  {
    printf '<?xml version="1.0" encoding="UTF-8"?>\n<testsuites %s errors="0" time="0.5" name="AllTests">\n' "$suite"
    printf '  <testsuite name="Suite" %s skipped="%d" errors="0" time="0.5">\n' "$suite" "$skipped"
    for ((i = 1; i <= tests; ++i)); do
      if ((i <= failures)); then
        printf '    <testcase name="T%d" status="run" result="completed" classname="Suite">\n' "$i"
        printf '      <failure message="a.cpp:1&#x0A;&lt;skipped" type=""><![CDATA[a.cpp:1\nFailed]]></failure>\n'
        printf '    </testcase>\n'
      elif ((i <= failures + skipped)); then
        printf '    <testcase name="T%d" status="run" result="skipped" classname="Suite">\n' "$i"
        printf '      <skipped message="a.cpp:1&#x0A;not here" />\n    </testcase>\n'
      else
        printf '    <testcase name="T%d" status="run" result="completed" classname="Suite" />\n' "$i"
      fi
    done
    printf '  </testsuite>\n</testsuites>\n'
  } >"$file"
}
