"""Filters a long document in 16 MiB of memory: filter_test.py PROGRAM MEGABYTES [--any-memory].

The document is made on its way into the program and compared on its way out of it; it is nowhere as a whole. A record
that does not fit into the memory shows that the bound is one. Sanitizers take memory of their own: --any-memory.
"""
import resource
import subprocess
import sys
import threading

program, megabytes = sys.argv[1], int(sys.argv[2])
is_bounded = "--any-memory" not in sys.argv
MOST = 16 << 20

HEAD = b'<?xml version="1.0" encoding="UTF-8"?>\n<!-- of the year -->\n<orders>\n  <from>The garden</from>'
TAIL = b"\n</orders>\n"


def order(number, attributes, text):
    return f'\n  <order number="{number}"{attributes}><item id="{number % 7}">{text}</item><!--c--></order>'.encode()


def block():
    """About a megabyte of orders, and what is left of them."""
    before, after, size = [], [], 0
    for number in range(10**6):
        text = "Yew &amp; box, " * (number % 50) + "Müller"
        if number % 3 == 0:
            before.append(order(number, ' paid="true"', text))
        else:
            before.append(order(number, f' reminders="{number % 5}"', text))
            after.append(order(number, f' reminders="{number % 5 + 1}"', text))
        size += len(before[-1])
        if size >= 1 << 20:
            return b"".join(before), b"".join(after)


def bound():
    """Of all that is not code or a file that is mapped."""
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_DATA, (MOST, MOST))


def start(bounded, **pipes):
    return subprocess.Popen([program], stdin=subprocess.PIPE, preexec_fn=bound if bounded else None, **pipes)


def peak(process):
    """What it had in memory at most, code and all, in bytes; nothing once it has ended."""
    with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
        return next((int(line.split()[1]) << 10 for line in status if line.startswith("VmHWM")), 0)


def feed(process, blocks, peaks):
    try:
        process.stdin.write(HEAD)
        for each in blocks:
            process.stdin.write(each)
        process.stdin.flush()
        peaks.append(peak(process))
        process.stdin.write(TAIL)
        process.stdin.close()
    except BrokenPipeError:
        pass  # the program has ended


def expect(what, found, expected):
    if found != expected:
        sys.exit(f"{what}: expected {expected!r}, found {found!r}")


before, after = block()
peaks = []
process = start(is_bounded, stdout=subprocess.PIPE)
feeder = threading.Thread(target=feed, args=(process, (before for _ in range(megabytes)), peaks), daemon=True)
feeder.start()
expect("what stands before the orders", process.stdout.read(len(HEAD)), HEAD)
for number in range(megabytes):
    if process.stdout.read(len(after)) != after:
        sys.exit(f"block {number} is not what is left of it")
expect("the end", process.stdout.read(), TAIL)
feeder.join()
expect("its exit status", process.wait(), 0)

if is_bounded and not 0 < peaks[0] <= MOST:
    sys.exit(f"it had {peaks[0]} bytes in memory")
for bounded in [False, True] if is_bounded else [False]:
    ended = start(bounded, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    feed(ended, [order(1, "", "x" * MOST)], [])
    expect("whether a record fits that is as large as the bound", ended.wait() == 0, not bounded)

print(f"{len(before) * megabytes >> 20} MB filtered, {peaks[0] >> 10} KB in memory at most")
