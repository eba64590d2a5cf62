"""The shield: its header, its version script and the forms of the exports."""
import re

import generate_interface
import manual
from signature_table import ROOT, exports, folders

from hosts import table

HEADER_TOP = """\
#ifndef ORVANTH_SHIELD_H
#define ORVANTH_SHIELD_H

/**
 * @file
 * What a host binds: the exports in forms that no exception leaves.
 *
 * `Safe<Export>` has the export's own signature. Where the export throws it returns a quiet NaN, or a negative status,
 * and sets errno to 33 or 34; out-pointers to results get a NaN. What any call reported, by an exception, by errno, by
 * a reserved value or by a status, LastStatus and LastErrorText tell for the calling thread.
 *
 * `Each<Export>` is the export over arrays. pointers[i] is argument i of element 0, in the export's order, the result
 * behind the arguments; steps[i] is the distance in bytes between its elements, 0 repeats one value. dimensions[0] is
 * the number of elements. Reals are doubles, integers and TailFlags are int64_t and are checked into range: a TailFlag
 * is -128 to 255. Where an argument is an array of doubles, dimensions[1] is its length and the last of steps the
 * distance between the doubles inside it. An element that fails gets a NaN where the export throws, otherwise
 * the value of the export, and the loop goes on. `report` may be null.
 *
 * `SafeRefined...` and `EachRefined...` are forms of functions that the shield alone has. Each has the arguments of the
 * export in its name and computes the same quantity more accurately.
 *
 * Exports that use working storage of the process take one lock inside the shield. A handle of the shield serves one
 * call at a time: a second one meanwhile is refused with the status NotReentrant, a handle that was deleted or never
 * made with the status Handle. Handles of the shield and of the core library are different things. Minimisations with
 * different handles may run at the same time. What the core library prints on standard output about arguments of the
 * random exports is told as status and text alone.
 */

#include "orvanth/types.h"

#if defined(_WIN32)
#if defined(ORVANTH_BUILDING_SHIELD)
#define ORVANTH_SHIELD_API(result) ORVANTH_EXTERN_C result __cdecl
#else
#define ORVANTH_SHIELD_API(result) ORVANTH_EXTERN_C __declspec(dllimport) result __cdecl
#endif
#else
#define ORVANTH_SHIELD_API(result) ORVANTH_EXTERN_C __attribute__((visibility("default"))) result
#endif

#define ORVANTH_TEXT_LENGTH 384

/** An integer result where there was no memory. */
#define ORVANTH_NO_MEMORY (-1010)
/** An integer result where argument i, from 1, was refused: ORVANTH_REFUSED - i. */
#define ORVANTH_REFUSED (-2000)

/** What a call of an array form reported. */
typedef struct EachReport {
    intptr_t failures; /* how many elements failed */
    intptr_t first;    /* the first of them; -1 if there is none */
    int32_t status;    /* of the first */
    uint32_t kinds;    /* bit s: an element failed with status s */
    char text[ORVANTH_TEXT_LENGTH];
} EachReport;
"""


def wrap(head, pieces, tail, width=118):
    """head(pieces, ...)tail on as many lines as needed."""
    lines, current = [], head
    for i, piece in enumerate(pieces):
        piece += ", " if i + 1 < len(pieces) else tail
        if len(current) + len(piece.rstrip()) > width:
            lines.append(current.rstrip())
            current = " " * len(head)
        current += piece
    return "\n".join(lines + [(current if pieces else head + tail).rstrip()])


EACH_ARGUMENTS = ("char* const* pointers", "const intptr_t* dimensions", "const intptr_t* steps", "EachReport* report")


def declarations(export, tail=";"):
    """(Safe, Each or None)"""
    safe = wrap(f"ORVANTH_SHIELD_API({export.result}) Safe{export.name}(",
                [f"{a.type} {a.name}" for a in export.arguments], ")" + tail)
    each = wrap(f"ORVANTH_SHIELD_API(void) Each{export.name}(", EACH_ARGUMENTS, ")" + tail)
    return safe, each if table.has_array_form(export) else None


def constant(name):
    """NotReentrant: NOT_REENTRANT"""
    return re.sub(r"(?<=[a-z])(?=[A-Z])", "_", name).upper()


def comment(function):
    """The manual entry of a function that no header of the core library has."""
    entry = table.manual_entries().get(function.name)
    lacks = manual.gaps(function, entry) if entry else ["everything"]
    if lacks:
        raise ValueError(f"{table.REFINED_TEXTS}: {function.name} lacks {', '.join(lacks)}")
    return generate_interface.comment(generate_interface.entry_text(function, entry))


def header():
    parts = [f"/* {table.MARK} */", HEADER_TOP, "/** The kinds of failure. */", "enum OrvanthStatus {"]
    parts += [f"    ORVANTH_STATUS_{constant(s.name)} = {s.value}, /* {s.words} */" for s in table.statuses()]
    parts += ["};", ""]
    for own in table.own_functions():
        arguments = [f"{a.type} {a.name}" for a in own.arguments] or ["void"]
        parts += [f"/** {own.sentence} */", wrap(f"ORVANTH_SHIELD_API({own.result}) {own.name}(", arguments, ");")]
    for folder in folders():
        parts += ["", f"/* {folder.replace('_', ' ')} */"]
        for export in exports():
            if export.folder == folder:
                parts += [f"/** {table.brief(export)} */", *filter(None, declarations(export))]
        added = [f for f in table.refined() if f.folder == folder]
        if added:
            parts += ["", generate_interface.comment(table.refined_introduction()).replace("/**", "/*", 1)]
        for function in added:
            parts += [comment(function), *filter(None, declarations(function))]
    return "\n".join(parts + ["", "#endif"]) + "\n"


def string(text):
    return '"' + text.replace('"', '\\"') + '"'


def facts(export):
    """What the shield knows of an export; what is left out has its default."""
    def bits(wanted):
        return sum(1 << i for i, a in enumerate(export.arguments) if wanted(a))

    cells = [f".name = {string(export.name)}",
             ".arguments = {" + ", ".join(string(a.name) for a in export.arguments) + "}"]
    if "Silent" in export.failures:
        cells.append(".isSilent = true")
    if table.uses_workspace(export):
        cells.append(".usesWorkspace = true")
    if table.reserved(export):
        value, words = table.reserved(export)
        value = "std::numeric_limits<double>::quiet_NaN()" if value == "nan" else value
        cells += [".hasReservedValue = true", f".reserved = {value}", f".reservedWords = {string(words)}"]
    if table.info(export):
        routine, names_, positive = table.info(export)
        cells += [f".routine = {string(routine)}", f".routineArguments = {string(names_)}"]
        cells += [f".positiveInfo = {string(positive)}"] if positive else []
    for field, value in (("nullable", bits(lambda a: a.name in table.nullable(export))),
                         ("tailFlags", bits(lambda a: a.type == "TailFlag"))):
        cells += [f".{field} = {value}"] if value else []
    return wrap(f"constexpr Facts k{export.name}{{", cells, "};")


def forms(folder):
    """The source file with the forms of a folder's exports."""
    wanted = [e for e in table.functions() if e.folder == folder and not table.by_hand(e)]
    if not wanted:
        return None
    includes = ['#include "shield/each.hpp"']
    includes += ['#include "shield/refined.hpp"'] if any(f.folder == folder for f in table.refined()) else []
    lines = [f"// {table.MARK}", "// clang-format off", *includes, "", "namespace {", "",
             "using namespace orvanth::shield;", ""]
    lines += [facts(e) for e in wanted]
    lines += ["", "}  // namespace", ""]
    for e in wanted:
        safe, each = declarations(e, " {")
        lines += [safe, f"    return Safe<&{e.name}, k{e.name}>({', '.join(a.name for a in e.arguments)});", "}"]
        if each:
            lines += [each, f"    Each<&{e.name}, k{e.name}>(pointers, dimensions, steps, report);", "}"]
    return "\n".join(lines) + "\n"


def names():
    """Every function that the shield exports."""
    found = [own.name for own in table.own_functions()]
    for e in table.functions():
        found += ["Safe" + e.name] + (["Each" + e.name] if table.has_array_form(e) else [])
    return found


def version_script():
    return "{\n    global:\n" + "".join(f"        {n};\n" for n in names()) + "    local:\n        *;\n};\n"


def each_forms():
    return f"// {table.MARK}\n" + "".join(f"EACH({e.name})\n" for e in exports() if table.has_array_form(e))


def files():
    made = {ROOT / "include" / "orvanth" / "shield.h": header()}
    for folder in folders():
        text = forms(folder)
        if text:
            made[ROOT / "src" / "shield" / "forms" / f"{folder}.cpp"] = text
    made[ROOT / "src" / "shield" / "shield.map"] = version_script()
    made[ROOT / "src" / "shield" / "each_forms.inc"] = each_forms()
    return made
