"""Runs the demo on files that are not right, with and without a terminal: demo_test.py PROGRAM DATA-FOLDER."""
import os
import pty
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
    expect("a path that finds nothing", run(everyday, "//b")[0], 1)

if failures:
    sys.exit("\n".join(failures))
