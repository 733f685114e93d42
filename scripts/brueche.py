"""Single breaks of C++ sources, by rule: finds them, and writes a source in which a number switches each on."""

import bisect
import collections
import dataclasses
import re

from clang import cindex

K = cindex.CursorKind
T = cindex.TypeKind

GEGENTEIL = {"<": ("<=", ">"), "<=": ("<", ">="), ">": (">=", "<"), ">=": (">", "<="), "==": ("!=",), "!=": ("==",),
             "&&": ("||",), "||": ("&&",), "+": ("-",), "-": ("+",), "+=": ("-=",), "-=": ("+=",)}
ZAHLEN = {T.CHAR_S, T.SCHAR, T.UCHAR, T.CHAR_U, T.SHORT, T.USHORT, T.INT, T.UINT, T.LONG, T.ULONG, T.LONGLONG,
          T.ULONGLONG, T.BOOL, T.FLOAT, T.DOUBLE}
FUNKTIONEN = {K.FUNCTION_DECL, K.CXX_METHOD, K.CONSTRUCTOR, K.DESTRUCTOR, K.CONVERSION_FUNCTION, K.FUNCTION_TEMPLATE}
SCHALTER = "orvo_bruch(@)"


@dataclasses.dataclass
class Bruch:
    """The text from `ab` to `bis` becomes `neu`. The insertions `schalter` switch it."""
    datei: str
    regel: str
    ab: int
    bis: int
    neu: str
    schalter: list
    konstant: bool  # may be evaluated by the compiler only
    variante: tuple = None  # a constant of which there is one more for each break: its place, the end of its name
    nummer: int = 0
    zeile: int = 0
    letzte_zeile: int = 0
    alt: str = ""  # the lines before and after
    geaendert: str = ""
    folge: int = 0  # among the breaks of this rule in lines of this text

    def ist_geschaltet(self):
        return bool(self.schalter or self.variante)

    def schluessel(self):
        """Says which break it is, whatever changes elsewhere in the file."""
        return f"{self.datei} | {self.regel} | {self.folge}", f"  - {self.alt}", f"  + {self.geaendert}"


class Finder:
    def __init__(self, datei, text, einheit):
        self.datei, self.text = datei, text
        self.brueche, self.gesehen = [], set()
        self.zeilen = [0] + [i + 1 for i, c in enumerate(text) if c == "\n"]
        eigene = [c for c in einheit.cursor.get_children() if cindex.conf.lib.clang_Location_isFromMainFile(c.location)]
        self.makros = [(c.extent.start.offset, c.extent.end.offset) for c in eigene if c.kind == K.MACRO_INSTANTIATION]
        self.makroanfaenge = {ab for ab, _ in self.makros}
        for c in eigene:
            if not c.kind.is_preprocessing():
                self.gehe(c, Lage())
        self.nummeriere()

    # ---- places

    def ausdehnung(self, c):
        """Offsets of a cursor; None where a macro begins or ends inside of it, or it has no text of its own."""
        ab, bis = c.extent.start.offset, c.extent.end.offset
        if ab >= bis or not c.extent.start.file or bis > len(self.text):
            return None
        for m_ab, m_bis in self.makros:
            if m_ab <= ab < m_bis and not (ab == m_ab and bis >= m_bis):
                return None
            if m_ab < bis < m_bis:
                return None
        return ab, bis

    def zeile(self, stelle):
        return bisect.bisect_right(self.zeilen, stelle)

    def quelltext(self, c):
        return self.text[c.extent.start.offset:c.extent.end.offset]

    def bis_semikolon(self, bis):
        treffer = re.compile(r"\s*;").match(self.text, bis)
        return treffer and treffer.end()

    # ---- breaks

    def merke(self, regel, ab, bis, neu, schalter, lage):
        if (ab, bis, neu) in self.gesehen or self.text[ab:bis] == neu:
            return
        self.gesehen.add((ab, bis, neu))
        variante = None if lage.nur_einzeln else lage.variante
        if lage.nur_einzeln or variante:
            schalter = []
        self.brueche.append(Bruch(self.datei, regel, ab, bis, neu, schalter, lage.konstant, variante))

    def ausdruck(self, regel, c, neu, lage, als_bool=False):
        stelle = self.ausdehnung(c)
        if not stelle:
            return
        vor = f"({SCHALTER} ? ({neu}) : " + ("static_cast<bool>(" if als_bool else "")
        self.merke(regel, *stelle, neu, [(*stelle, vor, "))" if als_bool else ")")], lage)

    def anweisung(self, regel, c, neu, vor, lage):
        stelle = self.ausdehnung(c)
        bis = stelle and self.bis_semikolon(stelle[1])
        if bis:
            self.merke(regel, stelle[0], bis, neu, [(stelle[0], bis, "{ " + vor, " }")], lage)

    def bedingung(self, c, lage):
        """Of if, while and ?:"""
        op, _ = self.operator(c)
        if op in ("==", "!=") or (c.kind == K.UNARY_OPERATOR and self.quelltext(c).startswith("!")):
            return  # broken the same way by itself
        self.ausdruck("condition negated", c, f"!({self.quelltext(c)})", lage, als_bool=True)

    def operator(self, c):
        """The operator between the two operands that an expression begins and ends with."""
        if c.kind not in (K.BINARY_OPERATOR, K.CALL_EXPR, K.UNEXPOSED_EXPR, K.COMPOUND_ASSIGNMENT_OPERATOR):
            return None, None
        kinder = list(c.get_children())
        links = [k for k in kinder if k.extent.start.offset == c.extent.start.offset]
        rechts = [k for k in kinder if k.extent.end.offset == c.extent.end.offset]
        if len(kinder) < 2 or not links or not rechts:
            return None, None
        text = self.text[links[0].extent.end.offset:rechts[-1].extent.start.offset]
        text = re.sub(r"//[^\n]*", "", text).strip()
        return (text, (links[0], rechts[-1])) if text in GEGENTEIL else (None, None)

    def zweistellig(self, c, lage):
        op, operanden = self.operator(c)
        if not op:
            return
        links, rechts = operanden
        typen = [k.type.get_canonical().kind for k in operanden]
        if op[0] in "+-" and not (typen[1] in ZAHLEN and typen[0] in ZAHLEN | {T.POINTER}):
            return
        regel = "and/or" if op in ("&&", "||") else "plus/minus" if op[0] in "+-" else "comparison"
        for neu in GEGENTEIL[op]:
            self.ausdruck(regel, c, f"{self.quelltext(links)} {neu} {self.quelltext(rechts)}", lage)
        if "nullptr" in (self.quelltext(links), self.quelltext(rechts)):
            self.nullpruefung(c, lage)

    def nullpruefung(self, c, lage):
        if re.match(r"\s*=[^=]", self.text[c.extent.end.offset:]):
            return  # a variable that the condition declares
        for neu in ("true", "false"):
            self.ausdruck("null check", c, neu, lage, als_bool=True)

    def einstellig(self, c, lage):
        text = self.quelltext(c)
        for op, anderer in (("++", "--"), ("--", "++")):
            if text.startswith(op):
                self.ausdruck("increment", c, anderer + text[2:], lage)
            elif text.endswith(op):
                self.ausdruck("increment", c, text[:-2] + anderer, lage)
        if text.startswith("!") and text[1] != "=":
            self.ausdruck("condition negated", c, f"static_cast<bool>({text[1:]})", lage)

    def literal(self, c, lage):
        text, stelle = self.quelltext(c), self.ausdehnung(c)
        if not stelle or stelle[0] in self.makroanfaenge:
            return
        davor, danach = self.text[:stelle[0]].rstrip()[-1:], self.text[stelle[1]:].lstrip()[:1]
        if davor + danach in ("<>", ",>", "<,") or (davor == "[" and lage.in_deklaration):
            lage = dataclasses.replace(lage, nur_einzeln=True)
        if c.kind == K.CXX_BOOL_LITERAL_EXPR and text in ("true", "false"):
            self.ausdruck("boolean", c, "false" if text == "true" else "true", lage)
        elif c.kind == K.INTEGER_LITERAL and text[0].isdigit() and c.type.kind in ZAHLEN:
            self.ausdruck("constant", c, um(text, 1), lage)
            if davor != "=" or self.text[:stelle[0]].rstrip()[-2:-1] not in "=!":  # equal or not: one of them is enough
                self.ausdruck("constant", c, um(text, -1), lage)
        elif c.kind == K.CHARACTER_LITERAL and text.startswith("'"):
            self.ausdruck("constant", c, f"static_cast<char>({text} + 1)", lage)
        elif c.kind == K.STRING_LITERAL:
            self.ausdruck("text", c, anderer_text(text), lage)

    def tausch(self, c, lage):
        """Two neighbouring arguments of one type."""
        if c.spelling.startswith("operator") and c.spelling != "operator()":
            return
        argumente = [(a, self.ausdehnung(a)) for a in c.get_arguments() if a]
        for (a, wo_a), (b, wo_b) in zip(argumente, argumente[1:]):
            if not wo_a or not wo_b or self.text[wo_a[1]:wo_b[0]].strip() != ",":
                continue
            typen = {x.type.get_canonical().spelling.replace("const ", "") for x in (a, b)}
            text_a, text_b = self.quelltext(a), self.quelltext(b)
            if len(typen) > 1 or re.search("dependent|void \\*", str(typen)):
                continue
            if text_a == text_b or "{" in (text_a[0], text_b[0]):
                continue
            neu = text_b + self.text[wo_a[1]:wo_b[0]] + text_a
            schalter = [(*wo_a, f"({SCHALTER} ? ({text_b}) : ", ")"), (*wo_b, f"({SCHALTER} ? ({text_a}) : ", ")")]
            self.merke("arguments swapped", wo_a[0], wo_b[1], neu, schalter, lage)

    def rueckgabe(self, c, lage):
        wert = next(c.get_children(), None)
        if wert is None:
            if not lage.letzte:
                self.anweisung("return removed", c, ";", f"if (!{SCHALTER}) ", lage)
            return
        text = self.quelltext(wert)
        typ = (lage.ergebnis or wert.type).get_canonical()
        if typ.kind == T.BOOL and wert.kind != K.CXX_BOOL_LITERAL_EXPR:
            neue = ("false", "true")
        elif typ.kind in (T.BOOL, T.LVALUEREFERENCE, T.RVALUEREFERENCE) or text in ("nullptr", "0", "{}", '""') \
                or (lage.in_lambda and typ.kind not in ZAHLEN) or ist_erster(wert):
            return
        else:
            neue = ("0",) if typ.kind in ZAHLEN else ("{}",)
        for neu in neue:
            self.anweisung("return value", c, f"return {neu};", f"if ({SCHALTER}) return {neu}; ", lage)

    def deklaration(self, c, lage):
        """Of an object that nothing names: a guard."""
        kinder = list(c.get_children())
        if len(kinder) != 1 or kinder[0].kind != K.VAR_DECL or not lage.funktion:
            return
        name = kinder[0].spelling
        if name and len(re.findall(rf"\b{name}\b", self.quelltext(lage.funktion))) == 1 and self.ausdehnung(c):
            self.merke("statement removed", *self.ausdehnung(c), ";", [], lage)

    # ---- the walk

    def gehe(self, c, lage):
        if c.kind == K.STATIC_ASSERT or c.kind.is_attribute():
            return
        lage = lage.fuer(c, self)
        if c.kind in (K.BREAK_STMT, K.CONTINUE_STMT):
            self.anweisung("break/continue removed", c, ";", f"if (!{SCHALTER}) ", lage)
        elif c.kind == K.RETURN_STMT:
            self.rueckgabe(c, lage)
        elif c.kind == K.DECL_STMT:
            self.deklaration(c, lage)
        elif c.kind.is_expression():
            self.pruefe_ausdruck(c, lage)
        kinder = list(c.get_children())
        for i, kind in enumerate(kinder):
            if self.ist_bedingung(c, kinder, i):
                self.bedingung(kind, lage)
            if kind.kind.is_expression() and self.ist_anweisung(c, kinder, i):
                stelle = self.ausdehnung(kind)
                if stelle and not re.match(r"static_cast<void>|\(void\)", self.quelltext(kind)):
                    schalter = (*stelle, f"({SCHALTER} ? void() : void(", "))")
                    self.merke("statement removed", *stelle, "", [schalter], lage)
            self.gehe(kind, dataclasses.replace(lage, letzte=i + 1 == len(kinder) and lage.letzte,
                                                nur_einzeln=lage.nur_einzeln or (c.kind == K.CASE_STMT and i == 0)))

    def pruefe_ausdruck(self, c, lage):
        self.zweistellig(c, lage)
        if c.kind == K.UNARY_OPERATOR:
            self.einstellig(c, lage)
        elif c.kind in (K.CXX_BOOL_LITERAL_EXPR, K.INTEGER_LITERAL, K.CHARACTER_LITERAL, K.STRING_LITERAL):
            self.literal(c, lage)
        elif c.kind == K.CALL_EXPR:
            self.tausch(c, lage)
        if c.kind == K.UNEXPOSED_EXPR and c.type.kind == T.BOOL:
            inneres = next(c.get_children(), None)
            if inneres and (inneres.type.get_canonical().kind == T.POINTER or inneres.spelling == "operator bool"):
                self.nullpruefung(c, lage)

    def ist_bedingung(self, c, kinder, i):
        if any(k.kind == K.VAR_DECL for k in kinder) or not kinder[i].kind.is_expression():
            return False
        if c.kind == K.IF_STMT:
            return i == erster_ausdruck(kinder) and not re.match(r"if\s+constexpr", self.quelltext(c))
        if c.kind in (K.WHILE_STMT, K.CONDITIONAL_OPERATOR):
            return i == 0
        return c.kind == K.DO_STMT and i == len(kinder) - 1

    def ist_anweisung(self, c, kinder, i):
        if c.kind == K.COMPOUND_STMT:
            return self.text[c.extent.start.offset] == "{"  # not of a defaulted function
        if c.kind == K.IF_STMT:
            return i > erster_ausdruck(kinder)
        if c.kind in (K.FOR_STMT, K.WHILE_STMT, K.CXX_FOR_RANGE_STMT, K.CASE_STMT, K.DEFAULT_STMT):
            return i == len(kinder) - 1 and self.bis_semikolon(kinder[i].extent.end.offset) is not None
        return False

    def nummeriere(self):
        zaehler = collections.Counter()
        for b in self.brueche:
            b.zeile, b.letzte_zeile = self.zeile(b.ab), self.zeile(b.bis - 1)
            ab, ende = self.zeilen[b.zeile - 1], self.text.find("\n", b.bis)
            b.alt = lesbar(self.text[ab:ende])
            b.geaendert = lesbar(self.text[ab:b.ab] + b.neu + self.text[b.bis:ende])
            zaehler[b.alt, b.regel] += 1
            b.folge = zaehler[b.alt, b.regel]


@dataclasses.dataclass(frozen=True)
class Lage:
    """Where a cursor stands."""
    funktion: object = None
    ergebnis: object = None
    in_lambda: bool = False
    in_deklaration: bool = False
    konstant: bool = False
    nur_einzeln: bool = False
    variante: tuple = None
    letzte: bool = True

    def fuer(self, c, finder):
        if c.kind in FUNKTIONEN:
            kopf = finder.quelltext(c).split("{")[0]
            return dataclasses.replace(self, funktion=c, ergebnis=c.result_type, in_deklaration=False, letzte=True,
                                       konstant=bool(re.search(r"\bconst(expr|eval)\b", kopf)))
        if c.kind == K.LAMBDA_EXPR:
            return dataclasses.replace(self, ergebnis=None, in_lambda=True, in_deklaration=False, letzte=True)
        if c.kind == K.ENUM_CONSTANT_DECL:
            return dataclasses.replace(self, konstant=True, nur_einzeln=True)
        if c.kind in (K.VAR_DECL, K.FIELD_DECL):
            kopf = re.split(r"[={(]", finder.quelltext(c))[0]
            typ = c.type.get_canonical()
            fest = not self.funktion or "static" in kopf or (typ.is_const_qualified() and typ.kind in ZAHLEN)
            if "constexpr" in kopf or typ.kind in (T.CONSTANTARRAY, T.INCOMPLETEARRAY):
                return self.in_konstante(c, finder)
            return dataclasses.replace(self, in_deklaration=True, konstant=self.konstant or fest)
        if c.kind.is_statement() and c.kind not in (K.COMPOUND_STMT, K.RETURN_STMT):
            return dataclasses.replace(self, letzte=False)
        return self

    def in_konstante(self, c, finder):
        """Several in one declaration, and members of classes, have no variants."""
        ab, bis = c.extent.start.offset, finder.bis_semikolon(c.extent.end.offset)
        allein = bis and finder.text[:ab].rstrip()[-1:] != "," and "const" in finder.text[ab:c.location.offset]
        in_klasse = c.kind != K.VAR_DECL or c.semantic_parent.kind in (K.CLASS_DECL, K.STRUCT_DECL, K.CLASS_TEMPLATE)
        lage = dataclasses.replace(self, in_deklaration=True, konstant=True)
        if not allein or in_klasse or self.nur_einzeln or not finder.ausdehnung(c):
            return dataclasses.replace(lage, nur_einzeln=True)
        return dataclasses.replace(lage, variante=(ab, bis, c.location.offset + len(c.spelling)))


def erster_ausdruck(kinder):
    """The condition of an if: before it may stand declarations."""
    return next(n for n, k in enumerate(kinder) if k.kind.is_expression())


def einzeilig(text):
    """So that the lines after it keep their numbers."""
    return re.sub(r"(?m)//.*$", "", text).replace("\n", " ") if "\n" in text else text


def mit_varianten(brueche, text):
    """The insertions that declare a constant once more for each of its breaks, and choose among them."""
    ab, bis, name_bis = brueche[0].variante
    name = re.search(r"\w+$", text[:name_bis])[0]
    mehr, wahl = "", ""
    for b in brueche:
        deklaration = f"{text[ab:name_bis]}_{b.nummer}{text[name_bis:b.ab]}{b.neu}{text[b.bis:bis]} "
        mehr += einzeilig(deklaration)
        wahl += f"orvo_bruch({b.nummer}) ? {name}_{b.nummer} : "
    art = "static " if text.rfind("\n", 0, ab) == ab - 1 else ""
    auswahl = f" {art}const auto& {name} = {wahl}{name}_ohne;"
    return [(ab, 1, -bis, -1, mehr), (name_bis, 1, 0, 0, "_ohne"), (bis, 0, 0, 0, auswahl)]


def lesbar(text):
    """On one line. Sources are UTF-8, and read byte by byte so that places are those of the compiler."""
    return " ".join(text.encode("latin-1").decode("utf-8", "replace").split())


def ist_erster(wert):
    """An enumerator of value 0."""
    ziel = wert.referenced
    return ziel is not None and ziel.kind == K.ENUM_CONSTANT_DECL and ziel.enum_value == 0


def um(zahl, unterschied):
    if re.fullmatch("[1-9][0-9]*|0", zahl):
        return str(int(zahl) + unterschied)
    return f"({zahl} {'+' if unterschied > 0 else '-'} 1)"


def anderer_text(text):
    """With another last letter; what is empty gets one."""
    ende = text.rindex('"')
    letzter = text[ende - 1]
    if not letzter.isascii() or letzter == '"' or re.search(r"\\(.|[0-7x][0-9a-fA-F]*)$", text[:ende]):
        return text[:ende] + "x" + text[ende:]
    return text[:ende - 1] + ("y" if letzter == "x" else "x") + text[ende:]


def finde(pfad, datei, argumente):
    with open(pfad, encoding="latin-1", newline="") as f:
        text = f.read()
    einheit = cindex.Index.create().parse(pfad, ["-x", "c++", *argumente], options=1)
    fehler = [d for d in einheit.diagnostics if d.severity >= cindex.Diagnostic.Error]
    if fehler:
        raise SystemExit(f"{datei}: {fehler[0]}")
    return text, Finder(datei, text, einheit).brueche


def geschaltet(text, brueche, kopf):
    """The source with a switch for each break."""
    einfuegungen = []
    for folge, b in enumerate(brueche):
        for ab, bis, vor, nach in b.schalter:
            einfuegungen.append((ab, 1, -bis, folge, einzeilig(vor.replace("(@)", f"({b.nummer})"))))
            einfuegungen.append((bis, 0, -ab, -folge, nach))
    for variante in {b.variante for b in brueche if b.variante}:
        einfuegungen += mit_varianten([b for b in brueche if b.variante == variante], text)
    teile, stelle = [kopf], 0
    for wo, _, _, _, einfuegung in sorted(einfuegungen):
        teile += [text[stelle:wo], einfuegung]
        stelle = wo
    return "".join(teile) + text[stelle:]
