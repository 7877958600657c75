# compare.sh ZK4N DETECTOR_FILE EXPECTED RUNNER COMMAND... - an example against the simulated
# instrument: a measurement, an instrument that refuses a level, and none at all. Every language's
# example prints the expected text. RUNNER starts programs of the system that the example is for; it
# may be empty.
set -eu
zk4n=$1 detector_file=$2 expected=$3 runner=$4
shift 4
# A program with an administrator's rights, as those under Wine have, sees no class that is
# registered for a user.
who=--user
[ -z "$runner" ] || who=
folder=$(mktemp -d)
export ZENTREL_REGISTRY=$folder/registry
simulator=
finish() {
  [ -z "$simulator" ] || kill "$simulator" 2>/dev/null || true
  wait
  $runner "$zk4n" register $who --remove >/dev/null || true
  rm -rf "$folder"
}
trap finish EXIT

# simulate OPTION... - starts an instrument; its name is in $resource.
simulate() {
  : >"$folder/resource"
  $runner "$zk4n" simulate --port 0 "$@" >"$folder/resource" &
  simulator=$!
  for _ in $(seq 300); do [ -s "$folder/resource" ] && break; sleep 0.1; done
  resource=$(head -n 1 "$folder/resource" | tr -d '\r')
}

# run WHAT COMMAND... - appends to the transcript what the example prints, and how it ends.
run() {
  local what=$1 status=0
  shift
  printf '== %s\n' "$what" >>"$folder/transcript"
  "$@" >"$folder/output" 2>&1 || status=$?
  tr -d '\r' <"$folder/output" >>"$folder/transcript"
  printf 'Status %s\n' "$status" >>"$folder/transcript"
}

$runner "$zk4n" register $who >/dev/null
simulate
run 'an instrument' "$@" "$resource" "$detector_file"
kill "$simulator"
wait "$simulator" || true
# The first levels are set while the session is opened.
simulate --fault refuse:command=3,parameter=79,status=-7,after=3,times=1
run 'an instrument that refuses a level' "$@" "$resource" "$detector_file"
run 'no instrument' "$@" 'no resource'
diff -u "$expected" "$folder/transcript"
