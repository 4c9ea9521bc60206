#!/bin/sh
# Draws the skins: one folder of GIF pictures each, at three times the size that a window shows them
# in at 100 %, so that they stay sharp up to 300 %. Run by hand when a skin changes (ImageMagick's
# convert); the pictures are kept beside this script.
set -eu
cd "$(dirname "$0")"

# draw_skin NAME TITLE_TOP TITLE_MIDDLE TITLE_BOTTOM EDGE INNER_EDGE BUTTON CLOSE
draw_skin() {
  name=$1 top=$2 middle=$3 bottom=$4 edge=$5 inner=$6 button=$7 close=$8
  mkdir -p "$name"
  out() { convert "$@"; }
  clear=xc:none

  # Title bar, 57x90: a light rim, a shade in two halves, a dark line at its foot.
  out \( -size 57x42 gradient:"$top"-"$middle" \) \( -size 57x42 gradient:"$middle"-"$bottom" \) \
      \( -size 57x6 xc:"$edge" \) -append \
      -fill white -draw 'fill-opacity 0.35 rectangle 0,3 57,5' "$name/imgTitleMain.gif"
  out "$name/imgTitleMain.gif" -fill "$edge" -draw 'rectangle 0,0 5,90' \
      -fill "$inner" -draw 'rectangle 6,6 8,83' "$name/imgTitleLeft.gif"
  out "$name/imgTitleLeft.gif" -flop "$name/imgTitleRight.gif"

  # Border: a dark and a light line, clear inside.
  out -size 57x90 $clear -fill "$edge" -draw 'rectangle 0,0 5,90' \
      -fill "$inner" -draw 'rectangle 6,0 8,90' "$name/imgWindowLeft.gif"
  out "$name/imgWindowLeft.gif" -flop "$name/imgWindowRight.gif"
  out -size 57x90 $clear -fill "$inner" -draw 'rectangle 0,81 57,83' \
      -fill "$edge" -draw 'rectangle 0,84 57,90' "$name/imgWindowBottom.gif"
  # The corner follows the window's outline, a circle of 36 points here.
  out -size 57x90 $clear -fill "$inner" -draw 'rectangle 6,0 8,54 rectangle 36,81 57,83' \
      -fill "$edge" -draw 'rectangle 0,0 5,54 rectangle 36,84 57,90' \
      -fill none -stroke "$edge" -strokewidth 6 -draw 'arc 3,21 69,87 90,180' \
      -stroke "$inner" -strokewidth 3 -draw 'arc 7,25 65,83 90,180' \
      "$name/imgWindowBottomLeft.gif"
  out "$name/imgWindowBottomLeft.gif" -flop "$name/imgWindowBottomRight.gif"

  # Title-bar buttons, 42x42: a rounded face with a sign.
  face() {
    file=$1 colour=$2 sign=$3
    out -size 42x42 $clear -fill "$edge" -draw 'roundrectangle 0,0 41,41 9,9' \
        -fill "$colour" -draw 'roundrectangle 2,2 39,39 8,8' \
        -fill none -stroke white -strokewidth 5 -draw "$sign" "$name/$file.gif"
  }
  face imgTitleClose "$close" 'line 12,12 29,29 line 29,12 12,29'
  face imgTitleMinimize "$button" 'line 11,29 30,29'
  face imgTitleMaximize "$button" 'rectangle 12,12 29,29'
  face imgTitleRestore "$button" 'rectangle 10,17 24,31 polyline 17,11 31,11 31,25'
  face imgTitleHelp "$button" 'arc 13,9 28,22 180,405 line 22,22 21,27 line 21,31 21,34'
}

draw_skin Blue    '#7fa3e8' '#4a6fc0' '#2f4f9e' '#1d3575' '#9db8ee' '#3f63b5' '#d0483c'
draw_skin Heather '#b49ac4' '#8a6aa0' '#664a80' '#432d5a' '#d3c0de' '#7a5c93' '#c24a5e'
