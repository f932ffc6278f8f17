"""Loads each page of the site in headless Chromium and looks at it as a reader would: on a phone and on
a desk, by a browser that prefers light and by one that prefers dark."""
import html
import json
import pathlib
import re

PROBES = (pathlib.Path(__file__).parent / "page_probes.js").read_text()
WIDTHS = (360, 375, 768, 1024, 1440)
DESKTOP = 1440
LEAST_CONTRAST_OF_ICONS = 3
PREFERENCES = ("light", "dark")


def start():
    from selenium import webdriver  # only this needs it

    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--no-first-run", "--disable-background-networking",
                     "--disable-component-update", "--disable-sync"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(options=options)


def prefer(browser, preference):
    feature = {"name": "prefers-color-scheme", "value": preference}
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [feature]})


def be_wide(browser, width):
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": 900, "deviceScaleFactor": 1, "mobile": width < 500})


def ask(browser, question):
    return browser.execute_script(f"{PROBES}\nreturn {question};")


def shown(browser, selector):
    return [found for found in browser.find_elements("css selector", selector)
            if found.is_displayed()]


def photograph(browser, element):
    """The window, and where in it the element is: arguments of a probe that looks at it."""
    corner = browser.execute_script(
        "arguments[0].scrollIntoView({block: 'center'});"
        "const {x, y, width, height} = arguments[0].getBoundingClientRect();"
        "return {x, y, width, height};", element)
    window = browser.execute_cdp_cmd("Page.captureScreenshot", {"format": "png"})["data"]
    return f"'{window}', {json.dumps(corner)}"


def faults_of_loading(browser, path):
    heading = re.search(r"<h1[^>]*>(.*?)<", path.read_text(), re.S)
    titles = browser.find_elements("css selector", "h1")
    if heading and (not titles or html.unescape(heading.group(1)) not in titles[0].text):
        yield "the browser does not show its heading"
    for image in browser.find_elements("css selector", "article img"):
        if not browser.execute_script("return arguments[0].naturalWidth > 0", image):
            yield f"{image.get_attribute('src')} is not shown"
    for entry in browser.get_log("browser"):
        yield f"the browser says {entry['message']}"


def faults_of_widths(browser):
    for width in WIDTHS:
        be_wide(browser, width)
        for fault in ask(browser, "[...partsThatStickOut(), ...wordsThatAreBroken()]"):
            yield f"{width} pixels wide: {fault}"


def faults_of_colours(browser, wanted):
    """What does not look as wanted, or cannot be read, in the page as it is now."""
    yield from ask(browser, f"surfacesThatAreNot('{wanted}')")
    yield from ask(browser, "textsThatAreHardToRead()")
    for kind in ("button.theme-toggle", "button.copybtn"):
        for button in shown(browser, kind)[:1]:
            reached = ask(browser, f"greatestContrast({photograph(browser, button)})")
            if reached < LEAST_CONTRAST_OF_ICONS:
                yield f"the icon of {kind} has a contrast of {reached:.1f}"
    # Those of pixels are drawn once, on white.
    for image in shown(browser, "article img:not([src$='.png'])"):
        dark = ask(browser, f"darkShare({photograph(browser, image)})")
        if (dark > 0.5) != (wanted == "dark"):
            yield f"{image.get_attribute('src')} is not {wanted}: {dark:.0%} of it are dark"


def faults_of_preferences(browser):
    be_wide(browser, DESKTOP)
    for preference in PREFERENCES:
        prefer(browser, preference)
        for fault in faults_of_colours(browser, preference):
            yield f"a reader who prefers {preference}: {fault}"


def faults_of_contents_list(browser):
    if browser.find_elements("css selector", "article dl.cpp.function"):
        if not shown(browser, ".toc-tree a[href^='#_CPPv4']"):
            yield "the list of its functions is not shown"


def load(browser, path):
    """Loads a page that changes at once, as one that still moves cannot be measured."""
    browser.get(path.as_uri())
    browser.execute_script("const still = document.createElement('style');"
                           "still.textContent = '* { transition: none !important; '"
                           "  + 'scroll-behavior: auto !important }';"
                           "document.head.append(still);")


def faults_of_page(browser, path):
    load(browser, path)
    yield from faults_of_loading(browser, path)
    yield from faults_of_widths(browser)
    yield from faults_of_preferences(browser)
    yield from faults_of_contents_list(browser)


def faults_of_switch(browser, page):
    """A reader's own choice counts more than the browser's, on this page and on the next load."""
    be_wide(browser, DESKTOP)
    for preference, other in (PREFERENCES, PREFERENCES[::-1]):
        prefer(browser, preference)
        load(browser, page)
        shown(browser, ".theme-toggle")[0].click()
        for moment in ("after a click", "after a click and a load"):
            for fault in faults_of_colours(browser, other):
                yield f"{moment} on the switch by a reader who prefers {preference}: {fault}"
            load(browser, page)
        browser.execute_script("localStorage.clear()")


def faults_of_picture(browser, picture):
    browser.get(picture.as_uri())
    return ask(browser, "labelsThatAreHardToRead()")


def failures_in_browser(site, paths):
    browser = start()
    try:
        for path in paths:
            for fault in faults_of_page(browser, path):
                yield f"{path.relative_to(site)}: {fault}"
        for fault in faults_of_switch(browser, site / "index.html"):
            yield f"index.html: {fault}"
        for picture in sorted((site / "_images").glob("*.svg")):
            for fault in faults_of_picture(browser, picture):
                yield f"{picture.relative_to(site)}: {fault}"
    finally:
        browser.quit()
