#!/usr/bin/env python3
"""Times whole processes on generated drawings: qdvhost beside ezdxf, GDAL and LibreCAD where they are installed.

measure.py QDVHOST COUNT... prints a table for each count: seconds (the best of the runs), processor seconds, megabytes
of memory, megabytes of input in a second, and how many times slower each other program is on the same work.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

LIMIT = 900  # seconds for one process
EZDXF_PYTHON = "/usr/bin/python3"


def run(command, environment=None):
    """(wall seconds, processor seconds, peak megabytes), or None when it fails or takes too long."""
    start = time.perf_counter()
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL, env={**os.environ, **(environment or {})})
    deadline = start + LIMIT
    while True:
        pid, status, usage = os.wait4(process.pid, os.WNOHANG)
        if pid:
            wall = time.perf_counter() - start
            process.returncode = os.waitstatus_to_exitcode(status)
            break
        if time.perf_counter() > deadline:
            process.kill()
            os.wait4(process.pid, 0)
            return None
        time.sleep(0.001)
    if process.returncode != 0:
        return None
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def best(command, environment=None):
    first = run(command, environment)
    if first is None or first[0] > 20:
        return first
    results = [first] + [run(command, environment) for _ in range(2)]
    return min((result for result in results if result), default=None)


def padded(text, width):
    """Text to the left in as many columns of a terminal; Chinese characters take two."""
    return text + " " * (width - sum(2 if ord(character) > 0x2E7F else 1 for character in text))


def has_ezdxf():
    return subprocess.run([EZDXF_PYTHON, "-c", "import ezdxf"], stderr=subprocess.DEVNULL).returncode == 0


def works(host, drawing, folder):
    """(work, [(program, command, environment)]), ours first."""
    ours = [host, "--script", "/dev/null", "--module", "none", "--settings", f"{folder}/settings"]
    reading = [("qdvhost", [*ours, drawing], None)]
    rewriting = [("qdvhost", [*ours, "--save", f"{folder}/out.dxf", drawing], None)]
    to_pdf = [("qdvhost", [*ours, "--plot", f"{folder}/out.pdf", drawing], None)]
    to_png = [("qdvhost", [*ours, "--plot", f"{folder}/out.png", drawing], None)]
    if has_ezdxf():
        load = f"import ezdxf; d = ezdxf.readfile({drawing!r})"
        reading.append(("ezdxf", [EZDXF_PYTHON, "-c", load], None))
        rewriting.append(("ezdxf", [EZDXF_PYTHON, "-c", f"{load}; d.saveas({folder + '/ezdxf.dxf'!r})"], None))
    if shutil.which("ogrinfo"):
        reading.append(("GDAL", ["ogrinfo", "-ro", "-al", "-so", drawing], {"DXF_ENCODING": "UTF-8"}))
    if shutil.which("librecad"):
        offscreen = {"QT_QPA_PLATFORM": "offscreen"}
        pdf = str(pathlib.Path(drawing).with_suffix(".pdf"))
        to_pdf.append(("LibreCAD", ["librecad", "dxf2pdf", "-a", drawing], offscreen))
        if shutil.which("pdftoppm"):
            to_png.append(("LibreCAD", ["sh", "-c", 'librecad dxf2pdf -a "$1" && pdftoppm -png -scale-to 4000 "$2" "$3"',
                                        "sh", drawing, pdf, f"{folder}/librecad"], offscreen))
    return [("空脚本", [("qdvhost", ours, None)]), ("读 DXF", reading), ("读并写回", rewriting),
            ("DXF 到 PDF", to_pdf), ("DXF 到 PNG", to_png)]


def report(host, count, folder):
    drawing = f"{folder}/mixed-{count}.dxf"
    subprocess.run([sys.executable, str(pathlib.Path(__file__).with_name("make_drawing.py")), str(count), drawing],
                   check=True)
    megabytes = os.path.getsize(drawing) / 1e6
    print(f"\n{count} 个图元，{megabytes:.1f} MB")
    print(padded("工作", 14) + padded("程序", 12) + "      秒   CPU 秒  内存 MB    MB/s      倍")
    for work, programs in works(host, drawing, folder):
        own = None
        for program, command, environment in programs:
            result = best(command, environment)
            if result is None:
                print(padded(work, 14) + padded(program, 12) + "失败或超时")
                continue
            wall, processor, memory = result
            own = own or wall
            rate = "" if work == "空脚本" else f"{megabytes / wall:.1f}"
            print(padded(work, 14) + padded(program, 12) + f"{wall:>8.3f}{processor:>9.3f}{memory:>9.0f}{rate:>8}{wall / own:>8.1f}",
                  flush=True)
    os.remove(drawing)


def main():
    if len(sys.argv) < 3:
        sys.exit("用法: measure.py qdvhost 数量...")
    with tempfile.TemporaryDirectory() as folder:
        for count in map(int, sys.argv[2:]):
            report(sys.argv[1], count, folder)


if __name__ == "__main__":
    main()
