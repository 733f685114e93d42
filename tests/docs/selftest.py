#!/usr/bin/env python3
"""Shows that the checks of the documents find what they look for."""

import contextlib
import io
import pathlib
import tempfile
import unittest

import blocks
import glossary
import links
import logtexts
import markdown
import mermaid
import predefined
import translations
from markdown import Mistake


class Documents(unittest.TestCase):
    def document(self, text):
        folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(lambda: [p.unlink() for p in folder.glob("*")] and folder.rmdir())
        path = folder / "page.md"
        path.write_text(text, encoding="utf-8")
        return markdown.read(path)

    def assertMistake(self, text, call, *arguments):
        with self.assertRaises(Mistake) as caught:
            call(*arguments)
        self.assertIn(text, str(caught.exception))


class CodeBlocks(Documents):
    def test_a_block_of_an_unknown_kind_is_a_mistake(self):
        self.assertMistake("no test knows a code block of kind 'perl'", blocks.check,
                           self.document("```perl\nprint 1\n```\n"))

    def test_a_block_without_a_kind_is_a_mistake(self):
        self.assertMistake("no test knows a code block of kind ''", blocks.check, self.document("```\nx\n```\n"))

    def test_code_that_nobody_compiles_is_a_mistake(self):
        self.assertMistake("needs a marker", blocks.check, self.document("```cpp\nint i;\n```\n"))

    def test_an_unknown_marker_is_a_mistake(self):
        self.assertMistake("no test knows the marker 'skip'", blocks.check,
                           self.document("<!-- skip -->\n```sh\nfalse\n```\n"))

    def test_indented_code_is_a_mistake(self):
        self.assertMistake("without a fence", blocks.check, self.document("Text:\n\n    int i;\n"))

    def test_a_block_without_an_end_is_a_mistake(self):
        with self.assertRaises(Mistake):
            self.document("```sh\ntrue\n")

    def test_a_file_that_the_text_does_not_name_is_a_mistake(self):
        self.assertMistake("not told", blocks.check, self.document("Write:\n\n<!-- file: a/b.cpp -->\n```cpp\n;\n```\n"))

    def test_a_file_that_the_text_names_is_none(self):
        text = "Write `b.cpp`:\n\n<!-- file: a/b.cpp -->\n```cpp\n;\n```\n"
        self.assertEqual(1, blocks.check(self.document(text)))

    def test_output_of_nothing_is_a_mistake(self):
        self.assertMistake("output of no command", blocks.check, self.document("<!-- output -->\n```text\nx\n```\n"))

    def test_a_command_that_the_named_script_does_not_run_is_a_mistake(self):
        self.assertMistake("does not run: scripts/nothing", blocks.check,
                           self.document("<!-- run by: .ci/run -->\n```sh\nscripts/nothing\n```\n"))

    def test_a_command_that_the_named_script_runs_is_none(self):
        text = "<!-- run by: .ci/run -->\n```sh\nscripts/test    # remark\n```\n"
        self.assertEqual(1, blocks.check(self.document(text)))

    def test_commands_are_run_in_order_and_keep_folder_and_variables(self):
        text = ("```sh\nmkdir a && cd a\nexport B='c d'\n```\n\nFile `f`:\n\n<!-- file: a/f -->\n```text\nx\n```\n"
                "```sh\ncat f\necho \"$B\"\n```\n<!-- output -->\n```text\nx\nc d\n```\n")
        document = self.document(text)
        with tempfile.TemporaryDirectory() as work:
            self.assertEqual(4, blocks.Reader(document, work, "c++").follow())

    def test_a_command_that_fails_is_a_mistake(self):
        document = self.document("```sh\nfalse\ntrue\n```\n")
        with tempfile.TemporaryDirectory() as work:
            self.assertMistake("ends with status 1", blocks.Reader(document, work, "c++").follow)

    def test_other_output_is_a_mistake(self):
        document = self.document("```sh\necho one\n```\n<!-- output -->\n```text\ntwo\n```\n")
        with tempfile.TemporaryDirectory() as work:
            self.assertMistake("print something else", blocks.Reader(document, work, "c++").follow)

    def test_what_needs_a_missing_program_is_left_out_with_its_output(self):
        text = "<!-- needs: {} -->\n```sh\necho one\n```\n<!-- output -->\n```text\ntwo\n```\n"
        with tempfile.TemporaryDirectory() as work, contextlib.redirect_stdout(io.StringIO()) as said:
            self.assertEqual(2, blocks.Reader(self.document(text.format("sh no-such-program")), work, "c++").follow())
            self.assertIn("not run, for want of no-such-program", said.getvalue())
            self.assertMistake("print something else", blocks.Reader(self.document(text.format("sh")), work, "c++").follow)

    def test_a_line_of_the_log_that_the_guide_does_not_know_is_a_mistake(self):
        line = "2009-05-31 23:59:59.123 INFO  orvo.plugin.X: [Plugin] nowhere"
        document = self.document(f"```sh\necho '{line}'\n```\n")
        with tempfile.TemporaryDirectory() as work:
            self.assertMistake("does not know this line", blocks.Reader(document, work, "c++").follow)

    def test_a_path_that_is_not_there_is_a_mistake(self):
        document = self.document("<!-- paths: . -->\n```text\nsrc/\n    nothing/\n```\n")
        with tempfile.TemporaryDirectory() as work:
            self.assertMistake("no src/nothing", blocks.Reader(document, work, "c++").follow)

    def test_dots_stand_for_any_text_and_any_lines(self):
        self.assertTrue(blocks.output_matches(["a", "...", "z..."], ["a", "b", "c", "zett"]))
        self.assertTrue(blocks.output_matches(["a", "...", "z"], ["a", "z"]))
        self.assertFalse(blocks.output_matches(["a", "...", "z"], ["a", "b"]))
        self.assertTrue(blocks.output_matches(["  a b"], ["a   b "]))
        self.assertTrue(blocks.output_matches(["a ... b"], ["a   b"]))
        self.assertTrue(blocks.output_matches(["a ... b"], ["a c b"]))
        self.assertFalse(blocks.output_matches(["a ... b"], ["ab"]))
        self.assertFalse(blocks.output_matches(["a b"], ["ab"]))


class Links(Documents):
    def test_a_link_to_nowhere_is_a_mistake(self):
        self.assertMistake("leads nowhere", links.check, self.document("[x](nothing.md)\n"))

    def test_a_link_to_a_heading_that_is_not_there_is_a_mistake(self):
        self.assertMistake("no such heading", links.check, self.document("# One thing\n[x](#two)\n"))

    def test_a_link_to_a_heading_is_none(self):
        self.assertEqual(2, links.check(self.document("# What `it` is, and how\n[x](#what-it-is-and-how) [y](page.md)\n")))

    def test_a_picture_that_is_not_there_or_says_nothing_in_words_is_a_mistake(self):
        self.assertMistake("leads nowhere", links.check, self.document("![The way](nothing.svg)\n"))
        self.assertMistake("without a text alternative", links.check, self.document("![](page.md)\n"))

    def test_a_header_that_is_not_there_is_a_mistake(self):
        self.assertMistake("no orvoutil/Nothing.h", links.check, self.document("Include `orvoutil/Nothing.h`.\n"))

    def test_a_path_of_the_tree_that_is_not_there_is_a_mistake(self):
        self.assertMistake("no scripts/nothing", links.check, self.document("Run `scripts/nothing now`.\n"))


class LogTexts(Documents):
    def test_strings_are_found_and_comments_and_includes_are_not(self):
        every, texts = logtexts.literals_of('#include "a b.h"\n// "c d"\n/* "e f" */ f("g h" " i", u8"ä", "j", \'"\');\n')
        self.assertEqual({"g h i", "ä", "j"}, every)
        self.assertEqual({"g h i", "ä"}, texts)

    def test_what_is_said_to_programmers_is_no_text_of_the_log(self):
        self.assertEqual({"c d"}, logtexts.literals_of('static_assert(f(")", 1), "a b"); assert(x && "e f"); g("c d");')[0])

    def test_what_a_trace_is_called_is_a_text_whatever_it_looks_like(self):
        self.assertEqual({"X"}, logtexts.literals_of('const DestruktorSpur spur(logger_, "X");')[1])

    def test_a_text_in_the_guide_that_no_source_has_is_found(self):
        every, _ = logtexts.source_literals()
        self.assertTrue(logtexts.composed_of("Lese Bibliothek: ", every))
        self.assertFalse(logtexts.composed_of("Liest Bibliothek: ", every))

    def test_a_written_line_is_known_by_its_fixed_parts(self):
        patterns = logtexts.guide_patterns()
        self.assertTrue(logtexts.is_known("[OrvoPluginManager] Lese Bibliothek: /a/b.dylib", patterns))
        self.assertTrue(logtexts.is_known("-> Konstruktor OrvoPlugin()", patterns))
        self.assertFalse(logtexts.is_known("[OrvoPluginManager] Liest Bibliothek: /a/b.dylib", patterns))

    def test_the_lines_of_the_guide_are_those_of_its_tables_in_that_section(self):
        text = f"# Other\n| `no` |\n|---|\n| `no` |\n\n# {logtexts.SECTION}\n| line |\n|---|\n| `a <b> c`, `d` |\n\n# Last\n"
        self.assertEqual([(9, "a <b> c"), (9, "d")], logtexts.guide_lines(self.document(text)))


class Diagrams(unittest.TestCase):
    def refused(self, why, text):
        with self.assertRaises(Mistake) as caught:
            mermaid.check(text, "here")
        self.assertIn(why, str(caught.exception))

    def test_mistakes_are_found(self):
        self.refused("not a kind of diagram", "pie\n a: 1\n b: 2\n")
        self.refused("used and not declared: B", "sequenceDiagram\nparticipant A as a\nA->>B: x\n")
        self.refused("declared and not used: B", "sequenceDiagram\nparticipant A\nparticipant B\nA->>A: x\n")
        self.refused("declared twice", "sequenceDiagram\nparticipant A\nparticipant A\nA->>A: x\n")
        self.refused("without an end", "sequenceDiagram\nparticipant A\nloop x\nA->>A: x\n")
        self.refused("an end too many", "sequenceDiagram\nparticipant A\nA->>A: x\nend\n")
        self.refused("not a line of a sequence", "sequenceDiagram\nparticipant A\nA=>A: x\n")
        self.refused("nichtDa", "sequenceDiagram\nparticipant A\nA->>A: nichtDa()\n")
        self.refused("used and not declared: b", 'flowchart TD\na["x"] --> b\na --> a\n')
        self.refused("not a line of a flowchart", 'flowchart TD\na["x"] -> a\na --> a\n')

    def test_a_good_diagram_passes(self):
        mermaid.check("sequenceDiagram\nparticipant M as OrvoPluginManager\nloop x\nM->>M: ladePlugin()\nend\n", "here")


class Glossary(Documents):
    HEAD = "| term | meaning | type | not to be confused with |\n|---|---|---|---|\n"

    def test_a_term_that_no_name_has_is_a_mistake(self):
        self.assertMistake("no name in the sources has Kaese", glossary.check,
                           self.document(self.HEAD + "| Käse | cheese | | |\n"), {"Quark"})

    def test_a_type_that_is_not_there_is_a_mistake(self):
        self.assertMistake("KaeseSorte is not in", glossary.check,
                           self.document(self.HEAD + "| Käse | cheese | `KaeseSorte` | |\n"), {"Kaese"})

    def test_terms_out_of_order_are_a_mistake(self):
        self.assertMistake("not in order", glossary.check,
                           self.document(self.HEAD + "| B | b | | |\n| A | a | | |\n"), {"A", "B"})


class PredefinedValues(Documents):
    def test_a_value_that_the_page_has_otherwise_or_not_at_all_is_a_mistake(self):
        page = predefined.PAGE.read_text(encoding="utf-8")
        for there, instead in (("`UFA_12` | `12`", "`UFA_12` | `13`"), ("| `T` |", "| `D` |"),
                               ("41 to 44 | quarter", "41 to 45 | quarter"), ("| 3 | `QUARTAL`", "| 7 | `QUARTAL`"),
                               ("| 11 | `TalvorKMV` |\n", "")):
            self.assertIn(there, page)
            self.assertMistake("the sources say", predefined.check, self.document(page.replace(there, instead)))


class Translations(Documents):
    ORIGINAL = "# One\n```sh\nls  # here\n```\n| `a <x>` | b |\n|---|---|\n| `c` | d |\n"

    def compare(self, there, instead):
        self.assertIn(there, self.ORIGINAL)
        translations.check(self.document(self.ORIGINAL.replace(there, instead)), self.document(self.ORIGINAL))

    def test_what_is_missing_or_other_is_a_mistake(self):
        for there, instead, what in (("# One", "## Eins", "heading"), ("ls", "ls -l", "code block"),
                                     ("`c`", "`d`", "row"), ("| `c` | d |\n", "", "row")):
            self.assertMistake(what, self.compare, there, instead)

    def test_words_comments_and_the_names_of_what_varies_may_differ(self):
        for there, instead in (("One", "Eins"), ("# here", "# hier"), ("| d |", "| e |"), ("<x>", "<y>")):
            self.compare(there, instead)


if __name__ == "__main__":
    unittest.main()
