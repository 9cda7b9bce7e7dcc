"""Rules of the tree that no compiler checks. Prints every breach and fails when there is one."""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
SUBSYSTEMS = {"session", "common", "filters", "forms", "registry", "import", "business"}

# What the files of a room may include, by the first folder of the include.
ALLOWED = {
    "src/data": {"data"},
    "src/rpc": {"rpc", "data"},
    "src/platform": {"platform", "data"},
    "src/widgets": {"widgets", "data"},
    "src/report": {"report", "data"},
    "server": {"server", "data", "rpc"},
}
RULES_MAY_INCLUDE = SUBSYSTEMS | {"data", "rpc", "platform"}
WINDOWS_MAY_INCLUDE = RULES_MAY_INCLUDE | {"widgets", "report"}

WINDOW_HEADER = re.compile(
    r"Qt(Widgets|Gui|PrintSupport)/|Q(Widget|(Gui)?Application|Dialog|MessageBox|FileDialog|Action|Icon|Pixmap|Image|"
    r"Color|Font|Painter|Palette|Cursor|Clipboard|Menu|MenuBar|MainWindow|MdiArea|Label|LineEdit|ComboBox|PushButton|"
    r"TableView|TreeView|KeyEvent|MouseEvent|DesktopServices|Printer)$")

LONGEST_FILE = 500
LONG_FILE_REASON = re.compile(r"^// Long file: \S.*$", re.M)

MESSAGE = re.compile(r"\b(_(?:err|inf|que|c_query)_\w+)\b")
MESSAGE_DEFINITION = re.compile(
    r"^(?:inline |extern |static )*(?:const |constexpr )+[\w:]+ (_(?:err|inf|que|c_query)_\w+)(?:\[\])?\s*[={(]([^;]*);",
    re.M)
CYRILLIC = re.compile("[А-Яа-я]")

# Texts of windows that do not exist yet. One that is used must leave this list.
NOT_USED_YET = set()

breaches = []


def breach(path, text):
    breaches.append(f"{path.relative_to(ROOT)}: {text}")


def sources(*folders):
    for folder in folders:
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix in (".h", ".cpp") and path.is_file():
                yield path


def room_rules(path):
    """The folders that the file may include, and whether it must do without windows."""
    relative = path.relative_to(ROOT)
    for room, allowed in ALLOWED.items():
        if relative.is_relative_to(room):
            return allowed, room != "src/widgets" and room != "src/report"
    if relative.parts[0] == "src" and relative.parts[1] in SUBSYSTEMS:
        in_windows = "windows" in relative.parts
        return (WINDOWS_MAY_INCLUDE if in_windows else RULES_MAY_INCLUDE), not in_windows
    return None, False


def check_includes(path, text):
    allowed, windowless = room_rules(path)
    for included in re.findall(r'^#include "([^"]+)"', text, re.M):
        folder = included.split("/")[0]
        if allowed is not None and "/" in included and folder not in allowed:
            breach(path, f'may not include "{included}"')
        if windowless and "/windows/" in included:
            breach(path, f'works without windows, includes "{included}"')
    if windowless:
        for included in re.findall(r"^#include <([^>]+)>", text, re.M):
            if WINDOW_HEADER.match(included):
                breach(path, f"works without windows, includes <{included}>")


def check_layout(path, text):
    lines = text.split("\n")
    if len(lines) - 1 > LONGEST_FILE and not LONG_FILE_REASON.search(text):
        breach(path, f"{len(lines) - 1} lines; split it, or say why not in a line \"// Long file: reason\"")
    if path.suffix == ".h":
        if "//" not in text:
            breach(path, "a header says what it is for")
        if "#pragma once" not in text:
            breach(path, "no #pragma once")
    if path.is_relative_to(ROOT / "src") and re.search(r"^using namespace", text, re.M):
        breach(path, "using namespace at file scope meets other files in a unity batch")


def check_messages(texts):
    defined = {}
    uses = {}
    for path, text in texts.items():
        for name, value in MESSAGE_DEFINITION.findall(text):
            if name in defined:
                breach(path, f"{name} is defined in {defined[name].relative_to(ROOT)} too")
            defined[name] = path
            if not name.startswith("_c_query_") and not CYRILLIC.search(value):
                breach(path, f"{name} is not Bulgarian")
        for name in MESSAGE.findall(text):
            uses[name] = uses.get(name, 0) + 1
    for name, path in defined.items():
        if (uses[name] < 2) != (name in NOT_USED_YET):
            breach(path, f"{name} is used nowhere" if uses[name] < 2 else f"{name} is in use: strike it from the list")
    for name in uses.keys() - defined.keys():
        breach(ROOT, f"{name} is used but defined nowhere")
    return len(defined)


def main():
    texts = {path: path.read_text(encoding="utf-8") for path in sources("src", "server", "client", "modules")}
    for path, text in texts.items():
        check_includes(path, text)
        check_layout(path, text)
    for path in sources("tests", "bench", "fuzz"):
        check_layout(path, path.read_text(encoding="utf-8"))
    messages = check_messages(texts)
    print("\n".join(breaches))
    print(f"{len(texts)} files, {messages} messages, {len(breaches)} breaches")
    # Looking at nothing is no success.
    return 1 if breaches or len(texts) < 20 or messages < 10 else 0


sys.exit(main())
