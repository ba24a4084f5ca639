#!/usr/bin/env bash
# once.sh ROOT: in the library of the repository at ROOT, every field of a record is named by its
# record's field table alone, and every attribute of the entities by its description alone; whatever
# else needs a name takes it from there. Each second place is a line `file:line: what`.
set -euo pipefail
export LC_ALL=C

cd "${1:?usage: once.sh ROOT}"
mapfile -t folders < <(ls -d model sm registry 2>/dev/null)
defects=0

defect() {
  echo "$*"
  defects=$((defects + 1))
}

# The names that lines of the form PREFIX"NAME" in model/ give, one a line.
names_behind() {
  grep -rhoE "$1\"[A-Za-z]+\"" model | sed -E 's/.*"(.*)"/\1/' | sort -u
}

# Reports every line with NAME as a string, but for those where PATTERN allows it.
only_where() {
  local name=$1 pattern=$2 found
  while IFS= read -r found; do
    [[ $found =~ $pattern ]] || defect "$(cut -d: -f1,2 <<<"$found"): \"$name\" is named elsewhere too"
  done < <(grep -rnE --include='*.h' --include='*.cpp' "\"$name\"" "${folders[@]}" | sort -t: -k1,1 -k2,2n)
}

field_prefix='detail::field\('
collection_prefix='static constexpr char const\* (name|sliceIdName) = '
fields=$(names_behind "$field_prefix") || true
collections=$(names_behind "$collection_prefix") || true
[[ -n $fields && -n $collections ]] || { echo "no field table or no collection in $PWD/model"; exit 1; }

for name in $fields; do
  only_where "$name" "$field_prefix|keyName"
done
for name in $collections; do
  only_where "$name" "$collection_prefix"
  (($(grep -rhE "$collection_prefix\"$name\"" model | wc -l) == 1)) ||
    defect "model: collection \"$name\" is described more than once"
done

((defects == 0)) || { echo "$defects defects"; exit 1; }
