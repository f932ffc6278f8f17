"""How long a page takes to be made and to be seen: a surface of 200,000 triangles, and tetrahedra of which a page
shows the outside alone. Headless Chromium draws with the processor, which is the slowest that a reader can have.

  viewer_pages.py ORVML FOLDER
"""
import pathlib
import statistics
import subprocess
import sys
import time

import numpy as np

import orvml

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "tests" / "viewer"))
from browser import Browser  # noqa: E402

ROUNDS = 5
FRAMES = 90
TURN = """
  const done = arguments[0];
  const stage = meshPage.views[0].stage;
  const graphics = stage.renderer.getContext();
  const pixel = new Uint8Array(4);
  const begin = performance.now();
  let frames = 0;
  (function turn() {
    stage.turn(0.03, 0);
    stage.drawNow();
    // Waits until it is drawn: commands alone are given faster than they are carried out.
    graphics.readPixels(0, 0, 1, 1, graphics.RGBA, graphics.UNSIGNED_BYTE, pixel);
    if (++frames < %d) requestAnimationFrame(turn);
    else done(1000 * frames / (performance.now() - begin));
  })();""" % FRAMES


def surface(path, sides):
    """A wavy square of 2 sides^2 triangles."""
    x, y = np.meshgrid(np.linspace(0, 1, sides + 1), np.linspace(0, 1, sides + 1))
    points = np.stack([x, y, 0.2 * np.sin(9 * x) * np.cos(7 * y)], -1).reshape(-1, 3)
    first = (np.arange(sides)[:, None] * (sides + 1) + np.arange(sides)).ravel()
    triangles = np.concatenate([np.stack([first, first + 1, first + sides + 2], 1),
                                np.stack([first, first + sides + 2, first + sides + 1], 1)])
    document = orvml.Input(points, faces=[("triangle", triangles)])
    document.nodes.attributes["height"] = points[:, 2]
    orvml.write(path, document)


def body(path, sides):
    """A cube of 6 sides^3 tetrahedra."""
    line = np.linspace(0, 1, sides + 1)
    points = np.stack(np.meshgrid(line, line, line, indexing="ij"), -1).reshape(-1, 3)
    number = np.arange(len(points)).reshape((sides + 1,) * 3)

    def corner(bits):
        return number[tuple(slice(bit, sides + bit) for bit in bits)].ravel()

    paths = [((1, 0, 0), (1, 1, 0)), ((1, 1, 0), (0, 1, 0)), ((0, 1, 0), (0, 1, 1)), ((0, 1, 1), (0, 0, 1)),
             ((0, 0, 1), (1, 0, 1)), ((1, 0, 1), (1, 0, 0))]
    ends = corner((0, 0, 0)), corner((1, 1, 1))
    cells = np.concatenate([np.stack([ends[0], corner(a), corner(b), ends[1]], 1) for a, b in paths])
    orvml.write(path, orvml.Output(points, elements=[("tetrahedron", cells)]))


def main(command, folder):
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    browser = Browser()
    try:
        for name, make, sides in (("200,000 triangles", surface, 316), ("5 million tetrahedra", body, 94)):
            make(folder / "mesh.h5", sides)
            made, seen, smooth = [], [], []
            for _ in range(ROUNDS):
                begin = time.monotonic()
                subprocess.run([command, "report", folder / "mesh.h5", "-o", folder / "mesh.html"], check=True,
                               stdout=subprocess.DEVNULL)
                made.append(time.monotonic() - begin)
                browser.open(folder / "mesh.html", 640, 480)
                seen.append(browser.ask("meshPage.firstFrame") / 1000)
                smooth.append(browser.driver.execute_async_script(TURN))
            size = (folder / "mesh.html").stat().st_size / 1e6
            print(f"{name}: page of {size:.1f} MB, made in {statistics.median(made):.2f} s, "
                  f"first frame after {statistics.median(seen):.2f} s, "
                  f"{statistics.median(smooth):.0f} frames a second (medians of {ROUNDS})")
    finally:
        browser.close()


main(*sys.argv[1:])
