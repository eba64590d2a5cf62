# How Sphinx builds the pages; tools/make_site.py collects them and calls it.
import re
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
project = "Orvanth.Core.Math"
author = "the Orvanth.Core.Math developers"
release = re.search(r"project\([^)]*VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)
version = release
copyright = author

extensions = ["myst_parser", "sphinx.ext.mathjax", "sphinx_copybutton", "sphinx_inline_tabs"]
myst_enable_extensions = ["dollarmath", "deflist", "colon_fence"]
myst_heading_anchors = 4
myst_update_mathjax = False
# A heading of a copied page may begin lower than the one before it.
suppress_warnings = ["myst.header"]
smartquotes = False
exclude_patterns = ["files/**"]
highlight_language = "text"

# MathJax from Debian's package, copied beside the pages: they need no network.
mathjax_path = "mathjax/MathJax.js?config=TeX-AMS_CHTML"
mathjax2_config = {"tex2jax": {"inlineMath": [["\\(", "\\)"]], "displayMath": [["\\[", "\\]"]],
                               "processClass": "math", "ignoreClass": "document"},
                   "displayAlign": "left", "displayIndent": "1em", "showMathMenu": False, "messageStyle": "none", "jax": ["input/TeX", "output/CommonHTML"],
                   "CommonHTML": {"linebreaks": {"automatic": True}}}

html_theme = "furo"
html_title = f"Orvanth.Core.Math {release}"
html_static_path = ["_static", str(ROOT / "build" / "docs" / "static")]
html_css_files = ["site.css"]
html_js_files = ["site.js"]
html_copy_source = False
html_show_sphinx = False
html_theme_options = {"navigation_with_keys": True}
pygments_style = "xcode"
pygments_dark_style = "github-dark"
copybutton_prompt_text = r">>> |\.\.\. |\$ "
copybutton_prompt_is_regexp = True
