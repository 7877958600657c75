# windows.sh MSI OLDER_MSI ZIP - the Windows packages under Wine, in a prefix of their own:
# installed over an older version, used, repaired and removed; the ZIP, too.
. "$(dirname "$0")/checks.sh"
root=$(cd "$here/../.." && pwd)
new=$(realpath "$1") old=$(realpath "$2") zip=$(realpath "$3")
export ZK_WINEPREFIX=$root/build/wine-package
end_wine() { (. "$root/scripts/wine-env" && zk_end_wineserver); }
[ ! -d "$ZK_WINEPREFIX" ] || end_wine
rm -rf "$ZK_WINEPREFIX"
version=$(msiinfo export "$new" Property | sed -n 's/^ProductVersion\t\([0-9.]*\).*/\1/p')
trap 'kill $(jobs -p) 2>/dev/null || true; wait; end_wine; rm -rf "$folder"' EXIT

wine() { "$root/scripts/wine-run" "$@"; }
drive=$ZK_WINEPREFIX/drive_c
msiexec() {
  wine msiexec "$@" /qn </dev/null >"$folder/msiexec" 2>&1 ||
    fail "msiexec $*: $? $(cat "$folder/msiexec")"
}
environment='HKLM\System\CurrentControlSet\Control\Session Manager\Environment'

# What there is: files, and the registry but for the installer's own books and Wine's. Wine leaves
# semicolons of the search path.
snapshot() {
  local key
  (cd "$drive" && find . -not -path './windows/Installer*' -not -path './k4n/*' | sort) >"$1"
  for key in 'HKLM\Software' 'HKCU\Software' "$environment"; do
    wine reg export "$key" 'C:\k4n\exported.reg' /y >/dev/null 2>&1 </dev/null
    iconv -f utf16 -t utf8 "$drive/k4n/exported.reg" | tr -d '\r' |
      awk 'BEGIN { RS = ""; FS = "\n" } $1 !~ /\\Installer(\\|\])|\\Software\\Wine/ { print }' |
      sed -E 's/(,3b,00)+,00,00$/,00,00/'
  done >>"$1"
}

wine cmd /c 'mkdir C:\k4n' </dev/null >/dev/null 2>&1
cp "$new" "$drive/k4n/new.msi"
cp "$old" "$drive/k4n/old.msi"
# The interface of the IVI Foundation may be another maker's already.
surface=$root/tests/typelib/expected.txt
iid=$(sed -n 's/^interface IIviDriverUtility \({[^}]*}\).*/\1/p' "$surface")
shared="HKLM\\Software\\Classes\\Interface\\$iid"
for key in "$shared" "$shared\\TypeLib"; do
  wine reg add "$key" /ve /d "another maker's" /f </dev/null >/dev/null 2>&1
done
snapshot "$folder/before"

entry() { wine reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' /s </dev/null; }
installed='C:\Program Files\Zentrel\K4N\bin\zk4n.exe'
detector="$drive/Program Files/Common Files/Zentrel Shared/Detectors/calibr20.det"
msiexec /i 'C:\k4n\old.msi'
expect 'DisplayVersion +REG_SZ +0\.9\.0\n' entry
msiexec /i 'C:\k4n\new.msi'
expect "DisplayVersion +REG_SZ +$version\n" entry
[ "$(entry | grep -c 'Zentrel K4N driver')" -eq 1 ] || fail "the older version is still there"
expect ';C:\\Program Files\\Zentrel\\K4N\\bin' wine reg query "$environment" /v PATH
cmp -s "$detector" "$root/data/calibr20.det" || fail "no detector file in $detector"

for file in zk4n.exe zevisa64.dll ZeVISA.dll ZentrelK4NLib.dll; do
  strings -el "$drive/Program Files/Zentrel/K4N/bin/$file" | grep -A 1 -x FileVersion |
    grep -qx "$version.0" || fail "$file does not tell its version"
done
for file in bin/IviZentrelK4N.chm doc/html/index.html doc/examples/csharp/ZentrelK4N.cs \
  lib/ZentrelK4NLib.tlb include/ZentrelK4NLib.h 'python/zentrelk4n-*.whl' wireshark/zk4n.lua; do
  compgen -G "$drive/Program Files/Zentrel/K4N/$file" >/dev/null || fail "there is no $file"
done
for link in Console 'Detector files' Examples Help; do
  [ -n "$(find "$drive" -path "*/Start Menu/*/$link.lnk")" ] || fail "the Start menu lacks $link"
done

# From another folder, found by the search path, with the registered driver.
cd "$folder"
expect "^zk4n $version\n" wine zk4n --version
found='\nok +registration [^\n]*C:\\Program Files\\Zentrel\\K4N\\bin\\ZentrelK4NLib.dll\n'
expect "${found}ok +VISA library " wine zk4n check
simulate "$root/scripts/wine-run" "$installed"
expect_measures wine zk4n
end_simulation

# Repairing brings back what is lost, and its registration, but leaves the detector file to its
# owner.
echo "the owner's" >"$detector"
rm "$drive/Program Files/Zentrel/K4N/bin/ZentrelK4NLib.dll"
wine reg delete 'HKLM\Software\Classes\ZentrelK4NLib.ZentrelK4N' /f </dev/null >/dev/null 2>&1
msiexec /i 'C:\k4n\new.msi' REINSTALL=ALL REINSTALLMODE=omus  # as /f does, which Wine has not
expect '\nok +registration ' wine zk4n check
msiexec /x 'C:\k4n\new.msi'
[ "$(cat "$detector")" = "the owner's" ] || fail "the owner's detector file is lost"
rm -r "$drive/Program Files/Common Files/Zentrel Shared"
snapshot "$folder/after"
same "removal leaves, or takes" "$folder/before" "$folder/after"

# The ZIP holds the same, and needs no installing.
python3 -m zipfile -e "$zip" "$drive/k4n"
expect '"points"' wine "C:\\k4n\\$(basename "$zip" .zip)\\bin\\zk4n.exe" measure --simulate --json
echo "Windows packages: passed"
