"""Makes the pages dark for a reader who prefers that: the theme's rules, and the pictures."""
import pathlib

from docutils import nodes
from sphinx.errors import ExtensionError
from sphinx.transforms import SphinxTransform

# Every colour of the pictures, and what stands for it on a dark page.
DARK_COLOURS = {
    "#ffffff": "#101516",  # boxes
    "#f7faf9": "#1a1f20",  # the card
    "#e3f1f0": "#16302f",  # what the library holds
    "#fdf0dc": "#3a2b14",  # what is the caller's
    "#dedaf3": "#2b2547",  # two more ranks
    "#e9ebc4": "#2f3213",
    "#1d2b2b": "#e6efee",  # text
    "#4a5c5c": "#adc0be",  # small text
    "#0b6e6e": "#5cc8c2",
    "#b4690e": "#e6a34d",
}
CHOSEN_DARK = 'body[data-theme="dark"]'
NOT_CHOSEN_LIGHT = 'body:not([data-theme="light"])'


def complete_theme(style):
    """Debian's build of the theme has the rules for a reader who chooses dark, and lost those for one
    whose browser does: nothing answers while the switch stands on "auto"."""
    css = style.read_text()
    if "(prefers-color-scheme: dark)" in css:
        return
    start = css.find(f"@media not print {{\n  {CHOSEN_DARK}")
    end = css.find("\n\n", start)
    if start < 0 or end < 0:
        raise ExtensionError(f"{style.name} has no rules for a dark page")
    preferred = css[start:end].replace(CHOSEN_DARK, NOT_CHOSEN_LIGHT)
    style.write_text(f"{css[:end]}\n\n@media (prefers-color-scheme: dark) {{\n{preferred}\n}}{css[end:]}")


def complete_theme_of_site(app, failure):
    if failure is None:
        complete_theme(pathlib.Path(app.outdir) / "_static/styles/furo.css")


def darkened(picture):
    text = picture.read_text()
    for light, dark in DARK_COLOURS.items():
        text = text.replace(light, dark.upper())
    return text


def is_light_picture(path):
    return path.suffix == ".svg" and not path.stem.endswith("-dark")


def draw_dark_pictures(app):
    for picture in (pathlib.Path(app.srcdir) / "pictures").iterdir():
        if is_light_picture(picture):
            picture.with_name(f"{picture.stem}-dark.svg").write_text(darkened(picture))


class PicturesOfBothSchemes(SphinxTransform):
    """Puts the dark picture beside the light one; the theme shows the one that fits."""
    default_priority = 200

    def apply(self, **kwargs):
        for light in list(self.document.findall(nodes.image)):
            path = pathlib.PurePosixPath(light["uri"])
            if path.parent.name == "pictures" and is_light_picture(path):
                dark = light.deepcopy()
                dark["uri"] = str(path.with_name(f"{path.stem}-dark.svg"))
                light["classes"].append("only-light")
                dark["classes"].append("only-dark")
                light.parent.insert(light.parent.index(light) + 1, dark)


def setup(app):
    app.connect("builder-inited", draw_dark_pictures)
    app.add_transform(PicturesOfBothSchemes)
    app.connect("build-finished", complete_theme_of_site)
    return {"parallel_read_safe": True, "parallel_write_safe": True}
