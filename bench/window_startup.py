#!/usr/bin/env python3
"""Time from process start to the visible main dialog, under an Xvfb of its own,
beside a silent create of the same build measured in the same run.

usage: bench/window_startup.py [RIGCFG] [--runs N]
The window counts as visible once xdotool finds it mapped; xdotool is polled
without pause, so the figure includes up to one poll (a few ms) too many.
"""
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

root_dir = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
args = [a for a in sys.argv[1:]]
runs = 10
if "--runs" in args:
    i = args.index("--runs")
    runs = int(args[i + 1])
    del args[i:i + 2]
rigcfg = args[0] if args else os.path.join(root_dir, "build/default/machine_configurator/rigcfg")

scratch = tempfile.mkdtemp()
read_fd, write_fd = os.pipe()
xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(write_fd), "-screen", "0", "1280x1024x24",
                         "-nolisten", "tcp"], pass_fds=(write_fd,), stderr=subprocess.DEVNULL)
os.close(write_fd)
display = ":" + os.read(read_fd, 16).decode().strip()
env = dict(os.environ, DISPLAY=display, KORV_LOG_DIR=os.path.join(scratch, "log"))
env.pop("KORV_UI_SCRIPT", None)


def fresh_root():
    root = os.path.join(scratch, "root")
    shutil.rmtree(root, ignore_errors=True)
    shutil.copytree(os.path.join(root_dir, "examples"), root)
    env["KORV_ROOT"] = root


def to_window():
    start = time.monotonic()
    proc = subprocess.Popen([rigcfg], env=env)
    window = ""
    while not window and time.monotonic() - start < 20:
        window = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(proc.pid)],
                                env=env, capture_output=True, text=True).stdout.split("\n")[0]
    elapsed = time.monotonic() - start
    subprocess.run(["xdotool", "windowfocus", "--sync", window, "key", "Escape"], env=env)
    if proc.wait() != 2:
        sys.exit("the main dialog did not end with 2")
    return elapsed


def silent_create():
    fresh_root()
    start = time.monotonic()
    code = subprocess.run([rigcfg, "control=korecon", "file=KMX_100_create.ini",
                           "variant=9100100"], env=env).returncode
    elapsed = time.monotonic() - start
    if code != 0:
        sys.exit("the silent create failed")
    return elapsed


try:
    window, silent = [], []
    for _ in range(runs):
        fresh_root()
        window.append(to_window())
        silent.append(silent_create())
    w, s = statistics.median(window), statistics.median(silent)
    print(f"visible main dialog: median {w * 1000:.1f} ms of {runs} runs "
          f"(min {min(window) * 1000:.1f}, max {max(window) * 1000:.1f})")
    print(f"silent create:       median {s * 1000:.1f} ms of {runs} runs")
    print(f"ratio window / silent create: {w / s:.1f}")
finally:
    xvfb.terminate()
    xvfb.wait()
    shutil.rmtree(scratch, ignore_errors=True)
