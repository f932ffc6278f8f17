"""Sphinx turns the pages of docs/ and Doxygen's XML of the header into the site (scripts/docs)."""
import os
import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent))
sys.dont_write_bytecode = True

cmake_lists = pathlib.Path(os.environ["ORVML_IO_CMAKE_LISTS"]).read_text()

project = "liborvml_io"
author = "the liborvml_io authors"
copyright = "2026, the liborvml_io authors"
version = release = re.search(r"VERSION (\d+\.\d+\.\d+)", cmake_lists).group(1)

# The Python package is read for its texts alone: what is compiled of it need not be there.
sys.path.insert(0, os.environ["ORVML_PYTHON_SOURCES"])
autodoc_mock_imports = ["orvml._orvml", "meshio"]
autodoc_member_order = "bysource"
autodoc_typehints = "signature"
autodoc_preserve_defaults = True

extensions = ["myst_parser", "breathe", "sphinx_copybutton", "sphinx.ext.autodoc",
              "sphinx.ext.napoleon", "dark_scheme", "names", "wide_tables"]
templates_path = ["templates"]
source_suffix = {".md": "markdown"}
exclude_patterns = ["site", "README.md"]
nitpicky = True
# Types of the language and of MPI have no page, nor have the parameters of templates.
nitpick_ignore_regex = [("cpp:identifier", r"size_t|u?int\d+_t|std(::.*)?|orvml(::parallel)?|MPI_Comm|Container"),
                        ("py:.*", r".*")]

myst_heading_anchors = 3
myst_enable_extensions = ["colon_fence", "deflist"]
breathe_projects = {"header": os.environ["ORVML_IO_XML"], "cpp": os.environ["ORVML_CPP_XML"]}
breathe_default_project = "header"
breathe_show_enumvalue_initializer = True
primary_domain = "cpp"
highlight_language = "none"
pygments_style = "default"
pygments_dark_style = "github-dark"
cpp_id_attributes = ["ORVML_IO_EXPORT"]
copybutton_prompt_text = r"\$ |>>> |\.\.\. "
copybutton_prompt_is_regexp = True

html_theme = "furo"
html_title = f"liborvml_io {release}"
html_static_path = ["static"]
html_css_files = ["site.css"]
html_favicon = "static/mark.svg"
html_show_sphinx = False
html_copy_source = False
html_theme_options = {
    "sidebar_hide_name": True,
    "light_logo": "name-light.svg",
    "dark_logo": "name-dark.svg",
    "light_css_variables": {
        "color-brand-primary": "#0b6e6e",
        "color-brand-content": "#0b6e6e",
        "color-api-name": "#0b6e6e",
        "color-api-pre-name": "#5b6f6f",
        "icon-filter": "none",
        "font-stack": "'Inter', 'DejaVu Sans', system-ui, sans-serif",
        "font-stack--monospace": "'JetBrains Mono', 'DejaVu Sans Mono', monospace",
    },
    "dark_css_variables": {
        "color-brand-primary": "#5cc8c2",
        "color-brand-content": "#5cc8c2",
        "color-api-name": "#5cc8c2",
        "color-api-pre-name": "#9fb5b3",
        "icon-filter": "invert(0.8)",
    },
}

# The pages are also read in the repository, where they link to its other files and to pages that
# other changes bring. Here a link is a link only when its page is part of the site.
LINK = re.compile(r"(?<!!)\[([^\]]+)\]\((?!https?:|#)([^)#\s]+)(#[^)\s]*)?\)")
TOCTREE = re.compile(r"(```\{toctree\}\n(?::.*\n)*)((?:.*\n)*?)(```)")


def page_of(target):
    """The name of a page in the site for a path in the repository."""
    name = re.sub(r"^(\.\./|\./|docs/)+", "", target)
    return name.lower() if pathlib.PurePath(name).stem.isupper() else name


def keep_links_within_the_site(app, docname, source):
    def exists(page):
        return os.path.exists(os.path.join(app.srcdir, os.path.dirname(docname), page))

    def link(match):
        text, target, anchor = match.groups()
        page = page_of(target)
        return f"[{text}]({page}{anchor or ''})" if exists(page) else text

    def toctree(match):
        entries = [line for line in match.group(2).splitlines()
                   if not line or exists(re.sub(r".*<(.*)>", r"\1", line) + ".md")]
        return match.group(1) + "\n".join(entries) + "\n" + match.group(3)

    source[0] = TOCTREE.sub(toctree, LINK.sub(link, source[0]))


def replace_in(path, old, new):
    text = path.read_text()
    if old in text:
        path.write_text(text.replace(old, new))


def make_theme_whole(app, failure):
    """Debian ships parts of the theme apart: a style that only its own web server finds, and a script
    that imports another, which a browser takes from a server alone. Pages on a disk need both whole."""
    if failure is not None:
        return
    static = pathlib.Path(app.outdir) / "_static"
    shared = pathlib.Path("/usr/share")
    style = "/javascript/normalize.css/normalize.css"
    if (shared / style[1:]).exists():
        replace_in(static / "styles/furo.css", f"@import url({style});",
                   (shared / style[1:]).read_text())
    replace_in(static / "scripts/furo.js", 'import Gumshoe from "./gumshoe-patched.js";',
               (static / "scripts/gumshoe-patched.js").read_text())


def setup(app):
    app.connect("source-read", keep_links_within_the_site)
    app.connect("build-finished", make_theme_whole)
