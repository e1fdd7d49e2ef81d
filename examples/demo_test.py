"""Runs the demo on files that are not right, with and without a terminal, and on files that it saves a copy of:
demo_test.py PROGRAM DATA-FOLDER."""
import os
import pty
import re
import subprocess
import sys
import tempfile

program, data = sys.argv[1:]
failures = []


def expect(name, found, expected):
    if found != expected:
        failures.append(f"{name}\n  expected {expected!r}\n  found    {found!r}")


def run(*arguments):
    done = subprocess.run([program, "--data", data, *arguments], capture_output=True, text=True)
    return done.returncode, done.stdout, done.stderr


def on_terminal(*arguments, **environment):
    """What a terminal as standard error is given."""
    ours, theirs = pty.openpty()
    all_of_it = {k: v for k, v in os.environ.items() if k != "NO_COLOR"} | environment
    done = subprocess.Popen([program, "--data", data, *arguments], stdout=subprocess.DEVNULL, stderr=theirs, env=all_of_it)
    os.close(theirs)
    text = b""
    while True:
        try:
            piece = os.read(ours, 4096)
        except OSError:  # the other end is closed
            break
        if not piece:
            break
        text += piece
    os.close(ours)
    done.wait()
    return text.decode().replace("\r\n", "\n")


def file(name, text):
    with open(name, "w", encoding="utf-8") as out:
        out.write(text)
    return name


def bytes_of(name):
    with open(name, "rb") as text:
        return text.read()


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)

    broken = file("broken.xml", "<app>\n  <server>\n    <port>80</prot>\n  </server>\n</app>\n")
    message = "</port> expected, found </prot> (<port> began at 3:5)"
    line = "    <port>80</prot>"
    plain = f"broken.xml:3:13: error: {message}\n{line}\n            ^\n"
    expect("a broken file", run(broken), (1, "", plain))
    expect("a path into it", run(broken, "//port"), (1, "", plain))
    coloured = (
        f"\x1b[1mbroken.xml:3:13: \x1b[0m\x1b[1;31merror:\x1b[0m {message}\n{line}\n\x1b[1;32m            ^\x1b[0m\n"
    )
    expect("on a terminal", on_terminal(broken), coloured)
    expect("with an empty NO_COLOR", on_terminal(broken, NO_COLOR=""), coloured)
    expect("with NO_COLOR", on_terminal(broken, NO_COLOR="1"), plain)

    missing = "missing.xml: error: the file cannot be read: there is no such file\n"
    expect("no file", run("missing.xml"), (1, "", missing))

    invalid = file("invalid.xml", "<!DOCTYPE a [<!ELEMENT a (b)>\n<!ELEMENT b EMPTY>]>\n<a>\n <b x='1'/>\n</a>\n")
    expect(
        "an invalid file",
        run(invalid),
        (
            1,
            "",
            "invalid.xml:4:2: error: not valid: the document type does not allow /a/b, or not what is in it\n"
            '  <b x="1">\n  ^\n',
        ),
    )

    file("typed.dtd", "<!ELEMENT a\n")
    status, out, err = run(file("typed.xml", "<a/>"))
    expect("a broken document type", (status, out, err.split("\n")[0]), (1, "", "typed.dtd: not well-formed"))
    expect("and where", "Reading stopped in line" in err, True)
    file("typed.dtd", "<!ELEMENT a EMPTY>")
    expect("a document type beside the file", ", valid by typed.dtd in " in run("typed.xml")[1], True)

    everyday = file(
        "everyday.xml",
        "\ufeff<!DOCTYPE größe>\r\n<größe><!--c--><?i?><![CDATA[<5>]]> 'tis</größe>\r\n",
    )
    expect("an everyday file", run(everyday)[::2], (0, ""))
    expect("a path", run(everyday, "/*"), (0, "<größe> <5> 'tis\n", ""))
    expect("what it wrote", os.path.exists("everyday-changed.xml"), True)

    kept = "\n".join(
        [
            "<?xml version='1.0' encoding='utf-8'?>",
            "<!-- ours -->",
            "<server>",
            "  <!-- not 8080 --><?reload?>",
            '  <port z="1" a="2">80</port>',
            "  <name><![CDATA[Tom & Ana]]></name>",
            "  <a",
            "     x = 'größe'></a>",
            "</server>",
            "",
        ]
    )
    status, out, err = run(file("kept.xml", kept))
    expect("a file that is saved as it was", (status, err), (0, ""))
    expect(
        "the lines that differ",
        re.sub(r" in [0-9.e-]+ ms", "", out[out.index("\nChanged") :]),
        """
Changed one value, and saved all as it was to kept-saved.xml
  /server[1]/port[1]: text "80" and text "80 & Co."
  line 1
  - <?xml version='1.0' encoding='utf-8'?>
  + <?xml version="1.0" encoding="utf-8"?>
  line 5
  -   <port z="1" a="2">80</port>
  +   <port z="1" a="2">80 &amp; Co.</port>
  line 7
  -   <a
  -      x = 'größe'></a>
  +   <a x="größe"/>
  But for the value these are other ways to write the same: quotes and white space in tags,
  references that are resolved. docs/standard.md names them all.
""",
    )
    expect("the file itself", bytes_of("kept.xml"), kept.encode())
    saved = kept.replace("'1.0' encoding='utf-8'", '"1.0" encoding="utf-8"').replace("80</port>", "80 &amp; Co.</port>")
    expect("the copy", bytes_of("kept-saved.xml"), saved.replace("<a\n     x = 'größe'></a>", '<a x="größe"/>').encode())

    long = "\n".join(["<list>", *(f"<n i='{i}' />" if i % 100 < 50 else f"<m>{i}</m>" for i in range(1000)), "</list>"])
    out = run(file("long.xml", long))[1]
    expect("a place of many lines", "  line 2\n  - <n i='0' />\n" in out and "\n  - and 48 more\n  + <n" in out, True)
    expect("and many places", "\n  and in 7 more places\n" in out, True)
    expect("a path that finds nothing", run(everyday, "//b")[0], 1)

if failures:
    sys.exit("\n".join(failures))
