#!/usr/bin/env python3
"""browser.py SITE CHROMEDRIVER CHROMIUM: uses the reference as its reader does, in a browser without a window: from
the front page over the search box to a class, and on to a family and what its picture and table lead to. What the
browser itself complains of is a failure, too."""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import urllib.request

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"  # the protocol's name for a found element
PATIENCE = 20  # seconds for what a page does by itself


class Browser:
    """A session with a driver of its own, over the WebDriver protocol."""

    def __init__(self, driver, browser, profile):
        self.process = subprocess.Popen([driver, "--port=0"], stdout=subprocess.PIPE, text=True)
        line = next(line for line in self.process.stdout if "started successfully on port" in line)
        self.base = f"http://127.0.0.1:{line.rstrip().rstrip('.').split()[-1]}"
        arguments = ["--headless", "--no-sandbox", "--disable-gpu", f"--user-data-dir={profile}"]
        options = {"binary": browser, "args": arguments}
        wanted = {"browserName": "chrome", "goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"}}
        session = self.call("POST", "/session", {"capabilities": {"alwaysMatch": wanted}})
        self.base += "/session/" + session["sessionId"]

    def call(self, method, path, body=None):
        data = None if method != "POST" else json.dumps(body or {}).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"}, method=method)
        with urllib.request.urlopen(request, timeout=60) as answer:
            return json.load(answer)["value"]

    def find(self, xpath):
        """The elements that are shown, once there is one; none after a while."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            found = self.call("POST", "/elements", {"using": "xpath", "value": xpath})
            found = [one[ELEMENT] for one in found if self.call("GET", f"/element/{one[ELEMENT]}/displayed")]
            if found:
                return found
            time.sleep(0.05)
        raise AssertionError(f"nothing like {xpath} on {self.call('GET', '/url')}")

    def click(self, xpath):
        self.call("POST", f"/element/{self.find(xpath)[0]}/click")

    def enter(self, xpath=None):
        """Into a frame of the page; without one, back to the whole page."""
        self.call("POST", "/frame", {"id": {ELEMENT: self.find(xpath)[0]} if xpath else None})

    def type(self, xpath, text):
        self.call("POST", f"/element/{self.find(xpath)[0]}/value", {"text": text})

    def expect(self, title, file):
        self.find(f"//div[@class='title' and starts-with(normalize-space(), '{title}')]")
        url = self.call("GET", "/url").split("#")[0]
        assert url.endswith("/" + file), f"{title}: at {url}"

    def complaints(self):
        """What its console shows, but for this: of files, a page may not close its list of results, and works on."""
        shown = [entry["message"] for entry in self.call("POST", "/se/log", {"type": "browser"})]
        return [message for message in shown if "cross-origin frame" not in message]

    def close(self):
        try:
            self.call("DELETE", "")
        finally:
            self.process.terminate()
            self.process.wait()


def read_the_site(browser, site):
    browser.call("POST", "/url", {"url": (site / "index.html").as_uri()})
    browser.expect("zo_com", "index.html")
    browser.type("//input[@id='MSearchField']", "ZoString")
    browser.enter("//iframe[@id='MSearchResults']")
    browser.click("//a[normalize-space()='ZoString']")  # shows what has this name
    browser.click("//a[@class='SRScope' and contains(@href, '/classZoString.html') and not(contains(@href, '#'))]")
    browser.enter()
    browser.expect("ZoString", "classZoString.html")
    browser.find("//dt[normalize-space()='Errors']/following::dd[contains(., 'std::bad_alloc')]")
    browser.find("//dt[normalize-space()='Threads']")
    browser.click("//ul[@id='main-menu']//a[normalize-space()='Families']")
    browser.expect("Families", "doc_families.html")
    browser.click("//div[@class='contents']//a[normalize-space()='Strings']")
    browser.expect("Strings", "doc_family_strings.html")
    browser.find("//object[contains(@data, 'family_strings.svg')]")
    browser.click("//td//a[normalize-space()='ZoSubString']")
    browser.expect("ZoSubString", "classZoSubString.html")
    complaints = browser.complaints()
    assert not complaints, complaints


def main():
    site, driver, chromium = sys.argv[1:]
    with tempfile.TemporaryDirectory() as profile:
        os.environ["HOME"] = profile  # whatever it keeps, goes with it
        browser = Browser(driver, chromium, profile)
        try:
            read_the_site(browser, pathlib.Path(site).resolve())
        finally:
            browser.close()


main()
