"""The page's service worker: shared memory on hosts that send nothing but files, and the page without a network."""
import sys
import unittest

import browser
import webhost


class Offline(unittest.TestCase):
    def setUp(self):
        self.browser = browser.Browser()
        self.addCleanup(self.browser.close)

    def serve(self, **host):
        site = webhost.Site(**host)
        self.addCleanup(site.close)
        return site

    def play(self):
        before = len(self.browser.texts(".moves button"))
        self.browser.wait("document.querySelector('.movable')")
        self.browser.value("document.querySelector('.typed input').focus()")
        self.browser.press(*("e4" if before == 0 else "a3"), "Enter")
        self.browser.wait(f"document.querySelectorAll('.moves button').length === {before + 2}")

    def test_a_host_of_plain_files_below_its_root_is_enough_for_threads(self):
        self.browser.open(self.serve(shared=False, place="/games/vrel/").address)
        self.browser.wait("self.crossOriginIsolated && document.querySelector('.movable')")
        self.play()
        # The reload is the only one.
        self.assertEqual(self.browser.value("performance.getEntriesByType('navigation')[0].type"), "reload")
        self.assertEqual(self.browser.texts("#notices"), [""])

    def test_the_page_is_all_there_without_a_network(self):
        for shared in (True, False):
            with self.subTest(shared=shared):
                site = self.serve(shared=shared)
                self.browser.open(site.address)
                self.browser.wait("navigator.serviceWorker.controller && document.querySelector('.movable')")
                self.play()
                site.stop()
                self.browser.open(site.address)
                self.play()
                self.assertEqual(len(self.browser.texts(".moves button")), 4)
                self.assertTrue(self.browser.value("self.crossOriginIsolated"))
                self.browser.value("location.hash = '#analyse'")
                self.browser.wait("document.querySelector('nav [aria-current]').textContent === 'Analyse'")


if __name__ == "__main__":
    if not browser.HERE or not webhost.HERE:
        print("Chromium, its driver or the built site isn't here, so nobody takes the network away")
        sys.exit(77)
    unittest.main()
