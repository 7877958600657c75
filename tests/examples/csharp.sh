# csharp.sh WORK COM_MODULE TEXT_MODULE COMPARE_ARGUMENT... - compiles the C# example as it is, and
# compares what it prints under Mono with the expected text. 77 without Mono.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
source=$here/../../examples/csharp
work=$1 com_module=$2 text_module=$3
shift 3
if ! command -v mcs >/dev/null || ! command -v mono >/dev/null; then
  printf '%s\n' "tests/examples/csharp.sh: Skipped" "There is no Mono (Debian: mono-mcs)."
  exit 77
fi
rm -rf "$work"
mkdir -p "$work/modules"
# The oldest compiler in use is the one that every Windows brings: it knows C# 5.
compile() { mcs -langversion:5 -platform:x64 -warnaserror "$@"; }
compile -out:"$work/Windows.exe" "$source"/*.cs

sed 's/\[In, Out, MarshalAs(UnmanagedType.SafeArray[^]]*\] ref double\[\]/ref IntPtr/g' \
  "$source/ZentrelK4N.cs" >"$work/Pointers.cs"
compile -main:Mono -out:"$work/Mono.exe" "$work/Pointers.cs" "$source/Measure.cs" "$here/Mono.cs"
for name in ole32 oleaut32; do ln -s "$com_module" "$work/modules/lib$name.so"; done
exec bash "$here/compare.sh" "$@" \
  env LD_LIBRARY_PATH="$work/modules" LD_PRELOAD="$text_module" mono "$work/Mono.exe"
