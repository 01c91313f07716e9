#!/usr/bin/env bash
# Refreshes the demo's Chinese catalogue from the library's sources: lupdate collects every
# tr() text by class, then fill-translations.py fills the ones the glossary knows. Texts the
# glossary does not know stay unfinished and show in English.
set -euo pipefail
cd "$(dirname "$0")/.."
ts=demo/translations/widget_common_zh_CN.ts
folders=()
for f in edit frame analysis dfm toolbar steprepeat; do
    [ -d "$f" ] && folders+=("$f")
done
/usr/lib/qt5/bin/lupdate -silent -no-obsolete -locations none "${folders[@]}" -ts "$ts"
python3 scripts/fill-translations.py "$ts" demo/translations/glossary_zh_CN.tsv
