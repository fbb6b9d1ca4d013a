#!/usr/bin/env bash
# clang-format over everything; clang-tidy, at several seconds a file, over what differs from the last commit.
set -eu
cd "$(dirname "$0")/.."
git rev-parse --is-inside-work-tree >/dev/null 2>&1 || { echo "Not a git checkout: style is not checked." >&2; exit 0; }

git ls-files -z --cached --others --exclude-standard '*.cpp' '*.h' |
    while IFS= read -r -d '' f; do [ ! -e "$f" ] || printf '%s\0' "$f"; done |
    xargs -0 -r clang-format --dry-run --Werror

mapfile -t changed < <(git diff --name-only --diff-filter=d HEAD -- '*.cpp' 2>/dev/null
    git ls-files --others --exclude-standard -- '*.cpp')
if [ ${#changed[@]} -gt 0 ] && [ "${TIDY:-1}" = 1 ]; then
    # clang cannot read the precompiled headers of GCC: a configure of its own, without them.
    cmake --preset tidy >/dev/null
    printf '%s\0' "${changed[@]}" | xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet -p build/tidy 2> >(grep -v 'warnings generated\|warnings treated' >&2)
fi
