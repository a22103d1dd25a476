# SPDX-License-Identifier: MIT
"""Links have valid targets, also in pages that are not part of the site."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGES = [*ROOT.glob("*.md"), *ROOT.glob("docs/**/*.md"), *ROOT.glob("benchmarks/*.md")]
CODE = re.compile(r"^( *)```.*?^\1```$", flags=re.MULTILINE | re.DOTALL)
LINK = re.compile(r"\]\((?P<target>[^)\s#]+)[^)]*\)")


def links_of(page: pathlib.Path) -> list[str]:
    """Find the targets of a page's links, except links to other sites."""
    text = CODE.sub("", page.read_text(encoding="utf-8"))
    targets = [match["target"] for match in LINK.finditer(text)]
    return [target for target in targets if "://" not in target]


class LinksTest(unittest.TestCase):
    """All pages of the repository."""

    def test_every_link_leads_to_a_file(self) -> None:
        self.assertIn(ROOT / "README.md", PAGES)
        for page in PAGES:
            with self.subTest(str(page.relative_to(ROOT))):
                links = links_of(page)
                self.assertEqual([link for link in links if not (page.parent / link).exists()], [])

    def test_every_page_is_linked_from_another(self) -> None:
        linked = {(page.parent / link).resolve() for page in PAGES for link in links_of(page)}
        lonely = set(PAGES) - linked - {ROOT / "README.md"}
        self.assertEqual(lonely, set())


if __name__ == "__main__":
    unittest.main()
