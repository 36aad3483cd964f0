#!/usr/bin/env bash
# Measures `vdsto upload run` against cp -r, scp -r and sftp's put -r, with the same files and the same server.
# Usage: bench/run-upload.sh [FILES [BYTES]]   (default 10000 files of 12000 bytes)
# Each is run three times in turn, with its source in the cache and nothing left to be written; the best counts.
# Nothing is deleted in between: a file system may take its time for places that were given back a moment ago.
# cp is run alone and with sync behind it, as vdsto makes the system write a folder's files through at its end.
# The processor's time is the program's own, without the server. The files lie in $VDSTO_BENCH_FOLDER (default
# build/bench-upload).
set -euo pipefail
cd "$(dirname "$0")/.."

files=${1:-10000}
bytes=${2:-12000}
folder=$(realpath -m "${VDSTO_BENCH_FOLDER:-build/bench-upload}")
vdsto=$PWD/build/release/tools/vdsto/vdsto

scripts/install-dependencies.sh build test demo
scripts/build.sh release -- vdsto
rm -rf "$folder"
mkdir -p "$folder/src" "$folder/out" "$folder/seed" "$folder/ssh"
cd "$folder"

# Files of noise in a hundred folders, and the queue of them, by its text form.
python3 - "$files" "$bytes" <<'PYTHON'
import os, sys
files, size = int(sys.argv[1]), int(sys.argv[2])
with open("queue", "w", newline="") as queue:
    for i in range(files):
        place = f"src/{i % 100}"
        os.makedirs(place, exist_ok=True)
        path = os.path.abspath(f"{place}/photo{i}.jpg")
        with open(path, "wb") as out:
            out.write(os.urandom(size))
        guid = f"00000000-0000-0000-0000-{i:012d}"
        queue.write(f'{i}|"{guid}"|"{path}"|{size}|"photo{i}.jpg"|0|"{i % 100}"|0|0\r\n')
PYTHON
vips gaussnoise seed/a.png 64 64 # a library is made by importing something
"$vdsto" --library library import seed >/dev/null
"$vdsto" --library library upload load queue >/dev/null

ssh-keygen -q -t ed25519 -N '' -f ssh/host
ssh-keygen -q -t ed25519 -N '' -f ssh/user
port=$(python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
[ "$(id -u)" -ne 0 ] || mkdir -p /run/sshd
cat >ssh/config <<END
Port $port
ListenAddress 127.0.0.1
HostKey $folder/ssh/host
PidFile none
AuthorizedKeysFile $folder/ssh/user.pub
StrictModes no
UsePAM no
PermitRootLogin yes
Subsystem sftp internal-sftp
END
echo "[127.0.0.1]:$port $(cat ssh/host.pub)" >ssh/known_hosts
/usr/sbin/sshd -D -f "$folder/ssh/config" -E "$folder/ssh/log" &
server=$!
trap 'kill $server' EXIT
sleep 1
export VDSTO_UPLOAD_KNOWN_HOSTS=$folder/ssh/known_hosts
user=$(id -un)
ssh_options=(-q -P "$port" -i "$folder/ssh/user" -o UserKnownHostsFile="$folder/ssh/known_hosts")

ours() { "$vdsto" --library run upload run --json --to "$1" --key "$folder/ssh/user"; }
ours_folder() { ours "$out"; }
ours_sftp() { ours "sftp://$user@127.0.0.1:$port$out"; }
cp_r() { cp -r src "$out"; }
cp_sync() { cp -r src "$out" && sync -f "$out"; }
scp_r() { scp "${ssh_options[@]}" -r src "$user@127.0.0.1:$out"; }
sftp_r() { echo "put -r $folder/src $out" >ssh/batch && sftp "${ssh_options[@]}" -b ssh/batch "$user@127.0.0.1"; }

declare -A best cpu
TIMEFORMAT='%R %U %S'
for round in 1 2 3; do
  for subject in cp_r ours_folder cp_sync scp_r ours_sftp sftp_r; do
    out=$folder/out/$round/$subject
    rm -rf run
    mkdir -p "$out"
    cp -r library run
    cat src/*/* >/dev/null
    sync
    read -r elapsed own system < <({ time $subject >log 2>&1; } 2>&1)
    [ "$(find "$out" -type f | wc -l)" -eq "$files" ] || { cat log >&2; echo "$subject left files out" >&2; exit 1; }
    took=$(awk "BEGIN { print int($elapsed * 1000) }")
    [ "${best[$subject]:-$took}" -lt "$took" ] && continue
    best[$subject]=$took
    cpu[$subject]=$(awk "BEGIN { print int(($own + $system) * 1000) }")
  done
done

row() { # name, ours, peer
  printf '%-22s %8s %8s %6.2f %10s %8s %6.2f\n' "$1" "${best[$2]}" "${best[$3]}" \
    "$(awk "BEGIN { print ${best[$2]} / (${best[$3]} + 0.001) }")" "${cpu[$2]}" "${cpu[$3]}" \
    "$(awk "BEGIN { print ${cpu[$2]} / (${cpu[$3]} + 0.001) }")"
}
echo "$files files of $bytes bytes, milliseconds elapsed and of the processor, best of three"
printf '%-22s %8s %8s %6s %10s %8s %6s\n' against vdsto peer ratio 'vdsto cpu' 'peer cpu' ratio
row 'cp -r' ours_folder cp_r
row 'cp -r, sync' ours_folder cp_sync
row 'scp -r' ours_sftp scp_r
row 'sftp put -r' ours_sftp sftp_r
