# python_test.sh MODULES_FOLDER WORK_FOLDER [ARGUMENT...] - the package's tests with the first
# interpreter that has pytest; arguments go to pytest.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
export ZK_MODULES=$1 ZK_WORK=$2 PYTHONPATH=$here/../../python PYTHONDONTWRITEBYTECODE=1
shift 2
for python in /usr/bin/python3 $(type -ap python3); do
  if "$python" -c 'import numpy, pytest' 2>/dev/null; then
    exec "$python" -m pytest -q -p no:cacheprovider --tb=short "$here" "$@"
  fi
done
echo "No Python 3 here has pytest and numpy (Debian: python3-pytest, python3-numpy)" >&2
exit 1
