#!/usr/bin/env bash
# Runs the result-database test against a throwaway PostgreSQL cluster: initdb in a temporary
# folder, a server on a local socket only (no TCP), the test, then the server is stopped and the
# folder removed. The cluster never runs as root: under root it runs as the "postgres" user.
# Usage: scripts/test-postgres.sh [build dir]
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
pg_bin="${PG_BIN:-/usr/lib/postgresql/15/bin}"
program="$build/tests/tst_ResultDatabase"
[ -x "$program" ] || { echo "test-postgres: $program is not built" >&2; exit 1; }

folder="$(mktemp -d /tmp/wc-postgres.XXXXXX)"
chmod 755 "$folder"
owner="$(id -un)"
as_owner=()
if [ "$(id -u)" -eq 0 ]; then
    owner=postgres
    chown postgres "$folder"
    as_owner=(runuser -u postgres --)
fi
port=54329

stop() {
    "${as_owner[@]}" "$pg_bin/pg_ctl" -D "$folder/data" -m fast -w stop >/dev/null 2>&1 || true
    rm -rf "$folder"
}
trap stop EXIT

"${as_owner[@]}" "$pg_bin/initdb" -D "$folder/data" -U "$owner" --auth=trust -E UTF8 >/dev/null
"${as_owner[@]}" "$pg_bin/pg_ctl" -D "$folder/data" -l "$folder/server.log" -w \
    -o "-k $folder -p $port -c listen_addresses=''" start >/dev/null
"${as_owner[@]}" "$pg_bin/createdb" -h "$folder" -p "$port" -U "$owner" widget_common_results

echo "test-postgres: cluster on $folder (port $port), running $program"
WIDGET_COMMON_PG_HOST="$folder" WIDGET_COMMON_PG_PORT="$port" WIDGET_COMMON_PG_USER="$owner" \
    WIDGET_COMMON_PG_DB=widget_common_results QT_QPA_PLATFORM=offscreen "$program"
