#!/usr/bin/env bash
# Makes a small library to look at in the folder that it is given: films, series, music, home videos and a
# room for kids, each a few seconds long and drawn by ffmpeg from nothing. Takes a minute.
. "$(dirname "$0")/common.sh"

target=${1:?usage: sample_library.sh <folder>}
face=/usr/share/fonts/truetype/lato/Lato-Black.ttf
scenes=$target.scenes
library=$target.partial
rm -rf "$scenes" "$library"
mkdir -p "$scenes" "$library"

ffmpeg_quietly() { ffmpeg -v error -nostdin -y "$@"; }

# --- Scenes: grey moving pictures, drawn once; a film is a scene in two colours of its own. ---

# draw_scene <name> <luma of a pixel, by X, Y and the time T>
draw_scene() {
  ffmpeg_quietly -f lavfi -i "nullsrc=s=320x180:r=24:d=8,format=gray,geq=lum='clip($2,0,255)',gblur=0.5" \
    -c:v ffv1 "$scenes/$1.mkv"
}

sun='hypot(X-160,Y-76-T*1.5)'
sky="60+80*Y/92+100*exp(-$sun/22)+120*lt($sun,17)"
glints='(Y-90)/90*18*sin((X+T*12)/(7+(Y-90)/4)+Y*1.7)'
path='exp(-abs(X-160)/(14+(Y-92)*0.9))*(50+40*sin(Y*900/(Y-60)+T*5+2*sin(X/(9+(Y-92)/6)+T*2)))'
sea="if(lt(Y,92),$sky,40+(Y-92)/5+$path+$glints)"

# ridge <line> <swing> <speed> <grey of the hill> <what lies behind it>
ridge() { printf 'if(gt(Y,%s+%s*sin((X+T*%s)/%s+%s)+7*sin((X+T*%s)/13)),%s,%s)' "$1" "$2" "$3" "$4" "$1" "$3" "$5" "$6"; }
moon='if(lt(hypot(X-200,Y-40),19),255,160+Y)'
hills=$(ridge 140 14 60 37 18 "$(ridge 112 16 28 43 62 "$(ridge 86 13 12 31 112 "$(ridge 66 9 5 27 152 "$moon")")")")

curtain='210*pow(abs(sin(X/46+0.9*sin(Y/60+T*0.5)+T*0.3)),6)'
fall='exp(-pow((Y-70-22*sin(X/50+T*0.6))/46,2))*(0.8+0.2*sin(X*0.9+T*3))'
stars='150*gt(mod(X*X*37+Y*Y*91+X*Y*17,3571),3562)'
aurora="if(gt(Y,150+8*sin(X/31)+4*sin(X/7.7)),8,30+$curtain*$fall+$stars)"

# --- Media and pictures ---

# tint <dark r g b> <light r g b>: the filter that turns grey into shades between two colours.
tint() {
  printf "format=gbrp,lutrgb=r='%d+(%d)*val/255':g='%d+(%d)*val/255':b='%d+(%d)*val/255'" \
    "$1" $(($4 - $1)) "$2" $(($5 - $2)) "$3" $(($6 - $3))
}

# words <size> <text>: the filters that write a text in the lower left corner, a word a line.
words() {
  local size=$1 list word line
  read -ra list <<<"$2"
  line=${#list[@]}
  for word in "${list[@]}"; do
    printf ",drawtext=fontfile=%s:text='%s':fontsize=%d:fontcolor=white:shadowcolor=black@0.6:shadowx=2:shadowy=2" \
      "$face" "$word" "$size"
    printf ':x=%d:y=h-%d' "$((size / 2))" "$((size * line + size / 2))"
    line=$((line - 1))
  done
}

# melody <key in Hz> <stride>: a plucked walk through the five-tone scale over a low drone.
melody() {
  local note="floor(mod(floor(t*3)*$2,5)*2.4+0.1)+12*mod(floor(t*3/5),2)"
  local tone="0.25*sin(2*PI*t*$1*pow(2,($note)/12))*exp(-5*mod(t,1/3))+0.06*sin(PI*t*$1)"
  printf "aevalsrc='%s|%s':s=48000" "$tone" "$tone"
}

# film <file without its folders' art> <scene> <seconds> <colours> <key> <stride>
film() {
  local file=$library/$1 colours
  read -ra colours <<<"$4"
  mkdir -p "$(dirname "$file")"
  ffmpeg_quietly -i "$scenes/$2.mkv" -f lavfi -i "$(melody "$5" "$6")" -t "$3" \
    -vf "scale=640:360:flags=bicubic,$(tint "${colours[@]}")" -pix_fmt yuv420p \
    -c:v libx264 -preset superfast -crf 20 -g 48 -c:a aac -b:a 128k -metadata:s:a language=eng "$file"
}

# still <film> <picture> <filters>: the film's picture of second 3, changed by the filters.
still() { ffmpeg_quietly -ss 3 -i "$library/$1" -frames:v 1 -vf "$3" -q:v 2 "$library/$2"; }

poster() { still "$1" "$2" "crop=240:360,scale=342:513$(words 45 "$3")"; }
fanart() { still "$1" "$2" "scale=1920:1080"; }

# clear_logo <picture> <title>: the title alone on a clear ground.
clear_logo() {
  ffmpeg_quietly -f lavfi -i "color=black@0:s=900x140,format=rgba" -frames:v 1 \
    -vf "drawtext=fontfile=$face:text='$2':fontsize=84:fontcolor=white:x=(w-tw)/2:y=(h-th)/2" "$library/$1"
}

# song <file> <number> <title> <key> <stride>
song() {
  ffmpeg_quietly -f lavfi -i "$(melody "$4" "$5")" -i "$library/$album/cover.jpg" -t 8 -map 0 -map 1 \
    -c:a libmp3lame -q:a 4 -c:v copy -disposition:v attached_pic -id3v2_version 3 \
    -metadata title="$3" -metadata artist="The Lavender Engines" -metadata album="Slow Tides" \
    -metadata track="$2" -metadata date=2018 "$library/$1"
}

say "making a sample library, once"
draw_scene sea "$sea" &
draw_scene hills "$hills" &
draw_scene aurora "$aurora" &
wait

dusk='22 18 60 255 190 110'
rose='38 16 46 255 168 170'
mint='6 26 48 150 255 205'
gold='40 22 10 255 226 150'
ice='14 30 60 224 240 255'
lilac='28 14 70 226 190 255'

harbour='movies/The Last Harbour (2019)'
film "$harbour/The Last Harbour (2019).mkv" sea 8 "$dusk" 220 2
clear_logo "$harbour/clearlogo.png" 'THE LAST HARBOUR'
echo '{"overview": "The ferry has sailed for the last time, but somebody still lights the lamp on the pier."}' \
  >"$library/$harbour/metadata.json"
mountains='movies/Paper Mountains (2021)'
film "$mountains/Paper Mountains (2021).mp4" hills 8 "$rose" 196 3
north='movies/Northern Static (2016)'
film "$north/Northern Static (2016).mkv" aurora 8 "$mint" 165 4
umbrella="kids/The Moon Umbrella (2020)"
film "$umbrella/The Moon Umbrella (2020).mp4" hills 6 "$lilac" 294 2
whale='kids/Whale Post (2022)'
film "$whale/Whale Post (2022).mkv" sea 6 "$ice" 330 3
for folder in "$harbour" "$mountains" "$north" "$umbrella" "$whale"; do
  file=$(basename "$folder")
  title=${file% (*}
  file=$(basename "$library/$folder/$file".m*)
  poster "$folder/$file" "$folder/poster.jpg" "${title^^}"
  fanart "$folder/$file" "$folder/fanart.jpg"
done

# series <name> <scene> <key> <colours of season 1> <colours of season 2>: two seasons of two episodes.
series() {
  local name=$1 show=tv/$1 season episode titles=('Low Water' 'The Lamp' 'Salt' 'Homeward') first
  for season in 1 2; do
    for episode in 1 2; do
      film "$show/Season $season/S0${season}E0$episode ${titles[season * 2 + episode - 3]}.mkv" \
        "$2" 5 "${*:3+season:1}" "$3" "$((season + episode))"
    done
    first=$(basename "$library/$show/Season $season/S0${season}E01"*)
    poster "$show/Season $season/$first" "$show/Season $season/poster.jpg" "SEASON $season"
  done
  first="Season 1/$(basename "$library/$show/Season 1/S01E01"*)"
  poster "$show/$first" "$show/poster.jpg" "${name^^}"
  fanart "$show/$first" "$show/fanart.jpg"
  ffmpeg_quietly -f lavfi -i "$(melody "$3" 2)" -t 8 -c:a libmp3lame -q:a 4 "$library/$show/theme.mp3"
}
series 'Tide Tables' sea 247 "$gold" "$ice"
series 'Night Bus North' aurora 185 "$lilac" "$dusk"

for name in 'Summer at the Lake:sea:rose' 'First Snow:hills:ice' 'Camping Lights:aurora:gold'; do
  IFS=: read -r title scene colours <<<"$name"
  film "video/$title.mp4" "$scene" 5 "${!colours}" 262 3
  poster "video/$title.mp4" "video/$title.jpg" "${title^^}"
done

album='music/The Lavender Engines - Slow Tides'
mkdir -p "$library/$album"
still "$harbour/The Last Harbour (2019).mkv" "$album/cover.jpg" "crop=360:360,hue=h=200,scale=600:600$(words 72 'SLOW TIDES')"
still "$harbour/The Last Harbour (2019).mkv" "$album/backdrop.jpg" "hue=h=200,gblur=12,scale=1920:1080"
number=0
for title in 'Ebb' 'Lantern Room' 'Paper Boats' 'Flood'; do
  number=$((number + 1))
  song "$album/0$number $title.mp3" "$number" "$title" $((150 + 25 * number)) "$((number + 1))"
done

rm -rf "$scenes"
mv "$library" "$target"
