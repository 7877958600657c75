# regsvr32.sh DRIVER SURFACE RUNNER - Windows' own registration program, in both directions, for all
# users and for one.
set -u
driver=$1 surface=$2 runner=$3
failures=0
# identity WORDS - of the published surface's line that begins so.
identity() { sed -n "s/^$1 \({[^}]*}\).*/\1/p" "$surface"; }
clsid=$(identity 'coclass ZentrelK4N')
library=$(identity 'library ZentrelK4NLib')

# expect yes|no KEY - whether the registry has the key.
expect() {
  local has=no
  $runner reg query "$2" >/dev/null 2>&1 && has=yes
  if [ $has != "$1" ]; then
    echo "$step: $2 is there: $has, expected $1"
    failures=$((failures + 1))
  fi
}

run() {
  step="regsvr32 $*"
  $runner regsvr32 /s "$@" "Z:${driver//\//\\}" ||
    { echo "$step: status $?"; failures=$((failures + 1)); }
}

# in_part ROOT ANSWER
in_part() {
  expect "$2" "$1\\Software\\Classes\\ZentrelK4NLib.ZentrelK4N\\CurVer"
  expect "$2" "$1\\Software\\Classes\\CLSID\\$clsid\\InprocServer32"
}

run /u
run
in_part HKLM yes
expect yes "HKLM\\Software\\Classes\\TypeLib\\$library\\1.2\\409\\win64"
run /u
in_part HKLM no
expect no "HKLM\\Software\\Classes\\TypeLib\\$library"
run /n /i:user
in_part HKCU yes
in_part HKLM no
run /u /n /i:user
in_part HKCU no
[ $failures -eq 0 ]
