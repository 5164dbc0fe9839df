#!/bin/bash
# Copies the demo's working files (velmora.cfg and data/) from FROM into TO and damages them the same way
# every run: files removed, truncated, overwritten with garbage, given a wrong magic. The files named below
# get the damage whose message the schedule run expects; every other file the forge lists gets one picked
# from its name, or is left whole, so a new scene's files are damaged without an edit here.
# usage: damage-data.sh FROM TO   (FROM: a build directory holding the forge)
set -eu
from=$(cd "$1" && pwd)
to=$2
export LC_ALL=C
listed=$("$from/tools/forge/velmora-forge" --list | awk '{ print $2 }')

rm -rf "$to"
mkdir -p "$to"
cp -r "$from/data" "$from/velmora.cfg" "$to/"
cd "$to"

size() { stat -c %s "$1"; }

# Seeded bytes, so a failure found here can be found again.
garbage() { # count seed
    awk -v n="$1" -v seed="$2" 'BEGIN { srand(seed); for (i = 0; i < n; i++) printf "%c", int(rand() * 256) }'
}

removed() { rm -f "$1"; echo "removed        $1"; }
emptied() { : > "$1"; echo "0 bytes        $1"; }
stub() { truncate -s 7 "$1"; echo "7 bytes        $1"; }
halved() { truncate -s $(( $(size "$1") / 2 )) "$1"; echo "half           $1"; }
scrambled() { # the whole file, same length
    local n; n=$(size "$1")
    garbage "$n" "$n" > "$1.tmp" && mv "$1.tmp" "$1"; echo "garbage        $1"
}
scrambledTail() { # header and magic intact, garbage from the middle on
    local n half; n=$(size "$1"); half=$(( n / 2 ))
    { head -c "$half" "$1"; garbage $(( n - half )) "$half"; } > "$1.tmp" && mv "$1.tmp" "$1"
    echo "garbage tail   $1"
}
wrongMagic() { printf 'JUNK' | dd of="$1" bs=1 seek=0 conv=notrunc status=none; echo "wrong magic    $1"; }
directory() { rm -f "$1"; mkdir "$1"; echo "a directory    $1"; }

intact() { echo "whole          $1"; }

named=""
# damage KIND FILE: a file the build did not make is a stale name here, and an error.
damage() {
    named="$named $2"
    if [ ! -f "$2" ]; then
        echo "damage-data: $2 is named here but the build did not make it" >&2
        exit 1
    fi
    "$1" "$2"
}

# Every kind of file the demo reads, each hit in more than one way across the tree.
damage removed       data/3d/tunnel3.oct
damage removed       data/3d/fugl2.msh
damage removed       data/img/water.png
damage emptied       data/3d/ship_tunnel.cam
damage emptied       data/img/credits.png
damage emptied       data/3d/mountain6.bez
damage stub          data/3d/leaf.msh
damage stub          data/3d/mountain1.bez
damage stub          data/img/logo.png
damage halved        data/3d/worm.msh
damage halved        data/3d/camera_islands.cam
damage halved        data/3d/mountain2.bez
damage halved        data/img/skymoon2.png
damage halved        data/music/velmora.xm
damage scrambled     data/3d/spike.msh
damage scrambled     data/3d/camera_tunnel.cam
damage scrambled     data/3d/mountain3.bez
damage scrambled     data/img/sand4.png
damage scrambled     data/img/particle.png
damage scrambled     data/confont.png
damage scrambledTail data/img/window02.png
damage scrambledTail data/3d/fanholder2.msh
damage wrongMagic    data/3d/fan2.msh
damage wrongMagic    data/3d/bird_island.cam
damage wrongMagic    data/3d/mountain4.bez
damage wrongMagic    data/img/refmap.png
damage wrongMagic    data/img/test.png
damage wrongMagic    data/conbg2.png
damage directory     data/img/ship.png
damage halved        velmora.cfg
# Left whole, so that the loads after them are reached: bird 1 fails only after bird 0 has loaded.
damage intact        data/3d/fugl1.msh
damage intact        data/3d/ship.msh
damage intact        data/3d/ship_island.cam
damage intact        data/3d/mountain7.bez
damage intact        data/img/water03.png

# The rest of the forge's files: one kind each, from a checksum of the name.
kinds=(intact removed emptied stub halved scrambled scrambledTail wrongMagic intact)
for file in $listed; do
    case " $named " in *" $file "*) continue ;; esac
    sum=$(printf '%s' "$file" | cksum | cut -d' ' -f1)
    damage "${kinds[$((sum % ${#kinds[@]}))]}" "$file"
done
