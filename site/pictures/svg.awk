# SPDX-License-Identifier: BSD-3-Clause
# Pieces of SVG that the drawn pictures share.
function svg_begin(width, height, about) {
  print "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
  print "<!-- SPDX-License-Identifier: BSD-3-Clause -->"
  print "<!-- " about " -->"
  printf "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %d %d\" width=\"%d\" height=\"%d\"\n", \
    width, height, width, height
  print "     font-family=\"Helvetica, Arial, sans-serif\" font-size=\"14\" fill=\"#1b1f24\">"
  print "  <defs>"
  print "    <marker id=\"head\" viewBox=\"0 0 10 10\" refX=\"9\" refY=\"5\" markerWidth=\"8\" markerHeight=\"8\" orient=\"auto\">"
  print "      <path d=\"M0 0 L10 5 L0 10 z\" fill=\"#57606a\"/>"
  print "    </marker>"
  print "  </defs>"
  printf "  <rect width=\"%d\" height=\"%d\" fill=\"#ffffff\"/>\n", width, height
}

function svg_end() { print "</svg>" }

# A box of ours is blue, one of others yellow.
function svg_box(x, y, width, height, is_ours) {
  printf "  <rect x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" rx=\"6\" stroke-width=\"1.5\" %s/>\n", x, y, width, height, \
    is_ours ? "stroke=\"#0969da\" fill=\"#eaf3fd\"" : "stroke=\"#9a6700\" fill=\"#fff8e5\""
}

function svg_text(x, y, words, attributes) {
  gsub(/&/, "\\&amp;", words)
  gsub(/</, "\\&lt;", words)
  printf "  <text x=\"%d\" y=\"%d\"%s>%s</text>\n", x, y, attributes == "" ? "" : " " attributes, words
}

function svg_arrow(path, is_dashed) {
  printf "  <path d=\"%s\" stroke=\"#57606a\" stroke-width=\"1.5\" fill=\"none\"%s marker-end=\"url(#head)\"/>\n", path, \
    is_dashed ? " stroke-dasharray=\"5 4\"" : ""
}
