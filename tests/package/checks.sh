# Sourced by the tests of the packages: what they have in common. $folder is their own, removed in
# the end.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$(mktemp -d)
end_all() {
  kill $(jobs -p) 2>/dev/null || true
  wait
  umount -l "$folder/view" 2>/dev/null || true
  rm -rf "$folder"
}
trap end_all EXIT

fail() {
  printf '%s\n' "FAILED: $*" >&2
  exit 1
}

# same WHAT BEFORE AFTER - two lists are the same.
same() { diff "$2" "$3" >"$folder/difference" || fail "$1:" "$(head -20 "$folder/difference")"; }

# expect PATTERN COMMAND... - the command succeeds, and says what matches.
expect() {
  local pattern=$1 said
  shift
  said=$("$@" 2>&1 </dev/null | tr -d '\r') || fail "$*:" "$said"
  grep -Pqz -- "$pattern" <<<"$said" || fail "$* says:" "$said" "and not: $pattern"
}

# simulate COMMAND... - a simulated instrument, whose name is $resource then.
simulate() {
  "$@" simulate --port 0 --serial 12345 >"$folder/resource" 2>/dev/null </dev/null &
  for _ in $(seq 200); do
    [ ! -s "$folder/resource" ] || break
    sleep 0.1
  done
  resource=$(head -n 1 "$folder/resource" | tr -d '\r')
  sed "s/RESOURCE/$resource/" "$here/measure.zk" >"$folder/measure.zk"
}

# Ends the simulated instrument; only then can its program be replaced.
end_simulation() {
  kill %1
  wait %1 2>/dev/null || true
}

# expect_measures COMMAND... - zk4n measures with the registered driver: every result is a success,
# each trace has its points, and they are levels that the simulated instrument has.
expect_measures() {
  local commands
  commands=$(grep -c '^[A-Za-z]' "$folder/measure.zk")
  "$@" shell --registered --json "$folder/measure.zk" </dev/null >"$folder/measured" ||
    fail "$*: $(cat "$folder/measured")"
  python3 - "$folder/measured" "$commands" <<'END' || fail "measured: $(cat "$folder/measured")"
import json, sys
lines = [json.loads(line) for line in open(sys.argv[1])]
results = [line for line in lines if "hresult" in line]
assert len(results) == int(sys.argv[2])
assert all(line["hresult"] == "0x00000000" and line["error"] is None for line in results)
traces = [line["out"]["DataArray"] for line in results if line["command"].endswith("FetchData")]
assert [len(trace) for trace in traces] == [11, 11, 11]
assert all(-80 < value < 30 for trace in traces for value in trace)
END
}
