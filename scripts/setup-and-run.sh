#!/usr/bin/env bash
# Fresh machine to a result: installs what is needed, builds, and runs the main
# job on the shipped example card file: import it into a material database and
# list what the database holds.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh release
db=build/example-materials.xml
rm -f "$db"
echo
echo "== quillon check examples/S355J2G3.mat"
build/cli/quillon check examples/S355J2G3.mat && echo "clean"
echo
echo "== quillon import examples/S355J2G3.mat --db $db"
build/cli/quillon import examples/S355J2G3.mat --db "$db"
echo
echo "== quillon list --db $db"
build/cli/quillon list --db "$db"
