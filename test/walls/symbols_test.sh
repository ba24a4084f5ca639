#!/usr/bin/env bash
# symbols_test.sh COMPILER: symbols.sh finds what is planted in a small library made here, and nothing
# else.
set -euo pipefail

compiler=${1:?usage: symbols_test.sh COMPILER}
check=$(cd "$(dirname "$0")" && pwd)/symbols.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
cd "$tree"

# build LIBRARY OPTION...: a shared library from the source on standard input.
build() {
  "$compiler" -x c++ -std=c++20 -shared -fPIC -o "$@" -
}

# expect EXIT_CODE TEXT: what symbols.sh makes of the library.
expect() {
  local code=0 found
  found=$("$check" lib.so libmox.so 2>&1) || code=$?
  [[ $code == "$1" ]] || { echo "expected exit code $1, found $code:" "$found"; exit 1; }
  diff <(echo "$2") <(echo "$found") || { echo "expected < , found >"; exit 1; }
}

build libmox.so <<<'namespace Mox { int now() { return 1; } }'

declarations='
namespace Mox { int now(); class String8 { char const* text; }; template <class T> class Ptr { T* p; }; }
namespace Fru { class PciHam; }
namespace Hardware::Kest {
using Mox::String8;
enum FapType : int;
int kestDmaIfadd(char const*, int, int, int, String8, int, bool, bool, char const*);
int kestDmaIfdel(char const*);
int kestDmaNativeVlan(char const*, bool, unsigned short);
void kestDmaDeviceRename(String8, Mox::Ptr<Fru::PciHam const>);
int kestDmaDeviceParam(String8, unsigned, FapType, unsigned, unsigned, unsigned, unsigned, unsigned,
                       unsigned, unsigned);
int kestDmaDeviceDown(String8);
int kestDmaDeviceUp(String8);
int kestDmaIsDeviceUp(String8, bool*);
void kestDmaDump();
int kestDmaReset();
}
namespace Hardware::Kest::Slice {
namespace detail { struct Iterator {}; }
struct Record {
  virtual ~Record() = default;
  static int& counter() { static int c = Mox::now(); return c; }
};
Record record;
void del(detail::Iterator) { Record::counter()++; }
}
using namespace Hardware::Kest;'

most_operations='
kestDmaIfadd("et1", 1, 2, 3, {}, 4, true, true, "");
kestDmaIfdel("et1");
kestDmaNativeVlan("et1", true, 1);
kestDmaDeviceRename({}, {});
kestDmaDeviceParam({}, 1, FapType{}, 1, 1, 1, 1, 1, 1, 1);
kestDmaDeviceDown({});
kestDmaDeviceUp({});
kestDmaIsDeviceUp({}, nullptr);'

build lib.so <<<"$declarations
namespace Hardware::Kest::Slice { void useAll() { $most_operations kestDmaDump(); } }"
expect 0 ""

build lib.so <<<"$declarations
namespace Hardware::Kest::Slice { void useMost() { $most_operations kestDmaReset(); } }
namespace Hardware::Kest::Slice::detail { int inner = 1; }
namespace Hardware::Kest::Slices { int near = 1; }
namespace std { template <class T> T twice(T value) { return value + value; } }
int outside = std::twice(1);"
expect 1 "lib.so: exports what is not of Hardware::Kest::Slice: Hardware::Kest::Slices::near
exports what is not of Hardware::Kest::Slice: int std::twice<int>(int)
exports what is not of Hardware::Kest::Slice: outside
exports a detail: Hardware::Kest::Slice::detail::inner
takes from elsewhere: Hardware::Kest::kestDmaReset()
does not take the driver operation: Hardware::Kest::kestDmaDump()"

build lib.so -fvisibility=hidden <<<"$declarations
namespace Hardware::Kest::Slice { void useAll() { $most_operations kestDmaDump(); } }"
expect 1 "lib.so: exports nothing"
