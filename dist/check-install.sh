#!/usr/bin/env bash
# Validates the menu entry, the AppStream metadata and the manual pages, then installs the
# build into a temporary folder and checks what lands there.
#   check-install.sh BUILD-DIR DIST-DIR APP-ID
set -euo pipefail
build=$1 dist=$2 id=$3
for tool in desktop-file-validate appstreamcli groff; do
  command -v "$tool" >/dev/null || { echo "check-install: $tool is missing (scripts/install-deps)" >&2; exit 1; }
done

desktop-file-validate "$dist/$id.desktop"
appstreamcli validate --no-net "$dist/$id.metainfo.xml"
for page in "$dist"/man/*.1; do
  warnings=$(LC_ALL=C.UTF-8 groff -man -ww -z "$page" 2>&1)
  [ -z "$warnings" ] || { echo "$page: $warnings" >&2; exit 1; }
done

prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null
expected=(
  bin/zettelfischer
  bin/zettelfischer-cli
  share/applications/$id.desktop
  share/metainfo/$id.metainfo.xml
  share/icons/hicolor/scalable/apps/$id.svg
  share/man/man1/zettelfischer.1.gz
  share/man/man1/zettelfischer-cli.1.gz
)
for f in "${expected[@]}"; do
  [ -f "$prefix/$f" ] || { echo "check-install: $f was not installed" >&2; exit 1; }
done
extra=$(cd "$prefix" && find . -type f | sed 's|^\./||' | sort | grep -vxF -f <(printf '%s\n' "${expected[@]}") || true)
[ -z "$extra" ] || { echo "check-install: unexpected files installed: $extra" >&2; exit 1; }

# The installed tree as a whole: entry, metadata and icon belong together.
appstreamcli validate-tree --no-net "$prefix"
# The installed programs run from there.
"$prefix/bin/zettelfischer-cli" analyse --help | grep -q 'zettelfischer-cli analyse'
"$prefix/bin/zettelfischer" --version | grep -qx 'Zettelfischer 1.18'
echo "check-install: ${#expected[@]} files installed and valid"
