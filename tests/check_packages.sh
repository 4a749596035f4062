#!/bin/bash
# Unpacks the packages that scripts/package.sh made and uses each as its users would.
#
#   check_packages.sh FOLDER [PRESET...]      of release, windows32 and windows64; all without
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
folder=$(cd "$1" && pwd)
shift
[ $# -gt 0 ] || set -- release windows32 windows64
work=$root/build/consumers
rm -rf "$work"
mkdir -p "$work"
"$root/scripts/setup.sh" pkg-config unzip
version=$(sed -n 's/^#define QVACCELERATEDLIB_VERSION "\(.*\)"/\1/p' \
  "$root/include/qvAcceleratedLib/CqvAccLib.h")
consumers=$root/tests/consumers

fail() { echo "FAILED: $*" >&2; exit 1; }
quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log" >&2; fail "$*"; }; }

# has UNPACKED FILE...
has() {
  local unpacked=$1
  shift
  for file; do [ -s "$unpacked/$file" ] || fail "the package has no $file"; done
}

# run NAME [COMMAND...]: the consumers that are built there.
run() {
  local name=$1
  shift
  for program in "$work/$name"/{consumer,camera}*; do
    case $program in *.exe | *consumer | *camera) quietly "$@" "$program" ;; esac
  done
}

# configure NAME SOURCE [OPTION...]: builds a consumer as $work/NAME.
configure() {
  local name=$1 source=$2
  shift 2
  quietly cmake -S "$source" -B "$work/$name" -G Ninja -DCMAKE_BUILD_TYPE=Release "$@"
  quietly cmake --build "$work/$name"
}

# readme COMMENT [VARIABLE...]: the commands below a comment of README, but for apt-get, on a clip.
readme() {
  local comment=$1
  shift
  rm -rf "$work/readme"
  mkdir "$work/readme"
  ln -s "$folder" "$work/readme/out"
  ln -s "$root/examples" "$work/readme/examples"
  sed -n '/^```python$/,/^```$/p' "$root/README.md" | sed '1d;$d' >"$work/readme/example.py"
  { printf 'YUV4MPEG2 W64 H48 F25:1 Cmono\nFRAME\n'; head -c 3072 /dev/zero; } \
    >"$work/readme/clip.y4m"
  sed -n "/^    # $comment/,/^\$/s/^    //p" "$root/README.md" | grep -v '^sudo ' \
    >"$work/readme/commands"
  [ "$(grep -c '^[a-z.]' "$work/readme/commands")" -ge 4 ] || fail "README has no '$comment'"
  (cd "$work/readme" && quietly env "$@" bash -e commands)
  has "$work/readme" small/clip.y4m small/qvbatch.manifest
}

check_linux() {
  local name=qvAcceleratedLib-$version-linux-x64
  tar -C "$work" -xzf "$folder/$name.tar.gz"
  local prefix=$work/$name
  has "$prefix" bin/qvtool lib/pkgconfig/qvAcceleratedLib{,C}.pc \
    include/qvAcceleratedLib/{CqvAccLib,qv}.h \
    share/doc/qvAcceleratedLib/LICENSE share/doc/qvAcceleratedLib/README.md
  configure linux-package "$consumers/package" -DCMAKE_PREFIX_PATH="$prefix"
  run linux-package
  echo 'Linux, find_package: works'
  # The words that pkg-config prints are arguments.
  # shellcheck disable=SC2046
  quietly g++ "$consumers/Consumer.cpp" -o "$work/linux-pkgconfig" \
    $(PKG_CONFIG_PATH=$prefix/lib/pkgconfig pkg-config --cflags --libs qvAcceleratedLib) \
    -Wl,-rpath,"$prefix/lib"
  quietly "$work/linux-pkgconfig"
  # shellcheck disable=SC2046
  quietly gcc "$root/examples/camera.c" -o "$work/linux-pkgconfig-c" \
    $(PKG_CONFIG_PATH=$prefix/lib/pkgconfig pkg-config --cflags --libs qvAcceleratedLibC) \
    -Wl,-rpath,"$prefix/lib"
  quietly "$work/linux-pkgconfig-c"
  PKG_CONFIG_PATH=$prefix/lib/pkgconfig pkg-config --exact-version="$version" qvAcceleratedLib ||
    fail 'pkg-config gives another version'
  echo 'Linux, pkg-config: works'
  configure linux-subdirectory "$consumers/subdirectory"
  run linux-subdirectory
  echo 'Linux, add_subdirectory: works'

  # Nothing is installed from a tree in which not all is built; what is missing is named.
  quietly cmake -S "$root" -B "$work/empty" -G Ninja -DQV_BUILD_TESTS=OFF
  if cmake --install "$work/empty" --prefix "$work/nowhere" >"$work/log" 2>&1; then
    fail 'what is not built is installed'
  fi
  grep -q 'cmake --build' "$work/log" || fail 'installing does not say what to build'
  [ ! -e "$work/nowhere" ] || fail 'a part of what is not built is installed'

  local architecture package
  architecture=$(dpkg --print-architecture)
  file() { echo "$folder/$1_${version}_$architecture.deb"; }
  # A host's package brings the library alone, and nothing that another version would bring too.
  local runtime=libqvacceleratedlib${version%%.*}
  for package in "$runtime" libqvacceleratedlib-dev qvtool; do
    quietly dpkg-deb --extract "$(file "$package")" "$work/debian"
  done
  quietly dpkg-deb --extract "$(file "$runtime")" "$work/runtime"
  local brought
  brought=$(cd "$work/runtime/usr" && find . ! -type d | LC_ALL=C sort | paste -sd' ')
  local so=./lib/libqvAcceleratedLib.so c=./lib/libqvAcceleratedLibC.so major=${version%%.*}
  [ "$brought" = "$so.$major $so.$version $c.$major $c.$version ./share/doc/$runtime/copyright" ] ||
    fail "$runtime brings $brought"
  configure linux-debian "$consumers/package" -DCMAKE_PREFIX_PATH="$work/debian/usr"
  run linux-debian
  quietly "$work/debian/usr/bin/qvtool" info
  # The library needs the runtimes of C and C++, and nothing else; the others need the library.
  depends() { dpkg-deb --field "$(file "$1")" Depends | tr ',' '\n' | sed 's/^ *//'; }
  local needed
  needed=$(depends "$runtime" | sed 's/ .*//' | grep -vxE 'libc6|libgcc-s1|libstdc\+\+6') || true
  [ -z "$needed" ] || fail "the library's package depends on $needed"
  for package in libqvacceleratedlib-dev qvtool; do
    depends "$package" | grep -qx "$runtime (= $version)" || fail "$package does not need $runtime"
  done
  echo 'Linux, Debian packages: work'

  # README's commands: with Debian's packages, and with the wheel in an environment of its own.
  "$root/scripts/setup.sh" python3-venv python3-numpy
  quietly dpkg-deb --extract "$folder/python3-qvacceleratedlib_${version}_all.deb" "$work/debian"
  local usr=$work/debian/usr
  readme "for Debian's own compiler" LD_LIBRARY_PATH="$usr/lib" PKG_CONFIG_PATH="$usr/lib/pkgconfig" \
    PYTHONPATH="$usr/lib/python3/dist-packages" PATH="$usr/bin:/usr/bin:$PATH"
  readme 'in an environment for Python' PIP_NO_INDEX=1 PATH="/usr/bin:$PATH"
  quietly "$work/readme/qv/bin/qvtool" selftest
  needed=$(ldd "$work"/readme/qv/lib/python3*/site-packages/qvacceleratedlib/qvtool |
    grep -oE '^\s*lib[a-z+]+' | sort | paste -sd' ' | tr -d '\t')
  [ "$needed" = 'libc libm' ] || fail "the wheel's qvtool needs $needed"
  dpkg-deb --field "$folder/python3-qvacceleratedlib_${version}_all.deb" Depends |
    grep -q "$runtime (= $version)" || fail "the Python package does not need $runtime"
  echo 'Linux, Python: works'
}

# check_windows BITS ARCHITECTURE COMPILER TARGET MACHINE
check_windows() {
  local bits=$1 name=qvAcceleratedLib-$version-windows-$2 compiler=$3 target=$4 machine=$5
  quietly unzip -q "$folder/$name.zip" -d "$work"
  local prefix=$work/$name
  has "$prefix" {bin/qvAcceleratedLib,bin/qvAcceleratedLibC}.dll lib/libqvAcceleratedLib{,C}.dll.a \
    lib/qvAcceleratedLib{,C}.lib include/qvAcceleratedLib/{CqvAccLib,qv}.h README.md LICENSE
  local wheel=win_amd64
  [ "$bits" = 64 ] || wheel=win32
  quietly unzip -q "$folder/qvacceleratedlib-$version-py3-none-$wheel.whl" -d "$work/wheel$bits"
  grep -q "^Tag: py3-none-$wheel" "$work/wheel$bits"/*.dist-info/WHEEL || fail "a wheel's tag"
  mv "$work/wheel$bits/qvacceleratedlib/qvAcceleratedLibC.dll" "$work/wheel$bits/"
  "$root/tests/check_dll.sh" "${compiler%-g++*}-objdump" "$work/wheel$bits/qvAcceleratedLibC.dll" \
    "$root/build/windows$bits/bindings/c/exports.def" >/dev/null
  quietly diff -r -x __pycache__ "$work/wheel$bits/qvacceleratedlib" \
    "$root/bindings/python/qvacceleratedlib"
  "$root/tests/check_dll.sh" "${compiler%-g++*}-objdump" "$prefix/bin/qvAcceleratedLib.dll" \
    "$root/qvAcceleratedLib/exports/windows$bits.def" >/dev/null

  # Installed from the build, the DLL is as bare as in the package.
  quietly cmake --install "$root/build/windows$bits" --prefix "$work/installed$bits"
  local dll
  for dll in "$work/installed$bits"/bin/qvAcceleratedLib{,C}.dll; do
    "${compiler%-g++*}-objdump" -t "$dll" | grep -q '^no symbols$' ||
      fail "the installed $dll has symbols"
  done

  configure "windows$bits" "$consumers/package" \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchains/windows$bits.cmake" \
    -DqvAcceleratedLib_DIR="$prefix/lib/cmake/qvAcceleratedLib"
  cp "$prefix"/bin/*.dll "$work/windows$bits/"
  run "windows$bits" "$root/scripts/wine.sh" "$bits"
  echo "Windows $bits, MinGW, find_package: works"

  # For Visual C++, with the import library that its projects would be given.
  quietly cmake -S "$consumers/imports" -B "$work/imports$bits" -G Ninja \
    -DCMAKE_PREFIX_PATH="$prefix"
  local imports c_imports visual=$work/visual$bits
  local functions=(GetStdHandle WriteFile ExitProcess)
  { read -r imports; read -r c_imports; } <"$work/imports$bits/imports.txt"
  [ "$(realpath "$imports" "$c_imports")" = \
    "$(realpath "$prefix"/lib/qvAcceleratedLib{,C}.lib)" ] ||
    fail "a project of Visual C++ links $imports and $c_imports"
  mkdir "$visual"
  [ "$bits" = 64 ] || functions=(GetStdHandle@4 WriteFile@20 ExitProcess@4)
  printf '%s\n' 'LIBRARY kernel32.dll' EXPORTS "${functions[@]}" >"$visual/kernel32.def"
  quietly llvm-dlltool -m "$machine" -k -d "$visual/kernel32.def" -l "$visual/kernel32.lib"
  quietly "$root/tests/hosts/compile_visual.sh" clang++ "$target" "$prefix/include" "$visual"
  quietly lld-link /nologo /subsystem:console /entry:HostMain /nodefaultlib \
    "/out:$visual/host.exe" "@$visual/objects" "$visual/kernel32.lib" "$imports"
  cp "$prefix/bin/qvAcceleratedLib.dll" "$visual/"
  quietly "$root/scripts/wine.sh" "$bits" "$visual/host.exe"
  echo "Windows $bits, Visual C++, import library: works"
}

for preset; do
  case $preset in
    release) check_linux ;;
    windows32) check_windows 32 x86 i686-w64-mingw32-g++-posix i686-pc-windows-msvc i386 ;;
    windows64)
      check_windows 64 x64 x86_64-w64-mingw32-g++-posix x86_64-pc-windows-msvc i386:x86-64 ;;
    *) sed -n '2,4s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
  esac
done
