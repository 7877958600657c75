# pyvisa_test.sh LIBRARY PROGRAM - the PyVISA test with the first interpreter that has PyVISA.
set -eu
for python in $(type -ap python3) /usr/bin/python3; do
  if "$python" -c 'import pyvisa' 2>/dev/null; then
    exec "$python" "$(dirname "$0")/pyvisa_test.py" "$@"
  fi
done
echo "No Python 3 here can import pyvisa (Debian: python3-pyvisa)" >&2
exit 1
