"""Makes single breaks in src/, and runs the tests that reach them; scripts/mutants says how."""

import argparse
import collections
import concurrent.futures
import json
import mmap
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

import brueche

WURZEL = pathlib.Path(__file__).resolve().parent.parent
ARBEIT = WURZEL / "build/mutants"
BAUM = ARBEIT / "tree"
BAU = BAUM / "build/dev"
HARMLOSE = WURZEL / "tests/mutants/harmless.txt"
PLATZ = 4000  # numbers for each file: when one changes, the others keep theirs and are not compiled again
GRUPPE = 8  # tests in one process
TESTS = re.compile(r"tests/(orvoutil|orvoelf|orvoplugin|model|faults|versagen|aufwand|kit)/(.*/)?tests_\w+$")
ZU_LANGSAM = "LosesNoMemory"  # under valgrind: each takes as long as hundreds of others
KONSTANTEN = {"Konstanten.h", "ServiceKonstanten.h"}  # values for clients; each test includes them


# ---- the tree

def schreibe(pfad, inhalt):
    """Only what differs, so that nothing is built in vain."""
    if not pfad.exists() or pfad.read_bytes() != inhalt:
        pfad.parent.mkdir(parents=True, exist_ok=True)
        pfad.write_bytes(inhalt)


def schreibe_text(pfad, text):
    schreibe(pfad, text.encode("latin-1"))  # as it was read: any byte


def bereite_baum(dateien):
    """A copy of this tree. The files of which breaks are wanted stay as they were left: with their switches."""
    for datei in subprocess.check_output(["git", "ls-files"], cwd=WURZEL, text=True).splitlines():
        quelle, ziel = WURZEL / datei, BAUM / datei
        if quelle.is_file() and not (datei in dateien and ziel.exists()):
            schreibe(ziel, quelle.read_bytes())
            shutil.copymode(quelle, ziel)
    befehl = ["cmake", "--preset", "dev", "-DORVO_BUILD_TOOL=OFF", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"]
    subprocess.run(befehl, cwd=BAUM, check=True, stdout=subprocess.DEVNULL)


def finde_brueche(dateien):
    """The files' texts, and their breaks, numbered."""
    alle = sorted(str(p.relative_to(WURZEL)) for p in (WURZEL / "src").rglob("*.[ch]*"))
    eintraege = json.loads((BAU / "compile_commands.json").read_text())
    befehle = {os.path.relpath(e["file"], BAUM): e["command"] for e in eintraege}
    texte, gefunden = {}, []
    for datei in dateien:
        bibliothek = datei.split("/")[1]  # a header is read as a source of its library
        befehl = befehle.get(datei) or next(b for d, b in befehle.items() if d.startswith(f"src/{bibliothek}/"))
        argumente = [a for a in shlex.split(befehl) if a.startswith(("-I", "-D", "-std="))]
        texte[datei], neue = brueche.finde(str(WURZEL / datei), datei, argumente)
        for nummer, bruch in enumerate(neue, 1 + alle.index(datei) * PLATZ):
            bruch.nummer = nummer
        gefunden += neue
    return texte, gefunden


def schreibe_quelle(datei, text, gewaehlte):
    """As a system's header, which the compiler warns of nothing in."""
    ziel = BAUM / datei
    if not gewaehlte:
        return schreibe_text(ziel, text)
    kopf = f'#pragma GCC system_header\n#include "{WURZEL}/scripts/orvo_bruch.h"\n#line 1 "{ziel}"\n'
    if ziel.suffix == ".cpp":
        schreibe_text(ziel, f'#include "{ziel.name}.inc"\n')
        ziel = ziel.with_name(ziel.name + ".inc")
    schreibe_text(ziel, brueche.geschaltet(text, gewaehlte, kopf))


class ZeitUm(Exception):
    pass


def ninja(ziele, ende):
    """What it says; nothing, if all could be built."""
    zeit = ["timeout", str(max(1, int(ende - time.monotonic())))]
    befehl = ["ninja", "-C", str(BAU), "-k", "0", f"-j{os.cpu_count()}", *ziele]
    lauf = subprocess.run(zeit + befehl, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if lauf.returncode == 124:
        raise ZeitUm
    return lauf.stdout if lauf.returncode else ""


def testprogramme():
    """Those of the libraries. (The program with threads is compiled with all sources once more.)"""
    ziele = subprocess.check_output(["ninja", "-C", str(BAU), "-t", "targets", "all"], text=True)
    return [z for z in (zeile.split(":")[0] for zeile in ziele.splitlines()) if TESTS.match(z)]


def baue_geschaltet(texte, gefunden, ende):
    """Until it compiles: breaks in lines that the compiler refuses lose their switch, the likely ones first."""
    verdaechtige = ("arguments swapped", "return value", "statement removed")
    while True:
        for datei, text in texte.items():
            schreibe_quelle(datei, text, [b for b in gefunden if b.datei == datei and b.ist_geschaltet()])
        meldungen = ninja(["orvoutil", "orvoplugin"], ende) or ninja(testprogramme(), ende)
        if not meldungen:
            return
        stellen = set(re.findall(rf"^{BAUM}/(src/[^:\n]+):(\d+):(?:\d+:)? error", meldungen, re.M))
        betroffene = [b for b in gefunden if b.ist_geschaltet() and (b.datei, str(b.zeile)) in stellen]
        if not betroffene:  # a constant that is used where only the compiler's are
            betroffene = [b for b in gefunden if b.variante and b.datei in {datei for datei, _ in stellen}]
        if not betroffene:
            sys.exit(meldungen)
        for b in [b for b in betroffene if b.regel in verdaechtige] or betroffene:
            b.schalter, b.variante = [], None


# ---- runs of tests

class Gruppe:
    """Tests of one program that run in one process."""

    def __init__(self, programm, ordner, umgebung, filter_):
        self.programm, self.ordner, self.umgebung, self.filter = programm, ordner, umgebung, filter_
        self.dauer, self.erreicht = 0.0, frozenset()

    def laufe(self, nummer=0, spur="", sekunden=300.0, rechenzeit=300.0):
        """True if all passed. The limit of processor time ends endless loops, whatever else the machine does."""
        with tempfile.TemporaryDirectory(prefix="m", dir="/tmp", ignore_cleanup_errors=True) as ablage:
            os.chmod(ablage, 0o755)  # some tests take another user's rights
            schalter = {"ORVO_BRUCH": str(nummer), "ORVO_BRUCH_SPUR": spur, "TMPDIR": ablage}
            befehl = ["bash", "-c", f'ulimit -c 0 -t {int(rechenzeit)}; exec "$@"', "-", self.programm,
                      "--gtest_filter=" + ":".join(self.filter), *([] if spur else ["--gtest_fail_fast"])]
            prozess = subprocess.Popen(befehl, cwd=self.ordner, env={**os.environ, **self.umgebung, **schalter},
                                       start_new_session=True, stdin=subprocess.DEVNULL,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            try:
                return prozess.wait(sekunden) == 0
            except subprocess.TimeoutExpired:
                return False
            finally:
                beende_gruppe(prozess)

    def miss(self, spur=""):
        anfang = time.monotonic()
        gruen = self.laufe(spur=spur)
        self.dauer = time.monotonic() - anfang
        return gruen

    def bemerkt(self, bruch):
        return not self.laufe(bruch.nummer, sekunden=10 * self.dauer + 10, rechenzeit=2 * self.dauer + 2)

    def ist_langsam(self):
        return self.dauer > 3

    def rang(self, datei):
        """Order in which to run: the tests of the same file, those of the same folder, the quickest."""
        pfad = pathlib.Path(datei.replace("intern/", ""))
        gleiche_datei = any(re.search(rf"(^|/){pfad.stem}", f) for f in self.filter)
        return not gleiche_datei, f"/tests/{pfad.parent.relative_to('src')}/" not in self.programm, self.dauer



def beende_gruppe(prozess):
    """With what it has started."""
    try:
        os.killpg(prozess.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    prozess.wait()


def gruppen():
    eintraege = json.loads(subprocess.check_output(["ctest", "--test-dir", str(BAU), "--show-only=json-v1"]))["tests"]
    filter_ = collections.defaultdict(list)
    for e in eintraege:
        eigenschaften = {p["name"]: p["value"] for p in e["properties"]}
        programm, *argumente = e.get("command", [""])
        tests = [a.partition("=")[2] for a in argumente if a.startswith("--gtest_filter=") and ZU_LANGSAM not in a]
        if tests and "slow" not in eigenschaften.get("LABELS", []) and TESTS.match(os.path.relpath(programm, BAU)):
            umgebung = tuple(eigenschaften.get("ENVIRONMENT", []))
            filter_[programm, eigenschaften["WORKING_DIRECTORY"], umgebung] += tests
    return [Gruppe(programm, ordner, dict(u.split("=", 1) for u in umgebung), tests[i:i + GRUPPE])
            for (programm, ordner, umgebung), tests in filter_.items() for i in range(0, len(tests), GRUPPE)]


def vermesse(gruppe, groesse, ende):
    """The group if it passes quickly, with what it reaches and its time; else each of its tests that passes."""
    if time.monotonic() > ende:
        raise ZeitUm
    with tempfile.NamedTemporaryFile(dir=ARBEIT) as spur:
        spur.truncate(groesse)
        gruen = gruppe.miss(spur.name) or gruppe.miss()  # the trace may be what disturbs it
        with mmap.mmap(spur.fileno(), 0, access=mmap.ACCESS_READ) as bytes_:
            gruppe.erreicht = frozenset(i for i, b in enumerate(bytes_[:]) if b)
    if gruen and (gruppe.dauer < 1 or len(gruppe.filter) == 1):
        return [gruppe]
    if len(gruppe.filter) == 1:
        print(f"Left out, fails without a break: {gruppe.filter[0]}")
        return []
    einzelne = [Gruppe(gruppe.programm, gruppe.ordner, gruppe.umgebung, [f]) for f in gruppe.filter]
    return [g for einzelner in einzelne for g in vermesse(einzelner, groesse, ende)]


# ---- all breaks

class Lauf:
    """Tries breaks until the time is over."""

    def __init__(self, gemessene, bekannte, ende):
        self.bekannte, self.ende = bekannte, ende
        self.ueberlebt = {}  # by number
        self.je_bruch, self.je_datei = collections.defaultdict(list), collections.defaultdict(dict)
        for gruppe in gemessene:
            for nummer in gruppe.erreicht:
                self.je_bruch[nummer].append(gruppe)
                self.je_datei[(nummer - 1) // PLATZ][gruppe] = None

    def versuche(self, bruch, erreichende):
        """Slow tests only where no others are, and none for what is judged harmless."""
        if bruch.schluessel() in self.bekannte:
            erreichende = []
        gewaehlte = [g for g in erreichende if not g.ist_langsam()] or erreichende
        for gruppe in sorted(gewaehlte, key=lambda g: g.rang(bruch.datei)):
            if time.monotonic() > self.ende:
                return
            if gruppe.bemerkt(bruch):
                self.ueberlebt[bruch.nummer] = False
                return
        self.ueberlebt[bruch.nummer] = True

    def geschaltete(self, gewaehlte):
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as faeden:
            list(faeden.map(lambda b: self.versuche(b, self.je_bruch[b.nummer]), gewaehlte))

    def einzelne(self, texte, gewaehlte):
        """Made in the source without switches, one at a time. One that does not compile is no break."""
        for bruch in gewaehlte:
            text = texte[bruch.datei]
            schreibe_text(BAUM / bruch.datei, text[:bruch.ab] + bruch.neu + text[bruch.bis:])
            eigene = ["tests_orvoelf"] if "src/orvoelf/" in bruch.datei else []  # takes in the static library
            if bruch.schluessel() in self.bekannte or not ninja(["orvoutil", "orvoplugin", *eigene], self.ende):
                self.versuche(bruch, list(self.je_datei[(bruch.nummer - 1) // PLATZ]))
            schreibe_text(BAUM / bruch.datei, text)


def aufgeteilt(lauf, gefunden):
    """Breaks with a switch, and those to be made alone: also what no test reaches because the compiler evaluates it."""
    geschaltete = [b for b in gefunden if b.ist_geschaltet() and (lauf.je_bruch[b.nummer] or not b.konstant)]
    return geschaltete, [b for b in gefunden if b not in geschaltete]


# ---- what was asked for, what came out

def geaenderte_zeilen(basis):
    """Of each file of src/, the lines that are not as in that commit."""
    zeilen, datei = collections.defaultdict(set), None
    befehl = ["git", "diff", "-U0", "--no-ext-diff", "--no-color", basis, "--", "src"]
    for zeile in subprocess.check_output(befehl, cwd=WURZEL, text=True, errors="replace").splitlines():
        if zeile.startswith("+++ "):
            datei = zeile[6:]
        elif treffer := re.match(r"@@ -\S+ \+(\d+)(?:,(\d+))? @@", zeile):
            ab = int(treffer[1])
            zeilen[datei].update(range(ab, ab + int(treffer[2] or 1)))
    return {d: z for d, z in zeilen.items() if z and (WURZEL / d).suffix in (".cpp", ".h")}


def basis_des_zweigs():
    """Where this branch left the server's; on the server's, and in a clone without a server, the commit before."""
    def git(*argumente):
        return subprocess.run(["git", *argumente], cwd=WURZEL, capture_output=True, text=True).stdout.strip()

    abzweig = next(filter(None, (git("merge-base", "HEAD", f"origin/{b}") for b in ("HEAD", "main", "master"))), None)
    return abzweig if abzweig and abzweig != git("rev-parse", "HEAD") else git("rev-parse", "--verify", "HEAD~1")


def harmlose():
    """What a person has judged: blocks of rule and place, line before, line after, reason."""
    bloecke = re.split(r"\n\s*\n", HARMLOSE.read_text("utf-8")) if HARMLOSE.exists() else []
    return {tuple(b.strip().splitlines()[:3]) for b in bloecke if not b.startswith("#")}


def berichte(gefunden, lauf, vollstaendig, tabelle):
    """Returns: how many percent were noticed, but for those that are known as harmless."""
    versuchte = [b for b in gefunden if b.nummer in lauf.ueberlebt]
    ueberlebende = [b for b in versuchte if lauf.ueberlebt[b.nummer]]
    neue = [b for b in ueberlebende if b.schluessel() not in lauf.bekannte]
    for b in neue:
        print(f"survived: {b.datei}:{b.zeile}", *b.schluessel(), sep="\n")
        print("  tests that reach it:", sum(len(g.filter) for g in lauf.je_bruch[b.nummer]) or "none, or made alone")
    if vollstaendig:
        dateien = {b.datei for b in versuchte}
        for veraltet in sorted(lauf.bekannte - {b.schluessel() for b in gefunden}):
            if veraltet[0].partition(" | ")[0] in dateien:
                print("Listed as harmless, but no longer there:", *veraltet, sep="\n")
    je_ordner = collections.defaultdict(lambda: [0, 0, 0])
    for b in versuchte:
        je_ordner[os.path.dirname(b.datei)][0 if b not in ueberlebende else 1 if b in neue else 2] += 1
    if tabelle:
        print("| folder | noticed | survived | harmless | noticed, but for the harmless |\n|---|--:|--:|--:|--:|")
    je_ordner["all"] = [sum(spalte) for spalte in zip([0, 0, 0], *je_ordner.values())]
    for ordner, (bemerkte, ueberlebte, harmlos) in je_ordner.items():
        anteil = 100 * bemerkte / (bemerkte + ueberlebte) if bemerkte + ueberlebte else 100
        print(f"| `{ordner}` | {bemerkte:,} | {ueberlebte:,} | {harmlos:,} | {anteil:.1f} % |" if tabelle else
              f"{ordner}: {bemerkte} noticed, {ueberlebte} survived, {harmlos} harmless: {anteil:.1f} %")
    return anteil # of all, which is the last


def auswahl():
    leser = argparse.ArgumentParser(prog="scripts/mutants", description=__doc__)
    leser.add_argument("dateien", nargs="*", metavar="FILE", help="a source or header in src/; without any, all")
    leser.add_argument("--changed", nargs="?", const="", metavar="BASE", help="only lines changed since this commit")
    leser.add_argument("--minutes", type=float, default=600, help="run tests for so long, then stop")
    leser.add_argument("--least", type=float, default=100, metavar="PERCENT", help="fail if fewer were noticed")
    leser.add_argument("--all", action="store_true", help="also the headers of constants, which all tests include")
    leser.add_argument("--table", action="store_true", help="the summary as a table for docs/coverage.md")
    return leser.parse_args()


def main():
    wahl = auswahl()
    zeilen = None
    dateien = [os.path.relpath(os.path.realpath(d), WURZEL) for d in wahl.dateien]
    if wahl.changed is not None:
        basis = wahl.changed or basis_des_zweigs()
        zeilen = geaenderte_zeilen(basis) if basis else {}
        dateien = list(zeilen)
    elif not dateien:
        alle = (WURZEL / "src").rglob("*.[ch]*")
        dateien = [str(p.relative_to(WURZEL)) for p in alle if wahl.all or p.name not in KONSTANTEN]
    bereite_baum(dateien)
    texte, gefunden = finde_brueche(sorted(dateien))
    if zeilen is not None:
        gefunden = [b for b in gefunden if not zeilen[b.datei].isdisjoint(range(b.zeile, b.letzte_zeile + 1))]
    if not gefunden:
        print("Nothing to break.")
        return 0
    bekannte = harmlose()
    baue_geschaltet(texte, gefunden, time.monotonic() + 3600)
    ende = time.monotonic() + 60 * wahl.minutes
    lauf = Lauf([], bekannte, ende)
    try:
        groesse = 1 + max(b.nummer for b in gefunden)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as faeden:
            gemessene = sum(faeden.map(lambda g: vermesse(g, groesse, ende), gruppen()), [])
        lauf = Lauf(gemessene, bekannte, ende)
        geschaltete, einzelne = aufgeteilt(lauf, gefunden)
        lauf.geschaltete(geschaltete)
        lauf.einzelne(texte, einzelne)
    except ZeitUm:
        print(f"Out of time: {len(gefunden) - len(lauf.ueberlebt)} breaks were not tried.")
    anteil = berichte(gefunden, lauf, zeilen is None, wahl.table)
    return 0 if anteil >= wahl.least else 1


if __name__ == "__main__":
    sys.exit(main())
