#!/bin/sh
# The steps of the install tests; see CMakeLists.txt beside this file.
#   install_test.sh install WORK BUILD_DIR
#   install_test.sh pkg-config WORK LIBDIR CC SOURCE SAMPLE
#   install_test.sh find-package WORK LIBDIR CC SOURCE SAMPLE CONSUMER_PROJECT
set -eu
step=$1 work=$2
prefix=$work/prefix

# The program writes a description into a copy of the sample and reads it back.
run_describe() {
    LD_LIBRARY_PATH="$prefix/$libdir" "$1" "$sample" "$work/$2.jpg" >"$work/$2.out"
    grep -qx "$work/$2.jpg: ImageDescription \"Harbour at dawn\"" "$work/$2.out"
}

case $step in
install)
    rm -rf "$work"
    mkdir -p "$work"
    cmake --install "$3" --prefix "$prefix" >/dev/null
    for file in include/zexif.h bin/zexif share/man/man1/zexif.1 share/bash-completion/completions/zexif; do
        test -e "$prefix/$file" || { echo "not installed: $file" >&2; exit 1; }
    done
    # The tool finds the library installed beside it, as a user would run it,
    # and needs nothing of the build folder: it shows the sample it carries.
    if grep -qF "$3/sample.jpg" "$prefix/bin/zexif" || readelf -d "$prefix/bin/zexif" | grep -F "$3" >&2; then
        echo "the installed zexif looks into the build folder" >&2
        exit 1
    fi
    (cd / && env -u LD_LIBRARY_PATH "$prefix/bin/zexif" | grep -q "^sample.jpg: JPEG")
    ;;
pkg-config)
    libdir=$3 cc=$4 source=$5 sample=$6
    if ! command -v pkg-config >/dev/null; then
        echo "pkg-config is not installed" >&2
        exit 77
    fi
    flags=$(PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig" pkg-config --cflags --libs zexif)
    # shellcheck disable=SC2086 # the flags are words
    "$cc" -std=c99 "$source" -o "$work/describe_pc" $flags
    run_describe "$work/describe_pc" pkg_config
    ;;
find-package)
    libdir=$3 cc=$4 source=$5 sample=$6 project=$7
    cmake -S "$project" -B "$work/consumer" -DCMAKE_C_COMPILER="$cc" -DCMAKE_PREFIX_PATH="$prefix" \
        -DDESCRIBE_SOURCE="$source" >/dev/null
    cmake --build "$work/consumer" >/dev/null
    run_describe "$work/consumer/describe" find_package
    ;;
*)
    echo "unknown step $step" >&2
    exit 2
    ;;
esac
