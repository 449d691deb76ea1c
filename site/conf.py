# SPDX-License-Identifier: BSD-3-Clause
# How Sphinx makes the site from the pages as they lie in the project; scripts/site calls it.
import os
import pathlib
import re
import sys

here = pathlib.Path(__file__).parent
sys.path.insert(0, str(here))

project = "kelvane"
author = "the kelvane developers"
release = re.search(r"^version: ([\d.]+)", (here.parent / "kelvane.build").read_text(), re.M)[1]
version = release
html_title = f"kelvane {release}"

extensions = ["myst_parser", "prerendered_math", "source_pages", "contents", "offline"]
myst_enable_extensions = ["dollarmath"]
# The pages are those of a code host: a line that begins with a per cent sign is text there.
myst_disable_syntax = ["myst_line_comment", "myst_block_break", "myst_target", "myst_role"]
myst_heading_anchors = 4
smartquotes = False
root_doc = "docs/index"
source_suffix = {".md": "markdown"}
include_patterns = [
    "docs/**",
    "README.md",
    "SECURITY.md",
    "CHANGELOG.md",
    "CONTRIBUTING.md",
    "benchmarks/README.md",
    "packaging/README.md",
    "examples/README.md",
    "examples/data/chessboard/README.md",
]
# Folders that are not even looked into; all others but docs have nothing that the patterns above name.
exclude_patterns = ["build", "tests", "**/.*"]
highlight_language = "text"
nitpicky = True

html_theme = "furo"
html_static_path = ["static"]
html_css_files = ["site.css"]
html_extra_path = ["extra"]
html_copy_source = False
html_show_sphinx = False
html_show_copyright = False
html_show_search_summary = False  # it fetches pages, which a browser refuses for files
html_permalinks_icon = "#"
html_theme_options = {"sidebar_hide_name": False}
katex_folder = os.environ.get("KELVANE_KATEX", "/usr/share/javascript/katex")
