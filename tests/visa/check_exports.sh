# check_exports.sh LIST COMMAND... - the names that COMMAND shows as exported are those of LIST.
set -eu
list=$1
shift
diff <(grep '^  ' "$list" | tr -d ' ' | sort) \
  <("$@" | sed -nE 's/^\s*\[ *[0-9]+\]( \+base\[ *[0-9]+\])?\s+([0-9a-f]+ )?([A-Za-z_].*)$/\3/p; s/^[0-9a-f]+ [A-Za-z] (.*)$/\1/p' | sort)
