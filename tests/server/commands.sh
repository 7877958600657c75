# commands.sh ZK4N DRIVER LOCK_HOLDER [RUNNER] - zk4n register, zk4n check and zk4n shell
# --registered as processes: what they say, and their exit status.
set -u
zk4n=$1 driver=$2 lock_holder=$3 runner=${4:-}
folder=$(mktemp -d)
export ZENTREL_REGISTRY=$folder/registry XDG_CONFIG_HOME=$folder/none XDG_CONFIG_DIRS=$folder/none
unset ZEVISA_CONFIG
children=()
trap 'kill "${children[@]}" 2>/dev/null; wait; rm -rf "$folder"' EXIT
failures=0

# expect STATUS PATTERN ARGUMENT... - zk4n with the arguments ends so and says something that
# matches.
expect() {
  local status=$1 pattern=$2 said got
  shift 2
  said=$($runner "$zk4n" "$@" 2>&1)
  got=$?
  said=$(tr -d '\r' <<<"$said")
  if [ $got -ne "$status" ] || ! grep -Pqz "$pattern" <<<"$said"; then
    printf '%s\n' "zk4n $*" "  expected status $status and: $pattern" "  got status $got and:" \
      "$said"
    failures=$((failures + 1))
  fi
}

# is_for_user STATUS - whether the user's part of the registry file knows classes (0) or not (1).
is_for_user() {
  [ -n "$runner" ] && return
  grep -Fqx '[HKEY_CURRENT_USER\Software\Classes\CLSID]' "$ZENTREL_REGISTRY"
  [ $? -eq "$1" ] || { echo "registered for others than asked"; failures=$((failures + 1)); }
}

# start OUTPUT COMMAND... - in the background, until the end; waits for its first line.
start() {
  local output=$1
  shift
  $runner "$@" >"$output" 2>&1 &
  children+=($!)
}

name=$(basename "$driver")
expect 0 'Registration removed for all users: ' register --remove
pattern="ok +bitness +64-bit program, 64-bit driver [^\n]*$name\n"
pattern+='FAILED +registration +[^\n]*not registered: run zk4n register'
expect 1 "$pattern" check
expect 0 "^Registered for all users: [^\n]*$name\n" register
is_for_user 1
echo Close >"$folder/close.zk"
# Errors come from the class that reports them: what a child forwards is the root's.
printf '%s\n' Close Sweep.PowerStep.Reset 'Sweep.PowerStep.Start = 1' \
  'PulseGenerator.Output.Enabled = true' >"$folder/errors.zk"
sources=
for class in ZentrelK4N ZentrelK4NPowerStep ZentrelK4N ZentrelK4N; do
  sources+="[^\n]*\"source\":\"ZentrelK4NLib.$class.1\"[^\n]*\n"
done
expect 0 "^$sources" shell --json --registered "$folder/errors.zk"
pattern="ok +registration +ZentrelK4NLib.ZentrelK4N in [^\n]*$name\n"
pattern+='ok +VISA library +[^\n]*zevisa[^\n]*\nok +settings +no file, the defaults\n'
expect 0 "${pattern}not tried +connection +" check
expect 0 "^Registered for this user: [^\n]*$name\n" register --user
is_for_user 0
expect 0 "^Registration removed for this user: [^\n]*$name\n" register --user --remove
expect 2 '^zk4n: cannot read [^\n]*none.so\n' register --module "$folder/none.so"
expect 2 'cannot read ' check --module "$folder"
expect 1 '^zk4n: [^\n]*zevisa64[^\n]* is not the driver module: it has no DllInstall\n' \
  register --module "$(ls "$(dirname "$driver")"/*zevisa64.*)"
if [ -z "$runner" ]; then
  ln -s /dev/null "$folder/device"
  ZENTREL_REGISTRY=$folder/device expect 1 \
    "^zk4n: registering [^\n]*: 0x8007001D \(registry cannot be written\)\n" register
fi
# Heads of modules. A Windows one tells at byte 0x3C where its header lies.
none='FAILED +bitness +64-bit program, but no driver module in '
other='FAILED +bitness +64-bit program, 32-bit driver [^\n]*: they cannot work together'
good='ok +bitness +64-bit program, 64-bit driver '
while read -r -u 3 verdict head; do
  printf "$head" >"$folder/head.so"
  expect 1 "^${!verdict}" check --module "$folder/head.so"
done 3<<'END'
none MZ or not
none \177ELF\003
other \177ELF\001
good \177ELF\002
none MZ%058d\100\000\000\000PE\000\000\252\001
none mZ%058d\100\000\000\000PE\000\000\144\206
other MZ%058d\100\000\000\000PE\000\000\114\001
good MZ%058d\100\000\000\000PE\000\000\144\206
good MZ%058d\372\017\000\000%04026dPE\000\000\144\206
none MZ%058d\373\017\000\000%04027dPE\000\000\144\206
none MZ%058d\001\020\000\000
END

start "$folder/resource" "$zk4n" simulate --port 0 --serial 12345 --show
for _ in $(seq 300); do [ -s "$folder/resource" ] && break; sleep 0.1; done
resource=$(head -n 1 "$folder/resource" | tr -d '\r')
pattern='ok +connection +TCPIP[^\n]*SOCKET\nok +lock +free\n'
pattern+='ok +identity +K4N[^\n]*, serial number 12345'
expect 0 "$pattern" check --resource "$resource"
printf '[*]\nread-ceiling = 50\ncolour = red\nno-delay\n' >"$folder/visa.ini"
pattern='ok +settings +[^\n]*visa.ini\nignored +settings +line 3: no such key: colour\n'
pattern+='ignored +settings +line 4: [^\n]*: no-delay\n'
pattern+='ok +connection +TCPIP[^\n]*, settings of \[\*\]\nok +lock'
ZEVISA_CONFIG=$folder/visa.ini expect 0 "$pattern" check --resource "$resource"
# The simulator shows what it is asked for, and what that changes at it: the mask is written before
# and after.
said=$(tr -d '\r' <"$folder/resource")
pattern="\n   feature mask +0xFFFF\n(?s:.*)\n2: write feature mask #23 \[65531\] -> 0 \[65531\]\n"
pattern+="   feature mask +0xFFFB\n2: "
pattern+="(?s:.*)\n2: read file #10 \\\\FRAM\\\\TYPE.TXT -> 0 K4N"
if ! grep -Pqz "$pattern" <<<"$said"; then
  printf '%s\n' "simulate --show says:" "$said"
  failures=$((failures + 1))
fi
expect 0 'ok +registration +not used with --module: [^\n]*\n(.|\n)*ok +identity +K4N' \
  check --resource "$resource" --module "$driver"

start "$folder/holder" "$lock_holder" "$resource"
for _ in $(seq 100); do
  $runner "$zk4n" check --resource "$resource" | grep -q 'FAILED' && break
  sleep 0.1
done
expect 1 'FAILED +lock +held by process [0-9]+ \([^\n]*lock_hold[^\n]*\), which' \
  check --resource "$resource"
kill "${children[@]}"
wait
children=()
expect 1 'FAILED +connection +TCPIP\S*SOCKET: [^\n]*0xBFFF0011' check --resource "$resource"
expect 1 'FAILED +connection +[^\n]*0xBFFF0012' check --resource 'no resource'
expect 0 'Registration removed for all users: ' register --remove
expect 1 'FAILED +registration' check
expect 1 '^zk4n: ZentrelK4NLib.ZentrelK4N: 0x800401F3' shell --registered "$folder/close.zk"
[ $failures -eq 0 ]
