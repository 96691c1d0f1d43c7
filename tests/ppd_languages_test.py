"""The PPDs in every language: nothing untranslated, nothing stale, nothing that CUPS or a dialog would cut.

Usage: ppd_languages_test.py <folder with the .po files> <PPD>..."""

import collections
import pathlib
import re
import sys
import unicodedata
import unittest

CATALOGS = {path.stem: dict(re.findall(r'^msgid "(.+)"\nmsgstr "(.*)"', path.read_text("utf-8"), re.M))
            for path in pathlib.Path(sys.argv[1]).glob("*.po")}
PPDS = {path: pathlib.Path(path).read_text("utf-8") for path in sys.argv[2:]}
LONGEST = 80  # bytes; libcups cuts the rest
WIDEST = 38  # columns; ideographs take two
NUMBER = r"(?:[-+\d.,% ]|mm|pt)*"  # the same in every language


def texts(ppd, prefix):
    """{(keyword, choice): text}, without a prefix in English, else in the language of the prefix."""
    found = {("Translation", name): text for name, text in re.findall(
        r"^\*Open(?:UI \*|Group: )(\w+)/(.*?)(?:: .*)?$", ppd, re.M)} if not prefix else {}
    keywords = {name for _, name in found} | {"APPrinterPreset"}
    for keyword, name, text in re.findall(rf"^\*{prefix}(\w+) ([^/\s]+)/(.*?): ", ppd, re.M):
        if prefix or keyword in keywords and keyword != "PageRegion" or re.match("ParamCustomZLV", keyword):
            found[keyword, name] = text
    if not prefix:
        found |= {(keyword, "True"): "Custom" for keyword in re.findall(r"^\*(CustomZLV\w+) True", ppd, re.M)}
        del found["Translation", "PageRegion"]
    return {key: text for key, text in found.items() if text != key[1] or not re.fullmatch(r"[-+]?\d+", text)}


class Languages(unittest.TestCase):
    def test_every_text_is_translated_and_every_translation_used(self):
        self.assertEqual(set(CATALOGS), {"de", "es", "fr", "ja"})
        used = {text for ppd in PPDS.values() for text in texts(ppd, "").values()
                if not re.fullmatch(NUMBER, text)}
        self.assertGreater(len(used), 300)
        for language, catalog in CATALOGS.items():
            with self.subTest(language):
                translated = {text for text, translation in catalog.items() if translation}
                self.assertEqual([sorted(used - translated), sorted(catalog.keys() - used)], [[], []],
                                 "untranslated, stale")

    def test_every_PPD_has_the_translations(self):
        for path, ppd in PPDS.items():
            for language, catalog in CATALOGS.items():
                with self.subTest(path, language=language):
                    wanted = {key: catalog.get(text, text) for key, text in texts(ppd, "").items()}
                    self.assertEqual(sorted(wanted.items() ^ texts(ppd, language + r"\.").items()), [])

    def test_texts_fit_and_tell_choices_apart(self):
        for path, ppd in PPDS.items():
            for prefix in ["", *(language + r"\." for language in CATALOGS)]:
                with self.subTest(path, language=prefix):
                    found = texts(ppd, prefix)
                    self.assertEqual([text for text in found.values() if len(text.encode()) > LONGEST or sum(
                        2 if unicodedata.east_asian_width(char) in "WF" else 1 for char in text) > WIDEST], [])
                    self.assertEqual([text for text in found.values() if re.search('[:"<>]', text)], [])
                    again = collections.Counter((keyword, text) for (keyword, name), text in found.items()
                                                if keyword != "Translation")
                    self.assertEqual([each for each, times in again.items() if times > 1], [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
