"""A headless Chromium that looks at a page as a person does, and keeps account of what it asks for."""
import base64
import io
import json
import pathlib
import time

import numpy as np
from PIL import Image
from selenium import webdriver

PROBES = (pathlib.Path(__file__).parents[2] / "docs" / "site" / "page_probes.js").read_text()
SOFTWARE = ("--use-angle=swiftshader", "--enable-unsafe-swiftshader", "--ignore-gpu-blocklist")
WITHOUT_GRAPHICS = ("--disable-gpu", "--disable-3d-apis")


class Browser:
    """A window with a page in it."""

    def __init__(self, arguments=SOFTWARE):
        options = webdriver.ChromeOptions()
        for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--no-first-run",
                         "--disable-background-networking", "--disable-component-update",
                         "--disable-sync", "--force-color-profile=srgb", *arguments):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        self.driver = webdriver.Chrome(options=options)

    def close(self):
        self.driver.quit()

    def command(self, name, **parameters):
        return self.driver.execute_cdp_cmd(name, parameters)

    def resize(self, width, height=900, dark=False):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height,
                     deviceScaleFactor=1, mobile=width < 500)
        self.prefer("dark" if dark else "light")

    def prefer(self, scheme, medium=""):
        self.command("Emulation.setEmulatedMedia", media=medium,
                     features=[{"name": "prefers-color-scheme", "value": scheme}])

    def open(self, path, width=1280, height=800, dark=False):
        """Loads a page and waits until it is ready."""
        self.resize(width, height, dark)
        self.driver.get_log("browser")
        self.driver.get_log("performance")
        self.driver.get(pathlib.Path(path).resolve().as_uri())
        self.wait("window.meshPage?.isReady || document.querySelector('.failure, .drop')")
        return self

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def ask(self, expression):
        return self.run(f"return {expression}")

    def wait(self, expression, seconds=20):
        end = time.monotonic() + seconds
        while not self.ask(f"Boolean({expression})"):
            assert time.monotonic() < end, f"never came true: {expression}"
            time.sleep(0.05)

    def settle(self):
        """Waits until what was asked for is drawn."""
        self.driver.execute_async_script(
            "const done = arguments[0]; requestAnimationFrame(() => requestAnimationFrame(() => done()))")

    def find(self, selector):
        return self.driver.find_element("css selector", selector)

    def all(self, selector):
        return self.driver.find_elements("css selector", selector)

    def named(self, name, role="*"):
        """The control of a name, as a person reads it."""
        found = [element for element in self.all("button, select, input, canvas, summary")
                 if element.is_displayed() and element.accessible_name == name]
        assert found, f"there is no control {name!r}"
        return found[0]

    def unfold(self, title):
        """Opens a part of the panel."""
        self.run("for (const part of document.querySelectorAll('details'))"
                 "  if (part.querySelector('h2').textContent.startsWith(arguments[0])) {"
                 "    part.open = true; part.scrollIntoView(); }", title)

    def choose(self, select, value):
        """Chooses from a list as a person does: the page hears of it."""
        self.run("arguments[0].value = arguments[1];"
                 "arguments[0].dispatchEvent(new Event('change', {bubbles: true}))", select, value)
        self.settle()

    def type(self, element, text):
        self.run("arguments[0].value = arguments[1];"
                 "for (const name of ['input', 'change'])"
                 "  arguments[0].dispatchEvent(new Event(name, {bubbles: true}))", element, str(text))
        self.settle()

    def picture(self, selector=None):
        """What is on the screen, or of it what an element covers: `[height x width x 3]`."""
        self.settle()
        clip = {}
        if selector:
            box = self.run("const {x, y, width, height} = document.querySelector(arguments[0])"
                           ".getBoundingClientRect(); return {x, y, width, height};", selector)
            clip = {"clip": {**box, "scale": 1}}
        data = self.command("Page.captureScreenshot", format="png", **clip)["data"]
        return np.asarray(Image.open(io.BytesIO(base64.b64decode(data))).convert("RGB")).astype(int)

    def canvas(self, number=0):
        """The pixels that the page has drawn, `[height x width x 4]`, its background left out."""
        data = self.run("const stage = meshPage.views[arguments[0]].stage; stage.drawNow();"
                        "return stage.canvas.toDataURL('image/png')", number)
        return np.asarray(Image.open(io.BytesIO(base64.b64decode(data.split(",")[1]))).convert("RGBA")
                          ).astype(int)

    def click_canvas(self, x, y, number=0):
        """A click of the mouse at a place of a canvas."""
        box = self.run("const {x, y} = meshPage.views[arguments[0]].canvas.getBoundingClientRect();"
                       "return [x, y]", number)
        for kind in ("mousePressed", "mouseReleased"):
            self.command("Input.dispatchMouseEvent", type=kind, x=box[0] + x, y=box[1] + y,
                         button="left", clickCount=1)
        self.settle()

    def console(self):
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def requests(self):
        """The addresses that the page asked for, itself not among them."""
        sent = [json.loads(entry["message"])["message"] for entry in self.driver.get_log("performance")]
        return [message["params"]["request"]["url"] for message in sent
                if message["method"] == "Network.requestWillBeSent"
                and message["params"].get("type") != "Document"
                and not message["params"]["request"]["url"].startswith("data:")]

    def accessible(self):
        """What a screen reader is told: (role, name) of each node that is not ignored."""
        self.command("Accessibility.enable")
        nodes = self.command("Accessibility.getFullAXTree")["nodes"]
        return [(node["role"]["value"], node.get("name", {}).get("value", "")) for node in nodes
                if not node.get("ignored")]
