#!/usr/bin/env bash
# symbols.sh LIBRARY LIBMOX: the state machine's LIBRARY exports its public interface and nothing else,
# and takes from outside exactly the nine driver operations, what LIBMOX defines, and the run-time
# libraries of C and C++. Each defect is a line.
set -euo pipefail
export LC_ALL=C

library=${1:?usage: symbols.sh LIBRARY LIBMOX}
libmox=${2:?usage: symbols.sh LIBRARY LIBMOX}

driver_operations='Hardware::Kest::kestDmaDeviceDown(Mox::String8)
Hardware::Kest::kestDmaDeviceParam(Mox::String8, unsigned int, Hardware::Kest::FapType, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int)
Hardware::Kest::kestDmaDeviceRename(Mox::String8, Mox::Ptr<Fru::PciHam const>)
Hardware::Kest::kestDmaDeviceUp(Mox::String8)
Hardware::Kest::kestDmaDump()
Hardware::Kest::kestDmaIfadd(char const*, int, int, int, Mox::String8, int, bool, bool, char const*)
Hardware::Kest::kestDmaIfdel(char const*)
Hardware::Kest::kestDmaIsDeviceUp(Mox::String8, bool*)
Hardware::Kest::kestDmaNativeVlan(char const*, bool, unsigned short)'

# symbols FILE NM_OPTION...: names as the linker knows them, with versions, sorted.
symbols() {
  local file=$1
  shift
  nm --dynamic --format=posix "$@" "$file" | cut -d' ' -f1 | sort -u
}

# The encoded name begins with its scope, whatever its arguments are: `Hardware::Kest::Slice`, not
# `detail` below it; perhaps after what makes it a table, a type description, a guard or a thunk.
scope='^_Z(T[VITS]|G[VR]|Z|T[hv][n0-9_]+_)*N[VK]*[RO]?8Hardware4Kest5Slice'
exported=$(symbols "$library" --defined-only)
foreign=$(grep -vE "$scope" <<<"$exported" || true)
private=$(grep -E "${scope}6detail" <<<"$exported" || true)

undefined=$(symbols "$library" --undefined-only)
runtime='@(GLIBC|GLIBCXX|CXXABI|GCC)_[0-9.]+$|^(__gmon_start__|_ITM_(de)?registerTMCloneTable)$'
taken=$(grep -vE "$runtime" <<<"$undefined" |
  comm -23 - <(symbols "$libmox" --defined-only) | c++filt | sort || true)

defects=$(
  [[ -n $exported ]] || echo "exports nothing"
  grep . <<<"$foreign" | c++filt | sed 's/^/exports what is not of Hardware::Kest::Slice: /'
  grep . <<<"$private" | c++filt | sed 's/^/exports a detail: /'
  comm -13 <(echo "$driver_operations") <(echo "$taken") | grep . | sed 's/^/takes from elsewhere: /'
  comm -23 <(echo "$driver_operations") <(echo "$taken") | sed 's/^/does not take the driver operation: /'
) || true
[[ -z $defects ]] || { echo "$library:" "$defects"; exit 1; }
