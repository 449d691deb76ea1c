# SPDX-License-Identifier: BSD-3-Clause
# A call as a picture (SVG): an actor in each column, what they say to each other in rows, frames around parts of it.
BEGIN { step = 210; left = 90; y = 74 }

function x_of(i) { return left + step * (i - 1) }

function words(from,    i, line) {
  line = $from
  for (i = from + 1; i <= NF; i++) line = line " " $i
  return line
}

/^#/ || NF == 0 { next }
$1 == "actor" { actor[++n] = $2; next }
$1 == "call" || $1 == "return" {
  y += 40
  kind[++m] = $1; from[m] = $2; to[m] = $3; said[m] = words(4); at[m] = y
}
$1 == "note" { y += 20; kind[++m] = $1; from[m] = $2; said[m] = words(3); at[m] = y }
$1 == "frame" {
  y += 34
  frame_top[++depth] = y; frame_left[depth] = $2; frame_right[depth] = $3; frame_name[depth] = words(4)
  y += 10
}
$1 == "end" {
  y += 16
  kind[++m] = "frame"; at[m] = frame_top[depth]; bottom[m] = y; from[m] = frame_left[depth]; to[m] = frame_right[depth]
  said[m] = frame_name[depth]; level[m] = depth--
}

END {
  svg_begin(left + step * (n - 1) + 120, y + 30, "One call from the host to its result. Made by site/pictures/call.")
  for (k = 1; k <= m; k++) if (kind[k] == "frame") draw_frame(k)
  for (i = 1; i <= n; i++) {
    printf "  <path d=\"M%d 64 V%d\" stroke=\"#afb8c1\" stroke-width=\"1.5\" stroke-dasharray=\"3 4\"/>\n", \
      x_of(i), y + 16
    svg_box(x_of(i) - 86, 20, 172, 44, i > 1)
    svg_text(x_of(i), 47, actor[i], "text-anchor=\"middle\" font-weight=\"bold\"")
  }
  for (k = 1; k <= m; k++) draw(k)
  svg_end()
}

function draw_frame(k,    x) {
  x = x_of(from[k]) - 44 + 20 * level[k]
  printf "  <rect x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" rx=\"8\" fill=\"%s\" stroke=\"%s\"/>\n", \
    x, at[k], x_of(to[k]) + 110 - 12 * level[k] - x, bottom[k] - at[k], level[k] == 1 ? "none" : "#f6f8fa", \
    level[k] == 1 ? "#1a7f37" : "#8c959f"
}

# White behind the words keeps the lines of the actors out of them.
function draw(k,    x, white) {
  white = "stroke=\"#ffffff\" stroke-width=\"4\" paint-order=\"stroke\""
  if (kind[k] == "frame") {
    x = x_of(from[k]) - 34 + 20 * level[k]
    svg_text(x, at[k] + 18, said[k], "font-weight=\"bold\" " white)
  } else {
    x = kind[k] == "return" ? x_of(to[k]) : x_of(from[k])
    svg_text(x + 10, at[k] - (kind[k] == "note" ? 0 : 8), said[k], white)
    if (kind[k] == "call") svg_arrow(sprintf("M%d %d H%d", x_of(from[k]), at[k], x_of(to[k]) - 3))
    if (kind[k] == "return") svg_arrow(sprintf("M%d %d H%d", x_of(from[k]), at[k], x_of(to[k]) + 3), 1)
  }
}
