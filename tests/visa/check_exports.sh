# check_exports.sh LIST COMMAND... - the names that COMMAND (nm -D or objdump -p) shows as exported
# are those of LIST.
set -eu
list=$1
shift
diff <(sed -nE 's/^  (\w+).*/\1/p' "$list" | sort) <("$@" | awk '
  /^\[Ordinal\/Name Pointer\] Table/ { in_table = 1; next }
  in_table && NF == 0 { in_table = 0 }
  in_table || /^[0-9a-f]+ [A-Za-z] / { print $NF }' | sort)
