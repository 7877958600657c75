# python_with.sh MODULE PROGRAM [ARGUMENT...] - a test with the first interpreter that has a module.
set -eu
module=$1
shift
for python in $(type -ap python3) /usr/bin/python3; do
  if "$python" -c "import $module" 2>/dev/null; then exec "$python" "$@"; fi
done
echo "No Python 3 here can import $module (Debian: python3-$module)" >&2
exit 1
