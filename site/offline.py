# SPDX-License-Identifier: BSD-3-Clause
# Debian's themes fetch some style sheets from /javascript of the machine's web server: these come into the site, so
# that it can be read from a folder.
import pathlib
import re
import shutil


def bring_along(app, exception):
    if exception is not None:
        return
    static = pathlib.Path(app.outdir) / "_static"
    for style in static.rglob("*.css"):
        text = style.read_text(encoding="utf-8")
        for address in set(re.findall(r"url\(/javascript/([^)]*)\)", text)):
            name = pathlib.PurePosixPath(address).name
            shutil.copyfile(f"/usr/share/javascript/{address}", style.parent / name)
            text = text.replace(f"url(/javascript/{address})", f"url({name})")
        style.write_text(text, encoding="utf-8")


def setup(app):
    app.connect("build-finished", bring_along)
    return {"parallel_read_safe": True}
