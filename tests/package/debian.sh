# debian.sh FOLDER - the Debian packages in FOLDER: installed, used and purged, in a view of the
# file system of this test's own, so that the machine stays as it is. Needs root.
if [ "${2:-}" != inside ]; then
  [ "$(id -u)" -eq 0 ] || { echo "   skipped: Debian packages: installing needs root"; exit 0; }
  exec unshare --mount --propagation private bash "$0" "$1" inside
fi
. "$(dirname "$0")/checks.sh"
dist=$(realpath "$1")
runtime=$(ls "$dist"/zentrel-k4n_*_amd64.deb) dev=$(ls "$dist"/zentrel-k4n-dev_*_amd64.deb)
[ ! -e /usr/bin/zk4n ] ||
  { echo "   skipped: Debian packages: the driver is installed here"; exit 0; }

mkdir "$folder/view"
mount -t tmpfs tmpfs "$folder/view"
for top in usr etc var root; do
  mkdir -p "$folder/view/$top"/{changes,work}
  mount -t overlay overlay "/$top" \
    -o "lowerdir=/$top,upperdir=$folder/view/$top/changes,workdir=$folder/view/$top/work" ||
    { echo "   skipped: Debian packages: no overlay of /$top can be mounted here"; exit 0; }
done

# What this test's view has more than there was, or (a device) less; but for the package manager's
# own books and for caches.
changes() {
  (cd "$folder/view" && find */changes -mindepth 1 \
    \( -path var/changes/lib/dpkg -o -path var/changes/lib/apt -o -path var/changes/log \
    -o -path var/changes/cache -o -path root/changes/.cache \) -prune -o \
    \( -type c -printf 'deleted: ' , -printf '/%p\n' \)) |
    sed 's#/changes/#/#' | sort | comm -13 "$folder/before" -
}
apt() {
  apt-get -qq -y "$@" </dev/null >"$folder/apt" 2>&1 || fail "apt-get $*: $(cat "$folder/apt")"
}
# The program as another user has it.
mkdir "$folder/home"
chmod 755 "$folder"
chown 65534:65534 "$folder/home"
as_user() {
  (cd "$folder/home" &&
    setpriv --reuid=65534 --regid=65534 --clear-groups env -i HOME="$folder/home" "$@")
}

find /usr /etc /var /root | sort >"$folder/before"
apt install "$runtime" "$dev"
expect '/usr/bin/zk4n\n(.|\n)*/var/lib/zentrel/registry\n' changes
expect '^zk4n [0-9.]+\n' zk4n --version
found='\nok +registration [^\n]*/usr/lib/[^\n]*/zentrel-k4n/libZentrelK4NLib.so\n'
found+='ok +VISA library +/usr/[^\n]*/zentrel-k4n/libzevisa64.so\n'
expect "$found" as_user /usr/bin/zk4n check
expect 'mean|max|points' as_user /usr/bin/zk4n measure --simulate
simulate /usr/bin/zk4n
expect_measures as_user /usr/bin/zk4n
# A file of the user's own, here without a table, comes before the one that is installed.
detectors="$folder/home/.local/share/Zentrel Shared/Detectors"
mkdir -p "$detectors"
echo "no table" >"$detectors/calibr20.det"
expect 'DataArray = \[nan, nan' as_user /usr/bin/zk4n shell --registered "$folder/measure.zk"
rm "$detectors/calibr20.det"

# The C++ example, as a project of a customer's: the installed packages are all it knows of the
# driver. From the package itself, since some systems install no documentation.
dpkg-deb -x "$runtime" "$folder/extracted"
example=$folder/extracted/usr/share/doc/zentrel-k4n/examples/cpp
measured='^Note of Initialize: 0x00047065\nInstrument: [^\n]*, serial number 12345\*\n(.|\n)*'
measured+='\n +2.400 +-11.50 +-40.00 +-10.00\n(.|\n)*\nNo errors\nClosed\n'
{ cmake -S "$example" -B "$folder/client" && cmake --build "$folder/client"; } \
  >"$folder/log" 2>&1 || fail "client: $(cat "$folder/log")"
expect "$measured" as_user "$folder/client/measure" "$resource"
read -ra flags <<<"$(pkg-config --cflags --libs zentrel-k4n)"
c++ -std=c++17 -Wall -Wextra -Werror -include IviInherent.h "$example/measure.cpp" \
  -o "$folder/by-pkg-config" "${flags[@]}"
expect "$measured" as_user "$folder/by-pkg-config" "$resource"
[ -e "$(pkg-config --variable=module zentrel-k4n)" ] ||
  fail "there is no module where pkg-config tells"

. /usr/share/bash-completion/completions/zk4n
# completes WORDS... - what follows them, the last one begun.
completes() {
  COMP_WORDS=(zk4n "$@") COMP_CWORD=$# COMPREPLY=()
  _zk4n
  echo "${COMPREPLY[*]}"
}
expect '^measure\n' completes me
expect '^check value sign convert plot\n' completes detector ''
expect '^--module --module|^--module\n' completes register --mo
expect '^frequency power\n' completes measure --simulate --mode ''
expect '^--user\n' completes register --u

end_simulation
apt purge zentrel-k4n zentrel-k4n-dev
[ -z "$(changes)" ] || fail "purging leaves:" "$(changes)"
echo "Debian packages: passed"
