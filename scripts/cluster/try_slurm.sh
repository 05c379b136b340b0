#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# try_slurm.sh [PROGRAM]: runs Slurm on this machine alone, without systemd and beside whatever runs here, extracts 20
# sources with submit.sh, waits for the collecting job and compares the case with that of a local run. Needs root and
# Debian's packages slurm-wlm (22.05) and munge. Stops what it started and removes its folder, also on failure.

set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=$(realpath "${1:-$here/../../build/release/bluetooth-logs}")
folder=$(mktemp -d /tmp/try-slurm.XXXXXX)
patience=300 # seconds
started=()

stop() {
    local process
    # The last first; each of them ends its own children.
    for ((i = ${#started[@]} - 1; i >= 0; i--)); do
        process=${started[i]}
        kill "$process" 2>/dev/null || true
        for _ in {1..50}; do
            kill -0 "$process" 2>/dev/null || break
            sleep 0.1
        done
        kill -9 "$process" 2>/dev/null || true
        wait "$process" 2>/dev/null || true
    done
    rm -rf "$folder"
}
trap stop EXIT
trap 'exit 130' INT TERM

fail() {
    echo "error: $1" >&2
    tail -n 20 "$folder"/*.log >&2 || true
    exit 1
}

# start NAME COMMAND...: a daemon that stays in the foreground of its log.
start() {
    "${@:2}" >"$folder/$1.log" 2>&1 </dev/null &
    started+=($!)
}

# wait_until SECONDS COMMAND...
wait_until() {
    local end=$((SECONDS + $1))
    until "${@:2}" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$end" ] || return 1
        sleep 0.2
    done
}

free_port() {
    python3 -c 'import socket; s = socket.socket(); s.bind(("", 0)); print(s.getsockname()[1])'
}

write_configuration() {
    local host
    host=$(hostname -s)
    cat >"$folder/slurm.conf" <<END
ClusterName=try
SlurmctldHost=$host(127.0.0.1)
SlurmUser=root
AuthType=auth/munge
AuthInfo=socket=$folder/munge.socket
CredType=cred/munge
SlurmctldPort=$(free_port)
SlurmdPort=$(free_port)
SlurmctldPidFile=$folder/slurmctld.pid
SlurmdPidFile=$folder/slurmd.pid
StateSaveLocation=$folder/state
SlurmdSpoolDir=$folder/spool
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SwitchType=switch/none
MpiDefault=none
ReturnToService=2
MailProg=/bin/true
NodeName=$host NodeAddr=127.0.0.1 CPUs=$(nproc) RealMemory=$(($(getconf _PHYS_PAGES) * $(getconf PAGESIZE) / 1048576)) State=UNKNOWN
PartitionName=all Nodes=$host Default=YES MaxTime=INFINITE State=UP
END
    if ! [ -e /sys/fs/cgroup ]; then
        printf 'CgroupPlugin=cgroup/v1\nCgroupAutomount=yes\n' >"$folder/cgroup.conf"
    fi
}

start_slurm() {
    chmod 755 "$folder"
    mkdir "$folder/state" "$folder/spool"
    dd if=/dev/urandom of="$folder/munge.key" bs=1024 count=1 status=none
    chmod 600 "$folder/munge.key"
    write_configuration
    export SLURM_CONF=$folder/slurm.conf
    start munged munged --foreground --force --key-file="$folder/munge.key" --socket="$folder/munge.socket" \
        --pid-file="$folder/munged.pid" --seed-file="$folder/munge.seed" --log-file="$folder/munged-own.log"
    wait_until 20 test -S "$folder/munge.socket" || fail "munge does not start"
    start slurmctld slurmctld -D -f "$SLURM_CONF"
    start slurmd slurmd -D -f "$SLURM_CONF" -N "$(hostname -s)"
    wait_until 60 sh -c 'sinfo --noheader --format=%T | grep -qx idle' || fail "the node does not become idle"
}

# 12 macOS, 4 iOS and 3 Windows sources, and one that is not there.
make_sources() {
    local number source entries=()
    "$program" --quiet sample "$folder/sample"
    mkdir "$folder/sources"
    for number in {1..20}; do
        source=$folder/sources/$number
        case $number in
        20) ;;
        5 | 10 | 15 | 19) cp "$folder/sample/ios/system.log" "$source" ;;
        4 | 8 | 16) cp -r "$folder/sample/windows" "$source" ;;
        *) cp -r "$folder/sample/macos" "$source" ;;
        esac
        entries+=("{\"path\": \"sources/$number\", \"name\": \"source $number\"}")
    done
    (
        IFS=,
        echo "{\"sources\": [${entries[*]}]}"
    ) >"$folder/list.json"
}

job_has_ended() {
    scontrol --oneliner show job "$1" | grep -Eq 'JobState=(COMPLETED|FAILED|CANCELLED|NODE_FAIL|TIMEOUT|BOOT_FAIL|DEADLINE)'
}

job_fact() {
    scontrol --oneliner show job "$1" | head -n 1 | grep -o "$2=[^ ]*"
}

[ "$(id -u)" -eq 0 ] || fail "only root can be the user of Slurm's daemons"
for tool in munged slurmctld slurmd sbatch scontrol; do
    command -v "$tool" >/dev/null || fail "$tool is missing: apt-get install slurm-wlm munge"
done

start_slurm
echo "running: $(sbatch --version) on $(sinfo --noheader --format='%D node, %c CPUs, %T')"
make_sources
read -r array collecting < <(BLUETOOTH_LOGS=$program "$here/submit.sh" "$folder/list.json" "$folder/slurm")
echo "submitted: array job $array, $(squeue --noheader --array --jobs="$array" | wc -l) tasks in the queue; collecting job $collecting, $(job_fact "$collecting" Dependency)"
wait_until "$patience" job_has_ended "$collecting" || fail "the collecting job does not end"
echo "array:      $(scontrol --oneliner show job "$array" | grep -o 'JobState=[^ ]*\|ExitCode=[^ ]*' | paste -d' ' - - | sort | uniq -c | paste -sd';')"
echo "collecting: $(job_fact "$collecting" JobState) $(job_fact "$collecting" ExitCode)"
cat "$folder"/slurm-slurm/*-collect.log

code=0
"$program" extract --sources "$folder/list.json" -o "$folder/local" --jobs 2 >"$folder/local.log" 2>&1 || code=$?
echo "local run: code $code, $(tail -n 1 "$folder/local.log")"
[ "$(job_fact "$collecting" ExitCode)" = "ExitCode=$code:0" ] || fail "the codes differ"
"$here/compare_cases.py" "$folder/slurm" "$folder/local" || fail "the cases differ"
(cd "$folder/slurm" && sha256sum --quiet -c manifest.json.sha256) || fail "the manifest is not what its hash says"
[ "$(python3 -c 'import json, sys; print(len(json.load(open(sys.argv[1]))["sources"]))' "$folder/slurm/manifest.json")" = 20 ] ||
    fail "the manifest does not hold 20 sources"
