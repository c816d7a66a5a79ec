#!/usr/bin/env bash
# Whether the inference runtime that comes with the program opens a socket, writes a file or starts a program while it
# makes its environment, loads two encoders and runs them, by a trace of the system calls:
#
#   RuntimeTraceTest.sh RuntimeProbe RUNTIME_FOLDER VISION.onnx TEXT.onnx
#
# Exit code 77: this machine lets no process be traced, so nothing is known.
set -euo pipefail
probe=$1 runtime=$2 vision=$3 text=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# Nothing that would have the runtime behave: it has to by itself. And the leak checker can't work under a trace.
unset ORT_DISABLE_TELEMETRY
export HOME=$work/home ASAN_OPTIONS=detect_leaks=0
mkdir home

not_known() {
    printf '\n*** SKIPPED: %s.\n*** Whether the inference runtime opens sockets or writes files was NOT checked.\n\n' "$1"
    exit 77
}
command -v strace >/dev/null || not_known "strace is not installed"
strace -o allowed true 2>reason || not_known "no process can be traced here ($(tail -n 1 reason))"

# traced NAME [MISDEED]: the probe's system calls into the file NAME.
traced() {
    strace -f -qq -o "$1" -e trace=%network,%file,%desc,%process "$probe" "$vision" "$text" "${@:2}" >said || {
        printf 'FAILED: the probe did not run\n'
        exit 1
    }
}

# The calls of a trace that reach out or leave something behind. A failed attempt counts as well.
misdeeds() {
    grep -E ' (socket|socketpair|connect|bind|listen|accept4?|send(to|m?msg)|recv(from|m?msg)|io_uring_setup)\(' "$1" || true
    grep -E ' (open|openat|openat2)\(.*(O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|O_APPEND|O_TMPFILE)' "$1" | grep -vE '"/dev/(null|tty|u?random)"' || true
    grep -E ' (creat|mkdir(at)?|rename(at2?)?|link(at)?|symlink(at)?|unlink(at)?|rmdir|mknod(at)?|truncate|ftruncate|fallocate|chmod|fchmod(at)?|utimensat|setxattr)\(' "$1" || true
    # The first is the probe itself.
    grep -E ' execve(at)?\(' "$1" | tail -n +2 || true
}

traced quiet
read -r release library <said
[[ $library == "$runtime"/* ]] || {
    printf 'FAILED: the runtime came from %s, not from %s\n' "$library" "$runtime"
    exit 1
}
grep -q "$library" quiet || {
    printf 'FAILED: the trace shows nothing of %s\n' "$library"
    exit 1
}
found=$(misdeeds quiet)
[[ -z $found ]] || {
    printf 'FAILED: the runtime did this:\n%s\n' "$found"
    exit 1
}

# What the watching is worth: each misdeed must be seen.
for misdeed in open-socket write-file; do
    traced "$misdeed" "$misdeed"
    [[ -n $(misdeeds "$misdeed") ]] || {
        printf 'FAILED: the trace overlooks "%s"\n' "$misdeed"
        exit 1
    }
done
printf 'release %s: %d system calls on files, sockets and processes; no socket, nothing written\n' "$release" "$(wc -l <quiet)"
