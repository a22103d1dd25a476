# SPDX-License-Identifier: MIT
"""Builds the site from the Markdown pages and the comments in the headers, for scripts/docs.

The root of the repository is the source directory, so that links in pages work on the site as they
do in the repository.
"""

import pathlib
import re
import subprocess

from docutils import nodes
from sphinx.application import Sphinx
from sphinx.errors import ExtensionError
from sphinx.util.docutils import SphinxDirective

ROOT = pathlib.Path(__file__).resolve().parent.parent

project = "Kelvora"
author = "the authors of Kelvora"
project_copyright = "the authors of Kelvora, MIT licence"
version = release = re.search(r"VERSION (\d+\.\d+\.\d+)", (ROOT / "CMakeLists.txt").read_text())[1]

extensions = ["myst_parser", "breathe"]
include_patterns = ["docs/**.md", "benchmarks/README.md", "CHANGELOG.md", "CONTRIBUTING.md"]
exclude_patterns = ["build", ".git", "demo"]
root_doc = "docs/index"

myst_heading_anchors = 4

breathe_projects = {"kelvora": str(ROOT / "build/docs/doxygen/xml")}
breathe_default_project = "kelvora"
breathe_default_members = ("members",)
breathe_show_include = False

html_theme = "furo"
html_title = f"Kelvora {version}"
html_copy_source = False
html_show_sphinx = False
html_static_path = ["_static"]
html_css_files = ["kelvora.css"]
templates_path = ["_templates"]
html_additional_pages = {"index": "to_first_page.html"}
pygments_style = "friendly"


class ToolHelp(SphinxDirective):
    """The help text of a command of the tool.

    In the repository, the page shows the command itself.
    """

    has_content = True

    def run(self) -> list[nodes.Node]:
        """Run the command in the content."""
        program, *arguments = "".join(self.content).split()
        if program != "kelvora":
            raise self.error(f"not a command of the tool: {program}")
        tool = pathlib.Path(self.config.kelvora_tool)
        if not tool.is_file():
            raise ExtensionError(f"{tool} is missing: scripts/docs builds it")
        said = subprocess.run([tool, *arguments], capture_output=True, text=True, check=False)
        # For an unknown command, the tool prints its general help.
        usage = " ".join(["Usage:", program, *arguments[:-1], "["])
        if said.returncode != 0 or usage not in said.stdout:
            raise self.error(f"'{program} {' '.join(arguments)}' gives no help: {said.stderr}")
        return [nodes.literal_block(said.stdout, said.stdout.strip(), language="text")]


def setup(app: Sphinx) -> dict[str, bool]:
    """Register the directive and the path of the tool."""
    tool = ROOT / "build/release/tools/command_line/kelvora"
    app.add_config_value("kelvora_tool", str(tool), "env")
    app.add_directive("tool-help", ToolHelp)
    return {"parallel_read_safe": True}
