# SPDX-License-Identifier: BSD-3-Clause
# pages.py PROJECT HEADERS FOLDER: lays out in FOLDER what Sphinx makes the site of: the pages of the project, with links to
# sources turned into pages that show these, a page for each function and each of the headers, and the contents.
import os
import pathlib
import re
import shutil
import sys

import function_pages

project, headers, site = map(pathlib.Path, sys.argv[1:])
contents = {
    "Use": "getting_started functions/index gallery refinement estimation rotation_types conventions cameras reports matlab from_v0.1",
    "Use in C++": "cpp headers/index",
    "Judge": "performance benchmarks/README trust compatibility SECURITY",
    "Understand": "architecture notation derivations numerics decisions/README",
    "Project": "README CHANGELOG CONTRIBUTING packaging/README examples/README examples/data/chessboard/README",
}
# The header that does in C++ what functions do.
twins = {
    "pose_refinement/refine.h": "kelvane_refine kelvane_batch",
    "pose_estimation/estimate.h": "kelvane_estimate",
    "contract/refinement.h": "kelvane_mex",
    "camera_pose/rotation_type.h": "kelvane_types",
    "pose_refinement/pose.h": "kelvane_pose",
    "cameras/lens.h": "kelvane_camera kelvane_project kelvane_undistort kelvane_distort",
    "model_files/colmap_model.h": "kelvane_read_colmap",
    "model_files/bal_model.h": "kelvane_read_bal",
    "model_files/write_poses.h": "kelvane_write_colmap kelvane_write_bal",
}
functions = {path.stem: path for path in sorted(project.glob("matlab/kelvane_*.m"))}
documented = sorted(path.relative_to(headers).as_posix() for path in headers.glob("*/*.h"))
pages = [path.relative_to(project).as_posix() for path in [
    *project.glob("*.md"), *project.glob("docs/**/*.md"), *project.glob("examples/**/*.md"),
    project / "benchmarks/README.md", project / "packaging/README.md"]]
gallery = (project / "docs/gallery.md").read_text(encoding="utf-8")
shown = set()  # the sources that pages link to, of a folder all


def write(name, text):
    (site / name).parent.mkdir(parents=True, exist_ok=True)
    (site / name).write_text(text, encoding="utf-8")


def place_of(name):
    """Where the site has what a link of the project leads to: a page, or the label of a source."""
    path = project / name
    if name == "matlab/Contents.m":
        return "functions/index.md"
    if path.stem in functions and name.startswith("matlab/"):
        return f"functions/{path.stem}.md"
    if name in documented:
        return f"headers/{name}.md"
    if f"{name}/README.md" in pages:
        return f"{name}/README.md"
    if name in pages or path.suffix in (".png", ".svg") or not path.exists():
        return name
    inside = sorted(file for file in path.glob("*.*") if file.is_file()) if path.is_dir() else [path]
    shown.update(inside)
    return f"source/{name}.md" if path.is_dir() else f"source-{name}"


def with_links(text, page):
    """A page with its links as the site has them."""
    folder = os.path.dirname(page)

    def moved(match):
        place = place_of(os.path.normpath(os.path.join(folder, match[1])))
        return "](" + (place if place.startswith("source-") else os.path.relpath(place, folder))

    return re.sub(r"\]\((?![a-z]+:)([^()#\s]+)", moved, text)


def toctree(names, caption=""):
    options = ":hidden:\n" + (f":caption: {caption}\n" if caption else "")
    return f"\n```{{toctree}}\n{options}\n" + "\n".join(names) + "\n```\n"


def function_page(name):
    def link(word):
        return f"{word}.md" if word in functions else "../docs/gallery.md" if word.endswith("_demo") else None

    extra = [f"## In C++\n\n[{header}](../headers/{header}.md)" for header, names in twins.items() if name in names.split()]
    for title, text in re.findall(r"^## (.*)\n([^#]*matlab/" + name + r"\.m[^#]*)", gallery, re.M)[:1]:
        picture = re.search(r"!\[.*?\]\(.*?\)", text)[0].replace("images/", "../docs/images/")
        extra.insert(0, f"## In the gallery\n\n[{title}](../docs/gallery.md)\n\n{picture}")
    if (project / f"docs/images/{name}.png").exists():
        extra.insert(0, f"![What the example draws](../docs/images/{name}.png)")
    try:
        write(f"functions/{name}.md", function_pages.page(functions[name], link, extra))
    except function_pages.Misunderstood as line:
        sys.exit(f"{functions[name]}: neither a sentence nor a row of a table: {line}")


def head_of(header):
    """What a header says of itself, on one line."""
    lines = re.match(r"/// @file\n((?:/// .+\n)+)", header.read_text(encoding="utf-8"))[1]
    return lines.replace("\n/// ", " ")[4:].strip()


def header_page(name):
    same = ", ".join(f"[`{word}`](../../functions/{word}.md)" for word in twins.get(name, "").split())
    label = pathlib.Path(name).stem.replace("_", "__") + "_8h"  # Doxygen's own, to which its comments link
    write(f"headers/{name}.md", f"({label})=\n# {name}\n\n" + (f"In Octave and MATLAB: {same}\n\n" if same else "") +
          f"```{{doxygenfile}} {name}\n```\n")


def source_page(folder):
    """All that is shown of a folder, each file below a label of its name."""
    name = folder.relative_to(project) if folder != project else "top"
    text = f"---\norphan: true\nnosearch: true\n---\n# {name}\n"
    for path in sorted(path for path in shown if path.parent == folder):
        language = {".h": "cpp", ".cpp": "cpp", ".m": "octave", ".cmake": "cmake"}.get(path.suffix, "text")
        text += (f"\n(source-{path.relative_to(project)})=\n## {path.name}\n\n~~~~~~{{code-block}} {language}\n:force:\n\n" +
                 path.read_text(encoding="utf-8") + "\n~~~~~~\n")
    write(f"source/{name}.md", text)


def index(folder, title, lines, names):
    write(f"{folder}/index.md", f"# {title}\n\n" + "\n".join(lines) + "\n" + toctree(names))


shutil.copytree(project / "docs/images", site / "docs/images")
for name in functions:
    function_page(name)
for name in documented:
    header_page(name)
listed = re.findall(r"^% +(\S.+)$", (project / "matlab/Contents.m").read_text(encoding="utf-8"), re.M)[1:-1]
index("functions", "Functions", [re.sub(r"^(\w+) +- (.*)", r"- [`\1`](\1.md): \2", line) if " - " in line else f"\n## {line}\n"
                                 for line in listed], functions)
index("headers", "C++ headers", [f"- [{name}]({name}.md): {head_of(headers / name)}" for name in documented], documented)
for page in pages:
    text = with_links((project / page).read_text(encoding="utf-8"), page)
    if page == "docs/index.md":
        for caption, names in contents.items():
            text += toctree([name if f"docs/{name}.md" in pages else f"/{name}" for name in names.split()], caption)
    if page == "docs/decisions/README.md":
        text += toctree(sorted(other[15:] for other in pages if other.startswith("docs/decisions/0")))
    write(page, text)
for folder in {path.parent for path in shown}:
    source_page(folder)
