# SPDX-License-Identifier: BSD-3-Clause
# Layers from the top down, each a line layer|name|words|words, and their lines include|name|what: an arrow downwards
# for the next layer, a dashed one at the left for a layer beyond it, one to the right for code of others.
BEGIN {
  FS = "|"
  left = 90; width = 600; height = 84; step = 112; top = 20
}
$1 == "layer" {
  name[++n] = $2; row[$2] = n; first[n] = $3; second[n] = $4
}
$1 == "include" { included[$2, $3] = 1 }

function y_of(i) { return top + step * (i - 1) }

END {
  svg_begin(940, top + step * (n - 1) + height + 20, \
            "The layers, from the includes of the sources. Made by site/pictures/layers.")
  for (i = 1; i <= n; i++) {
    svg_box(left, y_of(i), width, height, 1)
    svg_text(left + 20, y_of(i) + 28, name[i], "font-weight=\"bold\" font-size=\"17\"")
    svg_text(left + 20, y_of(i) + 51, first[i])
    svg_text(left + 20, y_of(i) + 70, second[i])
    draw_outside(i)
    if (included[name[i], name[i + 1]])
      svg_arrow(sprintf("M%d %d V%d", left + width / 2, y_of(i) + height, y_of(i + 1) - 2))
  }
  if (first_opencv) {
    svg_box(770, y_of(first_opencv), 150, y_of(last_opencv) + height - y_of(first_opencv), 0)
    y = (y_of(first_opencv) + y_of(last_opencv) + height) / 2
    svg_text(845, y - 6, "OpenCV core", "text-anchor=\"middle\" font-weight=\"bold\" font-size=\"17\"")
    svg_text(845, y + 18, "cv::Mat, cv::SVD", "text-anchor=\"middle\"")
  }
  for (i = 1; i <= n; i++) {
    for (j = i + 2; j <= n; j++) {
      if (included[name[i], name[j]]) {
        ++lane
        x = left - 22 * lane
        svg_arrow(sprintf("M%d %d H%d V%d H%d", left, y_of(i) + 30 + 10 * lane, x, y_of(j) + 14 + 12 * lane, \
                          left - 2), 1)
      }
    }
  }
  svg_end()
}

function draw_outside(i) {
  if (included[name[i], "mex.h"]) {
    svg_box(770, y_of(i), 150, height, 0)
    svg_text(845, y_of(i) + 36, "the host", "text-anchor=\"middle\" font-weight=\"bold\" font-size=\"17\"")
    svg_text(845, y_of(i) + 60, "mex.h", "text-anchor=\"middle\"")
    svg_arrow(sprintf("M%d %d H768", left + width, y_of(i) + height / 2))
  }
  if (included[name[i], "opencv2"]) {
    if (!first_opencv) first_opencv = i
    last_opencv = i
    svg_arrow(sprintf("M%d %d H768", left + width, y_of(i) + height / 2))
  }
}
